#include "solver/engine/inertia_check.h"

#include <vector>

namespace qvslv {

namespace {

using SimTK::ArticulatedInertia;
using SimTK::SpatialVec;

/// Takes out of an inertia what a coordinate moves by itself: `felt` is the inertia times the coordinate's motion.
void release(ArticulatedInertia& inertia, const SpatialVec& felt, double pivot) {
  const auto product = [pivot](const SimTK::Vec3& a, const SimTK::Vec3& b) {
    SimTK::Mat33 m;
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j) m(i, j) = a[i] * b[j] / pivot;
    return m;
  };
  const auto square = [pivot](const SimTK::Vec3& a) {
    return SimTK::SymMat33(a[0] * a[0] / pivot, a[1] * a[0] / pivot, a[1] * a[1] / pivot, a[2] * a[0] / pivot,
                           a[2] * a[1] / pivot, a[2] * a[2] / pivot);
  };
  inertia -= ArticulatedInertia(square(felt[1]), product(felt[0], felt[1]), square(felt[0]));
}

}  // namespace

int find_coordinate_without_inertia(const SimTK::SimbodyMatterSubsystem& matter, const SimTK::State& state) {
  constexpr double k_vanishing = 1e-13;  // share of the diagonal entry below which a pivot is rounding only
  const int count = matter.getNumBodies();
  std::vector<bool> is_free(static_cast<size_t>(matter.getNumMobilities()), false);
  for (const SimTK::UIndex u : matter.getFreeUIndex(state)) is_free[static_cast<size_t>(int(u))] = true;

  std::vector<ArticulatedInertia> rigid(static_cast<size_t>(count)), articulated(static_cast<size_t>(count));
  for (int k = 0; k < count; ++k) {
    const SimTK::MobilizedBody& body = matter.getMobilizedBody(SimTK::MobilizedBodyIndex(k));
    rigid[static_cast<size_t>(k)] = articulated[static_cast<size_t>(k)] =
        k == 0 ? ArticulatedInertia(SimTK::SymMat33(0), SimTK::Mat33(0), SimTK::SymMat33(0))
               : ArticulatedInertia(body.getBodySpatialInertiaInGround(state));
  }
  for (int k = count - 1; k > 0; --k) {  // a body has a higher index than its parent
    const SimTK::MobilizedBody& body = matter.getMobilizedBody(SimTK::MobilizedBodyIndex(k));
    ArticulatedInertia& own = articulated[static_cast<size_t>(k)];
    const int first = body.getFirstUIndex(state);
    for (int j = 0; j < body.getNumU(state); ++j) {
      const int u = first + j;
      if (!is_free[static_cast<size_t>(u)]) continue;
      const SpatialVec motion = body.getHCol(state, SimTK::MobilizerUIndex(j));
      const SpatialVec felt = own * motion;
      const double pivot = ~motion * felt, entry = ~motion * (rigid[static_cast<size_t>(k)] * motion);
      if (!(entry > 0) || !(pivot > k_vanishing * entry)) return u;
      release(own, felt, pivot);
    }
    const SimTK::MobilizedBody& parent = body.getParentMobilizedBody();
    const SimTK::Vec3 from_parent = body.getBodyOriginLocation(state) - parent.getBodyOriginLocation(state);
    const auto at = static_cast<size_t>(int(parent.getMobilizedBodyIndex()));
    articulated[at] += own.shift(from_parent);
    rigid[at] += rigid[static_cast<size_t>(k)].shift(from_parent);
  }
  return -1;
}

}  // namespace qvslv
