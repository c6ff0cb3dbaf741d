#include "common/kernels/powers.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "common/kernels/power_steps.h"

namespace qv {
namespace {

using power_steps::two_parts;

constexpr double k_infinity = std::numeric_limits<double>::infinity();
constexpr double k_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double k_smallest_normal = std::numeric_limits<double>::min();
constexpr double k_largest = std::numeric_limits<double>::max();

/// A value that the steps give, and whether it holds. 1 and 0 are as wide as the doubles beside them, for the loops.
struct plain_value {
  double value;
  std::uint64_t holds;
};

QV_IN_LOOPS plain_value plain_power(double base, const two_parts& exponent) {
  const two_parts t = power_steps::times(exponent, power_steps::logarithm(base));
  const bool holds =
      (base >= k_smallest_normal) & (base <= k_largest) & (std::fabs(t.high) <= power_steps::k_plain_limit);
  return {power_steps::exponential_of(t), holds ? std::uint64_t{1} : std::uint64_t{0}};
}

constexpr double k_vanishing = -746.0;  ///< e^t is rounded to 0 for all t below

QV_IN_LOOPS plain_value plain_exponential(double x) {
  const std::uint64_t plain = std::fabs(x) <= power_steps::k_plain_limit ? ~std::uint64_t{0} : 0;
  const std::uint64_t vanishes = x < k_vanishing ? 1 : 0;
  // A mask instead of a choice, of which the compiler would make a branch.
  const double value = power_steps::with_bits(power_steps::bits_of(power_steps::exponential_of({x, -0.0})) & plain);
  return {value, (plain & 1) | vanishes};
}

/// e^t where it may be subnormal, 0 or infinite. Only subnormal results are rounded a second time.
double wide_exponential(const two_parts& t) {
  if (t.high > 710.0) return k_infinity;
  if (t.high < k_vanishing) return 0.0;
  const power_steps::exponential_parts e = power_steps::split_exponential(t);
  const auto digits = static_cast<int>(e.place_of_k >> 52);  // of k, modulo 2^12
  const int k = digits < 2048 ? digits : digits - 4096;
  const int half = k / 2;  // 2^k itself may be no double
  const auto two_to = [](int n) { return power_steps::with_bits(static_cast<std::uint64_t>(1023 + n) << 52); };
  return (e.root + e.root * e.more) * two_to(half) * two_to(k - half);
}

/// Of a base that is positive and finite.
double wide_power(double base, double exponent) {
  const bool subnormal = base < k_smallest_normal;
  const two_parts log = subnormal ? power_steps::logarithm(base * 0x1p54, -54.0) : power_steps::logarithm(base);
  // Beyond 2^100 every exponent acts alike, and its product with the logarithm might overflow.
  const double y = std::clamp(exponent, -0x1p100, 0x1p100);
  return wide_exponential(power_steps::times(power_steps::split(y), log));
}

bool is_whole(double x) { return std::floor(x) == x; }
bool is_odd(double x) { return is_whole(x) && !is_whole(0.5 * x); }

/// Infinite or zero to the power of the exponent: the limit where it grows or where it vanishes.
double limit_of(bool grows) { return grows ? k_infinity : 0.0; }

/// The cases of C's pow that are not a positive, finite base under a finite exponent.
double special_power(double base, double exponent) {
  if (exponent == 0.0 || base == 1.0) return 1.0;
  if (base != base || exponent != exponent) return k_nan;
  const double size = std::fabs(base);
  if (std::fabs(exponent) > k_largest) return size == 1.0 ? 1.0 : limit_of((size > 1.0) == (exponent > 0.0));
  const bool ended = size == 0.0 || size > k_largest;
  if (base < 0.0 && !ended && !is_whole(exponent)) return k_nan;
  const double value = ended ? limit_of((size > 1.0) == (exponent > 0.0)) : wide_power(size, exponent);
  return std::signbit(base) && is_odd(exponent) ? -value : value;
}

double special_exponential(double x) { return x != x ? k_nan : wide_exponential({x, -0.0}); }

// The loops of a version. They take whole vectors of every width (`count` is a multiple of 8) and return 1 if all
// values hold, else 0.

QV_IN_LOOPS std::uint64_t power_loop(const double* __restrict bases, double exponent, double* __restrict values,
                                     std::uint64_t* __restrict holds, int count) {
  const two_parts y = power_steps::split(exponent);
  std::uint64_t all_hold = 1;
  for (int i = 0; i < count; ++i) {
    const plain_value p = plain_power(bases[i], y);
    values[i] = p.value;
    holds[i] = p.holds;
    all_hold &= p.holds;
  }
  return all_hold;
}

QV_IN_LOOPS std::uint64_t exponential_loop(const double* __restrict x, double* __restrict values,
                                           std::uint64_t* __restrict holds, int count) {
  std::uint64_t all_hold = 1;
  for (int i = 0; i < count; ++i) {
    const plain_value p = plain_exponential(x[i]);
    values[i] = p.value;
    holds[i] = p.holds;
    all_hold &= p.holds;
  }
  return all_hold;
}

std::uint64_t powers_128(const double* bases, double exponent, double* values, std::uint64_t* holds, int count) {
  return power_loop(bases, exponent, values, holds, count);
}
std::uint64_t exponentials_128(const double* x, double* values, std::uint64_t* holds, int count) {
  return exponential_loop(x, values, holds, count);
}

#if defined(__x86_64__)
// Not tuned for a processor: GCC then loads numbers from a table one by one. Some processors gather them by one
// instruction as fast, on others that is many times slower.
#define QV_FOR_256 __attribute__((target("avx2")))
#define QV_FOR_512 __attribute__((target("avx512f,avx512dq")))
QV_FOR_256 std::uint64_t powers_256(const double* bases, double exponent, double* values, std::uint64_t* holds,
                                    int count) {
  return power_loop(bases, exponent, values, holds, count);
}
QV_FOR_256 std::uint64_t exponentials_256(const double* x, double* values, std::uint64_t* holds, int count) {
  return exponential_loop(x, values, holds, count);
}
QV_FOR_512 std::uint64_t powers_512(const double* bases, double exponent, double* values, std::uint64_t* holds,
                                    int count) {
  return power_loop(bases, exponent, values, holds, count);
}
QV_FOR_512 std::uint64_t exponentials_512(const double* x, double* values, std::uint64_t* holds, int count) {
  return exponential_loop(x, values, holds, count);
}
#endif

constexpr int k_widest = 8;  ///< a loop takes a multiple of so many numbers

/// `loop` for all of a block's numbers, then `special` for those that its values do not hold for. `in` is not `out`.
template <typename Loop, typename Special>
void apply_to_whole_vectors(const Loop& loop, const Special& special, const double* in, double* out, int count) {
  std::uint64_t holds[k_block];
  if (loop(in, out, holds, count) != 0) return;
  for (int i = 0; i < count; ++i)
    if (holds[i] == 0) out[i] = special(in[i]);
}

/// The function of each number, block by block. `to` may be `from`.
template <typename Loop, typename Special>
void apply(const Loop& loop, const Special& special, const double* from, double* to, int count) {
  double copy[k_block];
  for (int done = 0; done < count; done += k_block) {
    const int here = std::min(count - done, k_block);
    const int whole = here / k_widest * k_widest;
    const double* in = from + done;
    double* out = to + done;
    if (from == to) in = std::copy_n(in, here, copy) - here;
    if (whole > 0) apply_to_whole_vectors(loop, special, in, out, whole);
    if (whole == here) continue;
    double last_in[k_widest] = {1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0}, last_out[k_widest];
    std::copy(in + whole, in + here, last_in);
    apply_to_whole_vectors(loop, special, last_in, last_out, k_widest);
    std::copy_n(last_out, here - whole, out + whole);
  }
}

const power_version& find_version_in_use() {
  const power_version* last = all_power_versions().begin();
  for (const power_version& version : all_power_versions())
    if (version.runs_here && version.pays) last = &version;
  return *last;
}

const power_version& version_in_use() {
  static const power_version& version = find_version_in_use();
  return version;
}

}  // namespace

void power_version::powers(const double* bases, double exponent, double* values, int count) const {
  apply([&](const double* in, double* out, std::uint64_t* holds,
            int padded) { return power_loop(in, exponent, out, holds, padded); },
        [exponent](double base) { return special_power(base, exponent); }, bases, values, count);
}

void power_version::exponentials(const double* x, double* values, int count) const {
  apply(exponential_loop, special_exponential, x, values, count);
}

power_versions all_power_versions() {
#if defined(__x86_64__)
  __builtin_cpu_init();
  static const power_version versions[] = {
      {"128 bits", true, true, powers_128, exponentials_128},
      {"256 bits", __builtin_cpu_supports("avx2") != 0, true, powers_256, exponentials_256},
      {"512 bits", __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512dq") != 0, false, powers_512,
       exponentials_512}};
#else
  static const power_version versions[] = {{"128 bits", true, true, powers_128, exponentials_128}};
#endif
  return {versions, std::size(versions)};
}

double power(double base, double exponent) {
  const plain_value p = plain_power(base, power_steps::split(exponent));
  return p.holds != 0 ? p.value : special_power(base, exponent);
}

double exponential(double x) {
  const plain_value p = plain_exponential(x);
  return p.holds != 0 ? p.value : special_exponential(x);
}

void powers(const double* bases, double exponent, double* values, int count) {
  version_in_use().powers(bases, exponent, values, count);
}

void exponentials(const double* x, double* values, int count) { version_in_use().exponentials(x, values, count); }

}  // namespace qv
