#pragma once

namespace qvsoilinteraction {

/// How the body marker (1) and the road base marker (5) lie and move, seen from the ground reference marker and in its
/// axes. Matrices are 3x3, column by column, and turn the marker's axes into the ground's unless said otherwise.
struct kinematics {
  double A1[9], A5[9];
  double A5t[9];                ///< transpose of A5: ground axes -> road axes
  double d1[3], d5[3];          ///< positions [length]
  double d15[3];                ///< position of the body marker from the road base marker, road axes [length]
  double V1[3], V5[3];          ///< velocities [length/time]
  double W1[3], W5[3];          ///< angular velocities, each in its marker's own axes [1/time]
  double AW1[9], AW5[9];        ///< A tilde(W): a place in the marker's axes -> its velocity by rotation, ground axes
  bool road_is_rigidly_placed;  ///< A5 is a rotation, so a height over the road has the same sign in road axes
};

/// Completes A5t, AW1, AW5 and road_is_rigidly_placed from the rest.
void complete(kinematics& k);

}  // namespace qvsoilinteraction
