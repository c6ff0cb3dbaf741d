#include "common/kernels/angles.h"

#include <limits>

#include "common/kernels/angle_tables.h"
#include "common/kernels/power_steps.h"

namespace qv {
namespace {

using power_steps::split;

/// A number as a sum of a double and what rounding took from it.
struct pair {
  double high, low;
};

/// a + b without a loss.
pair sum_of(double a, double b) {
  const double sum = a + b, b_in_sum = sum - a;
  return {sum, (a - (sum - b_in_sum)) + (b - b_in_sum)};
}

/// a b without a loss.
pair product_of(double a, double b) {
  const auto a2 = split(a), b2 = split(b);
  const double product = a * b;
  return {product, ((a2.high * b2.high - product) + a2.high * b2.low + a2.low * b2.high) + a2.low * b2.low};
}

struct sine_and_cosine {
  pair sine, cosine;
};

/// Of an angle from 0 to pi/4: those of the next whole 32nd by table, turned by what is left, s.
sine_and_cosine of_eighth_turn(const pair& angle) {
  namespace t = angle_tables;
  const double whole = std::floor(angle.high * 32.0 + 0.5);
  const auto j = static_cast<std::size_t>(whole);
  const pair s = sum_of(angle.high - whole * 0.03125, angle.low);
  const double square = s.high * s.high;
  // sin s = s + more, cos s = 1 + less
  const double more = s.low + s.high * square * (square * (1.0 / 120.0 - square * (1.0 / 5040.0)) - 1.0 / 6.0);
  const double less =
      square * (square * (1.0 / 24.0 - square * (1.0 / 720.0 - square * (1.0 / 40320.0))) - 0.5) - s.high * s.low;
  const double sin_j = t::k_sine[j], cos_j = t::k_cosine[j], sin_rest = t::k_sine_rest[j],
               cos_rest = t::k_cosine_rest[j];
  const pair up = product_of(cos_j, s.high), down = product_of(sin_j, s.high);
  const pair sine = sum_of(sin_j, up.high), cosine = sum_of(cos_j, -down.high);
  const double sine_low = up.low + (sin_rest + (cos_rest * s.high + (cos_j * more + sin_j * less)));
  const double cosine_low = -down.low + (cos_rest - (sin_rest * s.high - (cos_j * less - sin_j * more)));
  return {sum_of(sine.high, sine.low + sine_low), sum_of(cosine.high, cosine.low + cosine_low)};
}

pair negative(const pair& p) { return {-p.high, -p.low}; }

/// Of any angle: n quarter turns and at most an eighth more.
sine_and_cosine of_angle(double angle) {
  namespace t = angle_tables;
  constexpr double k_two_pi = 6.283185307179586, k_far = 1e6;
  if (!(std::fabs(angle) <= std::numeric_limits<double>::max())) {
    constexpr double k_nan = std::numeric_limits<double>::quiet_NaN();
    return {{k_nan, 0.0}, {k_nan, 0.0}};
  }
  const double near = std::fabs(angle) > k_far ? std::fmod(angle, k_two_pi) : angle;
  const double n = std::floor(near * t::k_quarters_per_one + 0.5);
  const pair first = sum_of(near - n * t::k_quarter[0], -n * t::k_quarter[1]);
  const pair left = sum_of(first.high, first.low - n * t::k_quarter[2]);
  const bool back = left.high < 0.0;
  sine_and_cosine r = of_eighth_turn(back ? negative(left) : left);
  if (back) r.sine = negative(r.sine);
  switch (static_cast<int>(n) & 3) {
    case 0:
      return r;
    case 1:
      return {r.cosine, negative(r.sine)};
    case 2:
      return {negative(r.sine), negative(r.cosine)};
    default:
      return {negative(r.cosine), r.sine};
  }
}

}  // namespace

double sine(double angle) {
  if (angle == 0.0) return angle;
  const pair s = of_angle(angle).sine;
  return s.high + s.low;
}

double cosine(double angle) {
  const pair c = of_angle(angle).cosine;
  return c.high + c.low;
}

double tangent(double angle) {
  if (angle == 0.0) return angle;
  const sine_and_cosine r = of_angle(angle);
  const double quotient = r.sine.high / r.cosine.high;
  const pair taken = product_of(quotient, r.cosine.high);
  const double left = ((r.sine.high - taken.high) - taken.low) + (r.sine.low - quotient * r.cosine.low);
  return quotient + left / r.cosine.high;
}

}  // namespace qv
