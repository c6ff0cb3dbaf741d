#pragma once

#include <string>

namespace qvcli {

/// Path of the plug-in if the user names none: libqvbrisk.so beside the command or in the lib folder next to the
/// command's folder; else its bare name, for the dynamic linker to find.
std::string default_library();

/// results/<name>, with the name of the model file, or of its folder if the file is a "model.toml".
std::string default_results_folder(const std::string& model_path);

}  // namespace qvcli
