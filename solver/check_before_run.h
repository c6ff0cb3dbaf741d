#pragma once

#include <string>

#include "solver/model/model.h"

namespace qvslv {

/// Finds what a run would refuse before its first step: bodies and joints that cannot be built or start from no
/// numbers, and subroutines that the plug-in does not have. Calls no subroutine. Throws ModelError at the first
/// mistake, and std::runtime_error if the plug-in cannot be loaded.
void check_before_run(const Model& model, const std::string& plugin_path);

}  // namespace qvslv
