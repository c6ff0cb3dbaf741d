#pragma once

#include <string>
#include <vector>

#include "solver/model_file/contents.h"

namespace qvslv {

/// Makes the roads, waves and currents that are missing or were made with other settings. A file of that name that was
/// not made by `qvbrisk make` is left alone. Returns one line per file that was made or left alone; throws
/// std::runtime_error when a file cannot be written.
std::vector<std::string> bring_files_up_to_date(const ModelFile& file);

}  // namespace qvslv
