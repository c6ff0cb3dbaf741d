#include <algorithm>

#include "tests/reference/hydro_reference.h"

namespace qvref {
namespace {

/// The pieces of a column: volumes without sign, and their sum of volume times centroid.
struct pieces {
  double volume = 0.0;
  v3 moment{};

  void add(double piece, const v3& centroid) {
    volume = volume + std::fabs(piece);
    moment = moment + std::fabs(piece) * centroid;
  }
  void add_tetrahedron(const v3& a, const v3& b, const v3& c, const v3& d) {
    add(dot(cross(b - a, c - a), d - a) / 6.0, mean(a, b, c, d));
  }
  static v3 mean(const v3& a, const v3& b, const v3& c, const v3& d) { return 0.25 * (a + b + c + d); }
};

v3 lifted(const v3& q, double z) { return {q[0], q[1], z}; }

v3 cut(const v3& from, const v3& to, double h) {
  const double share = (h - from[2]) / (to[2] - from[2]);
  return {from[0] + share * (to[0] - from[0]), from[1] + share * (to[1] - from[1]), h};
}

void one_below(const v3& k, const v3& a, const v3& b, double h, pieces& found) {
  const v3 e1 = cut(k, a, h), e2 = cut(k, b, h);
  found.add(projected_area(k, e1, e2) * std::fabs(k[2] - h) / 3.0, pieces::mean(k, e1, e2, lifted(k, h)));
}

void one_above(const v3& m, v3 s, v3 t, double h, pieces& found) {
  if (s[2] < t[2]) std::swap(s, t);
  const v3 es = cut(m, s, h), et = cut(m, t, h);
  const v3 s_up = lifted(s, h), t_up = lifted(t, h);
  found.add(projected_area(s, es, et) * std::fabs(s[2] - h) / 3.0, pieces::mean(s, es, et, s_up));
  found.add_tetrahedron(et, t, t_up, s_up);
  found.add_tetrahedron(et, s_up, s, t);
}

void all_below(const std::array<v3, 3>& q, double h, pieces& found) {
  std::size_t top = 0;
  for (std::size_t i = 1; i < 3; ++i)
    if (q[i][2] > q[top][2]) top = i;
  const v3 &u = q[top], &v = q[(top + 1) % 3], &w = q[(top + 2) % 3];
  const double area = projected_area(q[0], q[1], q[2]);
  found.add(area * std::fabs(u[2] - h),
            {(q[0][0] + q[1][0] + q[2][0]) / 3.0, (q[0][1] + q[1][1] + q[2][1]) / 3.0, (u[2] + h) / 2.0});
  const v3 v_up = lifted(v, u[2]), w_up = lifted(w, u[2]);
  found.add_tetrahedron(u, v_up, w_up, v);
  found.add_tetrahedron(v, u, w_up, w);
}

}  // namespace

double projected_area(const v3& a, const v3& b, const v3& c) {
  const auto length = [](const v3& p, const v3& q) {
    return std::sqrt((q[0] - p[0]) * (q[0] - p[0]) + (q[1] - p[1]) * (q[1] - p[1]));
  };
  const double ab = length(a, b), ac = length(a, c), bc = length(b, c);
  if (ab + ac <= bc || ab + bc <= ac || ac + bc <= ab) return 0.0;
  const double s = (ab + ac + bc) / 2.0;
  const double area = std::sqrt((s - bc) * (s - ab) * s * (s - ac));
  return std::isnan(area) ? 0.0 : area;
}

column_result water_column(double x_first, double x_last, const std::array<v3, 3>& q, double nz, double h) {
  const auto all = [&](auto&& holds) { return std::all_of(q.begin(), q.end(), holds); };
  if (all([&](const v3& p) { return p[0] < x_first; }) || all([&](const v3& p) { return p[0] > x_last; })) return {};
  int above = 0, below = 0;
  std::size_t the_above = 0, the_below = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    if (q[i][2] > h) ++above, the_above = i;
    if (q[i][2] < h) ++below, the_below = i;
  }
  pieces found;
  if (above == 2 && below == 1) {
    one_below(q[the_below], q[(the_below + 1) % 3], q[(the_below + 2) % 3], h, found);
  } else if (above == 1) {
    one_above(q[the_above], q[(the_above + 1) % 3], q[(the_above + 2) % 3], h, found);
  } else if (above == 0) {
    all_below(q, h, found);
  }
  column_result column;
  column.volume = nz == 0.0 ? 0.0 : nz > 0.0 ? -found.volume : found.volume;
  if (column.volume != 0.0) column.moment = (nz >= 0.0 ? -1.0 : 1.0) * found.moment;
  return column;
}

}  // namespace qvref
