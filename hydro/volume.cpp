#include "hydro/volume.h"

#include "common/kernels/kernels.h"
#include "hydro/water_column.h"

namespace qvhydro {
namespace {

/// A signed column over one patch.
struct signed_column {
  double volume = 0.0;
  double moment[3] = {};  ///< signed volume times centroid, water frame
};

signed_column find_column(double x_first, double x_last, const double* const q[3], double facing, double level) {
  const cutting how = beyond(x_first, x_last, q) ? cutting() : find_cutting(q, level);
  const double sign = sign_of(facing);
  if (how.kind == cutting::out_of_water || sign == 0.0) return {};
  const pieces found = how.kind == cutting::under_water
                           ? whole_column(at(q[0]), at(q[1]), at(q[2]), level)
                           : cut_column(at(q[how.corner]), at(q[(how.corner + 1) % 3]), at(q[(how.corner + 2) % 3]),
                                        how.kind == cutting::one_corner_under, level);
  return {sign * found.volume, {sign * found.moment.x, sign * found.moment.y, sign * found.moment.z}};
}

}  // namespace

void Calculation_Area(const double* a, const double* b, const double* c, double& area) {
  area = seen_area({a[0], a[1], 0.0}, {b[0], b[1], 0.0}, {c[0], c[1], 0.0});
}

void Calculation_VolumeAndVolumeCenter(double x_first, double x_last, const Chydro_force_sub* sub, const Cpatch* patch,
                                       const double* R, const double* d, const double* p5, const double* A5, double h,
                                       double& volume, double* centre, double& volume_sum, double* moment_sum) {
  double q[3][3];
  for (int n = 0; n < 3; ++n) {
    const Cnode& node = sub->nodes[static_cast<std::size_t>(patch->node_ids[n])];
    const double local[3] = {node.x, node.y, node.z};
    qv::matvec(R, local, q[n]);
    for (int k = 0; k < 3; ++k) q[n][k] += d[k];
  }
  double normal[3];
  qv::matvec(R, patch->normal, normal);
  const double* const corners[3] = {q[0], q[1], q[2]};
  const signed_column column = find_column(x_first, x_last, corners, normal[2], h);
  volume = column.volume;
  volume_sum += volume;
  if (volume == 0.0) return;
  double centroid[3], global[3];
  for (int k = 0; k < 3; ++k) {
    moment_sum[k] += column.moment[k];
    centroid[k] = column.moment[k] / volume;
  }
  qv::matvec(A5, centroid, global);
  for (int k = 0; k < 3; ++k) centre[k] = global[k] + p5[k];
}

}  // namespace qvhydro
