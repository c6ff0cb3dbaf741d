#pragma once

#include <cstddef>
#include <string>

namespace qvslv {

/// Appends `count` bytes as base64 (RFC 4648, with padding).
void append_base64(const void* bytes, size_t count, std::string& text);

/// Number of characters that `count` bytes take.
constexpr size_t base64_length(size_t count) { return (count + 2) / 3 * 4; }

}  // namespace qvslv
