#pragma once

#include "solver/recording.h"

namespace qvslv {

/// Triangles of a shape around the origin, outside to the left when walked counter-clockwise. Empty for no shape.
/// Round shapes are inscribed polygons of k_round_sides sides.
TriangleMesh shape_mesh(const Shape& shape);

constexpr int k_round_sides = 32;

/// Adds the quad a b c d, counter-clockwise seen from outside.
inline void add_quad(TriangleMesh& mesh, int a, int b, int c, int d) {
  mesh.triangles.push_back({a, b, c});
  mesh.triangles.push_back({a, c, d});
}

}  // namespace qvslv
