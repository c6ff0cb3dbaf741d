#pragma once

#include "tests/reference/hydro_reference.h"

/// Thrust and velocity error once more, slow and literal. Entries of `par` are addressed by number, so that the
/// reference holds the names in qvbrisk/layouts.h too.
namespace qvref {

class thruster {
public:
  explicit thruster(const wave_file& wave) : m_wave(wave) {}

  /// Returns 6 results. The markers are those of the first call, if that has the wave switch on.
  std::array<double, 6> call(void* handle, double time, const std::vector<double>& par, int iflag);

  int time_index() const { return m_time_index; }

private:
  bool out_of_water(void* handle, double time, int iflag);

  wave_file m_wave;
  bool m_set_up = false;
  int m_thrust_marker = 0, m_water_marker = 0;
  int m_time_index = 0;
};

double velocity_error(void* handle, const std::vector<double>& par);

}  // namespace qvref
