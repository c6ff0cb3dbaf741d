#include "solver/checks/ground.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qvslv {

namespace {

using Corners = std::array<Vec3, 3>;

Corners corners_of(const TriangleMesh& mesh, const std::array<int, 3>& triangle) {
  return {mesh.points[static_cast<size_t>(triangle[0])], mesh.points[static_cast<size_t>(triangle[1])],
          mesh.points[static_cast<size_t>(triangle[2])]};
}

/// Unit normal that points up, whatever the turning sense of the corners.
Vec3 upward_normal(const Corners& t) {
  const Vec3 n = unit(cross(minus(t[1], t[0]), minus(t[2], t[0])));
  return n[2] < 0 ? Vec3{-n[0], -n[1], -n[2]} : n;
}

/// Twice the area, in the plan, of the triangle between an edge and a place.
double side(const Vec3& a, const Vec3& b, double x, double y) {
  return (b[0] - a[0]) * (y - a[1]) - (b[1] - a[1]) * (x - a[0]);
}

/// The triangle's point over a place; none if the place lies outside or the triangle stands upright.
std::optional<Ground::Spot> spot_on(const Corners& t, double x, double y) {
  const double u = side(t[0], t[1], x, y), v = side(t[1], t[2], x, y), w = side(t[2], t[0], x, y), all = u + v + w;
  const bool inside = all != 0 && u / all >= 0 && v / all >= 0 && w / all >= 0;
  if (!inside) return std::nullopt;
  return Ground::Spot{(v * t[0][2] + w * t[1][2] + u * t[2][2]) / all, upward_normal(t)};
}

}  // namespace

Ground::Ground(const RoadSettings& settings) : m_settings(settings), m_heights(settings) {
  m_low = {settings.corner_x, settings.corner_y, settings.height};
  m_high = {settings.corner_x + settings.size_x, settings.corner_y + settings.size_y, settings.height};
  m_edge = settings.size_x / squares_along(settings.size_x, settings.spacing);
  m_flat = settings.kind == RoadKind::flat || settings.kind == RoadKind::slope;
}

Ground::Ground(TriangleMesh mesh) : m_mesh(std::move(mesh)) {
  if (m_mesh.triangles.empty()) return;
  m_low = m_high = m_mesh.points[0];
  for (const Vec3& point : m_mesh.points)
    for (size_t k = 0; k < 3; ++k) {
      m_low[k] = std::min(m_low[k], point[k]);
      m_high[k] = std::max(m_high[k], point[k]);
    }
  sort_triangles();
  constexpr double k_bend = 1e-6;  // between two normals, as the sine of the angle: far above the digits of a file
  Vec3 first = {0, 0, 0};
  for (const std::array<int, 3>& triangle : m_mesh.triangles) {
    const Corners t = corners_of(m_mesh, triangle);
    m_edge += length(minus(t[1], t[0])) / static_cast<double>(m_mesh.triangles.size());
    if (!m_flat) continue;
    const Vec3 normal = upward_normal(t);
    if (length(first) == 0) first = normal;
    m_flat = length(cross(first, normal)) < k_bend;
  }
}

size_t Ground::column(double x) const {
  const double share = (x - m_low[0]) / (m_high[0] - m_low[0]) * static_cast<double>(m_columns.size());
  return share > 0 ? std::min(static_cast<size_t>(share), m_columns.size() - 1) : 0;
}

/// As many strips as a square road has squares along its side.
void Ground::sort_triangles() {
  m_columns.resize(1 + static_cast<size_t>(std::sqrt(0.5 * static_cast<double>(m_mesh.triangles.size()))));
  for (size_t i = 0; i < m_mesh.triangles.size(); ++i) {
    const Corners t = corners_of(m_mesh, m_mesh.triangles[i]);
    const size_t first = column(std::min({t[0][0], t[1][0], t[2][0]}));
    m_columns[first].push_back(static_cast<int>(i));
    m_span = std::max(m_span, column(std::max({t[0][0], t[1][0], t[2][0]})) - first);
  }
}

std::optional<Ground::Spot> Ground::find(double x, double y) const {
  if (!covers(x, y)) return std::nullopt;
  if (m_settings) return find_made(x, y);
  std::optional<Spot> highest;
  const size_t last = column(x);
  for (size_t k = last - std::min(last, m_span); k <= last; ++k)
    for (const int triangle : m_columns[k]) {
      const std::optional<Spot> spot =
          spot_on(corners_of(m_mesh, m_mesh.triangles[static_cast<size_t>(triangle)]), x, y);
      if (spot && (!highest || spot->height > highest->height)) highest = spot;
    }
  return highest;
}

/// The triangle that the maker will put there: the diagonal of a square runs from its corner with the least x and y.
Ground::Spot Ground::find_made(double x, double y) const {
  const RoadSettings& s = *m_settings;
  const int columns = squares_along(s.size_x, s.spacing), rows = squares_along(s.size_y, s.spacing);
  const auto cell = [](double offset, double size, int count) {
    return std::min(count - 1, std::max(0, static_cast<int>(offset / size * count)));
  };
  const int i = cell(x - s.corner_x, s.size_x, columns), j = cell(y - s.corner_y, s.size_y, rows);
  const auto corner = [&](int column, int row) {
    const double at_x = s.corner_x + s.size_x * column / columns, at_y = s.corner_y + s.size_y * row / rows;
    return Vec3{at_x, at_y, (*m_heights)(at_x, at_y)};
  };
  const Vec3 a = corner(i, j), c = corner(i + 1, j + 1);
  const bool right = side(a, c, x, y) <= 0;
  const Corners t = {a, right ? corner(i + 1, j) : c, right ? c : corner(i, j + 1)};
  const std::optional<Spot> spot = spot_on(t, x, y);
  return spot ? *spot : Spot{(*m_heights)(x, y), upward_normal(t)};  // rounding at an edge
}

}  // namespace qvslv
