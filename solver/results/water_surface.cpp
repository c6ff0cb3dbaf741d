#include "solver/results/water_surface.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "solver/results/marker_pose.h"

namespace qvslv {

namespace {

// How far beyond the hulls the water is drawn, in lengths of the reach.
constexpr double k_lengths_along = 3;
constexpr double k_lengths_across = 1;

/// The columns [first, last] of a table that cover the positions [low, high]; at least `most` columns if the table has
/// as many. Columns before `start` do not count.
std::pair<size_t, size_t> choose_columns(const std::vector<double>& x, size_t start, double low, double high,
                                         size_t most) {
  const auto begin = x.begin() + static_cast<std::ptrdiff_t>(start);
  const auto from = std::upper_bound(begin, x.end(), low), to = std::lower_bound(begin, x.end(), high);
  size_t first = static_cast<size_t>(from - x.begin()), last = static_cast<size_t>(to - x.begin());
  if (first > start) --first;
  last = std::min(last, x.size() - 1);
  first = std::min(first, last);  // on an axis that does not increase, they may come out in reverse
  const size_t columns = last - first + 1;
  if (columns >= most) return {first, last};
  const size_t missing = most - columns, before = std::min(missing / 2, first - start);
  first -= before;
  last = std::min(last + missing - before, x.size() - 1);
  first = std::max(start, last + 1 >= most ? std::min(first, last + 1 - most) : 0);
  return {first, last};
}

}  // namespace

bool is_over(const Water& water, double x) {
  return x >= std::max(0.0, water.wave.x.front()) && x <= water.wave.x.back();
}

bool is_moving(const Water& water) {
  const auto moves = [](const std::vector<double>& row) {
    return std::any_of(row.begin(), row.end(), [](double value) { return value != 0; });
  };
  return std::any_of(water.wave.elevation.begin(), water.wave.elevation.end(), moves) ||
         std::any_of(water.wave.velocity.begin(), water.wave.velocity.end(), moves);
}

void PlanBox::add(double x, double y) {
  if (!std::isfinite(x) || !std::isfinite(y)) return;
  low = empty ? std::array{x, y} : std::array{std::min(low[0], x), std::min(low[1], y)};
  high = empty ? std::array{x, y} : std::array{std::max(high[0], x), std::max(high[1], y)};
  empty = false;
}

double PlanBox::diagonal() const { return std::hypot(high[0] - low[0], high[1] - low[1]); }

void widen(WaterReach& reach, const Recording& recording, size_t water, const Frame& frame) {
  const Model& model = *recording.model;
  const MarkerPose pose = find_marker_pose(model, recording.waters[water].marker, frame);
  PlanBox now;
  for (const Hull& hull : recording.hulls) {
    if (hull.water != static_cast<int>(water)) continue;
    const MarkerPose hull_pose = find_marker_pose(model, hull.marker, frame);
    for (const Vec3& node : hull.mesh.points) {
      const Vec3 p = to_marker(pose, to_ground(hull_pose, node));
      now.add(p[0], p[1]);
    }
  }
  if (now.empty) return;
  reach.box.add(now.low[0], now.low[1]);
  reach.box.add(now.high[0], now.high[1]);
  reach.length = std::max(reach.length, now.diagonal());
}

WaterStrip choose_strip(const Water& water, const WaterReach& reach, size_t most) {
  const std::vector<double>& x = water.wave.x;
  const PlanBox& box = reach.box;
  WaterStrip strip;
  strip.y_low = box.low[1] - k_lengths_across * reach.length;
  strip.y_high = box.high[1] + k_lengths_across * reach.length;
  const auto start = static_cast<size_t>(std::lower_bound(x.begin(), x.end(), 0.0) - x.begin());
  if (start == x.size()) return strip;
  const auto [first, last] = choose_columns(x, start, box.low[0] - k_lengths_along * reach.length,
                                            box.high[0] + k_lengths_along * reach.length, most);
  const size_t stride = (last - first) / most + 1;
  for (size_t k = first; k <= last; k += stride) strip.x.push_back(x[k]);
  if (strip.x.back() != x[last]) strip.x.push_back(x[last]);
  return strip;
}

TriangleMesh sheet_mesh(const Model& model, const Water& water, const WaterStrip& strip, const Frame& frame) {
  TriangleMesh mesh;
  const MarkerPose pose = find_marker_pose(model, water.marker, frame);
  const SurfaceAt surface(water.wave, frame.time);
  mesh.points.reserve(2 * strip.x.size());
  for (const double x : strip.x) {
    const double level = surface.elevation(x);
    mesh.points.push_back(to_ground(pose, {x, strip.y_low, level}));
    mesh.points.push_back(to_ground(pose, {x, strip.y_high, level}));
  }
  for (int k = 0; k + 3 < static_cast<int>(mesh.points.size()); k += 2) {
    mesh.triangles.push_back({k, k + 2, k + 3});
    mesh.triangles.push_back({k, k + 3, k + 1});
  }
  return mesh;
}

}  // namespace qvslv
