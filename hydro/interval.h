#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace qvhydro {

/// Positions or keys of a table in file order. One entry more than the file has: it repeats the last.
class interval_axis {
public:
  /// `count` zeros and the entry behind them.
  void resize(int count) { values_.assign(static_cast<std::size_t>(count) + 1, 0.0); }
  /// Repeats the last entry behind itself. To be called once all are known.
  void close();

  double operator[](int i) const { return values_[static_cast<std::size_t>(i)]; }
  double& operator[](int i) { return values_[static_cast<std::size_t>(i)]; }
  int count() const { return static_cast<int>(values_.size()) - 1; }
  double last() const { return (*this)[count() - 1]; }

  bool holds(int j, double x) const { return (*this)[j] <= x && x < (*this)[j + 1]; }
  /// The first j from 0 with a[j] <= x < a[j+1], or -1; a NaN is in no interval.
  /// @param guess  where it may be, between 0 and count() - 1: an answer near it costs no search
  int find(double x, int guess) const {
    if (!increasing_) return find_first(x);
    if (holds(guess, x)) return guess;
    return search(x);
  }

private:
  int search(double x) const;
  int find_first(double x) const;

  std::vector<double> values_;
  bool increasing_ = false;  ///< strictly, so that an interval that holds x is the only one
};

}  // namespace qvhydro
