#pragma once

#include <string>

namespace qvslv {

/// Finds the file that a subroutine opens for a name that the model gives: the file of that name as it stands, else the
/// one in the model's folder. Returns its path, or an empty text if neither exists; a folder does not count.
std::string find_data_file(const std::string& name, const std::string& model_path);

}  // namespace qvslv
