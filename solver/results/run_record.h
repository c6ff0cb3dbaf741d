#pragma once

#include <string>
#include <vector>

#include "solver/model/model.h"
#include "solver/model/outcome.h"

namespace qvslv {

/// What run.json tells about a run besides the settings of its model.
struct RunRecord {
  std::string out_folder;              ///< where run.json and the other results go
  std::string plugin_path;             ///< the plug-in that was loaded
  std::string command;                 ///< the command line as typed
  std::vector<std::string> overrides;  ///< --set texts
  RunSummary summary;
  std::vector<std::string> messages;  ///< what the user was told
  bool running = false;               ///< true in the record written at the start: a killed run is seen as incomplete
  std::string started;                ///< date and time of the start, UTC
};

/// The text of run.json. Bytes that are no UTF-8 (in a subroutine's message) are replaced, the rest stays readable.
std::string run_record_text(const Model& model, const RunRecord& record);

/// Writes run.json into the run's folder. Throws std::runtime_error if that fails.
void write_run_record(const Model& model, const RunRecord& record);

}  // namespace qvslv
