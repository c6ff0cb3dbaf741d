#include "solver/data_files/hull_mesh.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <unordered_map>
#include <utility>

namespace qvslv {

namespace {

std::string place(const Vec3& p) { return fmt::format("({:.4g}, {:.4g}, {:.4g})", p[0], p[1], p[2]); }

struct Corners {
  const Vec3 &a, &b, &c;
};
Corners corners_of(const TriangleMesh& mesh, const std::array<int, 3>& triangle) {
  return {mesh.points[static_cast<size_t>(triangle[0])], mesh.points[static_cast<size_t>(triangle[1])],
          mesh.points[static_cast<size_t>(triangle[2])]};
}

/// Vector along the outward normal whose length is twice the triangle's area.
Vec3 area_vector(const TriangleMesh& mesh, const std::array<int, 3>& triangle) {
  const Corners t = corners_of(mesh, triangle);
  return cross(minus(t.b, t.a), minus(t.c, t.a));
}

void find_bounds(const TriangleMesh& mesh, Vec3& low, Vec3& high) {
  low = high = mesh.points.empty() ? Vec3{0, 0, 0} : mesh.points[0];
  for (const Vec3& point : mesh.points)
    for (size_t k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], point[k]);
      high[k] = std::max(high[k], point[k]);
    }
}

/// Throws for a triangle that is so much flatter than its edges are long that its area is rounding.
void check_areas(const TriangleMesh& mesh) {
  constexpr double k_rounding = 1e-12;
  for (size_t i = 0; i < mesh.triangles.size(); ++i) {
    const Corners t = corners_of(mesh, mesh.triangles[i]);
    const double longest = std::max({length(minus(t.b, t.a)), length(minus(t.c, t.b)), length(minus(t.a, t.c))});
    if (length(area_vector(mesh, mesh.triangles[i])) > k_rounding * longest * longest) continue;
    throw MeshError(
        fmt::format("triangle {} at {} has no area, its corners lie on one line; mend it in the program "
                    "that made the mesh",
                    i + 1, place(t.a)));
  }
}

/// How often triangles go along an edge from its lower to its higher point number, and how often back.
struct EdgeUse {
  int there = 0, back = 0;
};
using EdgeMap = std::unordered_map<std::uint64_t, EdgeUse>;

std::uint64_t edge_key(int from, int to) {
  const auto low = static_cast<std::uint64_t>(std::min(from, to)),
             high = static_cast<std::uint64_t>(std::max(from, to));
  return (low << 32U) | high;
}

EdgeMap edges_of(const TriangleMesh& mesh) {
  EdgeMap edges;
  edges.reserve(mesh.triangles.size() * 2);
  for (const std::array<int, 3>& triangle : mesh.triangles)
    for (size_t k = 0; k < 3; ++k) {
      const int from = triangle[k], to = triangle[(k + 1) % 3];
      EdgeUse& use = edges[edge_key(from, to)];
      ++(from < to ? use.there : use.back);
    }
  return edges;
}

/// Throws unless every edge lies between two triangles. Walks in the order of the triangles and not of the map, so that
/// the message always names the same place.
void check_edges(const TriangleMesh& mesh) {
  const EdgeMap edges = edges_of(mesh);
  const auto open = std::count_if(edges.begin(), edges.end(),
                                  [](const auto& edge) { return edge.second.there + edge.second.back == 1; });
  for (size_t i = 0; i < mesh.triangles.size(); ++i)
    for (size_t k = 0; k < 3; ++k) {
      const int from = mesh.triangles[i][k], to = mesh.triangles[i][(k + 1) % 3];
      const EdgeUse& use = edges.at(edge_key(from, to));
      const std::string where = "the edge from " + place(mesh.points[static_cast<size_t>(from)]) + " to " +
                                place(mesh.points[static_cast<size_t>(to)]);
      if (use.there == 1 && use.back == 1) continue;
      if (use.there + use.back == 1)
        throw MeshError(
            fmt::format("the mesh is not closed: {} belong{} to one triangle only, such as {}; close the "
                        "hole in the program that made the mesh",
                        open == 1 ? "1 edge" : fmt::format("{} edges", open), open == 1 ? "s" : "", where));
      if (use.there + use.back == 2)
        throw MeshError("two neighbours are turned against each other at " + where +
                        "; make the normals agree in the program that made the mesh");
      throw MeshError(fmt::format("{} belongs to {} triangles, not two; take out what lies inside the hull", where,
                                  use.there + use.back));
    }
}

}  // namespace

MeshMeasures calc_measures(const TriangleMesh& mesh) {
  MeshMeasures measures;
  find_bounds(mesh, measures.low, measures.high);
  Vec3 origin;  // in the middle of the mesh, so that a mesh far from 0 does not lose digits
  for (size_t k = 0; k < 3; ++k) origin[k] = 0.5 * (measures.low[k] + measures.high[k]);
  Vec3 moment = {0, 0, 0};
  for (const std::array<int, 3>& triangle : mesh.triangles) {
    const Corners t = corners_of(mesh, triangle);
    const Vec3 a = minus(t.a, origin), b = minus(t.b, origin), c = minus(t.c, origin);
    const double six_volumes = dot(a, cross(b, c));  // six times the tetrahedron between triangle and origin
    measures.volume += six_volumes / 6.0;
    for (size_t k = 0; k < 3; ++k) moment[k] += six_volumes / 24.0 * (a[k] + b[k] + c[k]);
  }
  measures.area = calc_area(mesh);
  for (size_t k = 0; k < 3; ++k)
    measures.center[k] = origin[k] + (measures.volume != 0 ? moment[k] / measures.volume : 0.0);
  return measures;
}

