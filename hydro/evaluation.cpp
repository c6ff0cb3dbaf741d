#include "hydro/evaluation.h"

#include <cmath>

#include "common/kernels/kernels.h"
#include "hydro/motion.h"
#include "hydro/node_pass.h"
#include "hydro/patch_pass.h"
#include "qvbrisk/layouts.h"

namespace qvhydro {
namespace {

bool active(const Chydro_force_sub& sub, double time) {
  const bool in_interval = sub.t_end <= sub.t_start || (sub.t_start <= time && time <= sub.t_end);
  return in_interval && sub.scale != 0.0;
}

/// Where the buoyancy of a mesh acts, and its torque about the force marker; global axes.
struct buoyancy_point {
  double centre[3], torque[3] = {};
};

buoyancy_point find_buoyancy_point(const motion& m, const displacement& displaced) {
  buoyancy_point b;
  qv::assgvec(m.p4, 3, b.centre);
  if (displaced.volume == 0.0 || std::isnan(displaced.volume)) return b;
  double c[3], lever[3];
  for (int k = 0; k < 3; ++k) c[k] = displaced.moment[k] / displaced.volume;
  qv::matvec(m.A5, c, b.centre);
  for (int k = 0; k < 3; ++k) {
    b.centre[k] += m.p5[k];
    lever[k] = b.centre[k] - m.p4[k];
  }
  qv::vectlvec(lever, displaced.buoyancy, b.torque);
  return b;
}

double length_of(const double* a) {
  double square = 0.0;
  qv::vectrvec(a, a, square);
  return std::sqrt(square);
}

/// Adds a mesh to what the next report consumes.
void add_to_report(const Chydro_force_sub& sub, const motion& m, const double* centre, Chydro_force& element) {
  element.report_mass_sum += sub.mass;
  element.report_buoyancy_sum += sub.buoyancy_magnitude;
  for (int k = 0; k < 3; ++k) {
    element.report_mass_moment[k] += m.p4[k] * sub.mass;
    element.report_buoyancy_moment[k] += centre[k] * sub.buoyancy_magnitude;
  }
}

void write_results(const motion& m, const patch_sums& sums, const buoyancy_point& b, double* result) {
  const auto write = [result](int position, const double* a) { qv::assgvec(a, 3, result + position); };
  const drag_sums& drag = sums.drag;
  for (int k = 0; k < 3; ++k) {
    result[QV_HULL_RESULT_FORCE + k] = drag.total.force[k] + sums.displaced.buoyancy[k];
    result[QV_HULL_RESULT_TORQUE + k] = drag.total.torque[k] + b.torque[k];
  }
  write(QV_HULL_RESULT_BUOYANCY, sums.displaced.buoyancy);
  write(QV_HULL_RESULT_BUOYANCY_CENTRE, b.centre);
  write(QV_HULL_RESULT_DRAG_FORCE, drag.total.force);
  write(QV_HULL_RESULT_DRAG_TORQUE, drag.total.torque);
  write(QV_HULL_RESULT_NORMAL_DRAG_FORCE, drag.normal.force);
  write(QV_HULL_RESULT_NORMAL_DRAG_TORQUE, drag.normal.torque);
  write(QV_HULL_RESULT_TANGENTIAL_DRAG_FORCE, drag.tangential.force);
  write(QV_HULL_RESULT_TANGENTIAL_DRAG_TORQUE, drag.tangential.torque);
  write(QV_HULL_RESULT_FORCE_MARKER, m.p4);
  result[QV_HULL_RESULT_SUBMERGED_VOLUME] = sums.displaced.volume;
}

}  // namespace

void evaluate(void* handle, double time, int iflag, Chydro_force& element, Chydro_force_sub& sub, double* result) {
  const motion m = fetch_motion(handle, sub);
  const time_blend when = blend_at(element, time, iflag == 1);
  patch_sums sums;
  if (active(sub, time)) {
    const bool finite_levers = evaluate_nodes(element, when, m, sub);
    sums = add_up_patches(element, m, finite_levers, sub);
  }
  const buoyancy_point b = find_buoyancy_point(m, sums.displaced);
  sub.submerged_volume = sums.displaced.volume;
  sub.buoyancy_magnitude = length_of(sums.displaced.buoyancy);
  if (iflag == 2) add_to_report(sub, m, b.centre, element);
  write_results(m, sums, b, result);
}

}  // namespace qvhydro
