#pragma once

#include <stdexcept>

#include "solver/model/model.h"

namespace qvslv {

/// A model that cannot be set in motion (a body without inertia that is free to move, an impossible inertia, ...).
class MultibodyError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Looks for what the multibody engine would stop the process for: numbers that are not finite, axes that are no
/// rotation, masses and inertias of no rigid body, settings out of their range. Throws MultibodyError that names it.
void check_model(const Model& model);

}  // namespace qvslv
