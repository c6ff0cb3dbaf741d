#pragma once

#include "hydro/column_block.h"
#include "hydro/drag.h"
#include "hydro/motion.h"

namespace qvhydro {

/// What the patches of a mesh add up to in one call.
struct patch_sums {
  drag_sums drag;
  displacement displaced;
};

/// Adds up drag and water columns over the patches of a mesh, whose nodes evaluate_nodes has worked out in this call.
///
/// Kept: a patch takes its corners in their order until one is above the water or off the wave table. That corner and
/// those after it get no drag. The patch's water level is the mean of the three elevations; a corner that is off the
/// table, and those that were not reached, count as 0.
///
/// Also keeps, patch by patch, the intervals of the tables that were found for the corners reached.
/// @param finite_levers  whether every lever is a finite number
patch_sums add_up_patches(const Chydro_force& element, const motion& m, bool finite_levers, Chydro_force_sub& sub);

}  // namespace qvhydro
