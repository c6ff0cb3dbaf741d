#include "solver/engine/load_table.h"

namespace qvslv {

LoadTable::LoadTable(const Model& model) : m_slots_at_marker(model.markers.size()) {
  const auto list = [&](int marker) {
    if (marker != k_none) m_slots_at_marker[static_cast<size_t>(marker)].push_back(m_loads.size());
  };
  const auto add = [&](int id, int marker, int reaction) {
    if (id > 0) m_slot_of_id.add(id, static_cast<int>(m_loads.size()));
    list(marker);
    if (reaction != marker) list(reaction);
    AppliedLoad load;
    load.marker = marker;
    load.reaction = reaction;
    m_loads.push_back(load);
  };
  for (const Element& element : model.elements) {
    m_slot_of_element.push_back(m_loads.size());
    if (element.kind == ElementKind::force) add(element.id, element.marker, element.reaction);
  }
  m_new = m_loads;
  m_first_applied = m_loads.size();
  for (const AppliedForce& force : model.forces) add(force.id, force.marker, force.reaction);
}

SimTK::Vec3 LoadTable::force_at(int marker, std::optional<int> reference, size_t seen_new) const {
  SimTK::Vec3 sum(0);
  for (const size_t slot : m_slots_at_marker[static_cast<size_t>(marker)]) {
    const AppliedLoad& load = this->load(slot, seen_new);
    const int other_end = load.marker == marker ? load.reaction : load.marker;
    if (reference && other_end != *reference) continue;
    if (load.marker == marker) sum += load.force;
    if (load.reaction == marker) sum -= load.force;
  }
  return sum;
}

}  // namespace qvslv
