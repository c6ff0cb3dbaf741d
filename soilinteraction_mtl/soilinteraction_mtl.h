#pragma once

#include "qvbrisk/layouts.h"
#include "qvbrisk/subroutines.h"

/// A track on a soil road: the force, two state equations, three outputs.
///
/// "mtl" in the names of this room and of its exported functions is a track: a belt that is laid over a chain of
/// circles (sprocket, idler and road wheels), the nodes. Between two nodes the belt runs as a straight span. The room
/// reuses the triangle search and the soil's laws of soilinteraction/; it adds the belt, how it moves, and how its
/// nodes share the force.
namespace qvsoilinteractionmtl {

/// Force that a soil road exerts on a belt laid over a chain of node circles, through a grid of contact points on each
/// span between two nodes.
///
/// par: QV_TRACK_PAR and then QV_TRACK_NODE_PAR for each node; result: QV_TRACK_RESULTS and then QV_TRACK_POINT_RESULTS
/// for each point (qvbrisk/layouts.h). There are ((nNode - 1)(nLong - 1) + 1) nLat points, numbered row by row along
/// the belt, and across it within a row. Two spans share the row over their common node: its forces add up. Kept: the
/// contact area of every point is added to the x force of the first point.
///
/// iflag 1 sets up and evaluates; 2 evaluates, advances the points' history and closes a step; any other value
/// evaluates. A track that is not set up exerts nothing. Faults go to `msg` with the prefix
/// "SOILINTERACTION MTL ERROR : " and throw the integer 1.
void qvsoil_interaction_mtl(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                            int& ierr, char** msg);

/// Equation of motion of the belt's drive, and its parts:
///
///   state rate = (drive / ratio - soil factor S - resistance factor (FM1 + FM2)) / inertia
///
/// S is the x component of the track's shear as the force last summed it, 0 before the track's set-up; FM1 and FM2 are
/// the magnitudes of two forces.
/// par: QV_TRACK_EOM_PAR, result: QV_TRACK_EOM_RESULTS. A divisor of 0 gives an infinity or NaN.
/// Fault prefix "SOILINTERACTION MTL(EOM) ERROR : ".
void qvsoil_mtl_eom(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result, int& ierr,
                    char** msg);

/// The drive's value (mode 1) or derivative (any other mode), times a factor.
/// par: QV_TRACK_VELOCITY_PAR, result: QV_TRACK_VELOCITY_RESULTS.
/// Fault prefix "SOILINTERACTION MTL(VELOCITY) ERROR : ".
void qvsoil_mtl_velocity(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                         int& ierr, char** msg);

// The outputs hand on what the force summed at its latest call, or zeros before its set-up. They have no handler of
// their own: a standard exception passes to the frame, which reports the stored messages (none).

/// First shear forces of all points, axes of marker R, and three zeros; on every call but the set-up.
/// par: QV_TRACK_SHEAR_PAR, result: QV_TRACK_SHARE_RESULTS.
void qvsoil_shearforce_mtl(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                           int& ierr, char** msg);

/// A node's share of normal and second shear forces, and three zeros; on every call but the set-up.
/// par: QV_TRACK_NORMAL_PAR, result: QV_TRACK_SHARE_RESULTS.
void qvsoil_normalforce_mtl(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                            int& ierr, char** msg);

/// Force of all points, axes of marker R, and their area if iflag is 2, else zeros.
/// Kept: the road comes before the track here, and the values are handed out once.
/// par: QV_TRACK_SUM_PAR, result: QV_TRACK_SUM_RESULTS.
void qvsoil_interaction_mtl_sum(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                double* result, int& ierr, char** msg);

}  // namespace qvsoilinteractionmtl
