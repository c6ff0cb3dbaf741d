#include "solver/model/akima.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace qvslv {

namespace {

/// Share of the steepest slope. Weights that sum up to less are rounding and decide nothing.
constexpr double k_rounding = 1e-9;

void check(const std::vector<double>& x, const std::vector<double>& y) {
  if (x.size() != y.size()) {
    throw std::invalid_argument(fmt::format("x has {} values and y has {}", x.size(), y.size()));
  }
  if (x.size() < 2) throw std::invalid_argument(fmt::format("{} point(s); a curve needs two or more", x.size()));
  for (size_t i = 0; i < x.size(); ++i) {
    if (!std::isfinite(x[i]) || !std::isfinite(y[i])) {
      throw std::invalid_argument(fmt::format("point {} ({}, {}) is not finite", i + 1, x[i], y[i]));
    }
    if (i > 0 && !(x[i] > x[i - 1])) {
      throw std::invalid_argument(fmt::format("x must increase from point to point; {} follows {}", x[i], x[i - 1]));
    }
  }
}

/// Slopes between the points, with two more on either side. Entry i + 2 is the slope from point i to point i + 1.
std::vector<double> extended_slopes(const std::vector<double>& x, const std::vector<double>& y) {
  const size_t pieces = x.size() - 1;
  std::vector<double> m(pieces + 4);
  for (size_t i = 0; i < pieces; ++i) m[i + 2] = (y[i + 1] - y[i]) / (x[i + 1] - x[i]);
  const double first_change = pieces > 1 ? m[3] - m[2] : 0.0;
  const double last_change = pieces > 1 ? m[pieces + 1] - m[pieces] : 0.0;
  m[1] = m[2] - first_change;
  m[0] = m[1] - first_change;
  m[pieces + 2] = m[pieces + 1] + last_change;
  m[pieces + 3] = m[pieces + 2] + last_change;
  return m;
}

}  // namespace

AkimaSpline::AkimaSpline(std::vector<double> x, std::vector<double> y) : m_x(std::move(x)), m_y(std::move(y)) {
  check(m_x, m_y);
  const std::vector<double> m = extended_slopes(m_x, m_y);
  double steepest = 0;
  for (const double slope : m) steepest = std::max(steepest, std::abs(slope));
  for (size_t i = 0; i < m_x.size(); ++i) {
    const double before = m[i + 1], after = m[i + 2];
    const double weight_before = std::abs(m[i + 3] - after), weight_after = std::abs(before - m[i]);
    const double weights = weight_before + weight_after;
    m_slope.push_back(weights > k_rounding * steepest ? (weight_before * before + weight_after * after) / weights
                                                      : 0.5 * (before + after));
  }
}

double AkimaSpline::operator()(double x, int order) const {
  const size_t last = m_x.size() - 1;
  if (x < m_x.front() || !(x <= m_x.back())) {
    const size_t end = x < m_x.front() ? 0 : last;
    if (order == 0) return m_y[end] + m_slope[end] * (x - m_x[end]);
    return order == 1 ? m_slope[end] : 0.0;
  }
  const auto behind = std::upper_bound(m_x.begin(), m_x.end(), x);
  const size_t i = std::min(static_cast<size_t>(behind - m_x.begin()), last) - 1;
  // The cubic of this piece in powers of s, the distance from its first point.
  const double width = m_x[i + 1] - m_x[i], s = x - m_x[i];
  const double mean = (m_y[i + 1] - m_y[i]) / width;
  const double c = (3 * mean - 2 * m_slope[i] - m_slope[i + 1]) / width;
  const double d = (m_slope[i] + m_slope[i + 1] - 2 * mean) / (width * width);
  if (order == 0) return m_y[i] + s * (m_slope[i] + s * (c + s * d));
  if (order == 1) return m_slope[i] + s * (2 * c + s * 3 * d);
  return 2 * c + 6 * d * s;
}

}  // namespace qvslv
