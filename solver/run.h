#pragma once

#include <csignal>
#include <functional>
#include <string>
#include <vector>

#include "solver/data_files/road_mesh.h"
#include "solver/model/model.h"
#include "solver/model/outcome.h"
#include "solver/model_file/contents.h"
#include "solver/results/recording.h"

namespace qvslv {

struct Progress {
  double time = 0;  ///< simulated so far
  double end_time = 0;
  double step = 0;  ///< last step of the integrator
  double wall_seconds = 0;
};

struct RunOptions {
  std::string plugin_path;                             ///< the plug-in to load (dlopen)
  std::string out_folder;                              ///< results go here; made when missing
  std::string command;                                 ///< as typed, kept in run.json
  std::vector<std::string> overrides;                  ///< --set texts, kept in run.json
  std::string model_text, resolved_model;              ///< see ModelFile; kept in run.json
  std::vector<InputFile> inputs;                       ///< files that the model depends on
  Findings warnings;                                   ///< what looked wrong before the run; the user knows
  bool force = false;                                  ///< take the folder from a run that still goes on
  bool strict = false;                                 ///< a warning during the run ends it
  int threads = 1;                                     ///< most threads that elements are called on
  RecordingLimits recording;                           ///< memory for the page's replay and plots
  RoadMeshes roads;                                    ///< of the model, where they were read already
  std::function<void(const Progress&)> on_progress;    ///< called after every accepted step, if set
  std::function<void(const std::string&)> on_message;  ///< gets one line for the user (warning, fault), if set
  /// Checked after every step: a signal's number ends the run.
  std::function<double()> seconds;  ///< a clock that tells how long the run computes; empty: the machine's
  const volatile std::sig_atomic_t* interrupted = nullptr;
};

/// Runs a checked model to its end. Throws nothing: every fault is in the summary.
RunSummary run_model(const Model& model, RunOptions options);

/// The same for a model that was read from a file: its text, inputs and warnings go into the record.
RunSummary run_model(const ModelFile& file, RunOptions options);

/// Removes from a folder what an earlier run wrote there. Throws std::runtime_error if a run still goes on there.
void remove_results(const std::string& folder);

}  // namespace qvslv
