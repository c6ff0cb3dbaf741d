#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "solver/data_files/hull_mesh.h"

namespace qvslv {

namespace {

constexpr double k_pi = 3.141592653589793;

/// The surface of a block of nx by ny by nz cells. A point is made when a face first needs it.
class BlockSurface {
public:
  BlockSurface(const std::array<int, 3>& divisions, const Vec3& size, double bow, double stern)
      : m_divisions(divisions), m_size(size), m_bow(bow), m_stern(stern) {}

  TriangleMesh mesh() {
    for (size_t axis = 0; axis < 3; ++axis) {
      add_side(axis, 0);
      add_side(axis, m_divisions[axis]);
    }
    return std::move(m_mesh);
  }

private:
  void add_side(size_t axis, int layer) {
    const size_t u = (axis + 1) % 3, v = (axis + 2) % 3;  // u x v points along the axis
    for (int i = 0; i < m_divisions[u]; ++i)
      for (int j = 0; j < m_divisions[v]; ++j) {
        const auto corner = [&](int di, int dj) {
          std::array<int, 3> cell{};
          cell[axis] = layer;
          cell[u] = i + di;
          cell[v] = j + dj;
          return point(cell);
        };
        const int a = corner(0, 0), b = corner(1, 0), c = corner(1, 1), d = corner(0, 1);
        if (layer == 0) {
          add_quad(m_mesh, a, d, c, b);
        } else {
          add_quad(m_mesh, a, b, c, d);
        }
      }
  }

  int point(const std::array<int, 3>& cell) {
    const auto [entry, is_new] = m_numbers.emplace(cell, static_cast<int>(m_mesh.points.size()));
    if (is_new) m_mesh.points.push_back(position(cell));
    return entry->second;
  }

  Vec3 position(const std::array<int, 3>& cell) const {
    Vec3 share;
    for (size_t k = 0; k < 3; ++k) share[k] = static_cast<double>(cell[k]) / m_divisions[k];
    const double below_deck = 1.0 - share[2];
    const double aft = -0.5 * m_size[0] + m_stern * below_deck, fore = 0.5 * m_size[0] - m_bow * below_deck;
    return {aft + (fore - aft) * share[0], (share[1] - 0.5) * m_size[1], (share[2] - 0.5) * m_size[2]};
  }

  std::array<int, 3> m_divisions;
  Vec3 m_size;
  double m_bow, m_stern;
  std::map<std::array<int, 3>, int> m_numbers;
  TriangleMesh m_mesh;
};

/// Splits every triangle into four at the middles of its edges, and moves these middles out to the unit sphere.
TriangleMesh split_on_sphere(const TriangleMesh& mesh) {
  TriangleMesh result;
  result.points = mesh.points;
  std::map<std::pair<int, int>, int> middles;
  const auto middle = [&](int a, int b) {
    const auto [entry, is_new] =
        middles.emplace(std::pair(std::min(a, b), std::max(a, b)), static_cast<int>(result.points.size()));
    if (is_new) {
      Vec3 p;
      for (size_t k = 0; k < 3; ++k)
        p[k] = result.points[static_cast<size_t>(a)][k] + result.points[static_cast<size_t>(b)][k];
      const double out = std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]);
      for (double& coordinate : p) coordinate /= out;
      result.points.push_back(p);
    }
    return entry->second;
  };
  for (const auto& [a, b, c] : mesh.triangles) {
    const int ab = middle(a, b), bc = middle(b, c), ca = middle(c, a);
    for (const std::array<int, 3>& part : {std::array{a, ab, ca}, {ab, b, bc}, {ca, bc, c}, {ab, bc, ca}})
      result.triangles.push_back(part);
  }
  return result;
}

/// Corners on the unit sphere: (0, +-1, +-golden ratio) and its cyclic permutations.
TriangleMesh icosahedron() {
  const double golden = 0.5 * (1.0 + std::sqrt(5.0)), out = std::sqrt(1.0 + golden * golden);
  const double s = 1.0 / out, l = golden / out;
  TriangleMesh mesh;
  mesh.points = {{-s, l, 0},  {s, l, 0},  {-s, -l, 0}, {s, -l, 0}, {0, -s, l},  {0, s, l},
                 {0, -s, -l}, {0, s, -l}, {l, 0, -s},  {l, 0, s},  {-l, 0, -s}, {-l, 0, s}};
  mesh.triangles = {{0, 11, 5},  {0, 5, 1},  {0, 1, 7},  {0, 7, 10}, {0, 10, 11}, {1, 5, 9}, {5, 11, 4},
                    {11, 10, 2}, {10, 7, 6}, {7, 1, 8},  {3, 9, 4},  {3, 4, 2},   {3, 2, 6}, {3, 6, 8},
                    {3, 8, 9},   {4, 9, 5},  {2, 4, 11}, {6, 2, 10}, {8, 6, 7},   {9, 8, 1}};
  return mesh;
}

}  // namespace

TriangleMesh barge_mesh(const Vec3& size, double bow, double stern, const std::array<int, 3>& divisions) {
  return BlockSurface(divisions, size, bow, stern).mesh();
}

TriangleMesh round_mesh(double radius, double length, int axis_number, int around, int along) {
  const auto axis = static_cast<size_t>(axis_number);
  TriangleMesh mesh;
  const auto add_point = [&](double out, double turn, double position) {
    Vec3 p{};
    p[axis] = position;
    p[(axis + 1) % 3] = out * std::cos(turn);
    p[(axis + 2) % 3] = out * std::sin(turn);
    mesh.points.push_back(p);
  };
  for (int ring = 0; ring <= along; ++ring)
    for (int k = 0; k < around; ++k)
      add_point(radius, 2.0 * k_pi * k / around, length * (static_cast<double>(ring) / along - 0.5));
  const int near_middle = static_cast<int>(mesh.points.size()), far_middle = near_middle + 1;
  add_point(0, 0, -0.5 * length);
  add_point(0, 0, 0.5 * length);
  for (int k = 0; k < around; ++k) {
    const int next = (k + 1) % around, last = along * around;
    for (int ring = 0; ring < along; ++ring)
      add_quad(mesh, ring * around + k, ring * around + next, (ring + 1) * around + next, (ring + 1) * around + k);
    mesh.triangles.push_back({near_middle, next, k});
    mesh.triangles.push_back({far_middle, last + k, last + next});
  }
  return mesh;
}

TriangleMesh icosphere_mesh(double radius, int level) {
  TriangleMesh mesh = icosahedron();
  for (int i = 0; i < level; ++i) mesh = split_on_sphere(mesh);
  for (Vec3& point : mesh.points)
    for (double& coordinate : point) coordinate *= radius;
  return mesh;
}

}  // namespace qvslv
