#include "solver/model/c_locale.h"

#include <clocale>
#include <cstdlib>

namespace qvslv {

double read_double(const char* text, char** end) {
  // With every category "C" this is a constant of the C library: it allocates nothing and cannot fail.
  static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text, end, c_locale);
}

}  // namespace qvslv
