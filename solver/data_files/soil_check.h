#pragma once

#include <string>
#include <vector>

#include "solver/model/finding.h"

namespace qvslv {

/// A number of a road file: its key and where it stands. A later line overwrites an earlier one.
struct SoilValue {
  std::string key;
  double value = 0;
  int line = 0;  ///< from 1
};

/// What looks wrong in the soil values of a road that is not of concrete: what is missing, of the wrong sign, or beyond
/// what any soil of the presets comes near to.
/// @param units  in which the file's author wrote them
void check_soil_values(const std::vector<SoilValue>& values, const Units& units, const std::string& path,
                       Findings& findings);

}  // namespace qvslv
