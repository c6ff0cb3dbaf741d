#pragma once

#include <string>

namespace qvcli {

/// The file name's ending in lower case, with its point. It tells data files from models.
std::string ending_of(const std::string& path);

/// Is this none of the files that `check` reads line by line, a model, road, WAVE or CURRENT file, but one that a user
/// may well hand to it: a folder, a mesh, a picture, a table? A file that is not there is none.
bool is_other_file(const std::string& path);

/// Says what such a file is and what it is good for here; of a mesh its size, and whether a hull can be made of it.
/// @param json  as findings for scripts, and nothing else
/// Returns the exit code: k_done for a mesh that can be a hull, k_bad_input for all else.
int check_other(const std::string& path, bool json);

}  // namespace qvcli
