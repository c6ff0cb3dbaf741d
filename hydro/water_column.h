#pragma once

#include <cmath>

#include "common/kernels/vectors.h"

/// The water column between the submerged part of one triangle and a level plane, put together from a prism and
/// tetrahedra. Everything here is in the water frame: x along the positions of the WAVE file, z up; lengths in the
/// model's unit.
///
/// The signed columns over the patches of a closed hull add up to the displaced volume and to its moment, by the
/// divergence theorem with the field (0, 0, z - level): the upward flux through the wetted hull equals the volume.
///
/// Pure functions of their arguments. Each height is only compared: a NaN among the heights or in the level counts as
/// out of the water. A NaN in x or y selects nothing; it travels into the volume or leaves it at 0.
namespace qvhydro {

/// A point or a vector; passed by value, so that loops over many of them are vectorised.
struct vec {
  double x, y, z;
};

inline vec at(const double* p) { return {p[0], p[1], p[2]}; }
QV_IN_LOOPS vec lifted(const vec& p, double z) { return {p.x, p.y, z}; }
QV_IN_LOOPS vec choose(bool first, const vec& a, const vec& b) {
  return {first ? a.x : b.x, first ? a.y : b.y, first ? a.z : b.z};
}

/// The point at which the edge from `p` to `q` passes the level.
QV_IN_LOOPS vec cut(const vec& p, const vec& q, double level) {
  const double share = (level - p.z) / (q.z - p.z);
  return {p.x + share * (q.x - p.x), p.y + share * (q.y - p.y), level};
}

/// Area of a triangle as seen from above, by Heron's formula: sqrt(s (s - ab) (s - ac) (s - bc)), s half of the
/// perimeter. It is 0 if two sides together are no longer than the third, and if the result is NaN.
QV_IN_LOOPS double seen_area(const vec& a, const vec& b, const vec& c) {
  const auto side = [](const vec& p, const vec& q) {
    const double x = q.x - p.x, y = q.y - p.y;
    return std::sqrt(x * x + y * y);
  };
  const double ab = side(a, b), ac = side(a, c), bc = side(b, c);
  const bool none = (ab + ac <= bc) | (ab + bc <= ac) | (ac + bc <= ab);
  const double s = (ab + ac + bc) / 2.0;
  const double area = std::sqrt((s - bc) * (s - ab) * s * (s - ac));
  return none || !(area == area) ? 0.0 : area;
}

/// A part of a column: its volume (never negative) and its centroid.
struct piece {
  double volume;
  vec centroid;
};

QV_IN_LOOPS piece choose(bool first, const piece& a, const piece& b) {
  return {first ? a.volume : b.volume, choose(first, a.centroid, b.centroid)};
}

QV_IN_LOOPS vec mean(const vec& a, const vec& b, const vec& c, const vec& d) {
  return {(a.x + b.x + c.x + d.x) / 4.0, (a.y + b.y + c.y + d.y) / 4.0, (a.z + b.z + c.z + d.z) / 4.0};
}

/// Tetrahedron whose base is a, b, c seen from above and whose apex d is `height` over or under it: area |height| / 3.
QV_IN_LOOPS piece tetrahedron_on(double height, const vec& a, const vec& b, const vec& c, const vec& d) {
  return {seen_area(a, b, c) * std::fabs(height) / 3.0, mean(a, b, c, d)};
}

/// Tetrahedron by its four corners: |(b - a) x (c - a) . (d - a)| / 6.
QV_IN_LOOPS piece tetrahedron(const vec& a, const vec& b, const vec& c, const vec& d) {
  const vec p{b.x - a.x, b.y - a.y, b.z - a.z};
  const vec q{c.x - a.x, c.y - a.y, c.z - a.z};
  const vec r{d.x - a.x, d.y - a.y, d.z - a.z};
  const double triple = (p.y * q.z - p.z * q.y) * r.x + (p.z * q.x - p.x * q.z) * r.y + (p.x * q.y - p.y * q.x) * r.z;
  return {std::fabs(triple / 6.0), mean(a, b, c, d)};
}

/// Vertical prism over a triangle as seen from above, between two heights.
QV_IN_LOOPS piece prism(double bottom, double top, const vec& a, const vec& b, const vec& c) {
  return {seen_area(a, b, c) * std::fabs(bottom - top),
          {(a.x + b.x + c.x) / 3.0, (a.y + b.y + c.y) / 3.0, (bottom + top) / 2.0}};
}

/// The sums over the pieces of one column: volume, and volume times centroid.
struct pieces {
  double volume = 0.0;
  vec moment{0.0, 0.0, 0.0};