double calc_area(const TriangleMesh& mesh) {
  double area = 0;
  for (const std::array<int, 3>& triangle : mesh.triangles) area += 0.5 * length(area_vector(mesh, triangle));
  return area;
}

void check_hull_mesh(const TriangleMesh& mesh) {
  if (mesh.triangles.empty()) throw MeshError("there are no triangles in it");
  check_areas(mesh);
  check_edges(mesh);
  const double volume = calc_measures(mesh).volume;
  if (!(volume > 0))
    throw MeshError(
        fmt::format("the triangles face inwards (the volume comes out as {:.4g}); flip = true mends it", volume));
}

void flip(TriangleMesh& mesh) {
  for (std::array<int, 3>& triangle : mesh.triangles) std::swap(triangle[1], triangle[2]);
}

namespace {

/// Finds the point seen before that lies within a tolerance of a given one. The points are kept in a grid of cells as
/// wide as the tolerance, so only the 27 cells around a point need to be searched.
class PointGrid {
public:
  PointGrid(const Vec3& low, double tolerance) : m_low(low), m_tolerance(tolerance) {}

  int number_of(const Vec3& point, std::vector<Vec3>& points) {
    const std::array<std::int64_t, 3> cell = cell_of(point);
    for (int n = 0; n < 27; ++n) {
      const auto found = m_cells.find(key({cell[0] + n % 3 - 1, cell[1] + n / 3 % 3 - 1, cell[2] + n / 9 - 1}));
      if (found == m_cells.end()) continue;
      for (const int candidate : found->second)
        if (length(minus(points[static_cast<size_t>(candidate)], point)) <= m_tolerance) return candidate;
    }
    const int number = static_cast<int>(points.size());
    points.push_back(point);
    m_cells[key(cell)].push_back(number);
    return number;
  }

private:
  std::array<std::int64_t, 3> cell_of(const Vec3& point) const {
    std::array<std::int64_t, 3> cell{};
    for (size_t k = 0; k < 3; ++k) cell[k] = static_cast<std::int64_t>((point[k] - m_low[k]) / m_tolerance) + 1;
    return cell;
  }
  /// 21 bits per axis are enough: there are about a million cells along the mesh.
  static std::uint64_t key(const std::array<std::int64_t, 3>& cell) {
    return (static_cast<std::uint64_t>(cell[0]) << 42U) | (static_cast<std::uint64_t>(cell[1]) << 21U) |
           static_cast<std::uint64_t>(cell[2]);
  }

  Vec3 m_low;
  double m_tolerance;
  std::unordered_map<std::uint64_t, std::vector<int>> m_cells;
};

/// A mesh of the given triangles with only the points that they need, numbered anew.
TriangleMesh picked(const TriangleMesh& mesh, const std::vector<size_t>& triangles) {
  TriangleMesh result;
  std::vector<int> number(mesh.points.size(), -1);
  for (const size_t i : triangles) {
    std::array<int, 3> corners = mesh.triangles[i];
    for (int& corner : corners) {
      int& known = number[static_cast<size_t>(corner)];
      if (known < 0) {
        known = static_cast<int>(result.points.size());
        result.points.push_back(mesh.points[static_cast<size_t>(corner)]);
      }
      corner = known;
    }
    result.triangles.push_back(corners);
  }
  return result;
}

}  // namespace

TriangleMesh welded(const TriangleMesh& mesh) {
  constexpr double k_relative = 1e-6;  // files hold about seven digits
  Vec3 low, high;
  find_bounds(mesh, low, high);
  const double tolerance = k_relative * length(minus(high, low));
  if (!(tolerance > 0)) return mesh;
  TriangleMesh result;
  PointGrid grid(low, tolerance);
  std::vector<int> number;
  number.reserve(mesh.points.size());
  for (const Vec3& point : mesh.points) number.push_back(grid.number_of(point, result.points));
  for (std::array<int, 3> triangle : mesh.triangles) {
    for (int& corner : triangle) corner = number[static_cast<size_t>(corner)];
    if (triangle[0] == triangle[1] || triangle[1] == triangle[2] || triangle[2] == triangle[0]) continue;
    result.triangles.push_back(triangle);
  }
  std::vector<size_t> all(result.triangles.size());
  std::iota(all.begin(), all.end(), size_t{0});
  return picked(result, all);
}

std::vector<TriangleMesh> sliced(const TriangleMesh& mesh, int parts) {
  Vec3 low, high;
  find_bounds(mesh, low, high);
  const size_t axis = high[0] - low[0] >= high[1] - low[1] ? 0 : 1;
  std::vector<size_t> order(mesh.triangles.size());
  std::iota(order.begin(), order.end(), size_t{0});
  const auto middle = [&](size_t i) {
    const Corners t = corners_of(mesh, mesh.triangles[i]);
    return t.a[axis] + t.b[axis] + t.c[axis];
  };
  if (parts > 1)
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return middle(a) < middle(b); });
  std::vector<TriangleMesh> result;
  const auto count = static_cast<size_t>(parts);
  for (size_t part = 0; part < count; ++part) {
    const auto at = [&](size_t share) { return static_cast<std::ptrdiff_t>(order.size() * share / count); };
    result.push_back(picked(mesh, {order.begin() + at(part), order.begin() + at(part + 1)}));
  }
  return result;
}

}  // namespace qvslv
