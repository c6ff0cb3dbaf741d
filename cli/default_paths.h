#pragma once

#include <string>

namespace qvcli {

/// Where the plug-in is when nobody says: beside the command, in the lib folder next to the command's folder, else
/// under its bare name, for the loader to find.
std::string default_library();

/// results/<name>: the model file's name, or for "model.toml" that of its folder.
std::string default_results_folder(const std::string& model_path);

}  // namespace qvcli
