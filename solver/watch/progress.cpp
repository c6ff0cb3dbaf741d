#include <fmt/format.h>

#include <algorithm>

#include "solver/watch/force_changes.h"
#include "solver/watch/watchers.h"

namespace qvslv {

namespace {

/// Steps that have become tiny, and rows that take long to compute.
class ProgressWatcher : public Watcher {
public:
  explicit ProgressWatcher(const Engine& engine)
      : m_model(engine.multibody().model()),
        m_controlled(m_model.simulation.integrator == Integrator::runge_kutta_merson),
        m_forces(m_model) {
    m_forces.follow(engine.loads());
  }

  void look(const Sight& sight, Findings& findings) override {
    m_forces.follow(sight.engine.loads());
    if (m_controlled && !m_told_step) look_at_step(sight, findings);
    if (!m_told_row) look_at_row(sight, findings);
    if (!sight.at_output()) return;
    m_row_began = sight.seconds;
    m_row_steps = sight.engine.steps();
    m_forces.forget();
  }

private:
  /// A step that an output time cuts short says nothing. Neither does a single tiny one: at a jump of a force the
  /// integrator takes some, and its steps grow again by a factor of up to 5 each, by 10^6 within 9 steps.
  void look_at_step(const Sight& sight, Findings& findings) {
    constexpr double k_fall = 1e-6;
    constexpr int k_in_a_row = 20;
    const double step = sight.engine.last_step();
    m_largest = std::max(m_largest, step);
    if (step > k_fall * m_largest) {
      m_tiny = 0;
      return;
    }
    if (sight.at_output() || ++m_tiny < k_in_a_row) return;
    m_told_step = true;
    note(findings, "tiny-steps", m_model,
         fmt::format(
             "at the time {:.4g} the steps are {:.2g} long, less than a millionth of the longest, {:.2g}: {}; give "
             "it less stiffness, more damping or a smoother course, or take integrator = \"semi-explicit\" with "
             "a step",
             sight.engine.time(), step, m_largest, m_forces.fastest()));
  }

  void look_at_row(const Sight& sight, Findings& findings) {
    constexpr double k_most_seconds = 10;
    const double seconds = sight.seconds - m_row_began;
    if (!(seconds > k_most_seconds)) return;
    m_told_row = true;
    const long steps = sight.engine.steps() - m_row_steps;
    note(
        findings, "slow-row", m_model,
        fmt::format("at the time {:.4g} one row of results has taken {:.1f} s of computing and {} steps (more than "
                    "{:.0f} s), the last step is {:.2g} long: {}; if so many steps are not meant, give it less "
                    "stiffness or more damping, or take a larger accuracy number or step",
                    sight.engine.time(), seconds, steps, k_most_seconds, sight.engine.last_step(), m_forces.fastest()));
  }

  const Model& m_model;
  bool m_controlled;
  ForceChanges m_forces;  ///< since the last row
  double m_largest = 0;   ///< step so far
  int m_tiny = 0;         ///< tiny steps in a row
  double m_row_began = 0;
  long m_row_steps = 0;
  bool m_told_step = false, m_told_row = false;
};

}  // namespace

std::unique_ptr<Watcher> watch_progress(const Engine& engine, const Recording&) {
  return std::make_unique<ProgressWatcher>(engine);
}

}  // namespace qvslv
