#pragma once

#include <charconv>
#include <string>

namespace qvtest {

/// The number with 17 digits, from which the same double is read; with a decimal point in every locale.
inline std::string exact_text(double value) {
  char text[40];
  return std::string(text, std::to_chars(text, text + sizeof text, value, std::chars_format::general, 17).ptr);
}

}  // namespace qvtest
