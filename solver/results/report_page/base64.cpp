#include "solver/results/report_page/base64.h"

#include <cstddef>
#include <cstdint>

namespace qvslv {

void append_base64(const void* bytes, size_t count, std::string& text) {
  static constexpr char k_digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const auto* in = static_cast<const unsigned char*>(bytes);
  const size_t begin = text.size();
  text.resize(begin + base64_length(count));
  char* out = text.data() + begin;
  const auto put = [&out](std::uint32_t group) {
    for (const unsigned shift : {18U, 12U, 6U, 0U}) *out++ = k_digits[group >> shift & 63U];
  };
  for (; count >= 3; count -= 3, in += 3) put(std::uint32_t{in[0]} << 16 | std::uint32_t{in[1]} << 8 | in[2]);
  if (count == 0) return;
  put(std::uint32_t{in[0]} << 16 | (count == 2 ? std::uint32_t{in[1]} << 8 : 0U));
  for (size_t missing = 3 - count; missing > 0; --missing) out[-static_cast<std::ptrdiff_t>(missing)] = '=';
}

}  // namespace qvslv
