#pragma once

#include "common/kernels/vectors.h"

namespace qvsoilinteraction {

using qv::k_block;
using qv::vectors;

}  // namespace qvsoilinteraction
