#pragma once

#include <cstddef>

#include "common/files/large_vector.h"
#include "hydro/interval.h"

namespace qvhydro {

/// A table of numbers, row after row in one piece of memory.
class number_table {
public:
  /// Makes zeros: one row and one column more than `rows` and `columns`.
  void resize(int rows, int columns) {
    m_columns = static_cast<std::size_t>(columns) + 1;
    m_values.assign((static_cast<std::size_t>(rows) + 1) * m_columns, 0.0);
  }
  double* operator[](int row) { return m_values.data() + static_cast<std::size_t>(row) * m_columns; }
  const double* operator[](int row) const { return m_values.data() + static_cast<std::size_t>(row) * m_columns; }

private:
  std::size_t m_columns = 0;
  qv::large_vector<double> m_values;
};

/// Water surface over time and over the position along the water frame's x axis, as a WAVE file has it. Axes and tables
/// have one entry more than the file, which repeats the last one, so that a row or column can always be blended with
/// the next.
struct wave_table {
  interval_axis wave_time;      ///< T + 1 entries [time]
  interval_axis wave_x;         ///< X + 1 entries [length]
  number_table wave_elevation;  ///< T + 1 rows of X + 1 columns [length], water frame z
  number_table wave_velocity;   ///< T + 1 rows of X + 1 columns, vertical water velocity, positive up [length / time]
  int wave_rows = 0;            ///< T, number of rows in the file
  int wave_cols = 0;            ///< X, number of positions in the file
  int time_index = 0;           ///< row that the last call used
};

/// Where a time lies between two rows: value = w0 W[row] + w1 W[row + 1].
struct time_blend {
  int row = 0;
  double w0 = 0.0, w1 = 0.0;
};

/// Finds the blend for a time and keeps its row in `time_index` for the next search:
///
///   w0 = (t[i + 1] - time) / (t[i + 1] - t[i]),  w1 = 1 - w0     with t[i] <= time < t[i + 1]
///
/// Linear interpolation as documented in docs/floating-bodies.md, "The water".
///
/// Borders: at or past the last row w0 = 1 on the last row. A set-up call keeps the row and both weights are 0, so the
/// water stands at z = 0; so does a time that is NaN.
/// Kept: the search goes forward only. A time before the row of the last call takes that row as it is.
time_blend blend_at(wave_table& wave, double time, bool set_up_call);

/// A table at one moment: two of its rows and their weights.
class blended_rows {
public:
  blended_rows(const number_table& table, const time_blend& when)
      : m_row(table[when.row]), m_next(table[when.row + 1]), m_w0(when.w0), m_w1(when.w1) {}

  /// Value between the columns j and j + 1, whose shares are a and b = 1 - a. Rows are blended in time first.
  double at(int j, double a, double b) const { return b * blend(j + 1) + a * blend(j); }

private:
  double blend(int j) const { return m_row[j] * m_w0 + m_next[j] * m_w1; }

  const double* m_row;
  const double* m_next;
  double m_w0, m_w1;
};

}  // namespace qvhydro
