#pragma once

#include <string>
#include <vector>

#include "hydro/wave_table.h"

/// Thrust that cuts out above the water, and the velocity error that its feedback integrates. Parameters, results and
/// the controller that both make together: docs/thrust.md.
namespace qvthrust {

constexpr const char* k_prefix = "THRUST FORCE ERROR : ";

/// One thrust element. Its WAVE table is the base; of that table no computation reads the vertical velocities. The file
/// and the markers are only read with the wave switch on.
struct CWave : qvhydro::wave_table {
  int id = 0;
  int initialized = 0;     ///< 1 from the first call on, whatever came of it
  bool file_read = false;  ///< without its file an element with the wave switch exerts nothing
  int wave_string_id = 0;
  int thrust_marker = 0, water_marker = 0;

  // Kept: part of the documented record, read by no computation.
  std::wstring wave_path;  ///< path tried in the model's folder; empty if the name opened as given
  int marker2 = 0;
};

/// The thrust elements by their id. Sized at the first call of the library; lives until the library is unloaded.
extern std::vector<CWave> gp_Wave;

/// Stores the markers and reads the WAVE file. An id that no int can hold and a file that does not open or declares
/// nothing are faults: a message in `msg`, `ierr`, and `throw 1`.
void ini_Wave(void* handle, CWave* wave, const double* par, int& ierr, char** msg);

/// Thrust T [force] of one element. v is the value of the variable; d0, d1, d2 are the value and the derivatives of the
/// equation; g0, g1, g2 are their gains. By mode (thrust/parameters.h):
///
///   variable          T = v
///   feedback          T = -g1 d1 - g2 d2 - g0 d0
///   feedback_or_off   the same, 0 while v is exactly 0
///   limited           the same, clipped to |T| <= spline(v); a negative limit turns the thrust round
///
/// With the wave switch, T is 0 while the thrust marker is above the water of the WAVE file, or outside of its
/// positions (x < 0 or not below the last, water frame). Source: as documented in docs/thrust.md.
///
/// Borders: a thrust marker exactly at the surface is in the water, and so is one whose height is NaN. Kept: a set-up
/// call (iflag 1) thrusts out of the water too. A NaN in v or the equation travels into T.
/// @param par     QV_THRUST_... of qvbrisk/layouts.h
/// @param result  QV_THRUST_RESULT_LENGTH entries: T, then zeros; all 0 after a fault
void qvsoil_thrust_force(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                         int& ierr, char** msg);

/// Velocity error [length / time] of a speed control: the velocity u of the vehicle marker from the reference marker,
/// along the vehicle marker's x axis, less the command c:
///
///   error = (A^T u)[0] - c,   A the vehicle marker's axes; u in global axes
///
/// Kept: a command of exactly 0 has no error, whatever the motion. Source: as documented in docs/thrust.md.
/// @param par     QV_SPEED_ERROR_... of qvbrisk/layouts.h
/// @param result  the error; 0 after a fault
void qvsoil_error_velocity(void* handle, double time, double* par, int npar, int difflag, int iflag, double& result,
                           int& ierr, char** msg);

}  // namespace qvthrust
