#include "common/files/number_scanner.h"

#include <charconv>
#include <clocale>
#include <cstdlib>
#include <string>

namespace qv {

double read_number(const char* text) {
  // With every category "C" this is a constant of the C library: it allocates nothing and cannot fail.
  static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text, nullptr, c_locale);
}

bool scan_any_number(const char*& at, const char* end, double& value) {
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

}  // namespace qv
