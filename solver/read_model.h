#pragma once

#include <string>
#include <vector>

#include "solver/model_file/contents.h"

namespace qvslv {

/// Reads and checks a model file (docs/model-file.md). `overrides` are `--set` texts, applied in order.
/// Throws ModelError at the first mistake. Reads road files only to warn about their traps; writes nothing.
ModelFile read_model_file(const std::string& path, const std::vector<std::string>& overrides = {});

/// The same for a text; `path` is named in messages and is where the files it names are looked for.
ModelFile read_model_text(const std::string& text, const std::string& path,
                          const std::vector<std::string>& overrides = {});

}  // namespace qvslv
