#include "common/kernels/angles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "common/kernels/angle_tables.h"
#include "tests/support/exact_number.h"

namespace qvtest {
namespace {

namespace t = qv::angle_tables;

struct angle_function {
  const char* name;
  double (*own)(double);
  int (*exact)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
};

const angle_function k_functions[] = {
    {"sine", qv::sine, mpfr_sin}, {"cosine", qv::cosine, mpfr_cos}, {"tangent", qv::tangent, mpfr_tan}};

double error_of(const angle_function& f, double angle) {
  exact_number exact(angle);
  f.exact(exact.get(), exact.get(), MPFR_RNDN);
  return exact.ulps_to(f.own(angle));
}

constexpr double k_one_rounding = 0.51;

TEST(Angles, HaveSineCosineAndTangentRoundedOnce) {
  std::mt19937_64 random(4);
  std::uniform_real_distribution<double> share(-1.0, 1.0);
  for (const angle_function& f : k_functions) {
    for (int i = 0; i < 2000; ++i) {
      const double x = share(random);
      for (const double angle : {x, 7.0 * x, 1e6 * x, std::exp2(-1000.0 * x * x)})
        EXPECT_LE(error_of(f, angle), k_one_rounding) << f.name << " of " << angle;
    }
  }
}

TEST(Angles, HaveSineCosineAndTangentRoundedOnceNextToWholeEighthsOfATurn) {
  for (const angle_function& f : k_functions) {
    for (int k = -64; k <= 64; ++k) {
      if (k == 0) continue;
      const double angle = k * 0.78539816339744828;
      for (const double off : {0.0, 1e-15, -1e-9, 0x1p-6, -0x1p-6})
        EXPECT_LE(error_of(f, angle + off), k_one_rounding) << f.name << " of " << angle << " and " << off;
    }
  }
}

TEST(Angles, OfZeroKeepTheirSignAndOfNoNumberAreNone) {
  EXPECT_EQ(qv::sine(0.0), 0.0);
  EXPECT_TRUE(std::signbit(qv::sine(-0.0)));
  EXPECT_TRUE(std::signbit(qv::tangent(-0.0)));
  EXPECT_EQ(qv::cosine(-0.0), 1.0);
  const double infinity = std::numeric_limits<double>::infinity();
  for (const angle_function& f : k_functions) {
    for (const double none : {infinity, -infinity, std::nan("")}) EXPECT_TRUE(std::isnan(f.own(none))) << f.name;
    EXPECT_LE(std::fabs(f.own(1e300)), 1e16) << f.name << " of an angle whose turns nobody can count";
  }
}

TEST(AngleTables, HoldAQuarterTurnInThreeParts) {
  exact_number quarter, inverse;
  mpfr_const_pi(quarter.get(), MPFR_RNDN);
  mpfr_div_ui(quarter.get(), quarter.get(), 2, MPFR_RNDN);
  mpfr_ui_div(inverse.get(), 1, quarter.get(), MPFR_RNDN);
  EXPECT_EQ(inverse.rounded(), t::k_quarters_per_one);
  for (int part = 0; part < 2; ++part) {
    const double scaled = std::ldexp(t::k_quarter[part], 32 * (part + 1));
    EXPECT_EQ(scaled, std::floor(scaled)) << "times a whole number below 2^20 it stays exact";
    mpfr_sub_d(quarter.get(), quarter.get(), t::k_quarter[part], MPFR_RNDN);
    EXPECT_LE(std::fabs(quarter.rounded()), std::ldexp(1.0, -32 * (part + 1) - 1));
  }
  EXPECT_EQ(quarter.rounded(), t::k_quarter[2]);
}

TEST(AngleTables, HoldSinesAndCosinesWithTheirRests) {
  for (int j = 0; j < t::k_entries; ++j) {
    exact_number sine(j / 32.0), cosine(j / 32.0);
    mpfr_sin(sine.get(), sine.get(), MPFR_RNDN);
    mpfr_cos(cosine.get(), cosine.get(), MPFR_RNDN);
    EXPECT_EQ(sine.rounded(), t::k_sine[j]);
    EXPECT_EQ(cosine.rounded(), t::k_cosine[j]);
    mpfr_sub_d(sine.get(), sine.get(), t::k_sine[j], MPFR_RNDN);
    mpfr_sub_d(cosine.get(), cosine.get(), t::k_cosine[j], MPFR_RNDN);
    EXPECT_EQ(sine.rounded(), t::k_sine_rest[j]);
    EXPECT_EQ(cosine.rounded(), t::k_cosine_rest[j]);
  }
}

}  // namespace
}  // namespace qvtest
