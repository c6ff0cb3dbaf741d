#pragma once

#include <string>
#include <vector>

#include "solver/data_files/table_tokens.h"

namespace qvslv {

/// One table of a CURRENT file: a horizontal speed of the water over a position, both in the water marker's axes.
struct CurrentTable {
  int mode = 0;  ///< 1: over x, and 0 outside the keys; any other: over y, and held beyond the first and last key
  std::vector<double> key, value;  ///< position [length] and speed [length/time], of equal number

  bool over_x() const { return mode == 1; }
  /// The speed at a position, linear between keys, as the subroutines interpolate it.
  double speed_at(double x, double y) const;
};

/// What a CURRENT file holds.
struct CurrentFile {
  CurrentTable along_x, along_y;  ///< speeds along the water marker's x and y axis
};

/// Reads one table with the subroutines' grammar: from the first token that cannot be read, all values stay 0. The
/// table is empty if its count is 0 or less, or if it declares more than 1 GiB that the file cannot fill.
/// @param declared  out: the count that the file declares
CurrentTable read_current_table(TableTokens& tokens, int& declared);

/// The text of a CURRENT file, with twelve digits. `remark` follows as the last line, which readers never reach.
std::string current_text(const CurrentFile& current, const std::string& remark);

}  // namespace qvslv
