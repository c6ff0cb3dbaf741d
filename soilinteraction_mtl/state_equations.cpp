#include <algorithm>
#include <exception>

#include "common/call/entry_frame.h"
#include "common/call/requests.h"
#include "soilinteraction_mtl/containers.h"
#include "soilinteraction_mtl/soilinteraction_mtl.h"

namespace qvsoilinteractionmtl {
namespace {

constexpr const char* k_eom_prefix = "SOILINTERACTION MTL(EOM) ERROR : ";
constexpr const char* k_velocity_prefix = "SOILINTERACTION MTL(VELOCITY) ERROR : ";

/// The x component of the track's shear as the force subroutine last summed it; 0 before its first set-up.
double summed_shear(int road, int track, const qv::fault_channel& channel) {
  const node_sum* sum = entry_or_null(s_MTLsoil_shear_forces_Sum, road, "road index (parameter 5)", track,
                                      "track index (parameter 0)", channel);
  return sum == nullptr ? 0.0 : (*sum)[0];
}

/// The parameter list of the equation of motion, decoded.
struct eom_parameters {
  int track, drive, road;
  double inertia, ratio;
  int force_ids[4];
  double soil_factor, resistance_factor;

  eom_parameters(const double* par, const qv::fault_channel& channel)
      : track(qv::to_int(par[0], "track index (parameter 0)", channel)),
        drive(qv::to_int(par[2], "variable id (parameter 2)", channel)),
        road(qv::to_int(par[5], "road index (parameter 5)", channel)),
        inertia(par[3]),
        ratio(par[4]),
        force_ids{qv::to_int(par[6], "first id of the first force (parameter 6)", channel),
                  qv::to_int(par[7], "second id of the first force (parameter 7)", channel),
                  qv::to_int(par[8], "first id of the second force (parameter 8)", channel),
                  qv::to_int(par[9], "second id of the second force (parameter 9)", channel)},
        soil_factor(par[10]),
        resistance_factor(par[11]) {}
};

void equation_of_motion(void* handle, const double* par, double* result, const qv::fault_channel& channel) {
  std::fill_n(result, 6, 0.0);
  const eom_parameters p(par, channel);
  const double shear = summed_shear(p.road, p.track, channel);
  result[2] = qv::fetch_scalar(handle, "VARVAL", {p.drive});
  result[5] = qv::fetch_scalar(handle, "DIF21", {p.drive});
  const double force_1 = qv::fetch_scalar(handle, "FM", {p.force_ids[0], p.force_ids[1]});
  const double force_2 = qv::fetch_scalar(handle, "FM", {p.force_ids[2], p.force_ids[3]});
  result[1] = force_1 + force_2;
  result[3] = p.soil_factor * shear;
  result[4] = result[1] * p.resistance_factor;
  result[0] = (result[2] / p.ratio - result[3] - result[4]) / p.inertia;
}

void velocity(void* handle, const double* par, double* result, const qv::fault_channel& channel) {
  result[0] = 0.0;
  const int mode = qv::to_int(par[0], "mode (parameter 0)", channel);
  const int id = qv::to_int(par[2], "variable id (parameter 2)", channel);
  result[0] = par[1] * qv::fetch_scalar(handle, mode == 1 ? "VARVAL" : "DIF21", {id});
}

}  // namespace

void qvsoil_mtl_eom(void* handle, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int /*iflag*/,
                    double* result, int& ierr, char** msg) {
  try {
    equation_of_motion(handle, par, result, {k_eom_prefix, ierr, msg});
  } catch (const std::exception& error) {
    qv::fault(std::string(k_eom_prefix) + error.what(), ierr, msg);
  }
}

void qvsoil_mtl_velocity(void* handle, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int /*iflag*/,
                         double* result, int& ierr, char** msg) {
  try {
    velocity(handle, par, result, {k_velocity_prefix, ierr, msg});
  } catch (const std::exception& error) {
    qv::fault(std::string(k_velocity_prefix) + error.what(), ierr, msg);
  }
}

}  // namespace qvsoilinteractionmtl

extern "C" QV_EXPORT void qvsoil_mtl_eom(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                         double* result) {
  qv::run_user_subroutine(qvsoilinteractionmtl::qvsoil_mtl_eom, handle, time, par, npar, difflag, iflag, result);
}

extern "C" QV_EXPORT void qvsoil_mtl_velocity(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                              double* result) {
  qv::run_user_subroutine(qvsoilinteractionmtl::qvsoil_mtl_velocity, handle, time, par, npar, difflag, iflag, result);
}
