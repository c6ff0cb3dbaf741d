#include <algorithm>

#include "common/call/entry_frame.h"
#include "soilinteraction_mtl/containers.h"
#include "soilinteraction_mtl/soilinteraction_mtl.h"

namespace qvsoilinteractionmtl {

void qvsoil_shearforce_mtl(void* /*handle*/, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int iflag,
                           double* result, int& ierr, char** msg) {
  std::fill_n(result, 6, 0.0);
  if (iflag == 1) return;
  const qv::fault_channel channel{k_prefix, ierr, msg};
  const int track = qv::to_int(par[0], "track index (parameter 0)", channel);
  const int road = qv::to_int(par[1], "road index (parameter 1)", channel);
  const node_sum* sum = entry_or_null(s_MTLsoil_shear_forces_Sum, road, "road index (parameter 1)", track,
                                      "track index (parameter 0)", channel);
  if (sum != nullptr) std::copy(sum->begin(), sum->end(), result);
}

void qvsoil_normalforce_mtl(void* /*handle*/, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int iflag,
                            double* result, int& ierr, char** msg) {
  std::fill_n(result, 6, 0.0);
  if (iflag == 1) return;
  const qv::fault_channel channel{k_prefix, ierr, msg};
  const int track = qv::to_int(par[0], "track index (parameter 0)", channel);
  const int node = qv::to_int(par[1], "node (parameter 1)", channel);
  const int road = qv::to_int(par[2], "road index (parameter 2)", channel);
  const std::vector<node_sum>* sums = entry_or_null(s_MTLsoil_normal_forces_Sum, road, "road index (parameter 2)",
                                                    track, "track index (parameter 0)", channel);
  if (sums == nullptr) return;
  qv::check_index(node, sums->size(), "node (parameter 1)", channel);
  const node_sum& sum = (*sums)[static_cast<std::size_t>(node)];
  std::copy(sum.begin(), sum.end(), result);
}

void qvsoil_interaction_mtl_sum(void* /*handle*/, double /*time*/, double* par, int /*npar*/, int /*difflag*/,
                                int iflag, double* result, int& ierr, char** msg) {
  std::fill_n(result, 4, 0.0);
  if (iflag != 2) return;
  const qv::fault_channel channel{k_prefix, ierr, msg};
  const int road = qv::to_int(par[0], "road index (parameter 0)", channel);
  const int track = qv::to_int(par[1], "track index (parameter 1)", channel);
  contact_sum* sum = entry_or_null(s_MTLsoil_contact_forces_Sum, road, "road index (parameter 0)", track,
                                   "track index (parameter 1)", channel);
  if (sum == nullptr) return;
  std::copy(sum->begin(), sum->end(), result);
  sum->fill(0.0);  // kept: handed out once
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
