#pragma once

#include <cstdio>
#include <string>

#include "common/call/messages.h"

/// Reading numbers of a parameter list. Ids, indices, counts and switches are doubles truncated toward zero.
namespace qv {

/// What a guard says and to whom.
struct fault_channel {
  const char* prefix;  ///< of the module, ends with a blank
  int& ierr;
  char** msg;
};

/// True when truncation toward zero gives a value an int can hold (so never for a NaN).
inline bool fits_int(double value) { return value > -2147483649.0 && value < 2147483648.0; }

/// Shortest text that reads back as the same number.
inline std::string number_text(double value) {
  char text[40];
  for (int digits = 6; digits <= 17; ++digits) {
    std::snprintf(text, sizeof text, "%.*g", digits, value);
    double back = 0.0;
    if (std::sscanf(text, "%lf", &back) == 1 && back == value) break;
  }
  return text;
}

/// `value` truncated toward zero. A value no int can hold is a fault that names it.
inline int to_int(double value, const char* quantity, const fault_channel& channel) {
  if (fits_int(value)) return static_cast<int>(value);
  fault(std::string(channel.prefix) + "The " + quantity + " is " + number_text(value) +
            "; it must be a number between -2147483648 and 2147483647.",
        channel.ierr, channel.msg);
}

/// A count: an integer of 0 or more.
inline int to_count(double value, const char* quantity, const fault_channel& channel) {
  const int count = to_int(value, quantity, channel);
  if (count >= 0) return count;
  fault(std::string(channel.prefix) + "The " + quantity + " is " + std::to_string(count) + "; it must not be negative.",
        channel.ierr, channel.msg);
}

/// Refuses an index outside a filled container of `size` entries.
inline void check_index(int index, size_t size, const char* quantity, const fault_channel& channel) {
  if (index >= 0 && static_cast<size_t>(index) < size) return;
  fault(std::string(channel.prefix) + "The " + quantity + " is " + std::to_string(index) +
            "; it must lie between 0 and " + std::to_string(static_cast<long long>(size) - 1) + ".",
        channel.ierr, channel.msg);
}

}  // namespace qv
