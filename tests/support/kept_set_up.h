#pragma once

#include <string>
#include <vector>

#include "qvbrisk/subroutines.h"
#include "tests/support/scripted_host.h"

namespace qvtest {

/// How every warning of a second set-up call ends.
inline const std::string k_kept_tail =
    ", which stays until the library is unloaded. Run another model in another process.";

/// What the host was told since the last look: titles and texts.
inline std::string told(ScriptedHost& host) {
  std::string all;
  for (const auto& report : host.reports) {
    all += report.title + ":";
    for (const std::string& text : report.messages) all += " " + text;
  }
  host.reports.clear();
  return all;
}

/// Calls with one entry changed and returns the results.
inline std::vector<double> call_changed(void (*subroutine)(void*, double, double*, int, int, int, double*),
                                        ScriptedHost& host, std::vector<double> par, int entry, double value,
                                        std::size_t results, int iflag = 1) {
  par.at(static_cast<std::size_t>(entry)) = value;
  std::vector<double> result(results);
  subroutine(host.handle(), 0.25, par.data(), 0, 0, iflag, result.data());
  return result;
}

}  // namespace qvtest
