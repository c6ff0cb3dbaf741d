#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qvslv {

/// What tells whether two files hold the same bytes.
struct FileDigest {
  std::uintmax_t bytes = 0;
  std::string sha256;  ///< 64 lower-case hexadecimal digits
};

/// A file that is open for reading: it stays the same file when another one takes its name.
class OpenFile {
public:
  /// Throws std::runtime_error with the system's reason if the file cannot be opened, as do its readers.
  explicit OpenFile(std::string path);
  OpenFile(OpenFile&& other) noexcept;
  OpenFile& operator=(OpenFile&&) = delete;
  ~OpenFile();

  int descriptor() const { return m_file; }
  /// Reads what comes next into the block; returns the count of its bytes, 0 at the end.
  size_t read_some(std::vector<char>& block) const;

private:
  std::string m_path;
  int m_file;
};

/// Reads the whole file. Throws std::runtime_error with the system's reason if it cannot be read.
FileDigest digest_of(const OpenFile& file);
FileDigest digest_of_file(const std::string& path);

FileDigest digest_of_text(const std::string& text);

}  // namespace qvslv
