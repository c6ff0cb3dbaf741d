#include "hydro/volume.h"

#include <cmath>

#include "common/kernels/kernels.h"

namespace qvhydro {
namespace {

/// A point or a vector; by value, so that loops over many run several at a time.
struct vec {
  double x, y, z;
};

vec at(const double* p) { return {p[0], p[1], p[2]}; }
QV_IN_LOOPS vec lifted(const vec& p, double z) { return {p.x, p.y, z}; }
QV_IN_LOOPS vec choose(bool first, const vec& a, const vec& b) {
  return {first ? a.x : b.x, first ? a.y : b.y, first ? a.z : b.z};
}

/// Where the edge from `p` to `q` passes the level.
QV_IN_LOOPS vec cut(const vec& p, const vec& q, double level) {
  const double share = (level - p.z) / (q.z - p.z);
  return {p.x + share * (q.x - p.x), p.y + share * (q.y - p.y), level};
}

/// Area as seen from above, after Heron.
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

/// A part of a column: its volume (not negative) and its centroid.
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

/// Tetrahedron over the triangle a, b, c seen from above, with its apex d `height` over or under it.
QV_IN_LOOPS piece tetrahedron_on(double height, const vec& a, const vec& b, const vec& c, const vec& d) {
  return {seen_area(a, b, c) * std::fabs(height) / 3.0, mean(a, b, c, d)};
}

QV_IN_LOOPS piece tetrahedron(const vec& a, const vec& b, const vec& c, const vec& d) {
  const vec p{b.x - a.x, b.y - a.y, b.z - a.z};
  const vec q{c.x - a.x, c.y - a.y, c.z - a.z};
  const vec r{d.x - a.x, d.y - a.y, d.z - a.z};
  const double triple = (p.y * q.z - p.z * q.y) * r.x + (p.z * q.x - p.x * q.z) * r.y + (p.x * q.y - p.y * q.x) * r.z;
  return {std::fabs(triple / 6.0), mean(a, b, c, d)};
}

/// Vertical prism over a triangle seen from above, between two heights.
QV_IN_LOOPS piece prism(double bottom, double top, const vec& a, const vec& b, const vec& c) {
  return {seen_area(a, b, c) * std::fabs(bottom - top),
          {(a.x + b.x + c.x) / 3.0, (a.y + b.y + c.y) / 3.0, (bottom + top) / 2.0}};
}

/// Sums of the pieces of one column.
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

/// What the level does to a triangle whose corner `a` it parts from `b` and `c`.
///   a under it, the others above: one tetrahedron under the cut
///   a above it, the others at or under it (s the shallower, t the deeper): a tetrahedron and two more between s, t and
///   the cut
/// One function for both, without branches, so that a loop over many runs several at a time.
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

/// No corner above the level; u is the highest.
QV_IN_LOOPS pieces whole(const vec& q0, const vec& q1, const vec& q2, double level) {
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

/// What the level does to a triangle, and which corner it parts from the others.
struct cutting {
  enum kind { out_of_water, one_corner_under, one_corner_out, under_water } kind = out_of_water;
  int corner = 0;
};

cutting find_cutting(const double* const q[3], double level) {
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
  return {};  // out of the water, or standing on it with one corner
}

double sign_of(double facing) { return facing == 0.0 ? 0.0 : facing > 0.0 ? -1.0 : 1.0; }

bool beyond(double x_first, double x_last, const double* const q[3]) {
  return (q[0][0] < x_first && q[1][0] < x_first && q[2][0] < x_first) ||
         (q[0][0] > x_last && q[1][0] > x_last && q[2][0] > x_last);
}

}  // namespace

void Calculation_Area(const double* a, const double* b, const double* c, double& area) {
  area = seen_area({a[0], a[1], 0.0}, {b[0], b[1], 0.0}, {c[0], c[1], 0.0});
}

water_column find_column(double x_first, double x_last, const double* q0, const double* q1, const double* q2,
                         double facing, double level) {
  const double* const q[3] = {q0, q1, q2};
  const cutting how = beyond(x_first, x_last, q) ? cutting() : find_cutting(q, level);
  const double sign = sign_of(facing);
  if (how.kind == cutting::out_of_water || sign == 0.0) return {};
  const pieces found = how.kind == cutting::under_water
                           ? whole(at(q0), at(q1), at(q2), level)
                           : cut_column(at(q[how.corner]), at(q[(how.corner + 1) % 3]), at(q[(how.corner + 2) % 3]),
                                        how.kind == cutting::one_corner_under, level);
  return {sign * found.volume, {sign * found.moment.x, sign * found.moment.y, sign * found.moment.z}};
}

void column_block::add(double x_first, double x_last, const double* const q[3], double facing, double level) {
  const cutting how = beyond(x_first, x_last, q) ? cutting() : find_cutting(q, level);
  const double sign = sign_of(facing);
  if (how.kind == cutting::out_of_water || sign == 0.0) {
    nothing_somewhere_ = true;
    return;
  }
  const int i = count_++;
  for (int n = 0; n < 3; ++n) {
    for (int k = 0; k < 3; ++k) q_[n][k][i] = q[n][k];
  }
  sign_[i] = sign;
  level_[i] = level;
  if (how.kind == cutting::under_water) return;
  const int c = cut_count_++;
  cuts_.patch[c] = i;
  cuts_.level[c] = level;
  for (int n = 0; n < 3; ++n) {
    for (int k = 0; k < 3; ++k) cuts_.q[n][k][c] = q[(how.corner + n) % 3][k];
  }
}

QV_WIDE_VECTORS void column_block::find_whole_columns() {
  for (int i = 0; i < count_; ++i) {
    const pieces found = whole({q_[0][0][i], q_[0][1][i], q_[0][2][i]}, {q_[1][0][i], q_[1][1][i], q_[1][2][i]},
                               {q_[2][0][i], q_[2][1][i], q_[2][2][i]}, level_[i]);
    volume_[i] = found.volume;
    moment_[0][i] = found.moment.x;
    moment_[1][i] = found.moment.y;
    moment_[2][i] = found.moment.z;
  }
}

QV_WIDE_VECTORS void column_block::find_cut_columns() {
  for (int c = 0; c < cut_count_; ++c) {
    const auto& q = cuts_.q;
    const pieces found = cut_column({q[0][0][c], q[0][1][c], q[0][2][c]}, {q[1][0][c], q[1][1][c], q[1][2][c]},
                                    {q[2][0][c], q[2][1][c], q[2][2][c]}, q[0][2][c] < cuts_.level[c], cuts_.level[c]);
    cuts_.volume[c] = found.volume;
    cuts_.moment[0][c] = found.moment.x;
    cuts_.moment[1][c] = found.moment.y;
    cuts_.moment[2][c] = found.moment.z;
  }
}

void column_block::finish(const buoyancy_factors& f, displacement& sum) {
  find_whole_columns();
  find_cut_columns();
  for (int c = 0; c < cut_count_; ++c) {
    const int i = cuts_.patch[c];
    volume_[i] = cuts_.volume[c];
    for (int k = 0; k < 3; ++k) moment_[k][i] = cuts_.moment[k][c];
  }
  displacement s = sum;
  for (int i = 0; i < count_; ++i) {
    const double volume = sign_[i] * volume_[i];
    s.volume += volume;
    for (int k = 0; k < 3; ++k) {
      if (volume != 0.0) s.moment[k] += sign_[i] * moment_[k][i];
      s.buoyancy[k] += f.up[k] * volume * f.buoyancy * f.L3 * f.force;
    }
  }
  if (nothing_somewhere_) {  // adds nothing, unless a factor is no number
    for (int k = 0; k < 3; ++k) s.buoyancy[k] += f.up[k] * 0.0 * f.buoyancy * f.L3 * f.force;
  }
  sum = s;
  count_ = cut_count_ = 0;
  nothing_somewhere_ = false;
}

void Calculation_VolumeAndVolumeCenter(double x_first, double x_last, const Chydro_force_sub* sub, const Cpatch* patch,
                                       const double* R, const double* d, const double* p5, const double* A5, double h,
                                       double& volume, double* centre, double& volume_sum, double* moment_sum) {
  double q[3][3];
  for (int n = 0; n < 3; ++n) {
    const Cnode& node = sub->nodes[static_cast<std::size_t>(patch->node_ids[n])];
    const double local[3] = {node.x, node.y, node.z};
    qv::matvec(R, local, q[n]);
    for (int k = 0; k < 3; ++k) q[n][k] += d[k];
  }
  double normal[3];
  qv::matvec(R, patch->normal, normal);
  const water_column column = find_column(x_first, x_last, q[0], q[1], q[2], normal[2], h);
  volume = column.volume;
  volume_sum += volume;
  if (volume == 0.0) return;
  double centroid[3], global[3];
  for (int k = 0; k < 3; ++k) {
    moment_sum[k] += column.moment[k];
    centroid[k] = column.moment[k] / volume;
  }
  qv::matvec(A5, centroid, global);
  for (int k = 0; k < 3; ++k) centre[k] = global[k] + p5[k];
}

}  // namespace qvhydro
