#pragma once

#include "solver/model/model.h"
#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// Triangles of a shape around the origin, outside to the left when walked counter-clockwise. Empty for no shape.
/// Round shapes are inscribed polygons of k_round_sides sides.
TriangleMesh shape_mesh(const Shape& shape);

constexpr int k_round_sides = 32;

}  // namespace qvslv
