#pragma once

#include "hydro/records.h"

namespace qvhydro {

/// One call of a hull: drag and buoyancy of one patch mesh at the present state. The equations are in
/// docs/floating-bodies.md, "One call, step by step".
///
///   F = Fd + Fb                    total force [force], global axes; Fd drag (hydro/drag.h)
///   T = Td + (C - p4) x Fb         torque about the force marker at p4 [force length]
///   Fb = up rho g V scale          buoyancy, rho density, g gravity, V submerged volume (hydro/column_block.h)
///   C = A5 (M / V) + p5            centre of buoyancy, M the columns' moment in the water frame, p5 the water marker
///
/// Borders: a mesh that is switched off (scale of exactly 0, or a time outside of its interval) gives forces and volume
/// of 0. If V is 0 or NaN, C is p4 and the buoyancy has no torque. A NaN in the motion travels into the result.
///
/// @param iflag   1: set-up call, the water stands at z = 0 of the water frame; 2: the report's sums grow as well
/// @param result  QV_HULL_RESULT_LENGTH entries, global axes; all of them are written, at the end of the call
///
/// Advances the element's time row, also while the mesh is switched off, and keeps volume and size of the buoyancy.
void evaluate(void* handle, double time, int iflag, Chydro_force& element, Chydro_force_sub& sub, double* result);

}  // namespace qvhydro
