#pragma once

#include <optional>
#include <vector>

#include "solver/data_files/make_road.h"
#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// The surface of a road in its own axes, z up: of the mesh in its file, or of the settings that such a file will be
/// made of.
class Ground {
public:
  explicit Ground(const RoadSettings& settings);
  explicit Ground(TriangleMesh mesh);

  /// Whether a place lies within the rectangle around all nodes.
  bool covers(double x, double y) const { return x >= m_low[0] && x <= m_high[0] && y >= m_low[1] && y <= m_high[1]; }
  const Vec3& low() const { return m_low; }
  const Vec3& high() const { return m_high; }

  /// A point of the surface with its normal, upwards.
  struct Spot {
    double height = 0;
    Vec3 normal = {0, 0, 1};
  };
  /// The surface over a place in the plan, the highest where triangles overlap; none where there is no triangle.
  std::optional<Spot> find(double x, double y) const;

  double edge() const { return m_edge; }  ///< typical edge of a triangle [length]
  bool flat() const { return m_flat; }    ///< whether all of it lies in one plane, level or not

private:
  Spot find_made(double x, double y) const;
  size_t column(double x) const;
  void sort_triangles();

  std::optional<RoadSettings> m_settings;
  std::optional<RoadHeights> m_heights;
  TriangleMesh m_mesh;
  std::vector<std::vector<int>> m_columns;  ///< numbers of the triangles whose least x lies in a strip of the road
  size_t m_span = 0;                        ///< how many strips further on a triangle may end
  Vec3 m_low = {0, 0, 0}, m_high = {0, 0, 0};
  double m_edge = 0;
  bool m_flat = true;
};

}  // namespace qvslv
