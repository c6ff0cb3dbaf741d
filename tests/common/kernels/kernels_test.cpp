#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <limits>
#include <vector>

#include "common/kernels/kernels_kept.h"

namespace {

constexpr double k_eps = std::numeric_limits<double>::epsilon();
constexpr double k_inf = std::numeric_limits<double>::infinity();

TEST(Normalisation, ZeroVectorIsFlaggedAndLeftAsItWas) {
  double a[3] = {0.0, -0.0, 0.0};
  int ierr = 7;
  qv::normalization_vec(a, ierr);
  EXPECT_EQ(ierr, 1);
  EXPECT_EQ(a[0], 0.0);
  EXPECT_TRUE(std::signbit(a[1]));
  double len = 3;
  ierr = 7;
  qv::normalization_vec(a, len, ierr);
  EXPECT_EQ(ierr, 1);
  EXPECT_EQ(len, 0.0);
  EXPECT_TRUE(std::signbit(a[1]));
}

TEST(Normalisation, ThreeFourFive) {
  double a[3] = {3, 0, 4}, b[3] = {3, 0, 4};
  int ierr = 7;
  qv::normalization_vec(a, ierr);
  EXPECT_EQ(ierr, 0);
  double len = 0;
  ierr = 7;
  qv::normalization_vec(b, len, ierr);
  EXPECT_EQ(ierr, 0);
  EXPECT_EQ(len, 5.0);
  const double unit[3] = {3 * (1.0 / 5.0), 0.0, 4 * (1.0 / 5.0)};  // times the reciprocal
  for (int c = 0; c < 3; ++c) {
    EXPECT_EQ(a[c], unit[c]);
    EXPECT_EQ(b[c], unit[c]);
    EXPECT_NEAR(unit[c], c == 0 ? 0.6 : c == 1 ? 0.0 : 0.8, k_eps);
  }
}

TEST(Normalisation, HasNoToleranceBelowWhichAVectorIsZero) {
  double a[3] = {0, 1e-150, 0};  // its square is far below epsilon, but not 0
  int ierr = 7;
  qv::normalization_vec(a, ierr);
  EXPECT_EQ(ierr, 0);
  EXPECT_NEAR(a[1], 1.0, 2 * k_eps);
}

TEST(Normalisation, AVectorWhoseSquareUnderflowsToZeroCountsAsZero) {
  double a[3] = {1e-200, 0, 0};
  double len = 5;
  int ierr = 7;
  qv::normalization_vec(a, len, ierr);
  EXPECT_EQ(ierr, 1);
  EXPECT_EQ(len, 0.0);
  EXPECT_EQ(a[0], 1e-200);
}

TEST(Normalisation, KeepsTheDirectionAndMakesTheLengthOne) {
  EXPECT_TRUE(rc::check([] {
    const auto drawn = *rc::gen::container<std::vector<int>>(3, rc::gen::inRange(-100000, 100001));
    RC_PRE(drawn[0] != 0 || drawn[1] != 0 || drawn[2] != 0);
    const double before[3] = {drawn[0] * 0.37, drawn[1] * 0.37, drawn[2] * 0.37};
    double a[3] = {before[0], before[1], before[2]}, len, across[3], length;
    int ierr = 7;
    qv::normalization_vec(a, len, ierr);
    RC_ASSERT(ierr == 0);
    RC_ASSERT(std::fabs(len - std::hypot(before[0], before[1], before[2])) <= 4 * k_eps * len);
    qv::vectlvec(a, before, across);
    for (double c : across) RC_ASSERT(std::fabs(c) <= 6 * k_eps * len);
    qv::vectrvec(a, a, length);
    RC_ASSERT(std::fabs(length - 1.0) <= 12 * k_eps);
  }));
}

// --- inverses -------------------------------------------------------------------------------------------------

TEST(Inverse, DeterminantIsTheVolumeSpannedByTheColumns) {
  EXPECT_TRUE(rc::check([] {
    const auto drawn = *rc::gen::container<std::vector<int>>(9, rc::gen::inRange(-9, 10));
    const std::vector<double> A(drawn.begin(), drawn.end());
    double det, c[3], volume;
    qv::matdet3(A.data(), det);
    qv::vectlvec(A.data(), A.data() + 3, c);
    qv::vectrvec(c, A.data() + 6, volume);
    RC_ASSERT(det == volume);
  }));
}

TEST(Inverse, TimesTheMatrixIsTheIdentity) {
  EXPECT_TRUE(rc::check([] {
    const auto drawn = *rc::gen::container<std::vector<int>>(9, rc::gen::inRange(-9, 10));
    const std::vector<double> A(drawn.begin(), drawn.end());
    double det, B[9], C[9], det_too, AB[9];
    qv::matdet3(A.data(), det);
    RC_PRE(det != 0.0);
    qv::matinv3(A.data(), B);
    qv::matinv3det(A.data(), C, det_too);
    RC_ASSERT(det_too == det);
    qv::matmat(A.data(), B, AB);
    for (int k = 0; k < 9; ++k) {
      RC_ASSERT(B[k] == C[k]);
      // Cofactors of integers are exact; each entry of B rounds once, |B| <= 162 / |det|, then three products.
      RC_ASSERT(std::fabs(AB[k] - (k % 4 == 0 ? 1.0 : 0.0)) <= 4 * 3 * 9 * 162 * k_eps);
    }
  }));
}

TEST(Inverse, OfTwoByTwoTimesTheMatrixIsTheIdentity) {
  const double A[4] = {2, 1, 4, 4};  // columns (2, 1) and (4, 4), determinant 4
  double B[4];
  qv::matinv2(A, B);
  const double expected[4] = {1, -0.25, -1, 0.5};
  for (int k = 0; k < 4; ++k) EXPECT_EQ(B[k], expected[k]) << k;
}

TEST(Inverse, OfASingularMatrixIsInfiniteOrNotANumber) {
  const double A[9] = {1, 2, 3, 2, 4, 6, 1, 0, 1};  // columns 0 and 1 are parallel
  double B[9], det = 5;
  qv::matinv3det(A, B, det);
  EXPECT_EQ(det, 0.0);
  for (double entry : B) EXPECT_FALSE(std::isfinite(entry));
  qv::matinv3(A, B);
  for (double entry : B) EXPECT_FALSE(std::isfinite(entry));
  const double zero[4] = {0, 0, 0, 0}, parallel[4] = {1, 2, 2, 4};
  double C[4];
  qv::matinv2(zero, C);
  for (double entry : C) EXPECT_TRUE(std::isnan(entry));
  qv::matinv2(parallel, C);
  for (double entry : C) EXPECT_TRUE(std::isinf(entry));
}

// --- scalars --------------------------------------------------------------------------------------------------

TEST(MinMax, FindsTheSmallestAndTheLargest) {
  EXPECT_TRUE(rc::check([] {
    const auto drawn = *rc::gen::nonEmpty(rc::gen::arbitrary<std::vector<int>>());
    const std::vector<double> a(drawn.begin(), drawn.end());
    double least = a[0], most = a[0], min = 0, max = 0;
    for (double x : a) {
      least = std::min(least, x);
      most = std::max(most, x);
    }
    qv::minmax_vec(a.data(), static_cast<int>(a.size()), min, max);
    RC_ASSERT(min == least);
    RC_ASSERT(max == most);
  }));
}

TEST(MinMax, OfNoEntriesIsTheFirstEntry) {
  const double a[2] = {4, 9};
  for (int n : {0, -1, -100}) {
    double min = 0, max = 0;
    qv::minmax_vec(a, n, min, max);
    EXPECT_EQ(min, 4);
    EXPECT_EQ(max, 4);
  }
}

TEST(MinMax, NotANumberInFrontStaysAndBehindIsPassedOver) {
  const double front[3] = {std::nan(""), 1, 2}, behind[3] = {1, std::nan(""), 2};
  double min = 0, max = 0;
  qv::minmax_vec(front, 3, min, max);
  EXPECT_TRUE(std::isnan(min) && std::isnan(max));
  qv::minmax_vec(behind, 3, min, max);
  EXPECT_EQ(min, 1);
  EXPECT_EQ(max, 2);
}

TEST(Sign, IsOneMinusOneOrZero) {
  struct {
    double x, sign;
  } const rows[] = {{3, 1}, {1e-300, 1}, {k_inf, 1}, {-2, -1}, {-1e-300, -1}, {-k_inf, -1}, {0.0, 0}, {-0.0, 0}};
  for (const auto& row : rows) {
    EXPECT_EQ(qv::fsign(row.x), row.sign) << row.x;
  }
  EXPECT_FALSE(std::signbit(qv::fsign(-0.0)));
  EXPECT_EQ(qv::fsign(std::nan("")), 0.0);
}

TEST(OrderOfMagnitude, CarriesTheRoundingOfItsProducts) {
  struct {
    double x, p;
  } const rows[] = {{7, 1.0},
                    {1, 1.0},
                    {9.999, 1.0},
                    {10, 9.999999999999998},
                    {50, 9.999999999999998},
                    {999, 99.99999999999999},
                    {0.5, 0.1},
                    {0.999, 0.1},
                    {0.05, 0.01}};
  for (const auto& row : rows) {
    double p = 0;
    qv::com_chiper(row.x, p);
    EXPECT_EQ(p, row.p) << row.x;
  }
}

TEST(OrderOfMagnitude, IsThePowerOfTenOfTheLeadingDigit) {
  EXPECT_TRUE(rc::check([] {
    const int exponent = *rc::gen::inRange(-300, 300);
    const double leading = *rc::gen::inRange(101, 1000) / 100.0 - 0.005;  // clear of both ends of the decade
    double p = 0;
    qv::com_chiper(leading * std::pow(10.0, exponent), p);
    // One rounding per multiplication, at most 300 of them, and one for the division.
    RC_ASSERT(std::fabs(p / std::pow(10.0, exponent) - 1.0) <= 310 * k_eps);
  }));
}

}  // namespace
