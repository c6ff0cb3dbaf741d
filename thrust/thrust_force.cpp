#include "thrust/thrust_force.h"

#include <algorithm>
#include <cmath>

#include "common/call/entry_frame.h"
#include "common/call/parameters.h"
#include "common/call/requests.h"
#include "common/kernels/kernels.h"
#include "hydro/files.h"

namespace qvthrust {

std::vector<CWave> gp_Wave;

namespace {

using qv::fault_channel;

constexpr int k_results = 6;

bool uses_wave(const double* par, const fault_channel& channel) {
  return qv::to_int(par[13], "wave switch (parameter 13)", channel) == 1;
}

CWave& find_element(void* handle, const double* par, int& ierr, char** msg) {
  const fault_channel channel{k_prefix, ierr, msg};
  const int id = qv::to_int(par[0], "thrust element ID (parameter 0)", channel);
  if (gp_Wave.empty()) {
    const int count = qv::to_count(par[1], "number of thrust elements (parameter 1)", channel);
    gp_Wave.resize(static_cast<std::size_t>(count) + 1);
  }
  qv::check_index(id, gp_Wave.size(), "thrust element ID (parameter 0)", channel);
  CWave& wave = gp_Wave[static_cast<std::size_t>(id)];
  if (wave.initialized != 1) {
    wave.id = id;
    wave.initialized = 1;  // whatever comes of it: an element is set up once
    if (uses_wave(par, channel)) ini_Wave(handle, &wave, par, ierr, msg);
  } else if (uses_wave(par, channel) && !wave.file_read) {
    qv::fault(k_prefix +
                  ("The WAVE file was not read at the first call, there is no thrust. THRUST ELEMENT ID = " +
                   std::to_string(id)) +
                  ". Mend what the first message named and start again.",
              ierr, msg);
  }
  return wave;
}

/// Whether the thrust point is in the water.
bool in_water(void* handle, double time, int iflag, CWave& wave) {
  double point[3] = {};
  qv::fetch_vector(handle, "TDISP", {wave.thrust_marker, wave.water_marker, wave.water_marker}, point, 3);
  const double x = point[0], z = point[2];
  const qvhydro::time_blend when = qvhydro::blend_at(wave, time, iflag == 1);
  if (x < 0.0 || x >= wave.wave_x.last()) return false;
  double elevation = 0.0;
  const int j = wave.wave_x.find(x, 0);
  if (j >= 0) {
    const double a = (wave.wave_x[j + 1] - x) / (wave.wave_x[j + 1] - wave.wave_x[j]);
    elevation = qvhydro::blended_rows(wave.wave_elevation, when).at(j, a, 1.0 - a);
  }
  return !(elevation < z);
}

/// The thrust that the mode asks for; v is the variable's value.
double commanded_thrust(void* handle, const double* par, double v, const fault_channel& channel) {
  const int mode = qv::to_int(par[6], "thrust mode (parameter 6)", channel);
  if (mode == 1) return v;
  const int equation = qv::to_int(par[9], "differential equation (parameter 9)", channel);
  const double d20 = qv::fetch_scalar(handle, "DIF20", {equation});
  const double d21 = qv::fetch_scalar(handle, "DIF21", {equation});
  const double d22 = qv::fetch_scalar(handle, "DIF22", {equation});
  const double thrust = d21 * -par[10] - d22 * par[11] - d20 * par[12];
  if (mode == 2 && v == 0.0) return 0.0;
  if (mode != 3) return thrust;
  double limit = 0.0;
  int flag = 0;
  AKISPL(handle, v, 0.0, qv::to_int(par[7], "spline (parameter 7)", channel), 0, &limit, &flag);
  return limit < std::fabs(thrust) ? limit * qv::fsign(thrust) : thrust;
}

}  // namespace

void ini_Wave(void* handle, CWave* wave, const double* par, int& ierr, char** msg) {
  const fault_channel channel{k_prefix, ierr, msg};
  wave->time_index = 0;
  wave->thrust_marker = qv::to_int(par[2], "thrust marker (parameter 2)", channel);
  wave->marker2 = qv::to_int(par[4], "second marker (parameter 4)", channel);
  wave->water_marker = qv::to_int(par[5], "water marker (parameter 5)", channel);
  wave->wave_string_id = qv::to_int(par[14], "string of the WAVE file (parameter 14)", channel);
  qvhydro::named_file file;
  std::wstring model_path;
  file.name = qvhydro::fetch_file_name(handle, wave->wave_string_id, channel);
  if (!qvhydro::open_wave_file(handle, file, model_path, channel)) {
    qv::fault("THRUST FORCE ERROR : Failded to open WAVE file.", ierr, msg);
  }
  wave->wave_path = file.second_path;
  qvhydro::read_wave_file(file, *wave, channel);
  wave->file_read = true;
}

// Neither function has a handler of its own: a standard exception passes to the frame, which reports what is stored.

void qvsoil_thrust_force(void* handle, double time, double* par, int /*npar*/, int /*difflag*/, int iflag,
                         double* result, int& ierr, char** msg) {
  std::fill_n(result, k_results, 0.0);
  CWave& wave = find_element(handle, par, ierr, msg);
  const fault_channel channel{k_prefix, ierr, msg};
  const double v = qv::fetch_scalar(handle, "VARVAL", {qv::to_int(par[8], "variable (parameter 8)", channel)});
  const bool out_of_water = uses_wave(par, channel) && !in_water(handle, time, iflag, wave);
  if (out_of_water && iflag != 1) return;
  result[0] = commanded_thrust(handle, par, v, channel);
}

void qvsoil_error_velocity(void* handle, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int /*iflag*/,
                           double& result, int& ierr, char** msg) {
  result = 0.0;
  const fault_channel channel{k_prefix, ierr, msg};
  const int vehicle = qv::to_int(par[1], "vehicle marker (parameter 1)", channel);
  const int reference = qv::to_int(par[2], "reference marker (parameter 2)", channel);
  const int variable = qv::to_int(par[3], "commanded velocity (parameter 3)", channel);
  double axes[9] = {}, velocity[3] = {}, forward[3];
  qv::fetch_vector(handle, "AM", {vehicle}, axes, 9);
  qv::fetch_vector(handle, "TVEL", {vehicle, reference}, velocity, 3);
  const double command = qv::fetch_scalar(handle, "VARVAL", {variable});
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
