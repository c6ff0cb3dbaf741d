#pragma once

#include <string>
#include <vector>

#include "solver/model_file/contents.h"

namespace qvslv {

/// Makes the roads, waves and currents of the model that the folder for made files does not hold yet. Their names tell
/// their settings, so a file that is there stays as it is, and runs may go on at the same time. Returns one line per
/// file that was made; throws std::runtime_error when the folder or a file cannot be written.
std::vector<std::string> make_missing_files(const ModelFile& file);

/// Writes the roads, waves and currents of the model into `folder` under the names that the model gives them, for
/// another host. Returns one line per file; throws std::runtime_error when a file cannot be written or when a name
/// leads out of the folder.
std::vector<std::string> write_files_to_take_along(const ModelFile& file, const std::string& folder);

}  // namespace qvslv
