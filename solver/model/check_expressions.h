#pragma once

#include "solver/model/model.h"

namespace qvslv {

/// Compiles every expression and spline that the engine compiles at the start of a run (variables, equations, applied
/// forces, motions) and keeps none, so that a mistake is found when a model is read. Throws ModelError, at the place in
/// the model file, for the first one that cannot be used.
void check_expressions(const Model& model);

}  // namespace qvslv
