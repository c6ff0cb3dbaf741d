#include "solver/checks/waterline.h"

#include <algorithm>
#include <cmath>

namespace qvslv {

namespace {

using Corners = std::array<Vec3, 3>;

Corners corners_of(const TriangleMesh& mesh, const std::array<int, 3>& triangle) {
  return {mesh.points[static_cast<size_t>(triangle[0])], mesh.points[static_cast<size_t>(triangle[1])],
          mesh.points[static_cast<size_t>(triangle[2])]};
}

/// Mean over a triangle of the depth under the level, dry parts counting 0. Where the level cuts the triangle, the part
/// around the corner that is alone on its side is a triangle too: of the share d^2 / ((d - a) (d - b)) of the whole,
/// with a mean depth of d/3.
double mean_depth(const Corners& t, double level) {
  std::array<double, 3> d = {level - t[0][2], level - t[1][2], level - t[2][2]};
  std::sort(d.begin(), d.end());
  const double all = (d[0] + d[1] + d[2]) / 3;
  if (d[0] >= 0) return all;
  if (d[2] <= 0) return 0;
  const auto part = [](double alone, double a, double b) {
    return alone * alone / ((alone - a) * (alone - b)) * alone / 3;
  };
  return d[1] > 0 ? all - part(d[0], d[1], d[2]) : part(d[2], d[0], d[1]);
}

/// Volume of the columns between the triangles and the level; those that face up count negative.
double volume_below(const TriangleMesh& mesh, double level) {
  double volume = 0;
  for (const std::array<int, 3>& triangle : mesh.triangles) {
    const Corners t = corners_of(mesh, triangle);
    volume -= 0.5 * cross(minus(t[1], t[0]), minus(t[2], t[0]))[2] * mean_depth(t, level);
  }
  return volume;
}

std::pair<double, double> heights_of(const TriangleMesh& mesh) {
  std::pair<double, double> heights = {mesh.points[0][2], mesh.points[0][2]};
  for (const Vec3& point : mesh.points)
    heights = {std::min(heights.first, point[2]), std::max(heights.second, point[2])};
  return heights;
}

/// Length of the line in which a level cuts a triangle; 0 if it does not, or only touches it.
double cut_length(const Corners& t, double level) {
  std::array<Vec3, 3> ends;
  size_t count = 0;
  for (size_t k = 0; k < 3; ++k) {
    const Vec3 &a = t[k], &b = t[(k + 1) % 3];
    if ((a[2] < level) == (b[2] < level)) continue;
    const double share = (level - a[2]) / (b[2] - a[2]);
    ends[count++] = {a[0] + share * (b[0] - a[0]), a[1] + share * (b[1] - a[1]), level};
  }
  return count == 2 ? length(minus(ends[1], ends[0])) : 0;
}

bool upright(const Corners& t) {
  constexpr double k_most_lean = 0.7;  // of the normal from the level plane: 45 degrees
  return std::abs(unit(cross(minus(t[1], t[0]), minus(t[2], t[0])))[2]) < k_most_lean;
}

}  // namespace

double find_level(const TriangleMesh& mesh, double share) {
  auto [low, high] = heights_of(mesh);
  const double wanted = share * volume_below(mesh, high);
  constexpr int k_halvings = 20;
  for (int i = 0; i < k_halvings; ++i) {
    const double middle = 0.5 * (low + high);
    (volume_below(mesh, middle) < wanted ? low : high) = middle;
  }
  return 0.5 * (low + high);
}

std::optional<Waterline> waterline_at(const TriangleMesh& mesh, double level) {
  double line = 0, heights = 0;
  for (const std::array<int, 3>& triangle : mesh.triangles) {
    const Corners t = corners_of(mesh, triangle);
    const double cut = cut_length(t, level);
    if (!(cut > 0) || !upright(t)) continue;
    const auto [low, high] = std::minmax({t[0][2], t[1][2], t[2][2]});
    line += cut;
    heights += cut * (high - low);
  }
  if (!(line > 0)) return std::nullopt;
  return Waterline{level - heights_of(mesh).first, heights / line};
}

}  // namespace qvslv
