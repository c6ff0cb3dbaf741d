#pragma once

#include <vector>

#include "solver/results/recording.h"

namespace qvslv {

/// Axis that points up: the one that gravity points against most, z without gravity. `sign` is -1 when gravity points
/// along the positive axis.
struct UpAxis {
  size_t index = 2;
  double sign = 1;
};
UpAxis find_up(const Vec3& gravity);

/// A mesh with about no more than `limit` triangles: nodes are merged in cubes that grow until it fits. A mesh that
/// fits comes back as it is.
TriangleMesh thinned(const TriangleMesh& mesh, size_t limit);

/// Finds the triangle of a terrain that is above or below a place.
class TerrainLookup {
public:
  /// The mesh outlives this.
  TerrainLookup(const TriangleMesh& mesh, const UpAxis& up);

  /// Unit normal, upwards, of a triangle over or under the place; straight up where there is none.
  Vec3 find_normal(const Vec3& place) const;

private:
  size_t column(double a) const;
  size_t row(double b) const;
  size_t slot(double offset, size_t count) const;
  bool covers(size_t triangle, double a, double b) const;
  Vec3 normal_of(size_t triangle) const;

  const TriangleMesh& m_mesh;
  UpAxis m_up;
  size_t m_a, m_b;  ///< axes of the plan
  double m_a_min = 0, m_b_min = 0, m_cell = 1;
  size_t m_columns = 1, m_rows = 1;
  std::vector<std::vector<size_t>> m_cells;  ///< triangles whose bounds touch them
};

}  // namespace qvslv
