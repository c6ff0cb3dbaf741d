#include "solver/data_files/road_mesh_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace qvslv {

namespace {

struct Edges {
  Vec3 a, b, c;
};

Edges edges_of(const TriangleMesh& mesh, const std::array<int, 3>& triangle) {
  const Vec3 &p = mesh.points[static_cast<size_t>(triangle[0])], &q = mesh.points[static_cast<size_t>(triangle[1])],
             &r = mesh.points[static_cast<size_t>(triangle[2])];
  return {minus(q, p), minus(r, q), minus(p, r)};
}

/// Whether the triangle's area is rounding, for the length of its edges.
bool without_area(const Edges& e, const Vec3& twice_area) {
  constexpr double k_rounding = 1e-20;  // relative to the fourth power of an edge: ten digits, which files hold
  const double longest = std::max({dot(e.a, e.a), dot(e.b, e.b), dot(e.c, e.c)});
  return dot(twice_area, twice_area) <= k_rounding * longest * longest;
}

}  // namespace

void check_road_mesh(const TriangleMesh& mesh, const std::vector<int>& lines, const std::string& path,
                     Findings& findings) {
  size_t flat_count = 0, first = 0;
  double area = 0, plan = 0;
  for (size_t i = 0; i < mesh.triangles.size(); ++i) {
    const Edges edges = edges_of(mesh, mesh.triangles[i]);
    const Vec3 twice_area = cross(edges.a, edges.b);
    area += length(twice_area);
    plan += std::abs(twice_area[2]);
    if (without_area(edges, twice_area) && flat_count++ == 0) first = i;
  }
  if (flat_count > 0) {
    const std::array<int, 3>& t = mesh.triangles[first];
    findings.push_back(finding_in(
        path, lines[first], Level::warning, "road-no-area",
        fmt::format(
            "the element of the nodes {}, {} and {} has no area{}: its corners are repeated or lie on one line; "
            "mend it in the program that made the mesh",
            t[0] + 1, t[1] + 1, t[2] + 1,
            flat_count > 1 ? fmt::format(" (and {} more)", flat_count - 1) : std::string())));
  }
  constexpr double k_steep = 0.5;  // cosine of 60 degrees: no soil stands steeper on the whole
  if (plan < k_steep * area)
    findings.push_back(finding_in(path, 0, Level::warning, "road-upright",
                                  fmt::format("the road stands upright: its plan has only {:.2g} of its area. z is up; "
                                              "are y and z swapped?",
                                              plan / area)));
}

}  // namespace qvslv
