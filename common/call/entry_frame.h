#pragma once

#include "qvbrisk/services.h"
#include "qvbrisk/subroutines.h"

/// Visible outside the library; everything else is hidden.
#define QV_EXPORT __attribute__((visibility("default")))

namespace qv {

constexpr int k_message_slots = 5;  ///< enough: a module stores one message per fault and stops at the first fault

/// A module function: the seven arguments of a user subroutine, the message count and the message slots.
using module_function = void (*)(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                 double* result, int& ierr, char** msg);

/// The frame of every exported subroutine: owns the message channel, calls the module function and turns whatever
/// is thrown into one report to the host. Nothing unwinds into the caller.
inline void run_user_subroutine(module_function module, void* handle, double time, double* par, int npar, int difflag,
                                int iflag, double* result) {
  int ierr = 0;
  char* msg[k_message_slots] = {};
  try {
    module(handle, time, par, npar, difflag, iflag, result, ierr, msg);
  } catch (...) {  // the caller is C: no exception may reach it
    THROW_ERROR(handle, "USUB ERROR", ierr, msg);
  }
}

}  // namespace qv
