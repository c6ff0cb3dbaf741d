#pragma once

#include <string>
#include <vector>

#include "solver/data_files/table_tokens.h"

namespace qvslv {

/// One table of a CURRENT file: a horizontal speed of the water over a position, in the water marker's axes.
struct CurrentTable {
  int mode = 0;  ///< 1: over x, nothing outside the keys; any other: over y, held beyond the first and last key
  std::vector<double> key, value;

  bool over_x() const { return mode == 1; }
  /// Linear between keys, as the subroutines take it from the table.
  double speed_at(double x, double y) const;
};

/// What a CURRENT file holds.
struct CurrentFile {
  CurrentTable along_x, along_y;
};

/// Reads one table with the subroutines' grammar: what cannot be read stays 0. Empty when its count is 0 or less or
/// when it declares more than 1 GiB that the file cannot fill; `declared` is that count.
CurrentTable read_current_table(TableTokens& tokens, int& declared);

/// The text of a CURRENT file, twelve digits; `remark` follows as the last line, which readers never reach.
std::string current_text(const CurrentFile& current, const std::string& remark);

}  // namespace qvslv
