#pragma once

#include "qvbrisk/subroutines.h"

/// A track on a soil road: the force, two state equations, three outputs.
namespace qvsoilinteractionmtl {

/// Force that a soil road exerts on a belt laid over a chain of node circles, through a grid of contact points on each
/// span between two nodes.
///
/// par (ids, indices and counts truncated to int):
///    0 track index, 0 only      1 road index             2 string with the RDF file name
///    3 marker I (vehicle)       4 marker J (road)        5 marker R: positions and velocities are seen from it
///    6 roads                    7 thickness, added to every radius      8 belt width
///    9 nLong points along a span   10 nLat points across   11 variable with the belt's speed   12 nNode   13 not read
///   14 + 2i marker of node i    15 + 2i its radius
/// result, 4 + 8 ((nNode - 1)(nLong - 1) + 1) nLat values:
///   [0-2] sums of the points' local forces (shear 1, shear 2, normal)   [3] 0
///   per point p, rows along the belt outer, across inner: [4 + 8p ...] force, position (always written), sinkage,
///   dynamic sinkage; the others in contact only. Spans share the row over their common node: its forces add up. Kept:
///   the contact area of every point is added to [4].
///
/// iflag 1 sets up, 2 advances the points' history and closes a step, any other value evaluates. Faults go to `msg`
/// with the prefix "SOILINTERACTION MTL ERROR : " and throw the integer 1.
void qvsoil_interaction_mtl(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                            int& ierr, char** msg);

/// Equation of motion of the belt's drive: [0] = (drive / ratio - soil - resistance) / inertia, behind it its parts.
///
/// par: 0 track, 2 variable of the drive (and equation whose derivative [5] shows), 3 inertia, 4 ratio, 5 road,
///   6, 7 and 8, 9 ids of two force magnitudes, 10 factor of the soil shear, 11 factor of the resistance; 1 and 14 are
///   not needed
/// result: [0] above, [1] sum of the two forces, [2] drive, [3] soil: factor times the x component of the track's shear
///   as last summed, 0 before its set-up, [4] resistance: factor times [1], [5] derivative
/// A divisor of 0 gives an infinity or not-a-number. Fault prefix "SOILINTERACTION MTL(EOM) ERROR : ".
void qvsoil_mtl_eom(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result, int& ierr,
                    char** msg);

/// par 1 times the variable par 2 when par 0 is 1, else times the derivative of the equation par 2.
/// Fault prefix "SOILINTERACTION MTL(VELOCITY) ERROR : ".
void qvsoil_mtl_velocity(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                         int& ierr, char** msg);

// The outputs hand on what the force summed at its latest call; zeros before its set-up. They have no handler of their
// own: a standard exception passes to the frame, which reports what is stored (nothing).

/// First shear forces of all points, axes of marker R, and three zeros; on every call but the set-up. par: track, road.
void qvsoil_shearforce_mtl(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                           int& ierr, char** msg);

/// A node's share of normal and second shear forces, and three zeros; on every call but the set-up.
/// par: track, node, road.
void qvsoil_normalforce_mtl(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                            int& ierr, char** msg);

/// Force of all points, axes of marker R, and their area, when iflag is 2, else zeros. par: road, track.
/// Kept: the road comes first here, and the values are handed out once.
void qvsoil_interaction_mtl_sum(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                double* result, int& ierr, char** msg);

}  // namespace qvsoilinteractionmtl
