#pragma once

#include <string>
#include <vector>

#include "solver/model/model.h"
#include "solver/model/outcome.h"

namespace qvslv {

/// What run.json tells about a run besides its model's settings.
struct RunRecord {
  std::string out_folder;              ///< where run.json and the other results go
  std::string plugin_path;             ///< the loaded plug-in
  std::string command;                 ///< as typed
  std::vector<std::string> overrides;  ///< --set texts
  RunSummary summary;
  std::vector<std::string> messages;  ///< as told to the user
  bool running = false;               ///< written at the start, so that a killed run is seen to be incomplete
  std::string started;                ///< date and time, UTC
};

/// The text of run.json. What is no UTF-8 in it (a subroutine's message) is kept readable.
std::string run_record_text(const Model& model, const RunRecord& record);

/// Writes run.json into the run's folder. Throws std::runtime_error when that fails.
void write_run_record(const Model& model, const RunRecord& record);

}  // namespace qvslv
