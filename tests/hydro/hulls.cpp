#include "tests/hydro/hulls.h"

#include <algorithm>
#include <map>

namespace qvtest {
namespace {

using namespace qvref;
using polygon = std::vector<v3>;

std::size_t at(int i) { return static_cast<std::size_t>(i); }

polygon clip_below(const polygon& in, double level) {
  polygon out;
  for (std::size_t i = 0; i < in.size(); ++i) {
    const v3 &a = in[i], &b = in[(i + 1) % in.size()];
    if (a[2] <= level) out.push_back(a);
    if ((a[2] <= level) != (b[2] <= level)) {
      const double t = (level - a[2]) / (b[2] - a[2]);
      v3 cut = a + t * (b - a);
      cut[2] = level;
      out.push_back(cut);
    }
  }
  return out;
}

}  // namespace

hull box_hull(double length, double breadth, double height) {
  hull h;
  for (int i = 0; i < 8; ++i) {
    h.nodes.push_back({(i & 1 ? 0.5 : -0.5) * length, (i & 2 ? 0.5 : -0.5) * breadth, (i & 4 ? 0.5 : -0.5) * height});
  }
  const int sides[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
  for (const auto& s : sides) {
    h.patches.push_back({s[0], s[1], s[2]});
    h.patches.push_back({s[0], s[2], s[3]});
  }
  return h;
}

hull sphere_hull(double radius, int level) {
  const double g = (1.0 + std::sqrt(5.0)) / 2.0;
  hull h;
  h.nodes = {{-1, g, 0},  {1, g, 0},  {-1, -g, 0}, {1, -g, 0}, {0, -1, g},  {0, 1, g},
             {0, -1, -g}, {0, 1, -g}, {g, 0, -1},  {g, 0, 1},  {-g, 0, -1}, {-g, 0, 1}};
  h.patches = {{0, 11, 5},  {0, 5, 1},  {0, 1, 7},  {0, 7, 10}, {0, 10, 11}, {1, 5, 9}, {5, 11, 4},
               {11, 10, 2}, {10, 7, 6}, {7, 1, 8},  {3, 9, 4},  {3, 4, 2},   {3, 2, 6}, {3, 6, 8},
               {3, 8, 9},   {4, 9, 5},  {2, 4, 11}, {6, 2, 10}, {8, 6, 7},   {9, 8, 1}};
  for (int l = 0; l < level; ++l) {
    std::map<std::pair<int, int>, int> middles;
    const auto middle = [&](int a, int b) {
      const auto [entry, is_new] =
          middles.emplace(std::make_pair(std::min(a, b), std::max(a, b)), static_cast<int>(h.nodes.size()));
      if (is_new) h.nodes.push_back(0.5 * (h.nodes[at(a)] + h.nodes[at(b)]));
      return entry->second;
    };
    std::vector<std::array<int, 3>> finer;
    for (const auto& p : h.patches) {
      const int ab = middle(p[0], p[1]), bc = middle(p[1], p[2]), ca = middle(p[2], p[0]);
      for (const std::array<int, 3>& q :
           {std::array<int, 3>{p[0], ab, ca}, {p[1], bc, ab}, {p[2], ca, bc}, {ab, bc, ca}}) {
        finer.push_back(q);
      }
    }
    h.patches = finer;
    for (v3& node : h.nodes) normalise(node);
  }
  for (v3& node : h.nodes) {
    normalise(node);
    node = radius * node;
  }
  return h;
}

hull one_patch(const v3& a, const v3& b, const v3& c) { return {{a, b, c}, {{0, 1, 2}}}; }

hull plate_hull(double length, double breadth) {
  const double x = 0.5 * length, y = 0.5 * breadth;
  return {{{-x, -y, 0}, {x, -y, 0}, {x, y, 0}, {-x, y, 0}}, {{0, 1, 2}, {0, 2, 3}}};
}

hull random_hull(random_source& random) {
  hull h = whole(random, 0, 2) == 0
               ? box_hull(uniform(random, 1.0, 6.0), uniform(random, 0.5, 3.0), uniform(random, 0.5, 2.0))
               : sphere_hull(1.0, whole(random, 0, 1));
  for (v3& node : h.nodes) node = uniform(random, 0.7, 1.4) * node;
  return h;
}

body_of_water clip_hull(const hull& h, const m33& R, const v3& d, double level) {
  body_of_water below;
  // Every pyramid has its tip here, at the level: the cut itself, whose plane holds the tip, needs no pyramid.
  const v3 tip = {d[0], d[1], level};
  for (const auto& p : h.patches) {
    const polygon wet =
        clip_below({R * h.nodes[at(p[0])] + d, R * h.nodes[at(p[1])] + d, R * h.nodes[at(p[2])] + d}, level);
    for (std::size_t i = 2; i < wet.size(); ++i) {
      const double volume = dot(wet[0] - tip, cross(wet[i - 1] - tip, wet[i] - tip)) / 6.0;
      below.volume += volume;
      below.moment = below.moment + (volume / 4.0) * (tip + wet[0] + wet[i - 1] + wet[i]);
    }
  }
  return below;
}

body_of_water integrate_column(const std::array<v3, 3>& q, double level) {
  body_of_water column;
  const polygon wet = clip_below({q[0], q[1], q[2]}, level);
  for (std::size_t i = 2; i < wet.size(); ++i) {
    const v3 corner[3] = {wet[0], wet[i - 1], wet[i]};
    const double area = std::fabs(cross(corner[1] - corner[0], corner[2] - corner[0])[2]) / 2.0;
    // The integral of a product of two linear functions f, g over a triangle is area / 12 (sum f sum g + sum f g).
    double depths = 0.0, moments[3] = {};
    for (const v3& c : corner) depths += level - c[2];
    for (std::size_t k = 0; k < 3; ++k) {
      double sum = 0.0, products = 0.0;
      for (const v3& c : corner) {
        const double f = k == 2 ? 0.5 * (level + c[2]) : c[k];
        sum += f;
        products += f * (level - c[2]);
      }
      moments[k] = area / 12.0 * (sum * depths + products);
    }
    column.volume += area * depths / 3.0;
    column.moment = column.moment + v3{moments[0], moments[1], moments[2]};
  }
  return column;
}

}  // namespace qvtest
