#include "soilinteraction_mtl/soilinteraction_mtl.h"

#include <algorithm>
#include <exception>

#include "common/call/entry_frame.h"
#include "soilinteraction_mtl/evaluation.h"
#include "soilinteraction_mtl/set_up.h"

namespace qvsoilinteractionmtl {
namespace {

/// Clears the track's sums. Precondition: the track is set up, so the containers hold its road and its index.
track_sums clear_sums(const parameters& p) {
  const auto road = static_cast<std::size_t>(p.road), track = static_cast<std::size_t>(p.track);
  track_sums sums = {s_MTLsoil_contact_forces_Sum[road][track], s_MTLsoil_shear_forces_Sum[road][track],
                     s_MTLsoil_normal_forces_Sum[road][track]};
  sums.contact.fill(0.0);
  sums.shear.fill(0.0);
  for (node_sum& sum : sums.normal) sum.fill(0.0);
  return sums;
}

void interaction(void* handle, double time, double* par, int iflag, double* result, const qv::fault_channel& channel) {
  std::fill_n(result, QV_TRACK_RESULT_LENGTH, 0.0);
  const parameters p(par, channel);
  track_records* track = find_track(p, channel);
  std::fill_n(result, QV_TRACK_RESULT_LENGTH + QV_TRACK_POINT_LENGTH * p.points(), 0.0);
  if (iflag == 1) {
    set_up(handle, p, channel);
    track = find_track(p, channel);
  }
  if (track == nullptr) return;  // before its set-up a track has no points and exerts nothing
  track_state& state = state_of(p);
  read_nodes(par, p, state, channel);
  const track_sums sums = clear_sums(p);
  fetch_motion(handle, p, state);
  const double L = lay_belt(state, p.nodes, *track);
  evaluate_track(handle, time, p, iflag, s_3Dsoil_roads[static_cast<std::size_t>(p.road)], state, L, *track, sums,
                 result, channel);
}

}  // namespace

void qvsoil_interaction_mtl(void* handle, double time, double* par, int /*npar*/, int /*difflag*/, int iflag,
                            double* result, int& ierr, char** msg) {
  try {
    interaction(handle, time, par, iflag, result, {k_prefix, ierr, msg});
  } catch (const std::exception& error) {
    qv::fault({k_prefix, ierr, msg}, error.what());
  }
}

}  // namespace qvsoilinteractionmtl

extern "C" QV_EXPORT void qvsoil_interaction_mtl(void* handle, double time, double* par, int npar, int difflag,
                                                 int iflag, double* result) {
  qv::run_user_subroutine(qvsoilinteractionmtl::qvsoil_interaction_mtl, handle, time, par, npar, difflag, iflag,
                          result);
}
