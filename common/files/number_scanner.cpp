#include "common/files/number_scanner.h"

#include <clocale>
#include <cstdlib>

namespace qv {

double read_number(const char* text) {
  // With every category "C" this is a constant of the C library: it allocates nothing and cannot fail.
  static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text, nullptr, c_locale);
}

}  // namespace qv
