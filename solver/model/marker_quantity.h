#pragma once

#include "solver/model/model.h"

namespace qvslv {

/// One number of a marker as an expression asks for it, such as `dx(wheel, ground)`.
struct MarkerQuantity {
  enum class Kind { displacement, velocity, angular_velocity, angle };
  static constexpr int k_magnitude = 3;

  Kind kind = Kind::displacement;
  int component = 0;  ///< 0 x, 1 y, 2 z, or k_magnitude; angles: 0 roll, 1 pitch, 2 yaw
  // Indices into Model::markers; k_none is the ground frame.
  int measured = k_none;
  int reference = k_none;
  int axes = k_none;
};

}  // namespace qvslv
