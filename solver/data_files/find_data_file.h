#pragma once

#include <string>

namespace qvslv {

/// The file that a subroutine opens for a name of the model: the name as given, else in the model's folder.
/// Returns its path, or an empty text when there is no such file at either place; a folder counts as none.
std::string find_data_file(const std::string& name, const std::string& model_path);

}  // namespace qvslv
