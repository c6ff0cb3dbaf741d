#pragma once

#include <string>
#include <vector>

#include "solver/data_files/made_file.h"
#include "solver/model_file/contents.h"

namespace qvslv {

/// Reads and checks a model file (docs/model-file.md). `overrides` are `--set` texts, applied in order. `made_folder`
/// is where the files that the model describes belong. Throws ModelError at the first mistake. What looks wrong in the
/// model and the data files it names is in the findings (solver/checks/). Writes nothing.
ModelFile read_model_file(const std::string& path, const std::vector<std::string>& overrides = {},
                          const std::string& made_folder = default_made_folder());

/// The same for a text; `path` is named in messages, and the files that the text names are looked for beside it.
ModelFile read_model_text(const std::string& text, const std::string& path,
                          const std::vector<std::string>& overrides = {},
                          const std::string& made_folder = default_made_folder());

}  // namespace qvslv
