#pragma once

#include <string>
#include <vector>

#include "solver/data_files/input_file.h"
#include "solver/engine/time_spent.h"
#include "solver/model/finding.h"
#include "solver/model/model.h"
#include "solver/model/outcome.h"

namespace qvslv {

/// What run.json tells about a run besides the settings of its model.
struct RunRecord {
  std::string plugin_path;             ///< the plug-in that was loaded
  std::string command;                 ///< the command line as typed
  std::vector<std::string> overrides;  ///< --set texts
  RunSummary summary;
  std::vector<TimeShare> time_spent;  ///< parts of RunSummary::wall_seconds
  std::string model_text;             ///< of the model file
  std::string resolved_model;         ///< JSON text of the model's document after all overrides
  std::vector<InputFile> inputs;      ///< all files that the run depends on
  Findings warnings;                  ///< what looked wrong, before and during the run
  std::vector<std::string> messages;  ///< what the user was told
  bool running = false;               ///< true in the record written at the start: a killed run is seen as incomplete
  std::string started;                ///< date and time of the start, UTC
  std::string engine_version;         ///< of Simbody
};

/// What run.json says about a run, without the model itself: JSON text, see docs/engine.md. Bytes that are no UTF-8 (in
/// a subroutine's message) are replaced, the rest stays readable.
std::string run_summary_text(const Model& model, const RunRecord& record);

/// The text of run.json: the same and the model, so that the run can be made again from it.
std::string run_record_text(const Model& model, const RunRecord& record);

}  // namespace qvslv
