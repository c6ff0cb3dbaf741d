#include "hydro/interval.h"

#include <cmath>

namespace qvhydro {

void interval_axis::close() {
  m_values.back() = last();
  m_increasing = true;
  for (int i = 0; i + 1 < count(); ++i) m_increasing = m_increasing && (*this)[i] < (*this)[i + 1];
}

int interval_axis::search(double x) const {
  const auto end = m_values.end() - 1;
  const auto above = std::upper_bound(m_values.begin(), end, x);
  if (above == m_values.begin() || above == end || std::isnan(x)) return -1;
  return static_cast<int>(above - m_values.begin()) - 1;
}

int interval_axis::find_first(double x) const {
  for (int j = 0; j < count(); ++j) {
    if (holds(j, x)) return j;
  }
  return -1;
}

}  // namespace qvhydro
