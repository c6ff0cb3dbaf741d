#include "soilrdf/facet.h"

#include <algorithm>
#include <limits>

#include "common/kernels/kernels.h"

namespace qvsoilrdf {

void unit_normal(const CNode& K, const CNode& L, const CNode& M, double (&normal)[3]) {
  const double kl[3] = {L.x - K.x, L.y - K.y, L.z - K.z};
  const double lm[3] = {M.x - L.x, M.y - L.y, M.z - L.z};
  int degenerate;
  qv::vectlvec(kl, lm, normal);
  qv::normalization_vec(normal, degenerate);
  if (normal[2] < 0.0) {
    for (double& component : normal) component = -component;
  }
}

double edge_reach(double longest_squared, double twice_area) {
  // Such a point is at most 0.0044 of the edge's length away: this is the height of the arc from which the edge is seen
  // under the angle of the widest tolerance. A point farther out than 0.0045 of the longest edge is on none.
  constexpr double k_reach = 0.0045;
  return k_reach * longest_squared / twice_area * 1.0001;
}

CFacet make_facet(const CNode& K, const CNode& L, const CNode& M) {
  CFacet facet;
  facet.corner[0] = K.x, facet.corner[1] = K.y, facet.corner[2] = K.z;
  unit_normal(K, L, M, facet.normal);
  for (double& component : facet.normal) component += 0.0;  // turns -0 into 0
  const plan_shape shape(K, L, M);
  const double scale = shape.judged_by_angles() ? std::numeric_limits<double>::quiet_NaN() : 1.0 / shape.twice_area;
  facet.gradient[0] = static_cast<float>((M.y - K.y) * scale);
  facet.gradient[1] = static_cast<float>(-(M.x - K.x) * scale);
  facet.gradient[2] = static_cast<float>(-(L.y - K.y) * scale);
  facet.gradient[3] = static_cast<float>((L.x - K.x) * scale);
  return facet;
}

CElement CRoad::element(std::size_t index) const {
  CElement record;
  const corner_numbers& corners = elements[index];
  std::copy(corners.node, corners.node + 3, record.node);
  record.id = static_cast<std::int32_t>(index) + 1;
  if (!element_values.empty()) record.value = element_values[index];
  const CNode &K = corner(corners, 0), &L = corner(corners, 1), &M = corner(corners, 2);
  unit_normal(K, L, M, record.normal);
  record.center[0] = (K.x + L.x + M.x) / 3.0;
  record.center[1] = (K.y + L.y + M.y) / 3.0;
  record.center[2] = (K.z + L.z + M.z) / 3.0;
  record.equation_plane();
  return record;
}

}  // namespace qvsoilrdf
