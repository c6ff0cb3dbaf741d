#include "solver/data_files/made_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "solver/data_files/file_digest.h"

namespace qvslv {

namespace {

[[noreturn]] void cannot_write(const std::string& path, int cause) {
  throw std::runtime_error("cannot write " + path + ": " + std::strerror(cause));
}

/// Writes through a new file of a name that no other process has, and returns this name.
std::string write_beside(const std::string& path, const std::string& text) {
  std::string part = path + ".partXXXXXX";
  const int number = mkostemp(part.data(), O_CLOEXEC);
  if (number < 0) cannot_write(path, errno);
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(number, 0666 & ~mask);  // mkostemp lets only the owner read
  std::FILE* file = fdopen(number, "wb");
  int cause = std::fwrite(text.data(), 1, text.size(), file) == text.size() ? 0 : errno;
  if (std::fclose(file) != 0 && cause == 0) cause = errno;
  if (cause == 0) return part;
  std::remove(part.c_str());
  cannot_write(path, cause);
}

/// The value of an environment variable that holds an absolute path; else an empty text.
std::string absolute_path_in(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && value[0] == '/' ? value : "";
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

std::string default_made_folder() {
  std::string cache = absolute_path_in("XDG_CACHE_HOME");
  if (cache.empty() && !absolute_path_in("HOME").empty()) cache = absolute_path_in("HOME") + "/.cache";
  return cache.empty() ? "" : cache + "/qvbrisk/made";
}

std::string made_path(const std::string& folder, const std::string& name, const std::string& settings_line) {
  constexpr size_t k_digits = 16;  // 64 bits: no two files of one folder will ever share them
  const std::filesystem::path given(name);
  const std::string hash =
      digest_of_text("makers " + std::to_string(k_maker_version) + "\n" + settings_line).sha256.substr(0, k_digits);
  return folder + "/" + given.stem().string() + "-" + hash + given.extension().string();
}

MadeFileState state_by_last_line(const std::string& path, const std::string& settings_line) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) return MadeFileState::missing;
  const std::string line = last_line(stream);
  if (line.rfind(k_made_mark, 0) != 0) return MadeFileState::foreign;
  return line == settings_line ? MadeFileState::current : MadeFileState::outdated;
}

void write_file_whole(const std::string& text, const std::string& path) {
  const std::string part = write_beside(path, text);
  std::error_code failure;
  std::filesystem::rename(part, path, failure);
  if (!failure) return;
  std::remove(part.c_str());
  cannot_write(path, failure.value());
}

}  // namespace qvslv
