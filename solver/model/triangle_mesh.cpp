#include "solver/model/triangle_mesh.h"

namespace qvslv {

void append_mesh(TriangleMesh& mesh, const TriangleMesh& added, const Rotation& rotation, const Vec3& translation) {
  const int first = static_cast<int>(mesh.points.size());
  for (const Vec3& p : added.points) {
    Vec3 moved = translation;
    for (size_t row = 0; row < 3; ++row) {
      for (size_t column = 0; column < 3; ++column) moved[row] += rotation[3 * column + row] * p[column];
    }
    mesh.points.push_back(moved);
  }
  for (const auto& triangle : added.triangles) {
    mesh.triangles.push_back({triangle[0] + first, triangle[1] + first, triangle[2] + first});
  }
}

}  // namespace qvslv
