#pragma once

#include <Simbody.h>

#include <optional>
#include <utility>
#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// A force on a marker as it was last evaluated, in ground axes. `marker` and `reaction` index Model::markers.
struct AppliedLoad {
  int marker = k_none;
  int reaction = k_none;
  SimTK::Vec3 force = SimTK::Vec3(0);
  SimTK::Vec3 torque = SimTK::Vec3(0);
};

/// The forces of elements and applied forces of a model, as last evaluated ("TFORCE", "FM"). Zero before the first
/// evaluation.
class LoadTable {
public:
  explicit LoadTable(const Model& model);

  /// @param element  index into Model::elements, of kind force
  AppliedLoad& of_element(size_t element) { return m_loads[m_slot_of_element[element]]; }
  /// @param force  index into Model::forces
  AppliedLoad& of_force(size_t force) { return m_loads[m_first_applied + force]; }

  /// The load of the element or applied force with this id; null when none has it. Ids from 1 count.
  const AppliedLoad* find(int id) const;

  /// Sum of the forces that act at marker m minus those that react on it; with a reference marker only of those between
  /// the two. In ground axes.
  SimTK::Vec3 force_at(int marker, std::optional<int> reference) const;

private:
  std::vector<AppliedLoad> m_loads;  ///< elements of kind force first, then applied forces
  std::vector<size_t> m_slot_of_element;
  size_t m_first_applied = 0;
  std::vector<std::pair<int, size_t>> m_slot_of_id;
};

}  // namespace qvslv
