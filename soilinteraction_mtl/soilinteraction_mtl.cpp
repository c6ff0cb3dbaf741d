#include "soilinteraction_mtl/soilinteraction_mtl.h"

#include <algorithm>
#include <exception>

#include "common/call/entry_frame.h"
#include "soilinteraction_mtl/evaluation.h"
#include "soilinteraction_mtl/set_up.h"

namespace qvsoilinteractionmtl {
namespace {

track_state s_state;  ///< what the current call works with; it grows at set-up only

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

void grow_state(const parameters& p) {
  const std::size_t nodes = std::max(s_state.nodes.size(), static_cast<std::size_t>(p.nodes));
  s_state.radii.resize(nodes);
  s_state.nodes.resize(nodes);
}

void interaction(void* handle, double time, double* par, int iflag, double* result, const qv::fault_channel& channel) {
  std::fill_n(result, QV_TRACK_RESULT_LENGTH, 0.0);
  const parameters p(par, channel);
  track_records* track = find_track(p, channel);
  std::fill_n(result, QV_TRACK_RESULT_LENGTH + QV_TRACK_POINT_LENGTH * p.points(), 0.0);
  if (iflag == 1) {
    grow_state(p);
    set_up(handle, p, channel);
    track = find_track(p, channel);
  }
  if (track == nullptr) return;  // before its set-up a track has no points and exerts nothing
  read_nodes(par, p, s_state, channel);
  const track_sums sums = clear_sums(p);
  fetch_motion(handle, p, s_state);
  const double L = lay_belt(s_state, p.nodes, *track);
  evaluate_track(handle, time, p, iflag, s_3Dsoil_roads[static_cast<std::size_t>(p.road)], s_state, L, *track, sums,
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
