#include "solver/watch/force_changes.h"

#include <algorithm>
#include <cmath>

namespace qvslv {

ForceChanges::ForceChanges(const Model& model) : m_model(model) {
  for (size_t i = 0; i < model.elements.size(); ++i) {
    const Element& element = model.elements[i];
    if (element.kind != ElementKind::force) continue;
    m_elements.push_back(i);
    add("element '" + element.name + "'", element.marker, element.reaction);
  }
  for (const AppliedForce& force : model.forces) add("'" + force.name + "'", force.marker, force.reaction);
}

void ForceChanges::add(const std::string& name, int marker, int reaction) {
  Followed followed;
  followed.name = name;
  for (const int end : {marker, reaction}) {
    const int body = end == k_none ? k_ground : m_model.markers[static_cast<size_t>(end)].body;
    if (body == k_ground) continue;
    const Body& moved = m_model.bodies[static_cast<size_t>(body)];
    if (!(moved.mass > 0) || (followed.mass > 0 && moved.mass >= followed.mass)) continue;
    followed.mass = moved.mass;
    followed.radius = std::sqrt(std::max({moved.inertia.xx, moved.inertia.yy, moved.inertia.zz}) / moved.mass);
  }
  m_followed.push_back(std::move(followed));
}

const AppliedLoad& ForceChanges::load_of(const LoadTable& loads, size_t followed) const {
  return followed < m_elements.size() ? loads.of_element(m_elements[followed])
                                      : loads.of_force(followed - m_elements.size());
}

void ForceChanges::follow(const LoadTable& loads) {
  for (size_t i = 0; i < m_followed.size(); ++i) {
    const AppliedLoad& load = load_of(loads, i);
    Followed& followed = m_followed[i];
    if (m_seen && followed.mass > 0) {
      followed.change += (load.force - followed.force).norm() / followed.mass;
      if (followed.radius > 0)
        followed.change += (load.torque - followed.torque).norm() / (followed.mass * followed.radius);
    }
    followed.force = load.force;
    followed.torque = load.torque;
  }
  m_seen = true;
}

void ForceChanges::forget() {
  for (Followed& followed : m_followed) followed.change = 0;
}

std::string ForceChanges::fastest() const {
  const auto most = std::max_element(m_followed.begin(), m_followed.end(),
                                     [](const Followed& a, const Followed& b) { return a.change < b.change; });
  if (most == m_followed.end() || !(most->change > 0)) return "no force changes there, only the motion itself is fast";
  return "the force of " + most->name + " changes fastest";
}

}  // namespace qvslv
