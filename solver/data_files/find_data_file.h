#pragma once

#include <string>

namespace qvslv {

/// Absolute path of a name in a model: names are meant from the model's folder, whatever the current folder is.
std::string path_beside(const std::string& model_path, const std::string& name);

/// The same if there is a file, else an empty text; a folder does not count.
std::string find_data_file(const std::string& name, const std::string& model_path);

}  // namespace qvslv
