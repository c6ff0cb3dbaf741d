#pragma once

#include <string>
#include <vector>

namespace qvslv {

enum class RunOutcome {
  finished,     ///< reached the end time
  interrupted,  ///< ctrl-C; results up to then are complete files
  stopped,      ///< a subroutine asked to stop (stop_solver)
  failed        ///< a subroutine reported messages, the plug-in could not be loaded, the integrator gave up, ...
};

/// How a run went.
struct RunSummary {
  RunOutcome outcome = RunOutcome::failed;
  std::string message;  ///< empty when finished; else element name, time and the subroutine's text
  double time = 0;      ///< reached, in model time
  double wall_seconds = 0;
  long steps = 0;                  ///< accepted by the integrator
  long evaluations = 0;            ///< of the forces
  std::vector<std::string> files;  ///< written, relative to the run's folder
};

}  // namespace qvslv
