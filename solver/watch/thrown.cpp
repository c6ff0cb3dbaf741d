#include <fmt/format.h>

#include <cmath>
#include <vector>

#include "solver/checks/soil_contact.h"
#include "solver/checks/soil_track.h"
#include "solver/watch/watchers.h"

namespace qvslv {

namespace {

/// Soil that lies still can only take energy from what moves on it, apart from what it springs back with. If it has
/// given more than it took, by as much as lifts the whole model by the size of the contact, the body was pressed
/// into the soil from the start, or steps were too long for the soil's stiffness.
class ThrownWatcher : public Watcher {
public:
  explicit ThrownWatcher(const Engine& engine) : m_gravity(length(engine.multibody().model().gravity)) {
    const Model& model = engine.multibody().model();
    for (const Body& body : model.bodies) m_mass += body.mass;
    for (const SoilContact& contact : soil_contacts_of(model))
      add(model, contact.element, contact.index, contact.road_marker, contact.size);
    for (const SoilTrack& track : soil_tracks_of(model))
      add(model, track.element, track.index, track.road_marker, track.nodes.front().radius);
    for (Touching& touching : m_touching) touching.power = power_of(touching, engine);
  }

  bool empty() const { return m_touching.empty(); }

  void look(const Sight& sight, Findings& findings) override {
    for (Touching& touching : m_touching) {
      const double before = touching.power;
      touching.power = power_of(touching, sight.engine);
      touching.work += 0.5 * (before + touching.power) * sight.engine.last_step();
      const double lift = touching.work / (m_mass * m_gravity);
      if (touching.done || !(lift > touching.size)) continue;
      touching.done = true;
      note(findings, "contact-throws", touching.element,
           fmt::format("at the time {:.4g} the soil has given {:.3g} of energy more than it took, enough to lift the "
                       "whole model by {:.3g} (limit {:.3g}, the size of the contact): the body started too deep, "
                       "or the steps are too long; start it higher, or take smaller steps",
                       sight.engine.time(), touching.work, lift, touching.size));
    }
  }

private:
  struct Touching {
    const Element& element;
    size_t index = 0;
    double size = 0;  ///< radius of a wheel, length of a plate [length]
    double power = 0, work = 0;
    bool done = false;
  };

  /// Roads that move can drive what stands on them.
  void add(const Model& model, const Element& element, size_t index, int road_marker, double size) {
    const bool still = model.markers[static_cast<size_t>(road_marker)].body == k_ground;
    if (still && m_gravity > 0 && m_mass > 0 && size > 0 && element.kind == ElementKind::force)
      m_touching.push_back({element, index, size});
  }

  static double power_of(const Touching& touching, const Engine& engine) {
    const AppliedLoad& load = engine.loads().of_element(touching.index);
    if (load.marker == k_none) return 0;
    const MarkerMotion& motion = engine.readings().markers().of(load.marker);
    return SimTK::dot(load.force, motion.velocity) + SimTK::dot(load.torque, motion.angular_velocity);
  }

  double m_gravity, m_mass = 0;
  std::vector<Touching> m_touching;
};

}  // namespace

std::unique_ptr<Watcher> watch_thrown(const Engine& engine, const Recording&) {
  auto watcher = std::make_unique<ThrownWatcher>(engine);
  if (watcher->empty()) return nullptr;
  return watcher;
}

}  // namespace qvslv
