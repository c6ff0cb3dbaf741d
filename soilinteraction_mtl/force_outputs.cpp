#include <algorithm>

#include "common/call/entry_frame.h"
#include "soilinteraction_mtl/containers.h"
#include "soilinteraction_mtl/soilinteraction_mtl.h"

namespace qvsoilinteractionmtl {

void qvsoil_shearforce_mtl(void* /*handle*/, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int iflag,
                           double* result, int& ierr, char** msg) {
  std::fill_n(result, QV_TRACK_SHARE_LENGTH, 0.0);
  if (iflag == 1) return;
  const qv::fault_channel channel{k_prefix, ierr, msg};
  constexpr qv::parameter k_track{QV_TRACK_SHEAR_TRACK, "track index"}, k_road{QV_TRACK_SHEAR_ROAD, "road index"};
  const int track = qv::to_int(par, k_track, channel);
  const int road = qv::to_int(par, k_road, channel);
  const node_sum* sum = entry_or_null(s_MTLsoil_shear_forces_Sum, road, k_road, track, k_track, channel);
  if (sum != nullptr) std::copy(sum->begin(), sum->end(), result);
}

void qvsoil_normalforce_mtl(void* /*handle*/, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int iflag,
                            double* result, int& ierr, char** msg) {
  std::fill_n(result, QV_TRACK_SHARE_LENGTH, 0.0);
  if (iflag == 1) return;
  const qv::fault_channel channel{k_prefix, ierr, msg};
  constexpr qv::parameter k_track{QV_TRACK_NORMAL_TRACK, "track index"}, k_node{QV_TRACK_NORMAL_NODE, "node"},
      k_road{QV_TRACK_NORMAL_ROAD, "road index"};
  const int track = qv::to_int(par, k_track, channel);
  const int node = qv::to_int(par, k_node, channel);
  const int road = qv::to_int(par, k_road, channel);
  const std::vector<node_sum>* sums = entry_or_null(s_MTLsoil_normal_forces_Sum, road, k_road, track, k_track, channel);
  if (sums == nullptr) return;
  qv::check_index(node, sums->size(), k_node, channel);
  const node_sum& sum = (*sums)[static_cast<std::size_t>(node)];
  std::copy(sum.begin(), sum.end(), result);
}

void qvsoil_interaction_mtl_sum(void* /*handle*/, double /*time*/, double* par, int /*npar*/, int /*difflag*/,
                                int iflag, double* result, int& ierr, char** msg) {
  std::fill_n(result, QV_TRACK_SUM_RESULT_LENGTH, 0.0);
  if (iflag != 2) return;
  const qv::fault_channel channel{k_prefix, ierr, msg};
  constexpr qv::parameter k_road{QV_TRACK_SUM_ROAD, "road index"}, k_track{QV_TRACK_SUM_TRACK, "track index"};
  const int road = qv::to_int(par, k_road, channel);
  const int track = qv::to_int(par, k_track, channel);
  contact_sum* sum = entry_or_null(s_MTLsoil_contact_forces_Sum, road, k_road, track, k_track, channel);
  if (sum == nullptr) return;
  std::copy(sum->begin(), sum->end(), result);
  sum->fill(0.0);  // kept: the values are handed out once
}

}  // namespace qvsoilinteractionmtl

extern "C" QV_EXPORT void qvsoil_shearforce_mtl(void* handle, double time, double* par, int npar, int difflag,
                                                int iflag, double* result) {
  qv::run_user_subroutine(qvsoilinteractionmtl::qvsoil_shearforce_mtl, handle, time, par, npar, difflag, iflag, result);
}

extern "C" QV_EXPORT void qvsoil_normalforce_mtl(void* handle, double time, double* par, int npar, int difflag,
                                                 int iflag, double* result) {
  qv::run_user_subroutine(qvsoilinteractionmtl::qvsoil_normalforce_mtl, handle, time, par, npar, difflag, iflag,
                          result);
}

extern "C" QV_EXPORT void qvsoil_interaction_mtl_sum(void* handle, double time, double* par, int npar, int difflag,
                                                     int iflag, double* result) {
  qv::run_user_subroutine(qvsoilinteractionmtl::qvsoil_interaction_mtl_sum, handle, time, par, npar, difflag, iflag,
                          result);
}
