#include "solver/engine/load_table.h"

#include <algorithm>

namespace qvslv {

LoadTable::LoadTable(const Model& model) {
  const auto add = [&](int id, int marker, int reaction) {
    if (id > 0) m_slot_of_id.emplace_back(id, m_loads.size());
    AppliedLoad load;
    load.marker = marker;
    load.reaction = reaction;
    m_loads.push_back(load);
  };
  for (const Element& element : model.elements) {
    m_slot_of_element.push_back(m_loads.size());
    if (element.kind == ElementKind::force) add(element.id, element.marker, element.reaction);
  }
  m_first_applied = m_loads.size();
  for (const AppliedForce& force : model.forces) add(force.id, force.marker, force.reaction);
  std::sort(m_slot_of_id.begin(), m_slot_of_id.end());
}

const AppliedLoad* LoadTable::find(int id) const {
  const auto found = std::lower_bound(m_slot_of_id.begin(), m_slot_of_id.end(), id,
                                      [](const auto& entry, int wanted) { return entry.first < wanted; });
  return found != m_slot_of_id.end() && found->first == id ? &m_loads[found->second] : nullptr;
}

SimTK::Vec3 LoadTable::force_at(int marker, std::optional<int> reference) const {
  SimTK::Vec3 sum(0);
  for (const AppliedLoad& load : m_loads) {
    const int other_end = load.marker == marker ? load.reaction : load.marker;
    if (reference && other_end != *reference) continue;
    if (load.marker == marker) sum += load.force;
    if (load.reaction == marker) sum -= load.force;
  }
  return sum;
}

}  // namespace qvslv
