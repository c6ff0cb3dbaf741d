#include "common/kernels/power_tables.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/exact_number.h"

// The numbers of the tables against MPFR, and what the steps take for granted about them.
namespace qvtest {
namespace {

namespace t = qv::power_tables;

bool is_multiple_of(double unit, double x) { return std::floor(x / unit) == x / unit; }

/// Whether `low` is what is left of a number after `high`, rounded.
void expect_parts(const exact_number& whole, double high, double low, const char* what) {
  exact_number rest;
  mpfr_sub_d(rest.get(), const_cast<exact_number&>(whole).get(), high, MPFR_RNDN);
  EXPECT_EQ(rest.rounded(), low) << what;
  EXPECT_TRUE(is_multiple_of(0x1p-42, high)) << what;
  EXPECT_LE(std::fabs(low), 0x1p-43) << what << ": nothing is left that `high` could hold";
}

TEST(PowerTables, HoldTheLogarithmOfTwo) {
  exact_number ln2, step, steps;
  mpfr_const_log2(ln2.get(), MPFR_RNDN);
  expect_parts(ln2, t::k_ln2_high, t::k_ln2_low, "ln 2");
  mpfr_div_ui(step.get(), ln2.get(), 128, MPFR_RNDN);
  expect_parts(step, t::k_step_high, t::k_step_low, "ln 2 / 128");
  mpfr_ui_div(steps.get(), 128, ln2.get(), MPFR_RNDN);
  EXPECT_EQ(steps.rounded(), t::k_steps_per_one);
}

TEST(PowerTables, HoldTheLogarithmsOfTheReciprocals) {
  for (int i = 0; i < t::k_entries; ++i) {
    exact_number log(t::k_reciprocal[i]);
    mpfr_log(log.get(), log.get(), MPFR_RNDN);
    mpfr_neg(log.get(), log.get(), MPFR_RNDN);
    expect_parts(log, t::k_log_high[i], t::k_log_low[i], "-ln r");
  }
}

TEST(PowerTables, HoldTheRootsOfTwo) {
  for (int j = 0; j < t::k_entries; ++j) {
    exact_number root(j / 128.0), rest;
    mpfr_exp2(root.get(), root.get(), MPFR_RNDN);
    EXPECT_EQ(root.rounded(), t::k_root[j]);
    mpfr_div_d(rest.get(), root.get(), t::k_root[j], MPFR_RNDN);
    mpfr_sub_ui(rest.get(), rest.get(), 1, MPFR_RNDN);
    EXPECT_EQ(rest.rounded(), t::k_root_rest[j]);
  }
}

/// The lower border of part i of the significands.
double border(int i) {
  const double place = 53.5 + i;  // in parts, from 1/2 on
  return place < 128 ? 0.5 + place / 256 : 0.5 + 0.5 + (place - 128) / 128;
}

// m r - 1 is a whole number of last digits of m times last digits of r, and of these not more than 2^53.
TEST(PowerTables, HaveReciprocalsThatLeaveAnExactRest) {
  for (int i = 0; i < t::k_entries; ++i) {
    const double r = t::k_reciprocal[i];
    const double reach = std::fmax(std::fabs(border(i) * r - 1.0), std::fabs(border(i + 1) * r - 1.0));
    double last_of_r = 1.0;
    while (!is_multiple_of(last_of_r, r)) last_of_r *= 0.5;
    const double last_of_m = border(i) < 1.0 ? 0x1p-53 : 0x1p-52;
    EXPECT_LE(reach, 0x1p53 * last_of_m * last_of_r) << i;
    EXPECT_LE(reach, 0.00529) << i << ": the series ends with the eighth power";
    EXPECT_LE(r / last_of_r, 512) << i << ": its product with 26 digits is exact";
  }
}

TEST(PowerTables, HaveNoLogarithmAroundOneAndLargerOnesThanTheRestElsewhere) {
  EXPECT_EQ(t::k_reciprocal[74], 1.0);
  EXPECT_LT(border(74), 1.0);
  EXPECT_GT(border(75), 1.0);
  for (int i = 0; i < t::k_entries; ++i) {
    const double r = t::k_reciprocal[i];
    if (r == 1.0) {
      EXPECT_EQ(t::k_log_high[i], 0.0) << i;
      EXPECT_EQ(t::k_log_low[i], 0.0) << i;
    } else {
      EXPECT_GT(std::fabs(t::k_log_high[i]), std::fabs(border(i) * r - 1.0)) << i;
      EXPECT_GT(std::fabs(t::k_log_high[i]), std::fabs(border(i + 1) * r - 1.0)) << i;
    }
  }
}

}  // namespace
}  // namespace qvtest
