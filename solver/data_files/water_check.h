#pragma once

#include <optional>
#include <string>
#include <vector>

#include "solver/data_files/current_file.h"
#include "solver/data_files/wave_file.h"

namespace qvslv {

/// Something in a WAVE or CURRENT file that its readers would refuse, or read differently from what was meant.
struct WaterFinding {
  bool refused = false;
  int line = 0;  ///< from 1; 0: the file as a whole
  std::string text;
};

struct WaveCheck {
  std::optional<WaveFile> wave;  ///< the table as the subroutines read it; none if they refuse it
  std::vector<WaterFinding> found;
};

struct CurrentCheck {
  CurrentFile current;
  std::vector<WaterFinding> found;
};

WaveCheck check_wave_text(const std::string& text);
CurrentCheck check_current_text(const std::string& text);

}  // namespace qvslv
