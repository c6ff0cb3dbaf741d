#pragma once

#include "common/kernels/angles.h"
#include "common/kernels/powers.h"

/// The one part that the literal implementations share with the library: its powers, exponentials, sines, cosines and
/// tangents, which tests/common/kernels holds against MPFR. Those of the C library may differ in the last bit, and then
/// nothing else could be compared bit for bit.
namespace qvref {

using qv::cosine;
using qv::exponential;
using qv::power;
using qv::sine;
using qv::tangent;

}  // namespace qvref
