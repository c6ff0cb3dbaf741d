#pragma once

#include <string>

namespace qvslv {

/// What a user subroutine may ask of whoever runs it, as a C++ interface. The ten C services are a thin layer over it
/// (services.cpp); their `handle` is a pointer to a ServiceHost. The Simbody engine implements it, and so do the hosts
/// of tests, benchmarks and fuzz targets.
///
/// "qvbrisk/services.h" is the contract of every request: ids, units, frames, signs, what is left behind. Here stands
/// only what this interface adds:
/// - A request that cannot be answered returns false and leaves its output as it was; the C layer then sets the
///   caller's flag. It does the same for a request that throws. The host itself keeps or reports the reason.
/// - The base class offers nothing: it answers no request. A host overrides what its subroutines ask for; what to do
///   when one asks to stop or reports a fault is for every host to say.
/// - STEP needs no model and is no request; the C layer answers it.
class ServiceHost {
public:
  virtual ~ServiceHost() = default;

  /// sysary. A third id of "AM" is looked up and has no influence.
  virtual bool vector_quantity(const char* /*name*/, const int* /*ids*/, int /*nids*/, double* /*values*/,
                               int& /*count*/) {
    return false;
  }
  /// sysfnc
  virtual bool scalar_quantity(const char* /*name*/, const int* /*ids*/, int /*nids*/, double& /*value*/) {
    return false;
  }
  /// get_string_s. A text of QV_TEXT_CAPACITY characters or more counts as not answered, here and in model_path.
  virtual bool string_entity(int /*id*/, std::wstring& /*text*/) { return false; }
  /// GET_QVSPATH_S
  virtual bool model_path(std::wstring& /*path*/) { return false; }
  /// stop_solver without its three ints; `message` may be null.
  virtual void stop(const char* message) = 0;
  /// THROW_ERROR. The host owns the texts (delete[]).
  virtual void throw_error(const char* title, int count, char** messages) = 0;
  /// AKISPL
  virtual bool spline(double /*x*/, double /*z*/, int /*id*/, int /*order*/, double& /*value*/) { return false; }
  /// GTUNTS
  virtual bool units(double* /*scale*/, void** /*names*/) { return false; }
  /// get_mass of one body
  virtual bool mass(int /*id*/, double& /*value*/) { return false; }
};

}  // namespace qvslv
