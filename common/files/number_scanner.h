#pragma once

#include <cstddef>
#include <cstdint>

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
bool scan_any_number(const char*& at, const char* end, double& value);

/// Whether the text goes on at `c`. A text that is known to end in a line end needs no look at `end`: a line end is
/// neither blank here nor part of a number, so that every loop ends there.
template <bool in_line>
bool goes_on(const char* c, const char* end) {
  return in_line || c != end;
}

/// The digits from `c` on, joined to `digits`.
template <bool in_line>
std::uint64_t scan_digits(const char*& c, const char* end, std::uint64_t digits) {
  while (goes_on<in_line>(c, end)) {
    const unsigned digit = static_cast<unsigned char>(*c) - static_cast<unsigned>('0');
    if (digit > 9) break;
    digits = 10 * digits + digit;
    ++c;
  }
  return digits;
}

/// Reads the next number after blanks. Most files hold only plain decimals of up to 15 digits. These are exact integers
/// over an exact power of ten, so that one division rounds them as the general reader would, only faster.
/// Inlined always: a call per number is a tenth of the time of a file.
template <bool in_line>
[[gnu::always_inline]] inline bool scan_next(const char*& at, const char* end, double& value) {
  static constexpr double k_powers_of_ten[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                               1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  while (goes_on<in_line>(at, end) && is_blank(*at) && !(in_line && *at == '\n')) ++at;
  const char* c = at;
  const bool negative = goes_on<in_line>(c, end) && *c == '-';
  if (negative) ++c;
  const char* const first = c;
  std::uint64_t digits = scan_digits<in_line>(c, end, 0);
  std::ptrdiff_t count = c - first;
  std::ptrdiff_t decimals = 0;
  if (goes_on<in_line>(c, end) && *c == '.') {
    const char* const fraction = ++c;
    digits = scan_digits<in_line>(c, end, digits);
    decimals = c - fraction;
    count += decimals;
  }
  const bool exponent = goes_on<in_line>(c, end) && (*c == 'e' || *c == 'E');
  if (count == 0 || count > 15 || exponent) return scan_any_number(at, end, value);
  double magnitude = static_cast<double>(static_cast<std::int64_t>(digits));
  if (decimals > 0) magnitude /= k_powers_of_ten[decimals];
  value = negative ? -magnitude : magnitude;
  at = c;
  return true;
}

/// Reads the next number of [at, end) after white space. False if there is none.
inline bool scan_number(const char*& at, const char* end, double& value) { return scan_next<false>(at, end, value); }

/// Reads the next number of a line, the end of which can be read and is not behind `end`. False if there is none.
inline bool scan_number_of_line(const char*& at, const char* end, double& value) {
  return scan_next<true>(at, end, value);
}

}  // namespace qv
