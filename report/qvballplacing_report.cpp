#include <cstddef>

#include "common/call/entry_frame.h"
#include "common/call/parameters.h"

/// Diameter, translational and rotational kinetic energy of many balls (solid spheres).
///
///   par     [0] not read, [1] n, [2 .. n+1] body ids, [n+2 .. 2n+1] diameters [length]
///   result  per ball: diameter [length], m v^2 / 2 and I w^2 / 2 [force length], I = 0.4 m (d/2)^2
///
/// No error channel: a failed service leaves its output at 0, a count or id that no int can hold counts as 0 balls
/// or is skipped with energies of 0.
extern "C" QV_EXPORT void qvballplacing_report(void* handle, double /*time*/, double* par, int /*npar*/,
                                               int /*difflag*/, int /*iflag*/, double* result) {
  if (!qv::fits_int(par[1])) return;
  const int n = static_cast<int>(par[1]);
  for (int i = 0; i < n; ++i) {
    const double* ids = par + 2;
    const double d = ids[n + i];
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
    double* triple = result + 3 * static_cast<ptrdiff_t>(i);
    triple[0] = d;
    triple[1] = vm * m * 0.5 * vm;
    triple[2] = wm * inertia * 0.5 * wm;
  }
}
