#pragma once

#include "solver/model/model.h"

namespace qvslv {

/// Compiles all that the engine compiles at the start of a run (variables, equations, splines, applied forces, motions)
/// and keeps nothing. Throws ModelError, at the place in the model file, for the first that cannot be used.
void check_expressions(const Model& model);

}  // namespace qvslv
