#pragma once

#include <cstdint>
#include <string>

namespace qvslv {

/// What tells whether two files hold the same bytes.
struct FileDigest {
  std::uintmax_t bytes = 0;
  std::string sha256;  ///< 64 lower-case hexadecimal digits
};

/// Reads the whole file. Throws std::runtime_error with the system's reason if it cannot be read.
FileDigest digest_of_file(const std::string& path);

FileDigest digest_of_text(const std::string& text);

}  // namespace qvslv
