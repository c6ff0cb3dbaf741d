#pragma once

#include <string>

namespace qvslv {

/// What a user subroutine may ask of whoever runs it. The ten C services are a thin layer over this interface;
/// `handle` is a pointer to it. The Simbody engine implements it, and so do the scripted hosts of the tests.
///
/// A request that cannot be answered returns false; the C layer then sets the caller's error flag and leaves the
/// output as it was. The host keeps (and reports) the reason itself.
class ServiceHost {
public:
  virtual ~ServiceHost() = default;

  /// sysary: writes `count` values. May be asked with one, two or three ids (count of ids in `nids`): a measured
  /// marker m, a reference marker r, and a marker a whose axes express the result. Missing ids are the ground's.
  ///   "TDISP"   p_m - p_r, the way from r's origin to m's
  ///   "TVEL"    v_m - v_r, both velocities as seen from the ground; in r's moving axes "TDISP" changes at another rate
  ///   "RVEL"    w_m - w_r
  ///   "AM"      R_r^T R_m, column by column; axes that express it have no meaning, a third id is only looked up
  ///   "TFORCE"  sum of the forces of elements and applied forces that act at marker m minus those that react on it,
  ///             from their latest evaluation; with a reference marker only those between m and r. When m is the id of
  ///             an element or applied force: its force on its own marker
  virtual bool vector_quantity(const char* name, const int* ids, int nids, double* values, int& count) = 0;
  /// sysfnc: one value.
  ///   "VM", "WM"  magnitudes of "TVEL" and "RVEL" of one or two ids
  ///   "FM"        magnitude of "TFORCE" of one or two ids; with the ground marker as the second, of all forces at m
  ///   "VARVAL"    the variable with this id; when there is none, the equation's value y
  ///   "DIF20", "DIF21", "DIF22"  y, y' and y'' of the equation with this id; those that are no states (y' of order 1,
  ///               y'' of either) as of the last accepted step
  virtual bool scalar_quantity(const char* name, const int* ids, int nids, double& value) = 0;
  /// get_string_s
  virtual bool string_entity(int id, std::wstring& text) = 0;
  /// GET_QVSPATH_S
  virtual bool model_path(std::wstring& path) = 0;
  /// stop_solver; `message` may be null
  virtual void stop(const char* message) = 0;
  /// THROW_ERROR; the host takes ownership of the texts (array new)
  virtual void throw_error(const char* title, int count, char** messages) = 0;
  /// AKISPL: value (order 0), first or second derivative of a spline; z is 0
  virtual bool spline(double x, double z, int id, int order, double& value) = 0;
  /// GTUNTS: length, mass, time, force and angle of the model's units in SI; the names may be left as they are
  virtual bool units(double scale[5], void* names[5]) = 0;
  /// get_mass
  virtual bool mass(int id, double& value) = 0;
};

}  // namespace qvslv
