#include "hydro/interval.h"

#include <cmath>

namespace qvhydro {

void interval_axis::close() {
  values_.back() = last();
  increasing_ = true;
  for (int i = 0; i + 1 < count(); ++i) increasing_ = increasing_ && (*this)[i] < (*this)[i + 1];
}

int interval_axis::search(double x) const {
  const auto end = values_.end() - 1;
  const auto above = std::upper_bound(values_.begin(), end, x);
  if (above == values_.begin() || above == end || std::isnan(x)) return -1;
  return static_cast<int>(above - values_.begin()) - 1;
}

int interval_axis::find_first(double x) const {
  for (int j = 0; j < count(); ++j) {
    if (holds(j, x)) return j;
  }
  return -1;
}

}  // namespace qvhydro
