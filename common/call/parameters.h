#pragma once

#include <charconv>
#include <string>

#include "common/call/messages.h"

/// Reading numbers of a parameter list. Ids, indices, counts and switches are doubles truncated toward zero.
namespace qv {

/// An entry of a parameter list and what a fault calls it.
struct parameter {
  int position;         ///< of qvbrisk/layouts.h
  const char* meaning;  ///< "road index"
};

/// The entry as the text of a fault names it: "road index (parameter 3)".
inline std::string text_of(const parameter& entry) {
  return std::string(entry.meaning) + " (parameter " + std::to_string(entry.position) + ")";
}

/// True if an int can hold the value truncated toward zero (so never for a NaN).
inline bool fits_int(double value) { return value > -2147483649.0 && value < 2147483648.0; }

/// The shortest text of 6 to 17 digits that reads back as the same number, with a decimal point in every locale.
inline std::string number_text(double value) {
  char text[40];
  for (int digits = 6;; ++digits) {
    char* const end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits).ptr;
    double back = 0.0;
    std::from_chars(text, end, back);
    if (back == value || digits == 17) return std::string(text, end);
  }
}

/// The number with six decimals, as std::to_string writes it in the C locale.
inline std::string fixed_text(double value) {
  char text[400];  // the largest double has 309 digits before its point
  return std::string(text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6).ptr);
}

/// `value` truncated toward zero. A value that no int can hold is a fault that names it.
inline int to_int(double value, const char* quantity, const fault_channel& channel) {
  if (fits_int(value)) return static_cast<int>(value);
  fault(channel, std::string("The ") + quantity + " is " + number_text(value) +
                     "; it must be a number between -2147483648 and 2147483647.");
}

/// An entry of a parameter list, read as above. The text that names it is only made for a fault.
inline int to_int(const double* par, const parameter& entry, const fault_channel& channel) {
  const double value = par[entry.position];
  return fits_int(value) ? static_cast<int>(value) : to_int(value, text_of(entry).c_str(), channel);
}

/// A count: an integer of 0 or more. Anything else is a fault.
inline int to_count(double value, const char* quantity, const fault_channel& channel) {
  const int count = to_int(value, quantity, channel);
  if (count >= 0) return count;
  fault(channel, std::string("The ") + quantity + " is " + std::to_string(count) + "; it must not be negative.");
}

inline int to_count(const double* par, const parameter& entry, const fault_channel& channel) {
  const int count = to_int(par, entry, channel);
  return count >= 0 ? count : to_count(par[entry.position], text_of(entry).c_str(), channel);
}

/// Refuses an index outside a filled container of `size` entries.
inline void check_index(int index, size_t size, const char* quantity, const fault_channel& channel) {
  if (index >= 0 && static_cast<size_t>(index) < size) return;
  fault(channel, std::string("The ") + quantity + " is " + std::to_string(index) + "; it must lie between 0 and " +
                     std::to_string(static_cast<long long>(size) - 1) + ".");
}

inline void check_index(int index, size_t size, const parameter& entry, const fault_channel& channel) {
  if (index < 0 || static_cast<size_t>(index) >= size) check_index(index, size, text_of(entry).c_str(), channel);
}

}  // namespace qv
