#pragma once

#include <charconv>
#include <cstdint>
#include <string>

/// Reads the numbers of a data line, with the grammar of formatted stream input: white space between them, an optional
/// sign, digits, fraction and exponent. There is no "inf", no "nan" and no hexadecimal, and a number too large for a
/// double cannot be read.
namespace qv {

/// The number that `text` begins with, as std::atof reads it in the C locale, whichever locale the host has set:
/// leading blanks, hexadecimal, "inf" and "nan" included; 0 if there is none.
double read_number(const char* text);

inline bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
inline bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// Reads the number that begins at `at`, of any form. False, with `at` unchanged, if there is none.
inline bool scan_any_number(const char*& at, const char* end, double& value) {
  const char* begin = at;
  const char* digits = begin;
  if (digits != end && (*digits == '+' || *digits == '-')) ++digits;
  if (digits == end || !(is_digit(*digits) || *digits == '.')) return false;
  if (*begin == '+') begin = digits;  // from_chars knows no plus sign
  const auto [stop, error] = std::from_chars(begin, end, value);
  if (error == std::errc::invalid_argument) return false;
  bool exponent = false;
  for (const char* c = begin; c != stop; ++c) exponent = exponent || *c == 'e' || *c == 'E';
  if (!exponent && stop != end && (*stop == 'e' || *stop == 'E')) return false;  // an exponent without digits
  if (error == std::errc::result_out_of_range) {                                 // too large, or too small to matter
    value = read_number(std::string(begin, stop).c_str());
    if (value > 1.0 || value < -1.0) return false;
  }
  at = stop;
  return true;
}

/// Reads the next number of [at, end) after white space. False if there is none. Most files hold only plain decimals of
/// up to 15 digits. These are exact integers over an exact power of ten, so that one division rounds them as the
/// general reader would, only faster.
inline bool scan_number(const char*& at, const char* end, double& value) {
  static constexpr double k_powers_of_ten[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                               1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  while (at != end && is_blank(*at)) ++at;
  const char* c = at;
  const bool negative = c != end && *c == '-';
  if (negative) ++c;
  const char* const first = c;
  std::uint64_t digits = 0;
  while (c != end && is_digit(*c)) digits = 10 * digits + static_cast<std::uint64_t>(*c++ - '0');
  long count = c - first;
  long decimals = 0;
  if (c != end && *c == '.') {
    const char* const fraction = ++c;
    while (c != end && is_digit(*c)) digits = 10 * digits + static_cast<std::uint64_t>(*c++ - '0');
    decimals = c - fraction;
    count += decimals;
  }
  const bool exponent = c != end && (*c == 'e' || *c == 'E');
  if (count == 0 || count > 15 || exponent) return scan_any_number(at, end, value);
  const double magnitude = static_cast<double>(digits) / k_powers_of_ten[decimals];
  value = negative ? -magnitude : magnitude;
  at = c;
  return true;
}

}  // namespace qv
