#pragma once

#include "qvbrisk/subroutines.h"

namespace qvsoilinteraction {

/// Force and moment that a soil road exerts on a plate or wheel, through a grid of contact points on the body.
///
/// par (ids, indices and counts truncated to int):
///    0 element index on its road      1 body marker           3 road index       4 string with the RDF file name
///    5 road base marker               7 elements on the road  8 roads            9 shape: 1 plate, else wheel
///   10 plate length or wheel radius  11 width                12 nx, 13 ny grid counts (along or around, across)
///   14 ground reference marker; 2 and 6 are not read
/// result, 7 + 8 nx ny values:
///   [0-2] force, [3-5] moment about the body marker, ground axes   [6] contact area
///   per point k (along outer, across inner): [7 + 8k ...] local force (shear 1, shear 2, normal), position in ground
///   axes (always written), sinkage, dynamic sinkage (both, and the force, in contact only)
///
/// iflag 1 sets up (reads the road once, sizes the grid), 2 advances the points' history and closes a step, any other
/// value evaluates. Faults go to `msg` with the prefix "SOILINTERACTION ERROR : " and throw the integer 1.
void qvsoil_interaction(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                        int& ierr, char** msg);

/// Sums over all elements of a road (par 0 its index): force x, y, z and contact area, when iflag is 2, else zeros.
void qvsoil_interaction_Sum(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                            int& ierr, char** msg);

}  // namespace qvsoilinteraction
