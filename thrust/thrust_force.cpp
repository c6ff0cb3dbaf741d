#include "thrust/thrust_force.h"

#include <algorithm>
#include <cmath>

#include "common/call/entry_frame.h"
#include "common/call/kept_set_up.h"
#include "common/call/requests.h"
#include "common/kernels/kernels.h"
#include "hydro/files.h"
#include "thrust/parameters.h"

namespace qvthrust {

std::vector<CWave> gp_Wave;

namespace {

qv::kept_set_up s_kept("THRUST FORCE WARNING : ");

/// The element that the call is for. Its first call sets it up.
CWave& find_element(void* handle, const double* par, int iflag, const thrust_parameters& p) {
  const qv::fault_channel& channel = p.channel();
  const int id = p.element();
  if (gp_Wave.empty()) gp_Wave.resize(static_cast<std::size_t>(p.element_count()) + 1);
  qv::check_index(id, gp_Wave.size(), thrust_parameters::k_element, channel);
  CWave& wave = gp_Wave[static_cast<std::size_t>(id)];
  if (wave.initialized != 1) {
    wave.id = id;
    wave.initialized = 1;  // before the set-up: an element is set up once, even if that fails
    if (p.uses_wave()) ini_Wave(handle, &wave, par, channel.ierr, channel.msg);
  } else if (p.uses_wave() && !wave.file_read) {
    qv::fault(k_prefix +
                  ("The WAVE file was not read at the first call, there is no thrust. THRUST ELEMENT ID = " +
                   std::to_string(id)) +
                  ". Mend what the first message named and start again.",
              channel.ierr, channel.msg);
  } else if (p.uses_wave() && iflag == 1) {
    s_kept.compare(handle, {id, 0},
                   {{thrust_parameters::k_wave_string, par[QV_THRUST_WAVE_STRING], wave.wave_string_id}});
  }
  return wave;
}

/// True if the thrust point is in the water: over the positions of the wave table and not above the surface. Between 0
/// and the first position the water stands at 0.
bool in_water(void* handle, double time, int iflag, CWave& wave) {
  double point[3] = {};
  qv::fetch_vector(handle, "TDISP", {wave.thrust_marker, wave.water_marker, wave.water_marker}, point, 3);
  const double x = point[0], z = point[2];
  const qvhydro::time_blend when = qvhydro::blend_at(wave, time, iflag == 1);
  if (x < 0.0 || x >= wave.wave_x.last()) return false;  // the row of this time is kept nevertheless
  double elevation = 0.0;
  const int j = wave.wave_x.find(x, 0);
  if (j >= 0) {
    const double a = (wave.wave_x[j + 1] - x) / (wave.wave_x[j + 1] - wave.wave_x[j]);
    elevation = qvhydro::blended_rows(wave.wave_elevation, when).at(j, a, 1.0 - a);
  }
  return !(elevation < z);
}

double feedback_thrust(void* handle, const thrust_parameters& p) {
  const int equation = p.equation();
  const double d20 = qv::fetch_scalar(handle, "DIF20", {equation});
  const double d21 = qv::fetch_scalar(handle, "DIF21", {equation});
  const double d22 = qv::fetch_scalar(handle, "DIF22", {equation});
  return d21 * -p.first_derivative_gain() - d22 * p.second_derivative_gain() - d20 * p.state_gain();
}

/// No larger than the spline's value at v, with the thrust's own sign.
double limited_thrust(void* handle, const thrust_parameters& p, double v, double thrust) {
  double limit = 0.0;
  int flag = 0;
  AKISPL(handle, v, 0.0, p.spline(), 0, &limit, &flag);
  return limit < std::fabs(thrust) ? limit * qv::fsign(thrust) : thrust;
}

double commanded_thrust(void* handle, const thrust_parameters& p, double v) {
  const thrust_mode mode = p.mode();
  if (mode == thrust_mode::variable) return v;
  const double thrust = feedback_thrust(handle, p);  // asked for even if the mode then switches it off
  if (mode == thrust_mode::feedback_or_off && v == 0.0) return 0.0;
  return mode == thrust_mode::limited ? limited_thrust(handle, p, v, thrust) : thrust;
}

}  // namespace

void ini_Wave(void* handle, CWave* wave, const double* par, int& ierr, char** msg) {
  const thrust_parameters p(par, {k_prefix, ierr, msg});
  wave->time_index = 0;
  wave->thrust_marker = p.thrust_marker();
  wave->marker2 = p.second_marker();
  wave->water_marker = p.water_marker();
  wave->wave_string_id = p.wave_string();
  qvhydro::named_file file;
  std::wstring model_path;
  file.name = qvhydro::fetch_file_name(handle, wave->wave_string_id, p.channel());
  if (!qvhydro::open_wave_file(handle, file, model_path, p.channel())) {
    qv::fault("THRUST FORCE ERROR : Failded to open WAVE file.", ierr, msg);
  }
  wave->wave_path = file.second_path;
  qvhydro::read_wave_file(file, *wave, p.channel());
  wave->file_read = true;
}

// Neither function below catches a standard exception: it passes to the entry frame, which reports it without a text.

void qvsoil_thrust_force(void* handle, double time, double* par, int /*npar*/, int /*difflag*/, int iflag,
                         double* result, int& ierr, char** msg) {
  std::fill_n(result, QV_THRUST_RESULT_LENGTH, 0.0);
  const thrust_parameters p(par, {k_prefix, ierr, msg});
  CWave& wave = find_element(handle, par, iflag, p);
  const double v = qv::fetch_scalar(handle, "VARVAL", {p.variable()});
  const bool out_of_water = p.uses_wave() && !in_water(handle, time, iflag, wave);
  if (out_of_water && iflag != 1) return;
  result[QV_THRUST_RESULT_FORCE] = commanded_thrust(handle, p, v);
}

void qvsoil_error_velocity(void* handle, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int /*iflag*/,
                           double& result, int& ierr, char** msg) {
  result = 0.0;
  const velocity_error_parameters p(par, {k_prefix, ierr, msg});
  double axes[9] = {}, velocity[3] = {}, forward[3];
  qv::fetch_vector(handle, "AM", {p.vehicle}, axes, 9);
  qv::fetch_vector(handle, "TVEL", {p.vehicle, p.reference}, velocity, 3);
  const double command = qv::fetch_scalar(handle, "VARVAL", {p.command});
  qv::mattrvec(axes, velocity, forward);
  result = command == 0.0 ? 0.0 : forward[0] - command;
}

}  // namespace qvthrust

extern "C" QV_EXPORT void qvsoil_thrustforce(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                             double* result) {
  qv::run_user_subroutine(qvthrust::qvsoil_thrust_force, handle, time, par, npar, difflag, iflag, result);
}

extern "C" QV_EXPORT void qvsoil_error_velocity(void* handle, double time, double* par, int npar, int difflag,
                                                int iflag, double* result) {
  const auto module = [](void* h, double t, double* p, int n, int d, int i, double* r, int& ierr, char** msg) {
    qvthrust::qvsoil_error_velocity(h, t, p, n, d, i, *r, ierr, msg);
  };
  qv::run_user_subroutine(module, handle, time, par, npar, difflag, iflag, result);
}
