#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "soilrdf/road.h"

namespace qvsoilrdf {

inline double lowest(double a, double b, double c) { return std::min(std::min(a, b), c); }
inline double highest(double a, double b, double c) { return std::max(std::max(a, b), c); }

/// A run of cells along one axis.
struct range {
  std::int32_t first;
  std::int32_t end;

  std::int32_t count() const { return end - first; }
};

/// One axis of a road's grid: cell k spans [lo(k), hi(k)], rounded as in a cell's record.
struct grid_axis {
  double min;
  double length;
  std::int32_t count;
  double near;   ///< safety margin: two things farther apart than this certainly do not touch
  double scale;  ///< cells per length
  double slack;  ///< cells by which a place that `scale` gives may be wrong, and twice the safety margin

  grid_axis(double from, double to, double cell, std::int32_t cells, double widest)
      : min(from), length(cell), count(cells), scale(1.0 / cell) {
    // Relative safety margin, far above double rounding (about 1e-16).
    constexpr double k_clear = 1e-9;
    constexpr double k_epsilon = std::numeric_limits<double>::epsilon();
    near = k_clear * (4.0 * widest + cell) + 8.0 * k_epsilon * std::max(std::fabs(from), std::fabs(to));
    slack = 2.0 * near * scale + 4.0 * k_epsilon * static_cast<double>(cells);
  }

  static grid_axis along_x(const CRoad& road) { return {road.x_min, road.x_max, road.cell_dx, road.nx, road.max_dx}; }
  static grid_axis along_y(const CRoad& road) { return {road.y_min, road.y_max, road.cell_dy, road.ny, road.max_dy}; }

  double lo(std::int32_t k) const { return min + length * k; }
  double hi(std::int32_t k) const { return lo(k) + length; }

  /// The cells that something between two coordinates meets or is so near to that rounding may make an edge cross them,
  /// and perhaps more. For a coordinate that cannot be placed, all cells on its side.
  range reached(double low, double high) const {
    const double last = count - 1;
    const double first = std::min(last, std::max(0.0, (low - min) * scale - slack));
    const double end = std::max(0.0, std::min(last, (high - min) * scale + slack));
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(end) + 1};
  }

  /// Those of `cells` whose closed bounds hold a coordinate: one, two at a shared border, by rounding perhaps none.
  range holding(double x, range cells) const {
    while (cells.first < cells.end && hi(cells.first) < x) ++cells.first;
    while (cells.first < cells.end && lo(cells.end - 1) > x) --cells.end;
    return cells;
  }
};

}  // namespace qvsoilrdf