  QV_IN_LOOPS void add(const piece& p) {
    volume += p.volume;
    moment.x += p.volume * p.centroid.x;
    moment.y += p.volume * p.centroid.y;
    moment.z += p.volume * p.centroid.z;
  }
};

/// Column under a level that parts corner `a` from the corners `b` and `c`.
///   a under the level, b and c above it: one tetrahedron between a and the cut.
///   a above the level, b and c at or under it (s the shallower of them, t the deeper): one tetrahedron between s and
///   the cut, and two more between s, t and the cut.
/// One function for both cases, and without branches, so that a loop over many triangles is vectorised.
QV_IN_LOOPS pieces cut_column(const vec& a, const vec& b, const vec& c, bool a_under, double level) {
  const bool b_first = a_under || !(c.z > b.z);
  const vec s = choose(b_first, b, c), t = choose(b_first, c, b);
  const vec es = cut(a, s, level), et = cut(a, t, level);
  const vec base = choose(a_under, a, s);
  pieces column;
  column.add(tetrahedron_on(base.z - level, base, es, et, lifted(base, level)));
  const piece none{0.0, {0.0, 0.0, 0.0}};
  const vec s_up = lifted(s, level), t_up = lifted(t, level);
  column.add(choose(a_under, none, tetrahedron(et, t, t_up, s_up)));
  column.add(choose(a_under, none, tetrahedron(et, s_up, s, t)));
  return column;
}

/// Column over a triangle that has no corner above the level: with u its highest corner, a prism from the height of u
/// to the level, and two tetrahedra between that height and the triangle.
QV_IN_LOOPS pieces whole_column(const vec& q0, const vec& q1, const vec& q2, double level) {
  const bool u_is_1 = q1.z > q0.z;
  const bool u_is_2 = q2.z > (u_is_1 ? q1.z : q0.z);
  const vec u = choose(u_is_2, q2, choose(u_is_1, q1, q0));
  const vec v = choose(u_is_2, q0, choose(u_is_1, q2, q1));
  const vec w = choose(u_is_2, q1, choose(u_is_1, q0, q2));
  const vec v_up = lifted(v, u.z), w_up = lifted(w, u.z);
  pieces column;
  column.add(prism(u.z, level, q0, q1, q2));
  column.add(tetrahedron(u, v_up, w_up, v));
  column.add(tetrahedron(v, u, w_up, w));
  return column;
}

/// What the level does to a triangle, and which corner it parts from the other two.
struct cutting {
  enum kind { out_of_water, one_corner_under, one_corner_out, under_water } kind = out_of_water;
  int corner = 0;
};

inline cutting find_cutting(const double* const q[3], double level) {
  int above = 0, below = 0, not_above = 0;
  int one_above = 0, one_below = 0;
  for (int i = 0; i < 3; ++i) {
    if (q[i][2] > level) ++above, one_above = i;
    if (q[i][2] < level) ++below, one_below = i;
    not_above += q[i][2] <= level;
  }
  if (not_above == 3) return {cutting::under_water, 0};
  if (above == 1 && not_above == 2) return {cutting::one_corner_out, one_above};
  if (above == 2 && below == 1) return {cutting::one_corner_under, one_below};
  return {};  // all corners above the level, or two above it and one exactly at it
}

/// True if all corners lie beyond the same end of the WAVE file's positions: there is no water there. A triangle that
/// straddles an end is taken whole.
inline bool beyond(double x_first, double x_last, const double* const q[3]) {
  return (q[0][0] < x_first && q[1][0] < x_first && q[2][0] < x_first) ||
         (q[0][0] > x_last && q[1][0] > x_last && q[2][0] > x_last);
}

/// Sign of a column: positive under a triangle that faces down, negative under one that faces up, 0 for an upright one.
/// @param facing  z component of the outward normal
inline double sign_of(double facing) { return facing == 0.0 ? 0.0 : facing > 0.0 ? -1.0 : 1.0; }

}  // namespace qvhydro
