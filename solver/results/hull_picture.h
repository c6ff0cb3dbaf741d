#pragma once

#include <optional>

#include "solver/results/recording.h"

namespace qvslv {

/// Whether an element's parameters are those of a hull.
bool is_hull(const Element& element);

/// The patch mesh of a hydro force element out of its parameters (qvbrisk/layouts.h, QV_HULL_PAR). The number behind
/// the last node's names one at the origin; patches of other nodes that are not there are left out. Hull::water stays
/// unset. Nothing when the parameters end too soon, hold no patch, or name markers that the model does not have.
/// @param element  index into Model::elements
std::optional<Hull> read_hull(const Model& model, int element);

/// A hull at a moment.
struct HullState {
  std::vector<Vec3> points;   ///< its nodes, in ground axes
  std::vector<double> depth;  ///< of the nodes under the water, negative above it; 0 where there is no water
  std::vector<bool> wet;      ///< per patch: its centroid is under the water
};

/// @param water  that the hull floats in, null: none
HullState calc_hull_state(const Model& model, const Hull& hull, const Water* water, const Frame& frame);

}  // namespace qvslv
