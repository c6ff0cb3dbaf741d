#pragma once

#include <cstddef>
#include <string>

#include "solver/run.h"

namespace qvcli {

/// The text "  1.25 / 6 s   21 %   step 0.0004 s   0.8 x real time   6 s left", without a line end and of at most
/// `width` characters: where there is no room for all, first the speed goes, then the step, the time, and the rest.
std::string progress_text(const qvslv::Progress& progress, const std::string& time_unit, size_t width);

/// One line on the terminal that is rewritten in place, at most ten times a second. It prints nothing if standard error
/// is no terminal, and takes no more than the terminal's width.
class ProgressLine {
public:
  ProgressLine(bool wanted, std::string time_unit);
  void show(const qvslv::Progress& progress);
  /// Wipes the line, so that other text can be printed.
  void clear();

private:
  bool m_on;
  std::string m_time_unit;
  double m_next = 0;  ///< wall time of the next rewriting [s]
  bool m_shown = false;
};

}  // namespace qvcli
