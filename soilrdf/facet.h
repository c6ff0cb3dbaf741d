#pragma once

#include <algorithm>
#include <cmath>

#include "soilrdf/road.h"

/// What follows from the corners of one triangle. Everything is computed anew at each call, always to the same bits.
namespace qvsoilrdf {

/// The unit normal (L - K) x (M - L) with z not negative; 0, 0, 0 for a triangle without area, so that no point over it
/// is in contact.
void unit_normal(const CNode& K, const CNode& L, const CNode& M, double (&normal)[3]);

/// The shape of a triangle in the plan.
struct plan_shape {
  double twice_area;       ///< signed, positive if K, L, M turn to the left
  double longest_squared;  ///< of the edges

  plan_shape(const CNode& K, const CNode& L, const CNode& M) {
    const double ax = L.x - K.x, ay = L.y - K.y, bx = M.x - K.x, by = M.y - K.y;
    const double cx = bx - ax, cy = by - ay;
    twice_area = ax * by - ay * bx;
    longest_squared = std::max(std::max(ax * ax + ay * ay, bx * bx + by * by), cx * cx + cy * cy);
  }

  /// True if only the angles under which a point sees the edges tell if it is inside: a corner is below about 3
  /// degrees, or the size is beyond what a float holds.
  bool judged_by_angles() const {
    constexpr double k_thin = 0.05;
    constexpr double k_float_range = 1e30;  // up to here a float has all its digits
    return !(std::fabs(twice_area) >= k_thin * longest_squared) ||
           !(longest_squared < k_float_range && longest_squared > 1.0 / k_float_range);
  }
};

/// How far outside a triangle, in its barycentric coordinates, a point may still count as on an edge.
/// It grows with longest edge squared over area.
double edge_reach(double longest_squared, double twice_area);

CFacet make_facet(const CNode& K, const CNode& L, const CNode& M);

}  // namespace qvsoilrdf
