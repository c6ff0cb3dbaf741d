#pragma once

#include <Simbody.h>

#include <exception>
#include <string>

#include "solver/engine/multibody.h"

namespace qvslv {

/// What an exception of the multibody engine or the integrator says, as a sentence for the user. They are thrown when
/// numbers overflow; the sentence names the body that has none any more, or the fastest one.
std::string engine_reason(const std::exception& error, const Multibody& multibody, const SimTK::State& state);

}  // namespace qvslv
