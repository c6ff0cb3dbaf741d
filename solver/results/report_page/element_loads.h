#pragma once

#include <array>
#include <string>
#include <vector>

#include "solver/model/model.h"
#include "solver/results/recording.h"

namespace qvslv {

/// Force of an element on its body, in ground axes.
struct ElementLoad {
  Vec3 place = {0, 0, 0};  ///< where the force is drawn
  Vec3 force = {0, 0, 0};
};

/// Reads the force of each force element out of the table of results.
class ElementLoads {
public:
  /// @param columns  headers of the table; elements whose force is not recorded are left out
  ElementLoads(const Model& model, const std::vector<std::string>& columns);

  /// Indices into Model::elements.
  const std::vector<int>& elements() const { return m_elements; }

  /// The loads of all elements at a frame, from its row or the one with its time; without such a row the forces are 0.
  /// The place of a load is the mean of the element's points in contact, weighed by normal force, or else the element's
  /// marker.
  std::vector<ElementLoad> find_loads(const Frame& frame, const std::vector<std::vector<double>>& rows) const;

private:
  const Model& m_model;
  std::vector<int> m_elements;
  std::vector<std::array<size_t, 3>> m_columns;  ///< per element the columns of the force
};

}  // namespace qvslv
