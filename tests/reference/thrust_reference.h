#pragma once

#include "tests/reference/hydro_reference.h"

/// Thrust and velocity error once more, slow and literal. Entries of `par` are addressed by number, so that the
/// reference holds the names in qvbrisk/layouts.h too.
namespace qvref {

class thruster {
public:
  explicit thruster(const wave_file& wave) : wave_(wave) {}

  /// Returns 6 results. The markers are those of the first call, if that has the wave switch on.
  std::array<double, 6> call(void* handle, double time, const std::vector<double>& par, int iflag);

  int time_index() const { return time_index_; }

private:
  bool out_of_water(void* handle, double time, int iflag);

  wave_file wave_;
  bool set_up_ = false;
  int thrust_marker_ = 0, water_marker_ = 0;
  int time_index_ = 0;
};

double velocity_error(void* handle, const std::vector<double>& par);

}  // namespace qvref
