#include "tests/reference/thrust_reference.h"

#include "qvbrisk/services.h"

namespace qvref {
namespace {

double ask_scalar(void* handle, const char* name, double id) {
  const int ids[] = {static_cast<int>(id)};
  double value = 0.0;
  int flag = 0;
  sysfnc(handle, name, ids, 1, &value, &flag);
  return value;
}

}  // namespace

bool thruster::out_of_water(void* handle, double time, int iflag) {
  const v3 p = ask_vector(handle, "TDISP", {m_thrust_marker, m_water_marker, m_water_marker});
  const time_weights w = find_row(m_wave, m_time_index, time, iflag);
  bool out = p[0] < 0.0 || p[0] >= m_wave.x[static_cast<std::size_t>(m_wave.cols - 1)];
  double eta = 0.0;
  const int j = find_interval(m_wave.x, m_wave.cols, p[0]);
  if (j >= 0) eta = wave_value(m_wave, m_wave.elevation, w, j, p[0]);
  if (eta < p[2]) out = true;
  return out;
}

std::array<double, 6> thruster::call(void* handle, double time, const std::vector<double>& par, int iflag) {
  const bool in_waves = static_cast<int>(par[13]) == 1;
  if (!m_set_up) {
    m_set_up = true;
    if (in_waves) {
      m_thrust_marker = static_cast<int>(par[2]);
      m_water_marker = static_cast<int>(par[5]);
    }
  }
  const double v = ask_scalar(handle, "VARVAL", par[8]);
  const bool out = in_waves && out_of_water(handle, time, iflag);
  const int mode = static_cast<int>(par[6]);
  double T = 0.0;
  if (in_waves && out && iflag != 1) {
    T = 0.0;
  } else if (mode == 1) {
    T = v;
  } else {
    const double d20 = ask_scalar(handle, "DIF20", par[9]), d21 = ask_scalar(handle, "DIF21", par[9]),
                 d22 = ask_scalar(handle, "DIF22", par[9]);
    T = d21 * (-par[10]) - d22 * par[11] - d20 * par[12];
    if (mode == 2 && v == 0.0) T = 0.0;
    if (mode == 3) {
      double limit = 0.0;
      int flag = 0;
      AKISPL(handle, v, 0.0, static_cast<int>(par[7]), 0, &limit, &flag);
      if (limit < std::fabs(T)) T = limit * sign(T);
    }
  }
  return {T, 0.0, 0.0, 0.0, 0.0, 0.0};
}

double velocity_error(void* handle, const std::vector<double>& par) {
  const int vehicle = static_cast<int>(par[1]), reference = static_cast<int>(par[2]);
  const v3 w = transpose(ask_axes(handle, vehicle)) * ask_vector(handle, "TVEL", {vehicle, reference});
  const double c = ask_scalar(handle, "VARVAL", par[3]);
  return c == 0.0 ? 0.0 : w[0] - c;
}

}  // namespace qvref
