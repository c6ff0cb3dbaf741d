#pragma once

#include <string>

#include "solver/run.h"

namespace qvcli {

/// "  1.25 / 6 s   21 %   step 0.0004 s   0.8 x real time   6 s left": one line, without its line end.
std::string progress_text(const qvslv::Progress& progress, const std::string& time_unit);

/// One line on the terminal that is rewritten in place, at most ten times a second. Silent when standard error is
/// no terminal.
class ProgressLine {
public:
  ProgressLine(bool wanted, std::string time_unit);
  void show(const qvslv::Progress& progress);
  /// Wipes the line, so that other text can be printed.
  void clear();

private:
  bool m_on;
  std::string m_time_unit;
  double m_next = 0;  ///< wall seconds of the next rewriting
  bool m_shown = false;
};

}  // namespace qvcli
