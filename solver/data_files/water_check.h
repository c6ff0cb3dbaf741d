#pragma once

#include <optional>
#include <string>

#include "solver/data_files/current_file.h"
#include "solver/data_files/wave_file.h"
#include "solver/model/finding.h"

namespace qvslv {

struct WaveCheck {
  std::optional<WaveFile> wave;  ///< the table as the subroutines read it; none if they refuse it
  Findings found;
};

struct CurrentCheck {
  CurrentFile current;
  Findings found;
};

/// What a WAVE or CURRENT file holds, and what its readers would refuse (an error) or read differently from what was
/// meant (a warning). `path` is named in the findings.
WaveCheck check_wave_text(const std::string& text, const std::string& path = "");
CurrentCheck check_current_text(const std::string& text, const std::string& path = "");

}  // namespace qvslv
