#include "solver/model/number_text.h"

#include <charconv>

namespace qvslv {

std::string number_text(double value) {
  char buffer[40];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, end.ptr};
}

}  // namespace qvslv
