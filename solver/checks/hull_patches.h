#pragma once

#include <vector>

#include "solver/model/model.h"
#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// An id or a count in `par`, truncated; -1 if it is no number that any list holds.
int whole(double value);

/// The patches of one hydro force: of all its parts together.
struct HullPatches {
  const Element& element;  ///< its first part
  int parts = 0;
  int marker = 0;        ///< index into Model::markers: in whose frame the mesh is
  int water_marker = 0;  ///< likewise: the frame of the water, z up
  int wave_string = 0;   ///< id of the string that names its WAVE file
  TriangleMesh mesh;     ///< of several parts: corners at equal places are one corner
};

/// The hulls of a model, in the order of their first parts; parts on different markers count as hulls of their own.
std::vector<HullPatches> hulls_of(const Model& model);

}  // namespace qvslv
