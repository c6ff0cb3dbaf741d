#include "tests/soilrdf/meshes.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "soilrdf/road_derivation.h"

namespace qvtest {

double between(generator& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

int whole_between(generator& random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

qvsoilrdf::CRoad undivided_road(const mesh& m) {
  qvsoilrdf::CRoad road;
  for (const auto& point : m.points) {
    qvsoilrdf::CNode node;
    node.x = point[0], node.y = point[1], node.z = point[2];
    node.id = static_cast<std::int32_t>(road.nodes.size()) + 1;
    const bool first = road.nodes.empty();
    road.x_min = first ? node.x : std::min(road.x_min, node.x);
    road.x_max = first ? node.x : std::max(road.x_max, node.x);
    road.y_min = first ? node.y : std::min(road.y_min, node.y);
    road.y_max = first ? node.y : std::max(road.y_max, node.y);
    road.nodes.push_back(node);
  }
  for (const auto& triangle : m.triangles) {
    road.elements.push_back({{triangle[0], triangle[1], triangle[2]}});
  }
  return road;
}

qvsoilrdf::CRoad road_of(const mesh& m) {
  qvsoilrdf::CRoad road = undivided_road(m);
  int count = 0;
  char* slots[5] = {};
  try {
    qvsoilrdf::derive_road(road, {"", count, slots});
  } catch (int) {
    const std::string message = slots[0];
    delete[] slots[0];
    throw std::runtime_error(message);
  }
  return road;
}

mesh regular_mesh(int columns, int rows, double dx, double dy, double x0, double y0) {
  mesh m;
  for (int j = 0; j <= rows; ++j)
    for (int i = 0; i <= columns; ++i) m.points.push_back({x0 + i * dx, y0 + j * dy, 0.0});
  for (int j = 0; j < rows; ++j) {
    for (int i = 0; i < columns; ++i) {
      const int k = 1 + i + j * (columns + 1), above = k + columns + 1;
      m.triangles.push_back({k, k + 1, above + 1});
      m.triangles.push_back({k, above + 1, above});
    }
  }
  return m;
}

namespace {

mesh some_grid(generator& random, double dx, double dy, double x0, double y0) {
  mesh m = regular_mesh(whole_between(random, 1, 5), whole_between(random, 1, 5), dx, dy, x0, y0);
  for (auto& point : m.points) point[2] = between(random, -0.3, 0.3) * dx;
  return m;
}

mesh regular(generator& random) {
  return some_grid(random, between(random, 0.1, 3), between(random, 0.1, 3), between(random, -9, 9),
                   between(random, -9, 9));
}

void jitter(mesh& m, generator& random, double by) {
  for (auto& point : m.points)
    for (size_t c = 0; c < 2; ++c) point[c] += between(random, -by, by);
}

mesh jittered(generator& random) {
  mesh m = some_grid(random, 1, 1, -3, 5);
  jitter(m, random, 0.3);
  return m;
}

mesh rotated(generator& random) {
  mesh m = some_grid(random, 1, between(random, 0.2, 2), 0, 0);
  const double angle = between(random, 0, 6.3), c = std::cos(angle), s = std::sin(angle);
  for (auto& p : m.points) p = {c * p[0] - s * p[1], s * p[0] + c * p[1], p[2]};
  return m;
}

mesh shuffled_corners(generator& random) {
  mesh m = jittered(random);
  for (auto& triangle : m.triangles) std::shuffle(triangle.begin(), triangle.end(), random);
  std::shuffle(m.triangles.begin(), m.triangles.end(), random);
  return m;
}

mesh slivers(generator& random) {
  mesh m = some_grid(random, 1, 1e-4, 0, 0);
  const double shear = between(random, -1, 1);
  for (auto& p : m.points) p[1] += shear * p[0];
  return m;
}

mesh degenerate(generator& random) {
  mesh m = regular(random);
  const int last = static_cast<int>(m.points.size());
  for (int k = 0; k < 8; ++k) {
    const int a = whole_between(random, 1, last), b = whole_between(random, 1, last);
    m.triangles.push_back({a, a, b});
    m.triangles.push_back({a, b, b});
    m.triangles.push_back({a, a, a});
    m.triangles.push_back({a, b, whole_between(random, 1, last)});  // often collinear
  }
  std::shuffle(m.triangles.begin(), m.triangles.end(), random);
  return m;
}

mesh duplicates(generator& random) {
  mesh m = jittered(random);
  const auto points = m.points;
  m.points.insert(m.points.end(), points.begin(), points.end());
  const auto triangles = m.triangles;
  m.triangles.insert(m.triangles.end(), triangles.begin(), triangles.end());
  const int shift = static_cast<int>(points.size());
  for (const auto& t : triangles) m.triangles.push_back({t[0] + shift, t[1], t[2] + shift});
  return m;
}

mesh far_away_million(generator& random) {
  mesh m = some_grid(random, 0.7, 0.3, 1e6, -1e6);
  jitter(m, random, 0.1);
  return m;
}

mesh far_away_billion(generator& random) {
  mesh m = some_grid(random, 0.7, 0.3, -1e9, 1e9);
  jitter(m, random, 0.1);
  return m;
}

mesh regular_far_away(generator& random) {  // edges through cell corners, which rounding moves
  const double away = std::pow(10.0, whole_between(random, 3, 9));
  return some_grid(random, 0.1 * whole_between(random, 1, 9), 0.1 * whole_between(random, 1, 9), away + 0.3,
                   0.7 - away);
}

mesh beyond_resolution(generator& random) {
  const double step = std::ldexp(1.0, whole_between(random, 0, 3));
  return some_grid(random, 4 * step, 8 * step, std::ldexp(1.0, 54), -std::ldexp(1.0, 55));
}

mesh tiny_spacing(generator& random) { return some_grid(random, 1e-5, 3e-5, between(random, -2, 2), 0); }

mesh decimal_spacing(generator& random) {
  mesh m = some_grid(random, 1, 1, 0, 0);
  const double x0 = 0.1 * whole_between(random, -50, 50), dy = 0.1 * whole_between(random, 1, 9);
  for (auto& p : m.points) p = {x0 + 0.1 * p[0], dy * p[1] + 0.7, p[2]};
  return m;
}

mesh single(generator& random) {
  mesh m;
  for (int k = 0; k < 3; ++k)
    m.points.push_back({between(random, -1, 1), between(random, -1, 1), between(random, -1, 1)});
  m.triangles.push_back({1, 2, 3});
  return m;
}

mesh huge_and_tiny(generator& random) {
  mesh m = regular_mesh(5, 5, 0.01, 0.02, between(random, 1, 6), between(random, 1, 6));
  for (const auto& corner : {std::array<double, 3>{0, 0, 0}, {9, 0, 1}, {0, 9, 2}}) m.points.push_back(corner);
  const int n = static_cast<int>(m.points.size());
  m.triangles.insert(m.triangles.begin() + whole_between(random, 0, 5), {n, n - 1, n - 2});
  return m;
}

mesh soup(generator& random) {
  mesh m;
  const int n = whole_between(random, 3, 20);
  for (int k = 0; k < n; ++k)
    m.points.push_back({between(random, -1, 1), between(random, -5, 5), between(random, -1, 1)});
  for (int k = 0; k < 2 * n; ++k) {
    m.triangles.push_back({whole_between(random, 1, n), whole_between(random, 1, n), whole_between(random, 1, n)});
  }
  m.triangles.push_back({1, 2, 3});
  return m;
}

mesh integer_soup(generator& random) {  // corners on cell corners and borders, collinear edges, shared points
  mesh m = soup(random);
  for (auto& p : m.points) p = {std::round(4 * p[0]), std::round(p[1]), p[2]};
  m.points[0][0] = -9;
  m.points[1] = {0, 9, 0};
  return m;
}

mesh far_stray_nodes(generator& random) {
  mesh m = jittered(random);
  m.points.push_back({between(random, 5, 12), between(random, -8, 12), 0});
  return m;
}

}  // namespace

const std::vector<mesh_kind> k_mesh_kinds = {
    {"regular", regular},
    {"jittered", jittered},
    {"rotated", rotated},
    {"corners and triangles in any order", shuffled_corners},
    {"slivers", slivers},
    {"degenerate triangles", degenerate},
    {"duplicates", duplicates},
    {"a million away", far_away_million},
    {"a billion away", far_away_billion},
    {"regular far away", regular_far_away},
    {"beyond the resolution of a double", beyond_resolution},
    {"tiny spacing", tiny_spacing},
    {"decimal spacing", decimal_spacing},
    {"single triangle", single},
    {"one huge and many tiny triangles", huge_and_tiny},
    {"soup", soup},
    {"soup on whole numbers", integer_soup},
    {"stray nodes", far_stray_nodes},
};

}  // namespace qvtest
