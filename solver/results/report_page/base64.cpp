#include "solver/results/report_page/base64.h"

#include <cstdint>

namespace qvslv {

void append_base64(const void* bytes, size_t count, std::string& text) {
  static constexpr char k_digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const auto* in = static_cast<const unsigned char*>(bytes);
  text.reserve(text.size() + base64_length(count));
  for (size_t k = 0; k < count; k += 3) {
    const size_t left = count - k;
    const std::uint32_t group = static_cast<std::uint32_t>(in[k]) << 16 |
                                (left > 1 ? static_cast<std::uint32_t>(in[k + 1]) << 8 : 0U) |
                                (left > 2 ? static_cast<std::uint32_t>(in[k + 2]) : 0U);
    text += k_digits[group >> 18];
    text += k_digits[group >> 12 & 63U];
    text += left > 1 ? k_digits[group >> 6 & 63U] : '=';
    text += left > 2 ? k_digits[group & 63U] : '=';
  }
}

}  // namespace qvslv
