#pragma once

#include "common/kernels/vectors.h"

namespace qvsoilinteraction {

using qv::k_block;  ///< points that are worked on together
using qv::vectors;

}  // namespace qvsoilinteraction
