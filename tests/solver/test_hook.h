#pragma once

#include <functional>

/// One call of the plug-in's subroutine `scripted`, as the test sees it.
struct HookCall {
  void* handle;
  double time;
  double* par;
  int npar;
  int difflag;
  int iflag;
  double* result;
};

/// What `scripted` does while this lives.
class Script {
public:
  explicit Script(std::function<void(const HookCall&)> body);
  ~Script();
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;
};
