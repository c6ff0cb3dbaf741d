#pragma once

#include <string>

#include "solver/model/outcome.h"

namespace qvslv {

/// Why a run has to end. Everything that can fail inside an evaluation (a user subroutine, a motion's expression)
/// reports here instead of throwing through the integrator, which would take an exception for a step to be retried.
/// The first report stands, and whoever drives the run checks after every step.
class Fault {
public:
  void raise(RunOutcome outcome, const std::string& message) {
    if (m_raised) return;
    m_raised = true;
    m_outcome = outcome;
    m_message = message;
  }
  bool raised() const { return m_raised; }
  RunOutcome outcome() const { return m_outcome; }
  const std::string& message() const { return m_message; }

private:
  bool m_raised = false;
  RunOutcome m_outcome = RunOutcome::failed;
  std::string m_message;
};

}  // namespace qvslv
