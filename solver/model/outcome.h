#pragma once

#include <string>
#include <vector>

namespace qvslv {

enum class RunOutcome {
  finished,     ///< reached the end time
  interrupted,  ///< ctrl-C; results up to then are complete files
  stopped,      ///< a subroutine asked to stop (stop_solver)
  failed        ///< a subroutine reported a fault, the plug-in could not be loaded, the integrator gave up, ...
};

/// How a run went.
struct RunSummary {
  RunOutcome outcome = RunOutcome::failed;
  std::string message;  ///< empty if finished; else element name, time and the subroutine's text
  double time = 0;      ///< time that was reached [model time]
  double wall_seconds = 0;
  long steps = 0;                  ///< steps that the integrator accepted
  long evaluations = 0;            ///< evaluations of the forces
  std::vector<std::string> files;  ///< files written, relative to the run's folder
};

}  // namespace qvslv
