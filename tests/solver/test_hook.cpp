#include "tests/solver/test_hook.h"

#include <gtest/gtest.h>

namespace {

std::function<void(const HookCall&)> s_script;

}  // namespace

Script::Script(std::function<void(const HookCall&)> body) { s_script = std::move(body); }
Script::~Script() { s_script = nullptr; }

extern "C" __attribute__((visibility("default"))) void solver_test_hook(void* handle, double time, double* par,
                                                                        int npar, int difflag, int iflag,
                                                                        double* result) {
  if (!s_script) {
    ADD_FAILURE() << "the subroutine `scripted` was called without a script";
    return;
  }
  s_script({handle, time, par, npar, difflag, iflag, result});
}
