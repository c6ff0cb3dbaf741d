/* Signature of a user subroutine and the thirteen that libqvbrisk.so exports. Usable from C and C++.
 *
 *   handle   the host's context of the calling element, handed back to every service as it is
 *   time     current simulation time, in the model's unit
 *   par      the element's parameters; ids, indices, counts and switches are doubles too, truncated toward zero
 *   npar     number of entries in par; the library does not consult it, so par must be as long as the subroutine needs
 *   difflag  the host's differencing flag; the library does not consult it
 *   iflag    1: set-up call, before any other; 2: call after a converged step, when forces advance what they remember;
 *            any other value: ordinary evaluation, as often as the integrator needs it
 *   result   output; its length follows from the subroutine and its parameters
 *
 * A fault inside ends in one call of THROW_ERROR (qvbrisk/services.h), after which the subroutine returns as usual;
 * only qvballplacing_report never reports one.
 * Calls must not overlap: the library keeps its state in globals without locks. */
#ifndef QVBRISK_SUBROUTINES_H
#define QVBRISK_SUBROUTINES_H

#ifdef __cplusplus
extern "C" {
#endif

typedef void (*qv_user_subroutine)(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                   double* result);

#define QV_DECLARE_SUBROUTINE(name) \
  void name(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result)

QV_DECLARE_SUBROUTINE(qvballplacing_report);
QV_DECLARE_SUBROUTINE(qvhydro_force);
QV_DECLARE_SUBROUTINE(qvhydro_report);
QV_DECLARE_SUBROUTINE(qvsoil_interaction_mtl);
QV_DECLARE_SUBROUTINE(qvsoil_mtl_eom);
QV_DECLARE_SUBROUTINE(qvsoil_mtl_velocity);
QV_DECLARE_SUBROUTINE(qvsoil_shearforce_mtl);
QV_DECLARE_SUBROUTINE(qvsoil_normalforce_mtl);
QV_DECLARE_SUBROUTINE(qvsoil_interaction_mtl_sum);
QV_DECLARE_SUBROUTINE(qvsoil_interaction);
QV_DECLARE_SUBROUTINE(qvsoil_interaction_Sum);
QV_DECLARE_SUBROUTINE(qvsoil_error_velocity);
QV_DECLARE_SUBROUTINE(qvsoil_thrustforce);

#undef QV_DECLARE_SUBROUTINE

#ifdef __cplusplus
}
#endif

#endif
