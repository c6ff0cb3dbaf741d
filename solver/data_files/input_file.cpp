#include "solver/data_files/input_file.h"

#include <sys/stat.h>

#include <stdexcept>

namespace qvslv {

namespace {

/// Time of a file's last change [ns]; -1 if there is no such file.
std::int64_t modified(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return -1;
  return std::int64_t{1'000'000'000} * status.st_mtim.tv_sec + status.st_mtim.tv_nsec;
}

}  // namespace

void take_digest(InputFile& input) {
  input.modified = modified(input.path);
  input.digest = digest_of_file(input.path);
}

bool is_unchanged(const InputFile& input) {
  if (modified(input.path) == input.modified) return true;
  try {
    return digest_of_file(input.path).sha256 == input.digest.sha256;
  } catch (const std::runtime_error&) {
    return false;
  }
}

}  // namespace qvslv
