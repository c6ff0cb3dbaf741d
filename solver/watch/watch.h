#pragma once

#include <memory>
#include <vector>

#include "solver/engine/engine.h"
#include "solver/model/finding.h"
#include "solver/results/recording.h"

/// What looks wrong while a run goes on. Watchers only look: they call no subroutine and change no state, so the
/// results are the same bits with them and without.
namespace qvslv {

/// A run right after an accepted step.
struct Sight {
  const Engine& engine;
  double limit = 0;    ///< the output time up to which the engine steps [model time]
  double seconds = 0;  ///< of computing since the run began, as a clock on the wall tells
  bool at_output() const { return engine.time() >= limit; }
};

/// Looks at one subject after every accepted step, and notes each thing once per element, with the time, the value, the
/// limit and what to do.
class Watcher {
public:
  virtual ~Watcher() = default;
  virtual void look(const Sight& sight, Findings& findings) = 0;
};

/// All watchers that a model has work for.
class Watch {
public:
  /// The engine is at its start. Engine and recording must outlive this object.
  /// @param known  what was told before the run; it is not told again
  Watch(const Engine& engine, const Recording& recording, Findings known);

  /// What is new after an accepted step.
  Findings look(const Sight& sight);

private:
  bool is_known(const Finding& finding) const;

  std::vector<std::unique_ptr<Watcher>> m_watchers;
  Findings m_known;  ///< told before the run or in it
};

}  // namespace qvslv
