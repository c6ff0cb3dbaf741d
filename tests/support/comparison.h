#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace qvtest {

/// Same number, or both not-a-number. Zeros of either sign are the same.
inline bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

/// Index of the first entry that differs, or -1 if none does. If the lengths differ, the shorter length.
inline int first_difference(const std::vector<double>& a, const std::vector<double>& b) {
  if (a.size() != b.size()) return static_cast<int>(std::min(a.size(), b.size()));
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!same(a[i], b[i])) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace qvtest
