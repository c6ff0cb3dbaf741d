#pragma once

#include <stdexcept>

#include "solver/model/model.h"

namespace qvslv {

/// A model that cannot be set in motion (a body without inertia that is free to move, an impossible inertia, ...).
class MultibodyError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Throws MultibodyError, with the name of the thing, for what the multibody engine would end the process for: numbers
/// that are not finite, axes that are no rotation, masses and inertias that no rigid body has, settings out of range.
void check_model(const Model& model);

}  // namespace qvslv
