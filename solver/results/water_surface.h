#pragma once

#include "solver/results/recording.h"

namespace qvslv {

/// Whether there is water at an x of the water marker's frame: on the table, and not below 0, where loads end.
bool is_over(const Water& water, double x);

/// Whether the water ever leaves its rest.
bool is_moving(const Water& water);

/// Height of the surface over the water marker's x-y plane. Beyond the table in time or place its border is held.
double find_level(const Water& water, double time, double x);

/// A rectangle of a water's plan, in the water marker's frame.
struct PlanBox {
  std::array<double, 2> low = {0, 0}, high = {0, 0};
  bool empty = true;
  void add(double x, double y);  ///< values that are no numbers count for nothing
  double diagonal() const;
};

/// What of a water's plan its hulls have taken up, and the largest diagonal that they had at one time.
struct WaterReach {
  PlanBox box;
  double length = 0;
};

/// Widens the reach by where the hulls of a water are in a frame.
/// @param water  index into Recording::waters
void widen(WaterReach& reach, const Recording& recording, size_t water, const Frame& frame);

/// The part of a surface that is drawn: columns of the table, from edge to edge across.
struct WaterStrip {
  std::vector<double> x;
  double y_low = 0, y_high = 0;
};

/// A strip that covers the hulls and one length of the reach to either side. Along x it is the whole table where that
/// has no more than `most` columns, else three lengths beyond the hulls or `most` columns, what is more; of those every
/// so many-th, so that no more than about `most` remain.
WaterStrip choose_strip(const Water& water, const WaterReach& reach, size_t most);

/// The surface at a moment, as triangles in ground axes that look up; the two nodes of each column follow each other.
TriangleMesh sheet_mesh(const Model& model, const Water& water, const WaterStrip& strip, const Frame& frame);

constexpr size_t k_water_columns = 400;

}  // namespace qvslv
