#pragma once

#include <csignal>
#include <functional>
#include <string>
#include <vector>

#include "solver/model/model.h"
#include "solver/model/outcome.h"

namespace qvslv {

struct Progress {
  double time = 0;  ///< simulated so far
  double end_time = 0;
  double step = 0;  ///< last step of the integrator
  double wall_seconds = 0;
};

struct RunOptions {
  std::string plugin_path;                                  ///< the plug-in to load (dlopen)
  std::string out_folder;                                   ///< results go here; made when missing
  std::string command;                                      ///< as typed, kept in run.json
  std::vector<std::string> overrides;                       ///< --set texts, kept in run.json
  std::function<void(const Progress&)> on_progress;         ///< called after every accepted step, if set
  std::function<void(const std::string&)> on_message;       ///< gets one line for the user (warning, fault), if set
  const volatile std::sig_atomic_t* interrupted = nullptr;  ///< checked after every step; not 0 ends the run
};

/// Runs a checked model to its end. Throws nothing but std::bad_alloc: every fault is in the summary.
RunSummary run_model(const Model& model, const RunOptions& options);

}  // namespace qvslv
