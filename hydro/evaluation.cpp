#include "hydro/evaluation.h"

#include <cmath>

#include "common/call/requests.h"
#include "common/kernels/kernels.h"
#include "hydro/drag.h"
#include "hydro/node_pass.h"
#include "hydro/volume.h"

namespace qvhydro {
namespace {

motion fetch_motion(void* handle, const Chydro_force_sub& sub) {
  const int m4 = sub.force_marker, m5 = sub.water_marker, m6 = sub.body_marker;
  motion m;
  qv::fetch_vector(handle, "TDISP", {m4}, m.p4, 3);
  qv::fetch_vector(handle, "TDISP", {m6}, m.p6, 3);
  qv::fetch_vector(handle, "TDISP", {m5}, m.p5, 3);
  qv::fetch_vector(handle, "AM", {m6}, m.A6, 9);
  qv::fetch_vector(handle, "AM", {m5}, m.A5, 9);
  qv::mattrmat(m.A5, m.A6, m.R);
  qv::fetch_vector(handle, "TDISP", {m6, m5, m5}, m.d, 3);
  qv::fetch_vector(handle, "TVEL", {m6, m5, m5}, m.v, 3);
  double global_spin[3] = {};
  qv::fetch_vector(handle, "RVEL", {m6}, global_spin, 3);
  qv::mattrvec(m.A6, global_spin, m.spin);
  return m;
}

/// Notes an interval that was found. Most stay what they were, and memory that is not written need not be written back.
void keep_interval(bool found, int interval, int& kept) {
  if (found && kept != interval) kept = interval;
}

/// One call's way over the patches of a mesh, whose nodes are worked out.
class evaluation {
public:
  evaluation(const Chydro_force& element, const motion& m, const coefficients& k)
      : element_(element), m_(m), k_(k), factors_{{m.A5[6], m.A5[7], m.A5[8]}, k.buoyancy, k.L3, k.force} {}

  void run(Chydro_force_sub& sub) {
    for (int i = 0; i < sub.patch_count; ++i) evaluate_patch(sub, sub.patches[static_cast<std::size_t>(i)]);
    drags_.finish(k_, m_.A6, drag);
    columns_.finish(factors_, displaced);
  }

  drag_sums drag;
  displacement displaced;

private:
  void evaluate_patch(Chydro_force_sub& sub, Cpatch& patch);

  const Chydro_force& element_;
  const motion& m_;
  const coefficients& k_;
  buoyancy_factors factors_;
  drag_block drags_;
  column_block columns_;
};

void evaluation::evaluate_patch(Chydro_force_sub& sub, Cpatch& patch) {
  const node_state* corners[3];
  for (int n = 0; n < 3; ++n) corners[n] = &sub.node_states[static_cast<std::size_t>(patch.node_ids[n])];
  double elevations[3] = {};  // of the corners reached
  int reached = 0;            // wet ones, before the first that is not
  for (int n = 0; n < 3; ++n) {
    const node_state& s = *corners[n];
    if (s.where == node_state::off_table) break;
    keep_interval(s.on_wave_col, s.wave_col, patch.wave_col[n]);
    elevations[n] = s.elevation;
    if (s.where == node_state::dry) break;
    keep_interval(s.on_current1_row, s.current1_row, patch.current1_row[n]);
    keep_interval(s.on_current2_row, s.current2_row, patch.current2_row[n]);
    ++reached;
  }
  if (reached > 0) {
    drags_.add(patch.normal, patch.area, corners, reached);
    if (drags_.full()) drags_.finish(k_, m_.A6, drag);
  }
  const double level = (elevations[0] + elevations[1] + elevations[2]) / 3.0;
  const double facing = m_.R[2] * patch.normal[0] + m_.R[5] * patch.normal[1] + m_.R[8] * patch.normal[2];
  const double* const q[3] = {corners[0]->position, corners[1]->position, corners[2]->position};
  columns_.add(element_.wave_x_first, element_.wave_x_last, q, facing, level);
  if (columns_.full()) columns_.finish(factors_, displaced);
}

bool active(const Chydro_force_sub& sub, double time) {
  const bool in_interval = sub.t_end <= sub.t_start || (sub.t_start <= time && time <= sub.t_end);
  return in_interval && sub.scale != 0.0;
}

void write(const double* a, double* to) { qv::assgvec(a, 3, to); }

void add_to_report(const Chydro_force_sub& sub, const motion& m, const double* centre, Chydro_force& element) {
  element.report_mass_sum += sub.mass;
  element.report_buoyancy_sum += sub.buoyancy_magnitude;
  for (int k = 0; k < 3; ++k) {
    element.report_mass_moment[k] += m.p4[k] * sub.mass;
    element.report_buoyancy_moment[k] += centre[k] * sub.buoyancy_magnitude;
  }
}

}  // namespace

void evaluate(void* handle, double time, int iflag, Chydro_force& element, Chydro_force_sub& sub, double* result) {
  const motion m = fetch_motion(handle, sub);
  const time_blend when = blend_at(element, time, iflag == 1);
  const coefficients k(element, sub);
  evaluation e(element, m, k);
  if (active(sub, time)) {
    evaluate_nodes(element, when, m, sub);
    e.run(sub);
  }
  sub.submerged_volume = e.displaced.volume;

  double centre[3], torque[3] = {};
  qv::assgvec(m.p4, 3, centre);
  if (sub.submerged_volume != 0.0 && !std::isnan(sub.submerged_volume)) {
    double c[3], lever[3];
    for (int n = 0; n < 3; ++n) c[n] = e.displaced.moment[n] / sub.submerged_volume;
    qv::matvec(m.A5, c, centre);
    for (int n = 0; n < 3; ++n) {
      centre[n] += m.p5[n];
      lever[n] = centre[n] - m.p4[n];
    }
    qv::vectlvec(lever, e.displaced.buoyancy, torque);
  }
  double square = 0.0;
  qv::vectrvec(e.displaced.buoyancy, e.displaced.buoyancy, square);
  sub.buoyancy_magnitude = std::sqrt(square);

  for (int n = 0; n < 3; ++n) {
    result[n] = e.drag.total.force[n] + e.displaced.buoyancy[n];
    result[3 + n] = e.drag.total.torque[n] + torque[n];
  }
  write(e.displaced.buoyancy, result + 6);
  write(centre, result + 9);
  write(e.drag.total.force, result + 12);
  write(e.drag.total.torque, result + 15);
  write(e.drag.normal.force, result + 18);
  write(e.drag.normal.torque, result + 21);
  write(e.drag.tangential.force, result + 24);
  write(e.drag.tangential.torque, result + 27);
  write(m.p4, result + 30);
  result[33] = sub.submerged_volume;
  if (iflag == 2) add_to_report(sub, m, centre, element);
}

}  // namespace qvhydro
