#pragma once

#include <optional>
#include <string>
#include <vector>

#include "solver/data_files/made_file.h"
#include "solver/engine_library.h"
#include "solver/model_file/contents.h"

namespace qvcli {

/// What the user asked of a run.
struct RunRequest {
  std::string model, out, plugin_path, typed;
  std::string made = qvslv::default_made_folder();
  bool quiet = false, strict = false, force = false;
  std::vector<std::string> overrides;
  std::optional<std::string> results;  ///< kinds of results, instead of those that the model asks for
  int threads = 1;
};

/// Tells what looks wrong in a model, makes its files, runs it and tells how that went. Returns the exit code.
int run_model_file(const qvslv::ModelFile& file, const RunRequest& request, qvslv::EngineLibrary& engine);

}  // namespace qvcli
