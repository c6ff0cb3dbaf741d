#pragma once

#include "qvbrisk/layouts.h"
#include "qvbrisk/subroutines.h"

namespace qvsoilinteraction {

/// Force and moment that a soil road exerts on a plate or wheel, through a grid of contact points on the body.
///
/// par: QV_SOIL_PAR, result: QV_SOIL_RESULTS and then QV_SOIL_POINT_RESULTS for each point (qvbrisk/layouts.h). The
/// points are numbered with the index along the plate or around the wheel in the outer loop, that across in the inner.
///
/// iflag 1 sets up (reads the road once, sizes the grid) and evaluates; 2 evaluates, advances the points' history and
/// closes a step; any other value evaluates. An element that is not set up exerts nothing. Faults go to `msg` with the
/// prefix "SOILINTERACTION ERROR : " and throw the integer 1.
void qvsoil_interaction(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                        int& ierr, char** msg);

/// Force and contact area summed over all elements of a road if iflag is 2, else zeros.
/// par: QV_SOIL_SUM_PAR, result: QV_SOIL_SUM_RESULTS.
void qvsoil_interaction_Sum(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                            int& ierr, char** msg);

}  // namespace qvsoilinteraction
