#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace qvhydro {

/// Positions, times or keys of a table in the order of the file, in the model's units. The axis has one entry more than
/// the file, which repeats the last one, so that the interval behind the last entry exists and is empty.
///
/// Interval j holds x if a[j] <= x < a[j + 1]. Nothing below the first entry, at or behind the last one, or NaN is in
/// an interval. An axis that does not increase strictly is searched from its start, so that the first interval counts.
class interval_axis {
public:
  /// Makes `count` zeros and the entry behind them.
  void resize(int count) { m_values.assign(static_cast<std::size_t>(count) + 1, 0.0); }
  /// Repeats the last entry behind itself. To be called once all entries are filled in.
  void close();

  double operator[](int i) const { return m_values[static_cast<std::size_t>(i)]; }
  double& operator[](int i) { return m_values[static_cast<std::size_t>(i)]; }
  int count() const { return static_cast<int>(m_values.size()) - 1; }
  double last() const { return (*this)[count() - 1]; }

  bool holds(int j, double x) const { return (*this)[j] <= x && x < (*this)[j + 1]; }
  /// Finds the first interval that holds x, or -1.
  /// @param guess  interval that may hold x, between 0 and count() - 1; if it does, there is no search
  int find(double x, int guess) const {
    if (!m_increasing) return find_first(x);
    if (holds(guess, x)) return guess;
    return search(x);
  }

  const double* entries() const { return m_values.data(); }
  /// Whether the entries increase strictly: then an interval that holds x is the only one.
  bool increasing() const { return m_increasing; }

private:
  int search(double x) const;
  int find_first(double x) const;

  std::vector<double> m_values;
  bool m_increasing = false;  ///< strictly: then an interval that holds x is the only one
};

}  // namespace qvhydro
