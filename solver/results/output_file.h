#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "solver/results/text_pieces.h"

namespace qvslv {

/// A result file that is being written. It is always a new file: nothing that stands there is overwritten, and no link
/// is followed. Every function throws std::runtime_error with the path and the system's reason if it fails.
class OutputFile {
public:
  OutputFile() = default;
  explicit OutputFile(std::string path);

  /// What is written from now on goes to the system at once, without a copy. Called before the first text.
  void write_through();
  void write(std::string_view text);
  void flush();
  long position() const;
  /// The next text goes over what stands behind this position.
  void go_to(long position);
  /// Ends the writing. Without it the file is closed as it stands, and nobody learns whether that worked.
  void close();

private:
  [[noreturn]] void fail() const;

  std::string m_path;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_file{nullptr, std::fclose};
};

/// Writes a new file whole.
void write_new_file(const std::string& path, std::string_view text);
void write_new_file(const std::string& path, const TextPieces& text);

}  // namespace qvslv
