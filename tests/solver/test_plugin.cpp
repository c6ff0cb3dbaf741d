/// User subroutines for the solver's tests.
#include "qvbrisk/qvbrisk.h"

#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

/// Defined by the test program, which scripts what the subroutine does.
extern "C" void solver_test_hook(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                 double* result);

/// No subroutine, though exported.
PLUGIN_EXPORT const int plugin_version;
const int plugin_version = 1;

PLUGIN_EXPORT void scripted(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result) {
  solver_test_hook(handle, time, par, npar, difflag, iflag, result);
}

/// The same under the name by which hulls are known, so that their pictures can be tested without the sea.
PLUGIN_EXPORT void qvhydro_force(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                 double* result) {
  solver_test_hook(handle, time, par, npar, difflag, iflag, result);
}

/// The same under the name of a subroutine that shares no data: its elements may be called on several threads.
PLUGIN_EXPORT void qvsoil_mtl_velocity(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                       double* result) {
  solver_test_hook(handle, time, par, npar, difflag, iflag, result);
}

/// Spring and damper between the origins of two markers, unstretched length 0:
/// par = marker, reference marker, ground marker, stiffness, damping; result = force on the marker in ground axes.
PLUGIN_EXPORT void spring_damper(void* handle, double, double* par, int, int, int, double* result) {
  const int ids[3] = {static_cast<int>(par[0]), static_cast<int>(par[1]), static_cast<int>(par[2])};
  double way[3] = {0, 0, 0};
  double velocity[3] = {0, 0, 0};
  int count = 3;
  int err = 0;
  sysary(handle, "TDISP", ids, 3, way, &count, &err);
  sysary(handle, "TVEL", ids, 3, velocity, &count, &err);
  for (int k = 0; k < 3; ++k) result[k] = -par[3] * way[k] - par[4] * velocity[k];
}

/// Asks for every service, so that the plug-in loads only where all ten are to be had.
PLUGIN_EXPORT void all_services(void* handle, double, double* par, int, int, int iflag, double* result) {
  const int id = static_cast<int>(par[0]);
  int err[8] = {0, 0, 0, 0, 0, 0, 0, 0};
  int count = 3;
  int length = 0;
  double values[3] = {0, 0, 0};
  double scale[5] = {0, 0, 0, 0, 0};
  void* names[5] = {nullptr, nullptr, nullptr, nullptr, nullptr};
  wchar_t text[QV_TEXT_CAPACITY] = {0};
  sysary(handle, "TDISP", &id, 1, values, &count, &err[0]);
  sysfnc(handle, "VM", &id, 1, values, &err[1]);
  get_string_s(handle, static_cast<int>(par[1]), &length, text, &err[2]);
  result[8] = length;
  GET_QVSPATH_S(handle, &length, text, &err[3]);
  result[9] = length;
  AKISPL(handle, 0, 0, 1, 0, values, &err[4]);
  GTUNTS(handle, scale, names, &err[5]);
  STEP(nullptr, &result[10], &err[6], 0.25, 0, 0, 1, 1);
  get_mass(handle, &id, 1, &result[11], &err[7]);
  for (int k = 0; k < 8; ++k) result[k] = err[k];
  if (iflag == 99) {  // never: only their presence counts
    stop_solver(handle, 1, 0, 1, nullptr, err);
    THROW_ERROR(handle, "", 0, nullptr);
  }
}
