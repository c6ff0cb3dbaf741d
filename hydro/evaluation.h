#pragma once

#include "hydro/records.h"

namespace qvhydro {

/// Forces on one patch mesh at the present state, written as the result array has them (see docs/hydro.md).
/// `result` starts at zero. With iflag 1 the water stands at zero; with iflag 2 the report's sums grow.
void evaluate(void* handle, double time, int iflag, Chydro_force& element, Chydro_force_sub& sub, double* result);

}  // namespace qvhydro
