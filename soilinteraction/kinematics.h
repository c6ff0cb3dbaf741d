#pragma once

namespace qvsoilinteraction {

/// Positions and velocities of the body marker (1) and the road base marker (5) from the ground reference marker, in
/// its axes. Matrices are 3x3, column by column, marker -> ground.
struct kinematics {
  double A1[9], A5[9];
  double A5t[9];  ///< ground -> road base
  double d1[3], d5[3];
  double d15[3];  ///< body marker from road base marker, in the latter's axes
  double V1[3], V5[3];
  double W1[3], W5[3];          ///< angular velocities, in the marker's own axes
  double AW1[9], AW5[9];        ///< A times tilde(W): body-fixed place -> velocity it has by rotation, ground axes
  bool road_is_rigidly_placed;  ///< A5 is a rotation, so heights over the road keep their sign in its own axes
};

/// Completes A5t, AW1, AW5 and road_is_rigidly_placed from the rest.
void complete(kinematics& k);

}  // namespace qvsoilinteraction
