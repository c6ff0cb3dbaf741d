#pragma once

#include <Simbody.h>

namespace qvslv {

/// Finds a coordinate that is free to move though nothing determines its acceleration: the mass matrix is singular.
///
/// The matrix is never made. Its pivots are those of the articulated-body recursion (R. Featherstone, Rigid Body
/// Dynamics Algorithms, section 7.2), which goes once through the tree, from the tips to the ground: a pivot is the
/// inertia that a coordinate feels when the coordinates further out move freely. It vanishes if it is rounding beside
/// the coordinate's entry in the mass matrix, which is its inertia when they do not move.
/// @param state  realized to Position
/// @return  the index of the coordinate's speed, -1 if there is none
int find_coordinate_without_inertia(const SimTK::SimbodyMatterSubsystem& matter, const SimTK::State& state);

}  // namespace qvslv
