#pragma once

#include <cstddef>

#include "common/files/large_vector.h"
#include "hydro/interval.h"

namespace qvhydro {

/// Rows of numbers in one piece.
class number_table {
public:
  /// Zeros, and one row and one column more than said.
  void resize(int rows, int columns) {
    columns_ = static_cast<std::size_t>(columns) + 1;
    values_.assign((static_cast<std::size_t>(rows) + 1) * columns_, 0.0);
  }
  double* operator[](int row) { return values_.data() + static_cast<std::size_t>(row) * columns_; }
  const double* operator[](int row) const { return values_.data() + static_cast<std::size_t>(row) * columns_; }

private:
  std::size_t columns_ = 0;
  qv::large_vector<double> values_;
};

/// Water surface over time and the position along the water frame's x axis, as a WAVE file has it. Everything has one
/// entry more than the file: it repeats the last, so that the interval behind any row or column can be blended.
struct wave_table {
  interval_axis wave_time;      ///< T + 1 entries
  interval_axis wave_x;         ///< X + 1 entries
  number_table wave_elevation;  ///< T + 1 rows of X + 1 columns [length]
  number_table wave_velocity;   ///< likewise, vertical water velocity, positive upwards [length / time]
  int wave_rows = 0;            ///< T
  int wave_cols = 0;            ///< X
  int time_index = 0;           ///< row of the last evaluation
};

/// Where a time lies between two rows: row i counts w0, row i + 1 counts w1.
struct time_blend {
  int row = 0;
  double w0 = 0.0, w1 = 0.0;
};

/// The blend for a time, and the row kept for the next search. The set-up call keeps the row and blends nothing, so
/// that the water stands at zero. The search goes forward only: an earlier time takes the row that is kept, by design.
time_blend blend_at(wave_table& wave, double time, bool set_up_call);

/// A table at a moment: two rows and what they count.
class blended_rows {
public:
  blended_rows(const number_table& table, const time_blend& when)
      : row_(table[when.row]), next_(table[when.row + 1]), w0_(when.w0), w1_(when.w1) {}

  /// The value at column j + b, where a = 1 - b is the share of column j: rows are blended in time first.
  double at(int j, double a, double b) const { return b * blend(j + 1) + a * blend(j); }

private:
  double blend(int j) const { return row_[j] * w0_ + next_[j] * w1_; }

  const double* row_;
  const double* next_;
  double w0_, w1_;
};

}  // namespace qvhydro
