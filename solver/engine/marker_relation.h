#pragma once

#include "solver/engine/multibody.h"
#include "solver/model/marker_quantity.h"

namespace qvslv {

enum class MarkerRelation { displacement, velocity, angular_velocity };

/// How marker m stands or moves against marker r, in ground axes: the way from r's origin to m's; the difference of
/// both velocities, or of both angular velocities, as seen from the ground.
/// @param measured, reference  index into Model::markers; k_none is the ground frame
SimTK::Vec3 find_relation(const Multibody& multibody, const SimTK::State& state, MarkerRelation relation, int measured,
                          int reference);

/// Turning angles [rad] of m's axes seen in r's: first yaw about z, then pitch about the new y, then roll about the
/// new x. Returned as (roll, pitch, yaw); pitch lies between -pi/2 and pi/2.
SimTK::Vec3 find_roll_pitch_yaw(const Multibody& multibody, const SimTK::State& state, int measured, int reference);

/// @param state  realized to Velocity or further
double find_quantity(const Multibody& multibody, const SimTK::State& state, const MarkerQuantity& wanted);

}  // namespace qvslv
