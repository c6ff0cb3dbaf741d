#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "solver/model/triangle_mesh.h"
#include "solver/model/vectors.h"

namespace qvslv {

/// The ground axis that points up.
struct UpAxis {
  size_t index = 2;  ///< 0 x, 1 y, 2 z
  double sign = 1;   ///< -1 if up is the axis' negative direction
};
/// The axis along which gravity is greatest, against gravity; +z without gravity.
UpAxis find_up(const Vec3& gravity);

/// A mesh with no more than `limit` triangles: nodes within the same cube are merged, in cubes that grow until the mesh
/// is small enough. A mesh that is small enough comes back as it is.
TriangleMesh thinned(const TriangleMesh& mesh, size_t limit);

/// Finds the triangle of a terrain that is above or below a place, by a grid of cells over the plan.
class TerrainLookup {
public:
  /// The mesh must outlive this object.
  TerrainLookup(const TriangleMesh& mesh, const UpAxis& up);

  /// Unit normal, upwards, of a triangle above or below the place; straight up if there is no such triangle.
  Vec3 find_normal(const Vec3& place) const;

private:
  size_t column(double a) const;
  size_t row(double b) const;
  size_t slot(double offset, size_t count) const;
  bool covers(size_t triangle, double a, double b) const;
  template <class Visit>
  void visit_cells(Visit&& visit) const;
  Vec3 normal_of(size_t triangle) const;

  const TriangleMesh& m_mesh;
  UpAxis m_up;
  size_t m_a, m_b;  ///< the two axes of the plan
  double m_a_min = 0, m_b_min = 0, m_cell = 1;
  size_t m_columns = 1, m_rows = 1;
  std::vector<std::uint32_t> m_triangles;  ///< of all cells, row by row: the triangles whose bounds touch the cell
  std::vector<size_t> m_ends;              ///< per cell, where its triangles end; empty without a terrain
};

}  // namespace qvslv
