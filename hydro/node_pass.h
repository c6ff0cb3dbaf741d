#pragma once

#include "hydro/motion.h"

namespace qvhydro {

/// Computes every node of a mesh once per call, whatever the number of patches that share it.
///
///   q = R node + d                                      position, water frame
///   eta, wz                                             elevation and vertical velocity of the water at q.x, from the
///                                                       wave table
///   u = A5 (R (spin x node) + v - (cx, cy, wz))         velocity relative to the water, global axes
///   r = A6 node + p6 - p4                               lever from the force marker, global axes
///
/// cx and cy are the currents along the water frame's x and y axis. Symbols of the motion: see hydro/motion.h.
/// Source: rigid-body kinematics; the tables as documented in docs/floating-bodies.md, "The water".
///
/// Borders: a node is off the table if q.x < 0 or q.x is at or behind the last position of the wave table; between 0
/// and the first position the water stands at 0 and does not rise. A node exactly at the surface is wet. A NaN selects
/// nothing: if q.x is NaN the water stands at 0, and a node whose height or elevation is NaN passes for wet, so that
/// the NaN travels into the forces. Velocity and lever are written for wet nodes only.
/// @return whether every lever is a finite number
bool evaluate_nodes(const Chydro_force& element, const time_blend& when, const motion& m, Chydro_force_sub& sub);

}  // namespace qvhydro
