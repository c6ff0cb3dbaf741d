#include "solver/data_files/made_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace qvslv {

namespace {

[[noreturn]] void cannot_write(const std::string& path, int cause) {
  throw std::runtime_error("cannot write " + path + ": " + std::strerror(cause));
}

void write_to(const std::string& path, const std::string& text) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) cannot_write(path, errno);
  int cause = std::fwrite(text.data(), 1, text.size(), file) == text.size() ? 0 : errno;
  if (std::fclose(file) != 0 && cause == 0) cause = errno;
  if (cause == 0) return;
  std::remove(path.c_str());
  cannot_write(path, cause);
}

/// The last line of a file, without its line end. Reads only the end of the file, since tables are long.
std::string last_line(std::ifstream& stream) {
  constexpr std::streamoff k_longest_line = 4096;
  stream.seekg(0, std::ios::end);
  const std::streamoff size = stream.tellg();
  std::string tail(static_cast<size_t>(std::min(size, k_longest_line)), '\0');
  stream.seekg(size - static_cast<std::streamoff>(tail.size()));
  stream.read(tail.data(), static_cast<std::streamsize>(tail.size()));
  if (!tail.empty() && tail.back() == '\n') tail.pop_back();
  const size_t end = tail.rfind('\n');
  return end == std::string::npos ? tail : tail.substr(end + 1);
}

}  // namespace

MadeFileState state_by_last_line(const std::string& path, const std::string& settings_line) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) return MadeFileState::missing;
  const std::string line = last_line(stream);
  if (line.rfind(k_made_mark, 0) != 0) return MadeFileState::foreign;
  return line == settings_line ? MadeFileState::current : MadeFileState::outdated;
}

void write_file_whole(const std::string& text, const std::string& path) {
  const std::string part = path + ".part" + std::to_string(getpid());
  write_to(part, text);
  std::error_code failure;
  std::filesystem::rename(part, path, failure);
  if (!failure) return;
  std::remove(part.c_str());
  cannot_write(path, failure.value());
}

}  // namespace qvslv
