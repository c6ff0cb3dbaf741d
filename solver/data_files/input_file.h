#pragma once

#include <cstdint>
#include <string>

#include "solver/data_files/file_digest.h"

namespace qvslv {

/// A file that a run depends on.
struct InputFile {
  std::string role;  ///< "model", "road", "wave", "current", "mesh", "library", "solver", "command"
  std::string name;  ///< as the model or the user gives it
  std::string path;  ///< absolute
  FileDigest digest = {};
  std::int64_t modified = 0;  ///< when the digest was taken: time of the file's last change [ns]
};

/// Takes the digest. Throws std::runtime_error with the system's reason if the file cannot be read.
void take_digest(InputFile& input);

/// Has the file still the contents that the digest was taken of? It is read again only if it was written to.
bool is_unchanged(const InputFile& input);

}  // namespace qvslv
