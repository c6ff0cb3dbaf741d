#include "solver/data_files/input_file.h"

#include <sys/stat.h>

#include <stdexcept>
#include <utility>

namespace qvslv {

namespace {

FileVersion version_of(const struct stat& status) {
  return {status.st_dev, status.st_ino, static_cast<std::uintmax_t>(status.st_size),
          std::int64_t{1'000'000'000} * status.st_mtim.tv_sec + status.st_mtim.tv_nsec};
}

/// Of a file that is not there all is 0.
FileVersion version_of(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 ? version_of(status) : FileVersion{};
}

FileVersion version_of(const OpenFile& file) {
  struct stat status = {};
  return fstat(file.descriptor(), &status) == 0 ? version_of(status) : FileVersion{};
}

bool same(const FileVersion& a, const FileVersion& b) {
  return a.device == b.device && a.number == b.number && a.bytes == b.bytes && a.modified == b.modified;
}

/// The inputs whose digests are to be taken, opened.
struct Reading {
  std::vector<InputFile> inputs;
  std::vector<std::pair<size_t, OpenFile>> files;  ///< with the index of the input
};

std::vector<InputFile> with_digests(Reading reading) {
  for (const auto& [index, file] : reading.files) {
    InputFile& input = reading.inputs[index];
    input.digest = digest_of(file);
    input.changed_while_read = !same(version_of(file), input.version);
  }
  return std::move(reading.inputs);
}

}  // namespace

std::future<std::vector<InputFile>> take_digests(std::vector<InputFile> inputs) {
  Reading reading{std::move(inputs), {}};
  for (size_t k = 0; k < reading.inputs.size(); ++k) {
    InputFile& input = reading.inputs[k];
    if (!input.digest.sha256.empty()) continue;
    reading.files.emplace_back(k, input.path);
    input.version = version_of(reading.files.back().second);
  }
  // Where no thread can be had, the digests are taken when they are asked for.
  return std::async(std::launch::async | std::launch::deferred, with_digests, std::move(reading));
}

bool is_unchanged(const InputFile& input) {
  if (input.changed_while_read) return false;
  if (same(version_of(input.path), input.version)) return true;
  try {
    return digest_of_file(input.path).sha256 == input.digest.sha256;
  } catch (const std::runtime_error&) {
    return false;
  }
}

}  // namespace qvslv
