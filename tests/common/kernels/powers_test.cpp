#include "common/kernels/powers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/exact_number.h"

namespace qvtest {
namespace {

constexpr double k_infinity = std::numeric_limits<double>::infinity();
constexpr double k_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double k_tiny = std::numeric_limits<double>::denorm_min();
constexpr double k_normal = std::numeric_limits<double>::min();
constexpr double k_largest = std::numeric_limits<double>::max();

std::uint64_t bits_of(double x) {
  std::uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  return bits;
}

/// Random numbers, the same in every run.
class Numbers {
public:
  double between(double low, double high) { return low + (high - low) * std::ldexp(double(m_random() >> 11), -53); }
  /// As many in each octave.
  double spread(double low, double high) { return std::exp2(between(std::log2(low), std::log2(high))); }
  double of_any_bits() {
    const std::uint64_t bits = m_random();
    double x;
    std::memcpy(&x, &bits, sizeof x);
    return x;
  }

private:
  std::mt19937_64 m_random{20};
};

double exact_power(double base, double exponent, exact_number& value) {
  exact_number x(base), y(exponent);
  mpfr_pow(value.get(), x.get(), y.get(), MPFR_RNDN);
  return value.rounded();
}

double exact_exponential(double x, exact_number& value) {
  exact_number argument(x);
  mpfr_exp(value.get(), argument.get(), MPFR_RNDN);
  return value.rounded();
}

double power_error(double base, double exponent) {
  exact_number exact;
  exact_power(base, exponent, exact);
  return exact.ulps_to(qv::power(base, exponent));
}

double exponential_error(double x) {
  exact_number exact;
  exact_exponential(x, exact);
  return exact.ulps_to(qv::exponential(x));
}

/// The largest of `count` errors.
double largest(int count, const std::function<double()>& error) {
  double most = 0.0;
  for (int i = 0; i < count; ++i) most = std::fmax(most, error());
  return most;
}

// The steps before the one rounding to a double stay below 0.05 ulp.
constexpr double k_one_rounding = 0.55;

TEST(Power, IsRoundedOnceOverTheRangeOfTheLaws) {
  Numbers any;
  const double most = largest(8000, [&] { return power_error(any.spread(1e-12, 1e6), any.between(-3.0, 5.0)); });
  RecordProperty("ulp", std::to_string(most));
  EXPECT_LE(most, k_one_rounding);
}

TEST(Power, IsRoundedOnceUpToTheLargestAndSmallestNormalNumbers) {
  Numbers any;
  const double most = largest(8000, [&] {
    const double base = any.spread(k_normal, k_largest);
    return power_error(base, any.between(-708.3, 709.7) / std::log(base));
  });
  RecordProperty("ulp", std::to_string(most));
  EXPECT_LE(most, k_one_rounding);
}

TEST(Power, IsRoundedOnceForBasesNextToOneUnderLargeExponents) {
  Numbers any;
  const double most = largest(8000, [&] {
    double base = 1.0;
    while (base == 1.0) base = 1.0 + any.between(-1.0, 1.0) * any.spread(0x1p-52, 0x1p-2);
    return power_error(base, any.between(-708.3, 709.7) / std::log(base));
  });
  RecordProperty("ulp", std::to_string(most));
  EXPECT_LE(most, k_one_rounding);
}

TEST(Power, IsWithinAnUlpWhereBaseOrResultIsSubnormal) {
  Numbers any;
  const double most = largest(3000, [&] {
    const double base = any.spread(1e-3, 1e3);
    return power_error(base, any.between(-745.0, -707.0) / std::log(base));
  });
  RecordProperty("ulp", std::to_string(most));
  EXPECT_LE(most, 1.0);
  EXPECT_LE(largest(3000, [&] { return power_error(any.spread(k_tiny, k_normal), any.between(-0.9, 0.9)); }),
            k_one_rounding);
}

TEST(Exponential, IsRoundedOnceToNormalNumbersAndWithinAnUlpBelow) {
  Numbers any;
  double most = largest(8000, [&] { return exponential_error(any.between(-708.3, 709.7)); });
  most = std::fmax(most, largest(8000, [&] { return exponential_error(any.between(-8.0, 1.0)); }));
  most = std::fmax(most, largest(2000, [&] { return exponential_error(-any.spread(1e-20, 1.0)); }));
  RecordProperty("ulp", std::to_string(most));
  EXPECT_LE(most, k_one_rounding);
  EXPECT_LE(largest(3000, [&] { return exponential_error(any.between(-745.1, -708.3)); }), 1.0);
}

// Exact results are doubles, and nothing that is rounded once and off by less can miss them.
TEST(Power, IsExactWhereTheResultIsADouble) {
  Numbers any;
  for (int i = 0; i < 2000; ++i) {
    const double x = any.spread(1e-300, 1e300);
    EXPECT_EQ(qv::power(x, 1.0), x);
    EXPECT_EQ(qv::power(x, 0.0), 1.0);
    EXPECT_EQ(qv::power(1.0, x), 1.0);
    const auto half = double(float(any.spread(1e-18, 1e18)));  // 24 digits
    EXPECT_EQ(qv::power(half, 2.0), half * half);
    EXPECT_EQ(qv::power(half * half, 0.5), half);
    EXPECT_EQ(qv::power(-half * half, 1.0), -half * half);
    const double third = std::floor(any.between(1.0, 131072.0));  // 17 digits
    EXPECT_EQ(qv::power(third, 3.0), third * third * third);
    EXPECT_EQ(qv::power(-third, 3.0), -third * third * third);
  }
  for (int n = -1074; n <= 1023; ++n) EXPECT_EQ(qv::power(2.0, n), std::ldexp(1.0, n)) << n;
  EXPECT_EQ(qv::power(k_tiny, 1.0), k_tiny);
  EXPECT_EQ(qv::power(k_largest, 1.0), k_largest);
  EXPECT_EQ(qv::power(k_largest, -1.0), 1.0 / k_largest);
}

const double k_edges[] = {0.0,
                          -0.0,
                          k_tiny,
                          -k_tiny,
                          1e-310,
                          -1e-310,
                          k_normal,
                          -k_normal,
                          1e-20,
                          -1e-20,
                          0.5,
                          -0.5,
                          1.0,
                          -1.0,
                          1.5,
                          -1.5,
                          2.0,
                          -2.0,
                          3.0,
                          -3.0,
                          9007199254740991.0,
                          -9007199254740991.0,
                          9007199254740992.0,
                          1e20,
                          -1e20,
                          1e300,
                          -1e300,
                          k_largest,
                          -k_largest,
                          k_infinity,
                          -k_infinity,
                          k_nan,
                          0x1.fffffffffffffp-1,
                          0x1.0000000000001p0,
                          709.78,
                          709.79,
                          -745.13,
                          -745.14,
                          708.0,
                          -708.0};

// MPFR has the special cases of C's pow and exp. A result that is no number is positive, as 0 * infinity is not.
TEST(Power, HasTheSpecialCasesOfC) {
  for (const double base : k_edges) {
    for (const double exponent : k_edges) {
      exact_number exact;
      const double expected = exact_power(base, exponent, exact), value = qv::power(base, exponent);
      if (std::isnan(expected)) {
        EXPECT_EQ(bits_of(value), bits_of(k_nan)) << base << '^' << exponent;
      } else if (std::isinf(expected) || expected == 0.0) {
        EXPECT_EQ(bits_of(value), bits_of(expected)) << base << '^' << exponent;
      } else {
        EXPECT_LE(exact.ulps_to(value), 1.0) << base << '^' << exponent;
      }
    }
  }
}

TEST(Exponential, HasTheSpecialCasesOfC) {
  for (const double x : k_edges) {
    exact_number exact;
    const double expected = exact_exponential(x, exact), value = qv::exponential(x);
    if (std::isnan(expected)) {
      EXPECT_EQ(bits_of(value), bits_of(k_nan));
    } else if (std::isinf(expected) || expected == 0.0) {
      EXPECT_EQ(bits_of(value), bits_of(expected)) << x;
    } else {
      EXPECT_LE(exact.ulps_to(value), 1.0) << x;
    }
  }
}

// --- rows --------------------------------------------------------------------------------------------------------

/// Compares rows of all versions that run here with one number at a time, bit for bit.
void expect_rows_like_single_numbers(const std::vector<double>& in, double exponent) {
  std::vector<double> out(in.size());
  const int count = static_cast<int>(in.size());
  for (const qv::power_version& version : qv::all_power_versions()) {
    if (!version.runs_here) continue;
    version.powers(in.data(), exponent, out.data(), count);
    for (std::size_t i = 0; i < in.size(); ++i)
      ASSERT_EQ(bits_of(out[i]), bits_of(qv::power(in[i], exponent)))
          << version.name << ", " << in[i] << '^' << exponent;
    version.exponentials(in.data(), out.data(), count);
    for (std::size_t i = 0; i < in.size(); ++i)
      ASSERT_EQ(bits_of(out[i]), bits_of(qv::exponential(in[i]))) << version.name << ", exp " << in[i];
  }
}

TEST(RowsOfPowers, HaveTheBitsOfSingleOnesInTheRangeOfTheLaws) {
  Numbers any;
  std::vector<double> in(1000);
  for (const double exponent : {-3.0, -0.3, -1.0 / 3.0, 0.4, 0.5, 0.9, 1.0, 2.0, 5.0}) {
    for (double& x : in) x = any.spread(1e-12, 1e6);
    expect_rows_like_single_numbers(in, exponent);
    for (double& x : in) x = any.between(-50.0, 2.0);
    expect_rows_like_single_numbers(in, exponent);
  }
}

TEST(RowsOfPowers, HaveTheBitsOfSingleOnesForNumbersOfAnyBits) {
  Numbers any;
  std::vector<double> in(1000);
  for (int row = 0; row < 16; ++row) {
    for (double& x : in) x = any.of_any_bits();
    expect_rows_like_single_numbers(in, row % 2 == 0 ? any.of_any_bits() : any.between(-3.0, 5.0));
  }
}

TEST(RowsOfPowers, HaveTheBitsOfSingleOnesAtTheEdges) {
  const std::vector<double> in(std::begin(k_edges), std::end(k_edges));
  for (const double exponent : k_edges) expect_rows_like_single_numbers(in, exponent);
}

TEST(RowsOfPowers, OfAnyLengthMayReplaceTheirBasesAndTouchNothingElse) {
  for (const qv::power_version& version : qv::all_power_versions()) {
    if (!version.runs_here) continue;
    for (int count = 0; count <= 140; ++count) {
      std::vector<double> row(150), other(150);
      for (std::size_t i = 0; i < row.size(); ++i) row[i] = other[i] = 0.01 * double(i);
      version.powers(row.data(), -0.3, row.data(), count);
      version.exponentials(other.data(), other.data(), count);
      for (std::size_t i = 0; i < row.size(); ++i) {
        const double x = 0.01 * double(i);
        const bool inside = static_cast<int>(i) < count;
        ASSERT_EQ(row[i], inside ? qv::power(x, -0.3) : x) << version.name << ", " << i << " of " << count;
        ASSERT_EQ(other[i], inside ? qv::exponential(x) : x) << version.name << ", " << i << " of " << count;
      }
    }
  }
}

TEST(RowsOfPowers, AreThoseOfTheWidestVersionThatRunsHereAndPays) {
  Numbers any;
  std::vector<double> in(100), out(100), expected(100);
  for (double& x : in) x = any.spread(1e-12, 1e6);
  const qv::power_version* widest = nullptr;
  for (const qv::power_version& version : qv::all_power_versions())
    if (version.runs_here && version.pays) widest = &version;
  ASSERT_NE(widest, nullptr);
  qv::powers(in.data(), 0.7, out.data(), 100);
  widest->powers(in.data(), 0.7, expected.data(), 100);
  EXPECT_EQ(out, expected);
  qv::exponentials(in.data(), out.data(), 100);
  widest->exponentials(in.data(), expected.data(), 100);
  EXPECT_EQ(out, expected);
}

}  // namespace
}  // namespace qvtest
