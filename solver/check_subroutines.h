#pragma once

#include <string>

#include "solver/model/model.h"

namespace qvslv {

/// Looks up the subroutine of every element in the plug-in that a run would load. Throws ModelError at the first
/// element whose subroutine is not to be had, and std::runtime_error if the plug-in cannot be loaded.
void check_subroutines(const Model& model, const std::string& plugin_path);

}  // namespace qvslv
