#include "solver/results/terrain_lookup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>

namespace qvslv {

namespace {

constexpr double k_infinity = std::numeric_limits<double>::infinity();

/// The mesh in which the nodes within the same cube are merged into their mean.
TriangleMesh merged(const TriangleMesh& mesh, double cube) {
  std::map<std::array<std::int64_t, 3>, int> cubes;
  std::vector<int> new_index;
  std::vector<double> members;
  TriangleMesh result;
  for (const Vec3& p : mesh.points) {
    std::array<std::int64_t, 3> key{};
    for (size_t c = 0; c < 3; ++c) key[c] = static_cast<std::int64_t>(std::floor((p[c] - mesh.points[0][c]) / cube));
    const int index = cubes.emplace(key, static_cast<int>(result.points.size())).first->second;
    new_index.push_back(index);
    if (static_cast<size_t>(index) == result.points.size()) {
      result.points.push_back({0, 0, 0});
      members.push_back(0);
    }
    for (size_t c = 0; c < 3; ++c) result.points[static_cast<size_t>(index)][c] += p[c];
    members[static_cast<size_t>(index)] += 1;
  }
  for (size_t k = 0; k < members.size(); ++k) {
    for (double& value : result.points[k]) value /= members[k];
  }
  for (const auto& t : mesh.triangles) {
    std::array<int, 3> n{};
    for (size_t k = 0; k < 3; ++k) n[k] = new_index[static_cast<size_t>(t[k])];
    if (n[0] != n[1] && n[1] != n[2] && n[2] != n[0]) result.triangles.push_back(n);
  }
  return result;
}

double mean_edge(const TriangleMesh& mesh) {
  double sum = 0;
  for (const auto& t : mesh.triangles) {
    const Vec3 e = minus(mesh.points[static_cast<size_t>(t[1])], mesh.points[static_cast<size_t>(t[0])]);
    sum += std::sqrt(e[0] * e[0] + e[1] * e[1] + e[2] * e[2]);
  }
  return sum / static_cast<double>(mesh.triangles.size());
}

}  // namespace

UpAxis find_up(const Vec3& gravity) {
  UpAxis up;
  double most = 0;
  for (size_t k = 0; k < 3; ++k) {
    if (std::abs(gravity[k]) <= most) continue;
    most = std::abs(gravity[k]);
    up = {k, gravity[k] > 0 ? -1.0 : 1.0};
  }
  return up;
}

TriangleMesh thinned(const TriangleMesh& mesh, size_t limit) {
  if (mesh.triangles.size() <= limit) return mesh;
  const double excess = static_cast<double>(mesh.triangles.size()) / static_cast<double>(std::max<size_t>(limit, 1));
  double cube = mean_edge(mesh) * std::sqrt(excess);
  if (!(cube > 0) || !std::isfinite(cube)) return {};
  TriangleMesh result = merged(mesh, cube);
  while (result.triangles.size() > limit) result = merged(mesh, cube *= 1.25);
  return result;
}

TerrainLookup::TerrainLookup(const TriangleMesh& mesh, const UpAxis& up)
    : m_mesh(mesh), m_up(up), m_a((up.index + 1) % 3), m_b((up.index + 2) % 3) {
  double a_max = -k_infinity, b_max = -k_infinity;
  m_a_min = m_b_min = k_infinity;
  for (const Vec3& p : mesh.points) {
    m_a_min = std::min(m_a_min, p[m_a]);
    m_b_min = std::min(m_b_min, p[m_b]);
    a_max = std::max(a_max, p[m_a]);
    b_max = std::max(b_max, p[m_b]);
  }
  const double area = (a_max - m_a_min) * (b_max - m_b_min);
  if (mesh.triangles.empty() || !(area > 0) || !std::isfinite(area)) return;
  m_cell = std::max({std::sqrt(2 * area / static_cast<double>(mesh.triangles.size())), (a_max - m_a_min) / 1e4,
                     (b_max - m_b_min) / 1e4});
  m_columns = static_cast<size_t>((a_max - m_a_min) / m_cell) + 1;
  m_rows = static_cast<size_t>((b_max - m_b_min) / m_cell) + 1;
  m_ends.resize(m_columns * m_rows);
  visit_cells([this](size_t cell, size_t) { ++m_ends[cell]; });
  size_t begin = 0;
  for (size_t& end : m_ends) {  // for now, the beginnings
    const size_t count = end;
    end = begin;
    begin += count;
  }
  m_triangles.resize(begin);
  visit_cells(
      [this](size_t cell, size_t triangle) { m_triangles[m_ends[cell]++] = static_cast<std::uint32_t>(triangle); });
}

/// Hands over every triangle with each cell that its bounds touch, in the order of the triangles.
template <class Visit>
void TerrainLookup::visit_cells(Visit&& visit) const {
  for (size_t t = 0; t < m_mesh.triangles.size(); ++t) {
    double low[2] = {k_infinity, k_infinity}, high[2] = {-k_infinity, -k_infinity};
    for (const int corner : m_mesh.triangles[t]) {
      const Vec3& p = m_mesh.points[static_cast<size_t>(corner)];
      const double at[2] = {p[m_a], p[m_b]};
      for (int c = 0; c < 2; ++c) {
        low[c] = std::min(low[c], at[c]);
        high[c] = std::max(high[c], at[c]);
      }
    }
    const size_t first_column = column(low[0]), last_row = row(high[1]), last_column = column(high[0]);
    for (size_t r = row(low[1]); r <= last_row; ++r) {
      for (size_t c = first_column; c <= last_column; ++c) visit(r * m_columns + c, t);
    }
  }
}

size_t TerrainLookup::column(double a) const { return slot(a - m_a_min, m_columns); }

size_t TerrainLookup::row(double b) const { return slot(b - m_b_min, m_rows); }

size_t TerrainLookup::slot(double offset, size_t count) const {
  const double limit = static_cast<double>(count - 1);
  return static_cast<size_t>(std::max(0.0, std::min(offset / m_cell, limit)));
}

bool TerrainLookup::covers(size_t triangle, double a, double b) const {
  int left = 0, right = 0;
  const auto& t = m_mesh.triangles[triangle];
  for (size_t k = 0; k < 3; ++k) {
    const Vec3& p = m_mesh.points[static_cast<size_t>(t[k])];
    const Vec3& q = m_mesh.points[static_cast<size_t>(t[(k + 1) % 3])];
    const double side = (q[m_a] - p[m_a]) * (b - p[m_b]) - (q[m_b] - p[m_b]) * (a - p[m_a]);
    left += side > 0 ? 1 : 0;
    right += side < 0 ? 1 : 0;
  }
  return left == 0 || right == 0;
}

Vec3 TerrainLookup::normal_of(size_t triangle) const {
  const auto& t = m_mesh.triangles[triangle];
  const Vec3& p = m_mesh.points[static_cast<size_t>(t[0])];
  Vec3 n =
      cross(minus(m_mesh.points[static_cast<size_t>(t[1])], p), minus(m_mesh.points[static_cast<size_t>(t[2])], p));
  const double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
  const double scale = (n[m_up.index] * m_up.sign < 0 ? -1 : 1) / length;
  for (double& value : n) value *= scale;
  return n;
}

Vec3 TerrainLookup::find_normal(const Vec3& place) const {
  Vec3 straight = {0, 0, 0};
  straight[m_up.index] = m_up.sign;
  const double a = place[m_a], b = place[m_b];
  if (m_ends.empty() || !std::isfinite(a) || !std::isfinite(b)) return straight;
  const size_t cell = row(b) * m_columns + column(a);
  for (size_t k = cell == 0 ? 0 : m_ends[cell - 1]; k < m_ends[cell]; ++k) {
    const size_t triangle = m_triangles[k];
    if (!covers(triangle, a, b)) continue;
    const Vec3 normal = normal_of(triangle);
    if (std::isfinite(normal[0])) return normal;
  }
  return straight;
}

}  // namespace qvslv
