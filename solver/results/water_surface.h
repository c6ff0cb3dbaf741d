#pragma once

#include <array>
#include <vector>

#include "solver/model/model.h"
#include "solver/model/triangle_mesh.h"
#include "solver/results/recording.h"

namespace qvslv {

/// True if there is water at a position along the water marker's x axis: the position lies on the table and is not
/// below 0, where the subroutines see no water.
bool is_over(const Water& water, double x);

/// True if the water ever leaves its rest.
bool is_moving(const Water& water);

/// A rectangle of a water's plan, in the water marker's frame.
struct PlanBox {
  std::array<double, 2> low = {0, 0}, high = {0, 0};
  bool empty = true;
  void add(double x, double y);  ///< widens the box; values that are not finite do not count
  double diagonal() const;
};

/// The part of a water's plan that its hulls have covered.
struct WaterReach {
  PlanBox box;        ///< over all frames so far
  double length = 0;  ///< largest diagonal that the hulls' box had in one frame
};

/// Widens the reach by the places of a water's hulls in a frame.
/// @param water  index into Recording::waters
void widen(WaterReach& reach, const Recording& recording, size_t water, const Frame& frame);

/// The part of a surface that is drawn, in the water marker's frame.
struct WaterStrip {
  std::vector<double> x;         ///< positions of the table's columns that are drawn
  double y_low = 0, y_high = 0;  ///< edges across
};

/// A strip that covers the hulls and, across, one length of the reach to either side. Along x it is the whole table if
/// that has no more than `most` columns. Else it goes three lengths beyond the hulls, or over `most` columns if that is
/// more, and columns are left out evenly until about `most` remain.
WaterStrip choose_strip(const Water& water, const WaterReach& reach, size_t most);

constexpr size_t k_water_columns = 400;  ///< about as many columns are drawn at most

/// The surface at a moment, as triangles in ground axes that face upwards. The two nodes of a column follow each other.
TriangleMesh sheet_mesh(const Model& model, const Water& water, const WaterStrip& strip, const Frame& frame);

}  // namespace qvslv
