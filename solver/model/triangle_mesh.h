#pragma once

#include <array>
#include <vector>

#include "solver/model/vectors.h"

namespace qvslv {

/// Triangles between points, all in one frame [length].
struct TriangleMesh {
  std::vector<Vec3> points;
  std::vector<std::array<int, 3>> triangles;  ///< indices into points
};

/// Adds the quad with the corners a b c d, counter-clockwise seen from outside, as two triangles.
inline void add_quad(TriangleMesh& mesh, int a, int b, int c, int d) {
  mesh.triangles.push_back({a, b, c});
  mesh.triangles.push_back({a, c, d});
}

/// Appends a mesh, turned and then moved.
void append_mesh(TriangleMesh& mesh, const TriangleMesh& added, const Rotation& rotation, const Vec3& translation);

}  // namespace qvslv
