#include "soilinteraction/kinematics.h"

#include <cmath>

#include "common/kernels/kernels.h"

namespace qvsoilinteraction {
namespace {

/// Whether AT A is the identity and the determinant positive.
bool is_rotation(const double* A) {
  // A rotation misses the identity by rounding only, a few 1e-16. Far from the marker a larger error would shift
  // heights.
  constexpr double k_tolerance = 1e-14;
  double product[9];
  qv::mattrmat(A, A, product);
  for (int c = 0; c < 9; ++c) {
    if (!(std::fabs(product[c] - (c % 4 == 0 ? 1.0 : 0.0)) < k_tolerance)) return false;
  }
  double det;
  qv::matdet3(A, det);
  return det > 0.0;
}

}  // namespace

void complete(kinematics& k) {
  double W1t[9], W5t[9];
  qv::mattr(k.A5, k.A5t);
  qv::vectl(k.W1, W1t);
  qv::vectl(k.W5, W5t);
  qv::matmat(k.A1, W1t, k.AW1);
  qv::matmat(k.A5, W5t, k.AW5);
  k.road_is_rigidly_placed = is_rotation(k.A5);
}

}  // namespace qvsoilinteraction
