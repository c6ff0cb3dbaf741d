#include "common/entry_frame.h"
#include "common/messages.h"

// Entry points whose modules are still to come. They are exported already, so that a model that names one loads and
// is told what is missing.
namespace {

[[noreturn]] void not_built(const char* name, int& ierr, char** msg) {
  qv::fault(std::string("USUB ERROR : ") + name + " is not built yet in this version of the library.", ierr, msg);
}

}  // namespace

#define QV_NOT_BUILT(name)                                                                                          \
  extern "C" QV_EXPORT void name(void* handle, double time, double* par, int npar, int difflag, int iflag,          \
                                 double* result) {                                                                  \
    qv::run_user_subroutine(                                                                                        \
        [](void*, double, double*, int, int, int, double*, int& ierr, char** msg) { not_built(#name, ierr, msg); }, \
        handle, time, par, npar, difflag, iflag, result);                                                           \
  }

QV_NOT_BUILT(qvhydro_force)
QV_NOT_BUILT(qvhydro_report)
QV_NOT_BUILT(qvsoil_interaction_mtl)
QV_NOT_BUILT(qvsoil_mtl_eom)
QV_NOT_BUILT(qvsoil_mtl_velocity)
QV_NOT_BUILT(qvsoil_shearforce_mtl)
QV_NOT_BUILT(qvsoil_normalforce_mtl)
QV_NOT_BUILT(qvsoil_interaction_mtl_sum)
QV_NOT_BUILT(qvsoil_error_velocity)
QV_NOT_BUILT(qvsoil_thrustforce)
