// Any bytes as a WAVE file. The reader either says one message, or gives up on memory in silence, or leaves the table
// that formatted stream extraction fills; and a thruster in that water works at any time and place.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>

#include "fuzz/memory_file.h"
#include "fuzz/water_host.h"
#include "qvbrisk/subroutines.h"
#include "tests/reference/hydro_reference.h"
#include "thrust/thrust_force.h"

namespace {

constexpr double k_large_table = 1e5;  // entries; beyond it the reference takes too long

void check_table(const qvthrust::CWave& wave, const std::uint8_t* data, std::size_t size) {
  if (1.0 * wave.wave_rows * wave.wave_cols > k_large_table) return;
  std::istringstream text(std::string(reinterpret_cast<const char*>(data), size));
  const qvref::wave_file expected = qvref::read_wave(text);
  QV_PROMISE(wave.wave_rows == expected.rows && wave.wave_cols == expected.cols);
  for (int i = 0; i <= expected.rows; ++i) {
    const auto row = static_cast<std::size_t>(i);
    QV_PROMISE(wave.wave_time[i] == expected.time[row]);
    for (int j = 0; j <= expected.cols; ++j) {
      const auto col = static_cast<std::size_t>(j);
      QV_PROMISE(wave.wave_x[j] == expected.x[col]);
      QV_PROMISE(wave.wave_elevation[i][j] == expected.elevation[row][col]);
      QV_PROMISE(wave.wave_velocity[i][j] == expected.velocity[row][col]);
    }
  }
}

/// Calls the thruster at time i of the table and at and around its position j, where searches may go wrong.
void visit(water_host& host, double* par, const qvthrust::CWave& wave, int i, int j) {
  double result[7] = {};
  result[6] = 1234.5;
  for (const double x : {wave.wave_x[j], std::nextafter(wave.wave_x[j], -1e300), wave.wave_x[j] + 0.25}) {
    host.place[0] = x;
    for (const int iflag : {0, 1, 2}) {
      qvsoil_thrustforce(host.handle(), wave.wave_time[i], par, 15, 0, iflag, result);
      QV_PROMISE(result[6] == 1234.5 && host.reports == 0);
      QV_PROMISE(wave.time_index >= 0 && wave.time_index < wave.wave_rows);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static memory_file file;
  file.write(data, size);
  qvthrust::gp_Wave = {};
  water_host host;
  host.files[0] = file.path();
  double par[15] = {0, 1, 3, 0, 4, 5, 1, 0, 0, 0, 0, 0, 0, 1, 0}, result[6];
  qvsoil_thrustforce(host.handle(), 0.0, par, 15, 0, 0, result);
  const qvthrust::CWave& wave = qvthrust::gp_Wave[0];
  QV_PROMISE(host.reports == (wave.file_read ? 0 : 1));
  if (!wave.file_read) return 0;
  check_table(wave, data, size);
  for (int i = 0; i <= std::min(wave.wave_rows, 12); ++i) {
    for (int j = 0; j <= std::min(wave.wave_cols, 12); ++j) visit(host, par, wave, i, j);
  }
  return 0;
}
