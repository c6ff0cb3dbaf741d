#include "cli/terminal.h"

#include <cstdarg>
#include <string>

#include "solver/model/printable.h"

namespace qvcli {

void print(std::FILE* stream, const char* format, ...) {
  std::va_list values, again;
  va_start(values, format);
  va_copy(again, values);
  const int length = std::vsnprintf(nullptr, 0, format, values);
  std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  va_end(values);
  text = qvslv::printable(text);
  std::fwrite(text.data(), 1, text.size(), stream);
}

}  // namespace qvcli
