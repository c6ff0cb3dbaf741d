#pragma once

#include <Simbody.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "solver/engine/id_table.h"
#include "solver/model/model.h"

namespace qvslv {

/// A force on a marker as it was last evaluated, in ground axes. `marker` and `reaction` index Model::markers.
struct AppliedLoad {
  int marker = k_none;
  int reaction = k_none;
  SimTK::Vec3 force = SimTK::Vec3(0);
  SimTK::Vec3 torque = SimTK::Vec3(0);
};

/// The loads of a model's force elements and applied forces as they were last evaluated; "TFORCE" and "FM" are answered
/// from them. All are zero before the first evaluation.
///
/// During an evaluation an element sees the new loads of the elements before it and the old ones of all others. So new
/// loads are kept apart until all elements have been called, and every request says how many of them it sees.
class LoadTable {
public:
  explicit LoadTable(const Model& model);

  /// Number of force elements before this one.
  size_t forces_before(size_t element) const { return m_slot_of_element[element]; }
  /// The load that an element has just given. Threads may set different ones at the same time.
  void set_new(size_t element, const AppliedLoad& load) { m_new[m_slot_of_element[element]] = load; }
  /// All elements have been called: what is new is the load of each from now on.
  void take_new() { std::copy(m_new.begin(), m_new.end(), m_loads.begin()); }

  /// @param force  index into Model::forces
  AppliedLoad& of_force(size_t force) { return m_loads[m_first_applied + force]; }
  /// @param element  index into Model::elements, of kind force
  const AppliedLoad& of_element(size_t element) const { return m_loads[m_slot_of_element[element]]; }
  const AppliedLoad& of_force(size_t force) const { return m_loads[m_first_applied + force]; }

  /// The load of the element or applied force with this id; null if none has it. Loads without an id (0) are not found.
  /// @param seen_new  number of force elements whose new loads are seen
  const AppliedLoad* find(int id, size_t seen_new) const {
    const int slot = m_slot_of_id.find(id);
    return slot != k_none ? &load(static_cast<size_t>(slot), seen_new) : nullptr;
  }

  /// Sum of the forces that act at a marker minus those that react on it, in ground axes. With a reference marker only
  /// the forces between these two count.
  /// @param marker, reference  indices into Model::markers
  SimTK::Vec3 force_at(int marker, std::optional<int> reference, size_t seen_new) const;

private:
  const AppliedLoad& load(size_t slot, size_t seen_new) const { return slot < seen_new ? m_new[slot] : m_loads[slot]; }

  std::vector<AppliedLoad> m_loads;       ///< elements of kind force first, then applied forces
  std::vector<AppliedLoad> m_new;         ///< elements of kind force
  std::vector<size_t> m_slot_of_element;  ///< by index into Model::elements
  size_t m_first_applied = 0;
  IdTable m_slot_of_id;
  std::vector<std::vector<size_t>>
      m_slots_at_marker;  ///< of loads that act or react there, by index into Model::markers
};

}  // namespace qvslv
