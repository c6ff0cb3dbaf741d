#pragma once

#include <string>
#include <vector>

#include "hydro/wave_table.h"

/// Thrust that cuts out above the water, and the velocity error that its feedback integrates.
namespace qvthrust {

constexpr const char* k_prefix = "THRUST FORCE ERROR : ";

/// One thrust element. Its WAVE table is the base; the vertical velocities are read but not used.
struct CWave : qvhydro::wave_table {
  int id = 0;
  int initialized = 0;
  bool file_read = false;  ///< without it an element with the wave switch exerts nothing
  std::wstring wave_path;  ///< where the model's folder was tried, else empty
  int wave_string_id = 0;
  int thrust_marker = 0, marker2 = 0, water_marker = 0;
};

extern std::vector<CWave> gp_Wave;  ///< indexed by thrust element id

/// Stores the markers and reads the WAVE file.
void ini_Wave(void* handle, CWave* wave, const double* par, int& ierr, char** msg);

void qvsoil_thrust_force(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                         int& ierr, char** msg);
void qvsoil_error_velocity(void* handle, double time, double* par, int npar, int difflag, int iflag, double& result,
                           int& ierr, char** msg);

}  // namespace qvthrust
