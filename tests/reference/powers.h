#pragma once

#include "common/kernels/powers.h"

/// The one part that the literal implementations share with the library: its powers and exponentials, which
/// tests/common/kernels/powers_test.cpp holds against MPFR. Those of the C library may differ in the last bit, and then
/// nothing else could be compared bit for bit.
namespace qvref {

using qv::exponential;
using qv::power;

}  // namespace qvref
