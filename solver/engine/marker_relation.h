#pragma once

#include "solver/engine/marker_motions.h"
#include "solver/model/marker_quantity.h"

namespace qvslv {

enum class MarkerRelation { displacement, velocity, angular_velocity };

/// How marker m stands or moves relative to marker r, in ground axes: the way from r's origin to m's, or the difference
/// of their velocities or angular velocities, both as seen from the ground. (So in axes that turn with r, the velocity
/// is not the rate of the displacement.)
/// @param measured, reference  m and r, indices into Model::markers; k_none is the ground frame
SimTK::Vec3 find_relation(const MarkerMotions& markers, MarkerRelation relation, int measured, int reference);

/// Axes of m seen in those of r: turns components in the axes of m into components in the axes of r.
SimTK::Rotation find_rotation(const MarkerMotions& markers, int measured, int reference);

/// Turning angles [rad] of m's axes seen in r's: first yaw about z, then pitch about the new y, then roll about the
/// new x. Returned as (roll, pitch, yaw); pitch lies between -pi/2 and pi/2.
SimTK::Vec3 find_roll_pitch_yaw(const MarkerMotions& markers, int measured, int reference);

/// The number that an expression asks for, in model units or radians.
double find_quantity(const MarkerMotions& markers, const MarkerQuantity& wanted);

}  // namespace qvslv
