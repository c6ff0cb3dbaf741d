#pragma once

#include <optional>

#include "solver/results/recording.h"

namespace qvslv {

/// Whether an element's parameters are those of a hull.
bool is_hull(const Element& element);

/// The patch mesh of a hydro force element, read from its parameters (qvbrisk/layouts.h, QV_HULL_PAR). Nodes count from
/// 0; the number behind the last one names a spare node at the origin, and patches with any other missing node are left
/// out. Hull::water stays unset. Returns nothing if the parameters end too soon, hold no patch, or name markers that
/// the model does not have.
/// @param element  index into Model::elements
std::optional<Hull> read_hull(const Model& model, int element);

/// A hull at the time of a frame.
struct HullState {
  std::vector<Vec3> points;   ///< its nodes, in ground axes
  std::vector<double> depth;  ///< of each node under the water, negative above it; 0 if no water is there
  std::vector<bool> wet;      ///< per patch: its centroid is under the water
};

/// @param water  in which the hull floats; null if there is none
HullState calc_hull_state(const Model& model, const Hull& hull, const Water* water, const Frame& frame);

}  // namespace qvslv
