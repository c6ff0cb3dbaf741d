#pragma once

#include <charconv>
#include <limits>
#include <string>

namespace qvtest {

/// The number with 17 digits, from which the same double is read; with a decimal point in every locale.
inline std::string exact_text(double value) {
  char text[40];
  return std::string(text, std::to_chars(text, text + sizeof text, value, std::chars_format::general, 17).ptr);
}

/// The number that the text begins with, read with a decimal point in every locale; NaN if there is none.
inline double number_in(const std::string& text) {
  double value = std::numeric_limits<double>::quiet_NaN();
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

}  // namespace qvtest
