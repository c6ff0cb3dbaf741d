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
/// The shortest step that a run may ask for, of whatever kind, as a share of its end time.
constexpr double k_shortest_step = 1e-9;

void check_model(const Model& model);

}  // namespace qvslv
