#pragma once

#include "solver/model/model.h"
#include "solver/model/triangle_mesh.h"

namespace qvslv {

constexpr int k_round_sides = 32;

/// The surface of a shape around the origin, in the body's axes: triangles that are counter-clockwise seen from
/// outside. Round shapes are inscribed polygons of k_round_sides sides. Empty for no shape.
TriangleMesh shape_mesh(const Shape& shape);

}  // namespace qvslv
