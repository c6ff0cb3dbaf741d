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
constexpr qv::parameter k_track_index{QV_TRACK_EOM_TRACK, "track index"};
constexpr qv::parameter k_road_index{QV_TRACK_EOM_ROAD, "road index"};

/// The x component of the track's shear as the force subroutine last summed it; 0 before its first set-up.
double summed_shear(int road, int track, const qv::fault_channel& channel) {
  const node_sum* sum = entry_or_null(s_MTLsoil_shear_forces_Sum, road, k_road_index, track, k_track_index, channel);
  return sum == nullptr ? 0.0 : (*sum)[0];
}

/// The parameter list of the equation of motion, decoded.
struct eom_parameters {
  int track, drive, road;
  double inertia, ratio;
  int force_ids[4];
  double soil_factor, resistance_factor;

  eom_parameters(const double* par, const qv::fault_channel& channel)
      : track(qv::to_int(par, k_track_index, channel)),
        drive(qv::to_int(par, {QV_TRACK_EOM_DRIVE, "variable id"}, channel)),
        road(qv::to_int(par, k_road_index, channel)),
        inertia(par[QV_TRACK_EOM_INERTIA]),
        ratio(par[QV_TRACK_EOM_RATIO]),
        force_ids{qv::to_int(par, {QV_TRACK_EOM_FIRST_FORCE, "first id of the first force"}, channel),
                  qv::to_int(par, {QV_TRACK_EOM_FIRST_FORCE_REACTION, "second id of the first force"}, channel),
                  qv::to_int(par, {QV_TRACK_EOM_SECOND_FORCE, "first id of the second force"}, channel),
                  qv::to_int(par, {QV_TRACK_EOM_SECOND_FORCE_REACTION, "second id of the second force"}, channel)},
        soil_factor(par[QV_TRACK_EOM_SOIL_FACTOR]),
        resistance_factor(par[QV_TRACK_EOM_RESISTANCE_FACTOR]) {}
};

void equation_of_motion(void* handle, const double* par, double* result, const qv::fault_channel& channel) {
  std::fill_n(result, QV_TRACK_EOM_RESULT_LENGTH, 0.0);
  const eom_parameters p(par, channel);
  const double shear = summed_shear(p.road, p.track, channel);
  const double drive = qv::fetch_scalar(handle, "VARVAL", {p.drive});
  result[QV_TRACK_EOM_RESULT_VARIABLE] = drive;
  result[QV_TRACK_EOM_RESULT_DERIVATIVE] = qv::fetch_scalar(handle, "DIF21", {p.drive});
  const double force_1 = qv::fetch_scalar(handle, "FM", {p.force_ids[0], p.force_ids[1]});
  const double force_2 = qv::fetch_scalar(handle, "FM", {p.force_ids[2], p.force_ids[3]});
  const double force = force_1 + force_2;
  const double soil = p.soil_factor * shear;
  const double resistance = force * p.resistance_factor;
  result[QV_TRACK_EOM_RESULT_STATE_RATE] = (drive / p.ratio - soil - resistance) / p.inertia;
  result[QV_TRACK_EOM_RESULT_FORCE] = force;
  result[QV_TRACK_EOM_RESULT_SOIL_SHEAR] = soil;
  result[QV_TRACK_EOM_RESULT_RESISTANCE] = resistance;
}

void velocity(void* handle, const double* par, double* result, const qv::fault_channel& channel) {
  result[QV_TRACK_VELOCITY_RESULT_VALUE] = 0.0;
  const int mode = qv::to_int(par, {QV_TRACK_VELOCITY_MODE, "mode"}, channel);
  const int id = qv::to_int(par, {QV_TRACK_VELOCITY_SOURCE, "variable id"}, channel);
  const double value = qv::fetch_scalar(handle, mode == 1 ? "VARVAL" : "DIF21", {id});
  result[QV_TRACK_VELOCITY_RESULT_VALUE] = par[QV_TRACK_VELOCITY_FACTOR] * value;
}

}  // namespace

void qvsoil_mtl_eom(void* handle, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int /*iflag*/,
                    double* result, int& ierr, char** msg) {
  try {
    equation_of_motion(handle, par, result, {k_eom_prefix, ierr, msg});
  } catch (const std::exception& error) {
    qv::fault({k_eom_prefix, ierr, msg}, error.what());
  }
}

void qvsoil_mtl_velocity(void* handle, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int /*iflag*/,
                         double* result, int& ierr, char** msg) {
  try {
    velocity(handle, par, result, {k_velocity_prefix, ierr, msg});
  } catch (const std::exception& error) {
    qv::fault({k_velocity_prefix, ierr, msg}, error.what());
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
