#include "tests/reference/road_reference.h"

#include <algorithm>

namespace qvref {
namespace {

bool segments_meet(double x1, double y1, double x2, double y2, const v3& P3, const v3& P4) {
  const double x3 = P3[0], y3 = P3[1], x4 = P4[0], y4 = P4[1];
  const double dx = x2 - x1, dy = y2 - y1;
  const double den = dx * (y4 - y3) - dy * (x4 - x3);
  if (den == 0.0) return false;
  const double na = (y1 - y3) * (x4 - x3) - (x1 - x3) * (y4 - y3);
  const double nb = (y1 - y3) * dx - (x1 - x3) * dy;
  const double ua = na / den, ub = nb / den;
  if (ua < 0.0 || ua > 1.0 || ub < 0.0 || ub > 1.0) return false;
  return !(na == 0.0 && nb == 0.0);
}

bool holds(const cell& c, const v3& node) {
  return c.x_lo <= node[0] && node[0] <= c.x_hi && c.y_lo <= node[1] && node[1] <= c.y_hi;
}

bool belongs(const cell& c, const v3& K, const v3& L, const v3& M) {
  if (holds(c, K) || holds(c, L) || holds(c, M)) return true;
  const double edges[4][4] = {{c.x_lo, c.y_lo, c.x_hi, c.y_lo},
                              {c.x_hi, c.y_lo, c.x_hi, c.y_hi},
                              {c.x_lo, c.y_hi, c.x_hi, c.y_hi},
                              {c.x_lo, c.y_lo, c.x_lo, c.y_hi}};
  for (const auto& e : edges) {
    if (segments_meet(e[0], e[1], e[2], e[3], K, L) || segments_meet(e[0], e[1], e[2], e[3], L, M) ||
        segments_meet(e[0], e[1], e[2], e[3], K, M)) {
      return true;
    }
  }
  return false;
}

const v3& corner(const road& r, const triangle& t, std::size_t k) {
  return r.nodes[static_cast<std::size_t>(t.corner[k] - 1)];
}

void set_plane(const road& r, triangle& t) {
  const v3 &K = corner(r, t, 0), &L = corner(r, t, 1), &M = corner(r, t, 2);
  t.normal = cross(L - K, M - L);
  normalise(t.normal);
  if (t.normal[2] < 0.0) t.normal = {-t.normal[0], -t.normal[1], -t.normal[2]};
  for (std::size_t c = 0; c < 3; ++c) t.center[c] = (K[c] + L[c] + M[c]) / 3.0;
  t.d = -(t.normal[0] * t.center[0] + t.normal[1] * t.center[1] + t.normal[2] * t.center[2]);
}

void set_bounds(road& r) {
  r.x_min = r.x_max = r.nodes[0][0];
  r.y_min = r.y_max = r.nodes[0][1];
  for (const v3& node : r.nodes) {
    r.x_min = std::min(r.x_min, node[0]);
    r.x_max = std::max(r.x_max, node[0]);
    r.y_min = std::min(r.y_min, node[1]);
    r.y_max = std::max(r.y_max, node[1]);
  }
  r.x_offset = -r.x_min;
  r.y_offset = -r.y_min;
}

/// Largest of the signed differences K - L, L - M, M - K of all triangles.
double largest_cyclic_difference(const road& r, std::size_t axis) {
  double largest = 0.0;
  for (const triangle& t : r.triangles) {
    for (std::size_t k = 0; k < 3; ++k) {
      largest = std::max(largest, corner(r, t, k)[axis] - corner(r, t, (k + 1) % 3)[axis]);
    }
  }
  return largest;
}

int cell_count(double extent, double smallest) {
  const int c = static_cast<int>(extent / smallest);
  const double rest = extent - c * smallest;
  const int count = rest >= 0.0 ? c : c > 1 ? c - 1 : c;
  return count == 0 ? 1 : count;
}

void fill_cells(road& r) {
  const double lx = r.x_max - r.x_min, ly = r.y_max - r.y_min;
  const int nx = cell_count(lx, 0.5 * largest_cyclic_difference(r, 0));
  const int ny = cell_count(ly, 0.5 * largest_cyclic_difference(r, 1));
  r.cell_dx = lx / nx;
  r.cell_dy = ly / ny;
  r.cells.resize(static_cast<std::size_t>(nx));
  for (int i = 0; i < nx; ++i) {
    for (int j = 0; j < ny; ++j) {
      cell c;
      c.x_lo = r.x_min + r.cell_dx * i;
      c.x_hi = c.x_lo + r.cell_dx;
      c.y_lo = r.y_min + r.cell_dy * j;
      c.y_hi = c.y_lo + r.cell_dy;
      for (std::size_t k = 0; k < r.triangles.size(); ++k) {
        const triangle& t = r.triangles[k];
        if (belongs(c, corner(r, t, 0), corner(r, t, 1), corner(r, t, 2)))
          c.elements.push_back(static_cast<int>(k + 1));
      }
      r.cells[static_cast<std::size_t>(i)].push_back(c);
    }
  }
}

}  // namespace

road derive_road(const std::vector<v3>& nodes, const std::vector<std::array<int, 3>>& triangles, const soil& soil) {
  road r;
  r.parameters = soil;
  r.nodes = nodes;
  for (v3& node : r.nodes) {
    for (double& coordinate : node) {
      if (std::fabs(coordinate) < 1e-08) coordinate = 0.0;
    }
  }
  for (const auto& corners : triangles) {
    triangle t;
    t.corner = corners;
    set_plane(r, t);
    r.triangles.push_back(t);
  }
  set_bounds(r);
  fill_cells(r);
  return r;
}

}  // namespace qvref
