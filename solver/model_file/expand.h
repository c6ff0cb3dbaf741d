#pragma once

#include <string>

#include "solver/model/model.h"

namespace qvslv {

/// The model's strings, variables, equations, splines and elements written as the plain layer: valid TOML that, put in
/// the place of the model file's tables of these kinds, makes the same model. Every entry of a `par` has its own line
/// with its position, the id behind a name, and what it means.
std::string expanded(const Model& model);

}  // namespace qvslv
