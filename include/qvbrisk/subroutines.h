/* Signature of a user subroutine and the thirteen that libqvbrisk.so exports. Usable from C and C++.
 *
 *   handle   the host's context for the calling element, handed back to every service
 *   time     current simulation time
 *   par      the element's parameters; ids, indices, counts and switches are doubles too, truncated toward zero
 *   npar     number of entries in par (not consulted)
 *   difflag  the host's differencing flag (not consulted)
 *   iflag    1: set-up call, 2: call after a converged step, any other value: ordinary evaluation
 *   result   output; its length follows from the subroutine and its parameters */
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
