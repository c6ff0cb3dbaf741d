#include "solver/model/c_locale.h"

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace qvslv {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// Reads a number of at most 15 digits without an exponent, as nearly all numbers in files are; false if there is none.
/// Its digits as a whole number and the power of ten are both exact, so their quotient is the number nearest to the
/// text.
bool read_short_decimal(const char* text, double& value, char** end) {
  constexpr int k_most_digits = 15;
  constexpr double k_powers[k_most_digits + 1] = {1,   1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                  1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  while (*text == ' ' || *text == '\t') ++text;
  const bool negative = *text == '-';
  if (negative) ++text;
  std::uint64_t digits = 0;
  std::ptrdiff_t count = 0, decimals = 0;
  for (; is_digit(*text); ++text, ++count) digits = 10 * digits + static_cast<std::uint64_t>(*text - '0');
  if (*text == '.')
    for (++text; is_digit(*text); ++text, ++decimals) digits = 10 * digits + static_cast<std::uint64_t>(*text - '0');
  count += decimals;
  const bool goes_on = *text == 'e' || *text == 'E' || *text == 'x' || *text == 'X';  // an exponent, hexadecimal digits
  if (count == 0 || count > k_most_digits || goes_on) return false;
  const double size = static_cast<double>(digits) / k_powers[decimals];
  value = negative ? -size : size;
  if (end != nullptr) *end = const_cast<char*>(text);
  return true;
}

}  // namespace

double read_double(const char* text, char** end) {
  double value = 0;
  if (read_short_decimal(text, value, end)) return value;
  // With every category "C" this is a constant of the C library: it allocates nothing and cannot fail.
  static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text, end, c_locale);
}

}  // namespace qvslv
