#pragma once

#include <cstdint>
#include <future>
#include <string>
#include <vector>

#include "solver/data_files/file_digest.h"

namespace qvslv {

/// What a file system tells of one version of a file. Equal ones are taken for the same contents.
struct FileVersion {
  std::uintmax_t device = 0, number = 0, bytes = 0;
  std::int64_t modified = 0;  ///< time of the last change [ns]
};

/// A file that a run depends on.
struct InputFile {
  std::string role;  ///< "model", "road", "wave", "current", "mesh", "library", "solver", "command"
  std::string name;  ///< as the model or the user gives it
  std::string path;  ///< absolute
  FileDigest digest = {};
  FileVersion version = {};         ///< when the digest was begun
  bool changed_while_read = false;  ///< somebody wrote to the file between its opening and the end of its digest
};

/// Opens the files that have no digest yet and takes their digests in another thread, so that a run can go on
/// meanwhile. The digest is that of the file which bore the name at the call. Throws std::runtime_error with the
/// system's reason if a file cannot be opened; one that cannot be read makes the future's get() throw that.
std::future<std::vector<InputFile>> take_digests(std::vector<InputFile> inputs);

/// Has the file still the contents that the digest was taken of? It is read again only if it was written to.
bool is_unchanged(const InputFile& input);

}  // namespace qvslv
