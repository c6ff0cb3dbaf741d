#include <algorithm>

#include "tests/reference/road_reference.h"

namespace qvref {

found look_at_triangle(const road& road, int number, const v3& p, double& edge_tolerance) {
  const triangle& t = road.triangles[static_cast<std::size_t>(number - 1)];
  v3 to_corner[3];
  for (std::size_t k = 0; k < 3; ++k) {
    const v3& node = road.nodes[static_cast<std::size_t>(t.corner[k] - 1)];
    to_corner[k] = {node[0] - p[0], node[1] - p[1], 0.0};
    if (normalise(to_corner[k]) == 0.0) return found::corner;
  }
  bool on_edge = false;
  double sum = 0.0;
  for (std::size_t k = 0; k < 3; ++k) {
    const double c = dot(to_corner[k], to_corner[(k + 1) % 3]);
    if (c >= -1.0 - edge_tolerance && c <= -1.0 + edge_tolerance) on_edge = true;
    sum += std::acos(c) * 57.29577951308232;
  }
  edge_tolerance = 0.0001;
  if (on_edge) return found::edge;
  if (sum >= 360.0 - 0.0001 && sum <= 360.0 + 0.0001) return found::inside;
  return found::hole;
}

facet_search search_facet(const road& road, const v3& p) {
  facet_search result;
  if (p[0] > road.x_max || p[0] < road.x_min || p[1] > road.y_max || p[1] < road.y_min) {
    result.how = found::outside_extent;
    return result;
  }
  // The extent is closed: its upper border belongs to the last cell.
  const auto i = static_cast<std::size_t>((p[0] + road.x_offset) / road.cell_dx);
  const auto j = static_cast<std::size_t>((p[1] + road.y_offset) / road.cell_dy);
  const auto& row = road.cells[std::min(i, road.cells.size() - 1)];
  const cell& here = row[std::min(j, row.size() - 1)];

  double edge_tolerance = 0.000153;
  std::vector<int> found_triangles;
  v3 K{};
  for (const int number : here.elements) {
    result.how = look_at_triangle(road, number, p, edge_tolerance);
    if (result.how == found::hole) continue;
    found_triangles.push_back(number);
    const triangle& t = road.triangles[static_cast<std::size_t>(number - 1)];
    K = road.nodes[static_cast<std::size_t>(t.corner[0] - 1)];
    result.number = number;
    break;
  }

  v3 n = {0.0, 0.0, 0.0};
  double d = 0.0;
  for (const int number : found_triangles) {
    n = n + road.triangles[static_cast<std::size_t>(number - 1)].normal;
    d += road.triangles[static_cast<std::size_t>(number - 1)].d;
  }
  const double length = normalise(n);
  result.normal = n;
  result.d = d / static_cast<double>(found_triangles.size());
  if (length == 0.0) return result;
  const v3 w = p - K;
  result.point = K + (w - dot(n, w) * n);
  return result;
}

}  // namespace qvref
