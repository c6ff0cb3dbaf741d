#include <cstddef>

#include "common/call/entry_frame.h"
#include "common/call/parameters.h"
#include "qvbrisk/layouts.h"

/// Diameter, translational and rotational kinetic energy of many balls (solid spheres):
///
///   Et = m v^2 / 2,   Er = I w^2 / 2,   I = 2/5 m (d/2)^2
///
/// d diameter [length], m mass, v and w magnitudes of velocity and angular velocity, global; Et, Er energies [force
/// length]. Source: moment of inertia of a homogeneous sphere about its centre (textbook result).
///
///   par     QV_BALLS_... of qvbrisk/layouts.h: the number n of balls, then n body ids, then n diameters
///   result  QV_BALL_RESULT_LENGTH entries per ball: d, Et, Er
///
/// Kept: there is no message channel, and flags of the services are not looked at. A failed service leaves its value at
/// 0. An n that no int can hold counts as no balls; a ball whose id no int can hold has energies of 0. A NaN travels
/// into the energies. Nothing is kept between calls.
extern "C" QV_EXPORT void qvballplacing_report(void* handle, double /*time*/, double* par, int /*npar*/,
                                               int /*difflag*/, int /*iflag*/, double* result) {
  if (!qv::fits_int(par[QV_BALLS_BALL_COUNT])) return;
  const int n = static_cast<int>(par[QV_BALLS_BALL_COUNT]);
  const double* const ids = par + QV_BALLS_LENGTH;
  for (int i = 0; i < n; ++i) {
    const double d = ids[n + i];  // the diameters follow the ids
    double m = 0.0, vm = 0.0, wm = 0.0;
    if (qv::fits_int(ids[i])) {
      const int id = static_cast<int>(ids[i]);
      int flag = 0;
      get_mass(handle, &id, 1, &m, &flag);
      flag = 0;
      sysfnc(handle, "VM", &id, 1, &vm, &flag);
      flag = 0;
      sysfnc(handle, "WM", &id, 1, &wm, &flag);
    }
    const double radius = 0.5 * d;
    const double inertia = 0.4 * m * (radius * radius);
    double* const ball = result + QV_BALL_RESULT_LENGTH * static_cast<std::ptrdiff_t>(i);
    ball[QV_BALL_RESULT_DIAMETER] = d;
    ball[QV_BALL_RESULT_TRANSLATIONAL_ENERGY] = vm * m * 0.5 * vm;
    ball[QV_BALL_RESULT_ROTATIONAL_ENERGY] = wm * inertia * 0.5 * wm;
  }
}
