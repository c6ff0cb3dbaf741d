#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "solver/watch/watchers.h"

namespace qvslv {

namespace {

/// Half the largest extent of a body: of its shape, else the radius of gyration that its inertia tells.
double size_of(const Body& body) {
  const Shape& shape = body.shape;
  if (shape.kind == ShapeKind::box) return 0.5 * std::max({shape.size[0], shape.size[1], shape.size[2]});
  if (shape.kind != ShapeKind::none) return std::max(shape.radius, 0.5 * shape.length);
  if (!(body.mass > 0)) return 0;
  return std::sqrt(std::max({body.inertia.xx, body.inertia.yy, body.inertia.zz}) / body.mass);
}

/// Speeds, places and forces whose digits mean nothing any more.
class LostDigitsWatcher : public Watcher {
public:
  explicit LostDigitsWatcher(const Model& model) : m_model(model), m_bodies(model.bodies.size()) {
    const Units& units = model.units;
    m_most_speed = k_most_speed * units.time_factor / units.length_factor;
    double mass = 0;
    for (size_t i = 0; i < model.bodies.size(); ++i) {
      mass += model.bodies[i].mass;
      m_bodies[i].most_distance = k_most_sizes * size_of(model.bodies[i]);
    }
    const double earth = k_earth * units.time_factor * units.time_factor / units.length_factor;
    m_most_force = k_most_weights * mass * std::max(length(model.gravity), earth);
    m_told_elements.resize(model.elements.size());
  }

  void look(const Sight& sight, Findings& findings) override {
    const Multibody& multibody = sight.engine.multibody();
    const SimTK::State& state = sight.engine.state();
    for (size_t i = 0; i < m_bodies.size(); ++i) {
      const SimTK::MobilizedBody& body = multibody.body(static_cast<int>(i));
      look_at_speed(i, body.getBodyOriginVelocity(state), sight.engine.time(), findings);
      look_at_place(i, body.getBodyOriginLocation(state), sight.engine.time(), findings);
    }
    for (size_t i = 0; i < m_model.elements.size(); ++i)
      if (m_model.elements[i].kind == ElementKind::force && !m_told_elements[i])
        look_at_force(i, sight.engine, findings);
  }

private:
  // A tenth of the speed of light [m/s]: beyond it, kinetic energy of Newton's kind is off by 1 % and more.
  static constexpr double k_most_speed = 3e7;
  // Doubles have 16 digits. At this many sizes from the origin 7 are left for where a body touches something.
  static constexpr double k_most_sizes = 1e9;
  // The last digit of such a force is 1e-4 of the weight of all bodies: what they feel is what rounding leaves.
  static constexpr double k_most_weights = 1e12;
  static constexpr double k_earth = 9.81;  // [m/s^2] for models without gravity

  struct Seen {
    double most_distance = 0;  ///< 0: the body has no size
    bool told_speed = false, told_place = false;
  };

  void look_at_speed(size_t i, const SimTK::Vec3& velocity, double time, Findings& findings) {
    if (m_bodies[i].told_speed || !(velocity.normSqr() > m_most_speed * m_most_speed)) return;
    m_bodies[i].told_speed = true;
    note(
        findings, "speed-beyond-sense", m_model.bodies[i],
        fmt::format("at the time {:.4g} it moves at {:.3g}, more than a tenth of the speed of light ({:.3g}); look for "
                    "a force that is too large or a mass that is too small",
                    time, velocity.norm(), m_most_speed));
  }

  void look_at_place(size_t i, const SimTK::Vec3& place, double time, Findings& findings) {
    const double most = m_bodies[i].most_distance;
    if (m_bodies[i].told_place || most == 0 || !(place.normSqr() > most * most)) return;
    m_bodies[i].told_place = true;
    note(
        findings, "place-beyond-digits", m_model.bodies[i],
        fmt::format("at the time {:.4g} it is {:.3g} away from the origin, more than 10^9 times its own size ({:.3g}): "
                    "the digits of its place no longer tell where it touches; end the run before, or look for what "
                    "threw it",
                    time, place.norm(), most / k_most_sizes));
  }

  void look_at_force(size_t i, const Engine& engine, Findings& findings) {
    const double force = engine.loads().of_element(i).force.norm();
    if (!(force > m_most_force)) return;
    m_told_elements[i] = true;
    note(findings, "force-beyond-digits", m_model.elements[i],
         fmt::format("at the time {:.4g} its force is {:.3g}, more than 10^12 times the weight of all bodies ({:.3g}): "
                     "its rounding alone moves them; check units and stiffness",
                     engine.time(), force, m_most_force / k_most_weights));
  }

  const Model& m_model;
  double m_most_speed = 0, m_most_force = 0;
  std::vector<Seen> m_bodies;
  std::vector<char> m_told_elements;
};

}  // namespace

std::unique_ptr<Watcher> watch_lost_digits(const Engine& engine, const Recording&) {
  return std::make_unique<LostDigitsWatcher>(engine.multibody().model());
}

}  // namespace qvslv
