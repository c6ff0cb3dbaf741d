#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "solver/watch/watchers.h"

namespace qvslv {

namespace {

/// True if nothing but gravity and joints acts on the bodies.
bool is_undriven(const Model& model) {
  const auto moved = [](const Joint& joint) { return !joint.motions.empty(); };
  const auto pushes = [](const Element& element) { return element.kind == ElementKind::force; };
  return !model.bodies.empty() && model.forces.empty() &&
         std::none_of(model.joints.begin(), model.joints.end(), moved) &&
         std::none_of(model.elements.begin(), model.elements.end(), pushes);
}

/// Kinetic and potential energy together stay what they are at the start, but for the error of integration.
class EnergyWatcher : public Watcher {
public:
  explicit EnergyWatcher(const Engine& engine)
      : m_start(energy_of(engine).total()), m_largest_potential(std::abs(energy_of(engine).potential)) {}

  void look(const Sight& sight, Findings& findings) override {
    constexpr double k_most_drift = 0.01;  // of the largest kinetic energy
    constexpr double k_rounding = 1e-10;   // of the potential energy, which is large far from the origin
    if (m_done) return;
    const double kinetic = sight.engine.multibody().calc_kinetic_energy(sight.engine.state());
    m_largest_kinetic = std::max(m_largest_kinetic, kinetic);
    // Until the motion has passed its fastest moment, its size is not known, and a drift has nothing to be held
    // against.
    m_turned = m_turned || kinetic < 0.9 * m_largest_kinetic || ++m_steps > k_patience;
    if (!m_turned || !sight.at_output()) return;
    const Energy now = energy_of(sight.engine);
    m_largest_potential = std::max(m_largest_potential, std::abs(now.potential));
    const double drift = now.total() - m_start;
    if (!(std::abs(drift) > k_most_drift * m_largest_kinetic + k_rounding * m_largest_potential)) return;
    m_done = true;
    note(findings, "energy-drift", sight.engine.multibody().model(),
         fmt::format(
             "at the time {:.4g} the energy has changed by {:.3g}, {:.2g} % of the largest kinetic energy so far "
             "(limit 1 %), and nothing drives this model: the integration is too coarse; take a smaller "
             "accuracy number, or a smaller step if it is fixed",
             sight.engine.time(), drift, 100 * drift / m_largest_kinetic));
  }

private:
  static constexpr int k_patience = 100;  // steps; a body that flies on evenly never slows down

  struct Energy {
    double kinetic = 0, potential = 0;
    double total() const { return kinetic + potential; }
  };

  static Energy energy_of(const Engine& engine) {
    return {engine.multibody().calc_kinetic_energy(engine.state()),
            engine.multibody().calc_potential_energy(engine.state())};
  }

  double m_start;
  double m_largest_potential;
  double m_largest_kinetic = 0;
  int m_steps = 0;
  bool m_turned = false, m_done = false;
};

}  // namespace

std::unique_ptr<Watcher> watch_energy(const Engine& engine, const Recording&) {
  if (!is_undriven(engine.multibody().model())) return nullptr;
  return std::make_unique<EnergyWatcher>(engine);
}

}  // namespace qvslv
