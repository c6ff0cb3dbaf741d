#pragma once

#include <cstdint>
#include <cstring>

#include "common/kernels/power_tables.h"
#include "common/kernels/vectors.h"

/// The operations that powers and exponentials are made of, each rounded once and in the order written here. There is
/// no branch and no fused multiply-add in them, so a loop over them gives the same bits for vectors of any width.
///
///   ln x  = k ln 2 - ln r + ln(1 + z),  x = 2^k m,  z = m r - 1        r: a short number near 1/m, from a table
///   x^y   = e^(y ln x)
///   e^t   = 2^(n/128) e^s,  s = t - n ln 2 / 128,  |s| <= ln 2 / 256   n: whole
///
/// The logarithm is held in two doubles, its relative error is below 2^-66; a power's, before its one rounding to a
/// double, stays below a twentieth of an ulp.
namespace qv::power_steps {

QV_IN_LOOPS std::uint64_t bits_of(double x) {
  std::uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  return bits;
}

QV_IN_LOOPS double with_bits(std::uint64_t bits) {
  double x;
  std::memcpy(&x, &bits, sizeof x);
  return x;
}

/// The first 26 binary digits of x: the product of two such numbers is exact, and so is x less them.
QV_IN_LOOPS double first_half(double x) { return with_bits(bits_of(x) & 0xfffffffff8000000); }

/// A number as a sum. `high` has 26 binary digits.
struct two_parts {
  double high, low;
};

QV_IN_LOOPS two_parts split(double x) { return {first_half(x), x - first_half(x)}; }

/// Natural logarithm of 2^more x, for a positive, finite x that is not subnormal; of any other a number without
/// meaning.
QV_IN_LOOPS two_parts logarithm(double x, double more = 0.0) {
  namespace t = power_tables;
  // Significands m run from 0.70898 to twice that, in 128 parts; 1 is in the middle of one. A bias keeps k positive.
  constexpr std::uint64_t k_first = 0x3fe6b00000000000, k_bias = 1024;
  const std::uint64_t place = bits_of(x) - k_first + (k_bias << 52);
  const auto part = static_cast<std::size_t>(place >> 45 & 127);
  const double m = with_bits((place & 0x000fffffffffffff) + k_first);
  // The last digits of the double 2^52 + n are those of the whole number n.
  const double k = with_bits((place >> 52) | 0x4330000000000000) - ((4503599627370496.0 + k_bias) - more);

  // z is exact: m high has 26 digits, r has 9, and z fits into 53.
  const double r = t::k_reciprocal[part];
  const two_parts m2 = split(m);
  const double z = (m2.high * r - 1.0) + m2.low * r;
  const two_parts z2 = split(z);
  const double half = 0.5 * z2.high;

  // ln(1 + z) = z - z^2/2 + z^3 (1/3 - z/4 + ..). The first two terms keep what their sums round off.
  const double start = k * t::k_ln2_high + t::k_log_high[part];  // exact: a multiple of 2^-42 below 2^10
  const double with_z = start + z;
  const double half_square = half * z2.high;
  const double high = with_z - half_square;
  const double lost = (z - (with_z - start)) + ((with_z - high) - half_square);
  const double square = z * z;
  const double series = (1.0 / 3.0 - z * 0.25) + square * ((0.2 - z * (1.0 / 6.0)) + square * (1.0 / 7.0 - z * 0.125));
  const double rest = (k * t::k_ln2_low + t::k_log_low[part]) - z2.low * (half + 0.5 * z);
  const double low = lost + (rest + z * square * series);

  const double first = first_half(high + low);
  return {first, (high - first) + low};
}

/// y ln x, whose `high` has 52 digits.
QV_IN_LOOPS two_parts times(const two_parts& y, const two_parts& log) {
  return {y.high * log.high, y.low * log.high + (y.high + y.low) * log.low};
}

/// e^t = root (1 + more) 2^k, with root from 1 to 2. For |t| up to 1000.
struct exponential_parts {
  double root, more;
  std::uint64_t place_of_k;  ///< k where a double has its exponent, modulo 2^64
};

QV_IN_LOOPS exponential_parts split_exponential(const two_parts& t) {
  namespace p = power_tables;
  constexpr double k_to_whole = 6755399441055744.0;  // 1.5 2^52: the last digits of a number plus this are whole
  const double shifted = t.high * p::k_steps_per_one + k_to_whole;
  const double n = shifted - k_to_whole;
  const std::uint64_t whole = bits_of(shifted);
  const auto entry = static_cast<std::size_t>(whole & 127);
  const double s = ((t.high - n * p::k_step_high) - n * p::k_step_low) + t.low;  // exact up to the last two roundings
  const double square = s * s;
  const double series = (0.5 + s * (1.0 / 6.0)) + square * (1.0 / 24.0 + s * (1.0 / 120.0));
  return {p::k_root[entry], p::k_root_rest[entry] + (s + square * series), (whole - (whole & 127)) << 45};
}

constexpr double k_plain_limit = 690.0;  ///< up to this |t|, exponential_of holds

/// e^t where it is far from subnormal, so that root times more loses no digits, and from infinite.
QV_IN_LOOPS double exponential_of(const two_parts& t) {
  const exponential_parts e = split_exponential(t);
  const double root = with_bits(bits_of(e.root) + e.place_of_k);
  return root + root * e.more;
}

}  // namespace qv::power_steps
