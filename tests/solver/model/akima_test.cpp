#include "solver/model/akima.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace qvslv {
namespace {

std::string complaint(const std::vector<double>& x, const std::vector<double>& y) {
  try {
    const AkimaSpline made(x, y);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "accepted";
}

std::vector<double> tabulated(const std::vector<double>& x, double (*f)(double)) {
  std::vector<double> y(x.size());
  std::transform(x.begin(), x.end(), y.begin(), f);
  return y;
}

/// From `first` on, as many steps as stay below `end`.
std::vector<double> places(double first, double end, double step) {
  std::vector<double> all;
  const int count = static_cast<int>((end - first) / step) + 1;
  all.reserve(static_cast<size_t>(count));
  for (int k = 0; k < count; ++k) all.push_back(first + k * step);
  return all;
}

double line(double x) { return 3 - 2 * x; }
double parabola(double x) { return x * x; }

TEST(AkimaSpline, TwoPointsMakeALineThatGoesOnBeyondThem) {
  const AkimaSpline spline({1, 3}, {5, -1});
  for (const double x : {-4.0, 1.0, 1.7, 3.0, 10.0}) {
    EXPECT_NEAR(spline(x), 8 - 3 * x, 1e-14) << x;
    EXPECT_NEAR(spline(x, 1), -3, 1e-14) << x;
    EXPECT_NEAR(spline(x, 2), 0, 1e-14) << x;
  }
}

TEST(AkimaSpline, IsExactOnALineWhateverItsSpacing) {
  const std::vector<double> x = {-2, -1.9, 0, 0.3, 4, 4.5};
  const AkimaSpline spline(x, tabulated(x, line));
  for (const double at : places(-4, 7, 0.13)) {
    EXPECT_NEAR(spline(at), line(at), 1e-13) << at;
    EXPECT_NEAR(spline(at, 1), -2, 1e-12) << at;
  }
}

TEST(AkimaSpline, IsExactOnAParabolaThroughEvenlySpacedPoints) {
  const std::vector<double> x = {-1, -0.5, 0, 0.5, 1, 1.5, 2};
  const AkimaSpline spline(x, tabulated(x, parabola));
  for (const double at : places(-1, 2, 0.07)) {
    EXPECT_NEAR(spline(at), at * at, 1e-14) << at;
    EXPECT_NEAR(spline(at, 1), 2 * at, 1e-13) << at;
    EXPECT_NEAR(spline(at, 2), 2, 1e-12) << at;
  }
}

TEST(AkimaSpline, PassesThroughItsPointsWithTheWeighedSlopeOfTheBook) {
  const std::vector<double> x = {0, 1, 2, 3, 4, 5, 6}, y = {0, 2, 1, 4, 4.5, 3, 3.5};
  const AkimaSpline spline(x, y);
  for (size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(spline(x[i]), y[i], 1e-14) << x[i];
  // Slopes 2 -1 3 0.5 -1.5 0.5; at x = 3: weights |-1.5 - 0.5| = 2 for 3 and |3 + 1| = 4 for 0.5.
  EXPECT_NEAR(spline(3, 1), (2 * 3 + 4 * 0.5) / 6, 1e-14);
  // At the start the slopes 2 -1 go on backwards as 5 and 8: weights 3 and 3.
  EXPECT_NEAR(spline(0, 1), (3 * 5 + 3 * 2) / 6.0, 1e-14);
}

TEST(AkimaSpline, DoesNotSwingOverBesideAStep) {
  const AkimaSpline spline({0, 1, 2, 3, 4, 5}, {0, 0, 0, 1, 1, 1});
  for (const double at : places(-1, 6, 0.01)) {
    EXPECT_GE(spline(at), 0) << at;
    EXPECT_LE(spline(at), 1 + 1e-15) << at;
  }
  EXPECT_EQ(spline(1.5), 0);
  EXPECT_EQ(spline(4.25), 1);
}

TEST(AkimaSpline, TakesTheMeanSlopeWhereTwoLinesMeet) {
  const AkimaSpline spline({-2, -1, 0, 1, 2}, {2, 1, 0, 1, 2});
  EXPECT_NEAR(spline(0, 1), 0, 1e-14);
  const AkimaSpline rounded({-0.2, -0.1, 0, 0.1, 0.2}, {0.2 * 0.7, 0.1 * 0.7, 0, 0.1 * 0.7, 0.2 * 0.7});
  EXPECT_NEAR(rounded(0, 1), 0, 1e-12) << "slopes that differ by a rounding are equal";
}

TEST(AkimaSpline, DerivativesAreThoseOfItsValue) {
  constexpr double h = 1e-5;
  const AkimaSpline spline({0, 0.7, 1, 2.2, 3, 3.1, 5}, {1, -1, 0.5, 2, 2, -3, 0});
  for (const double at : places(-0.515, 6, 0.0613)) {
    // Differences of order h^2 of cubics whose third derivative is below 1e4 here, and their rounding.
    EXPECT_NEAR(spline(at, 1), (spline(at + h) - spline(at - h)) / (2 * h), 1e-5) << at;
    EXPECT_NEAR(spline(at, 2), (spline(at + h, 1) - spline(at - h, 1)) / (2 * h), 1e-4 * (1 + std::abs(spline(at, 2))))
        << at;
  }
}

TEST(AkimaSpline, ValueAndSlopeGoOnWithoutAJumpAtItsEnds) {
  const AkimaSpline spline({0, 1, 2, 3}, {0, 2, 1, 5});
  for (const double end : {0.0, 3.0}) {
    EXPECT_NEAR(spline(end - 1e-9), spline(end + 1e-9), 1e-7);
    EXPECT_NEAR(spline(end - 1e-9, 1), spline(end + 1e-9, 1), 1e-6);
  }
  EXPECT_EQ(spline(-5, 2), 0);
  EXPECT_EQ(spline(8, 2), 0);
}

TEST(AkimaSpline, HasNoValueAtAPlaceThatIsNoNumber) {
  EXPECT_TRUE(std::isnan(AkimaSpline({0, 1}, {0, 1})(std::numeric_limits<double>::quiet_NaN())));
}

TEST(AkimaSpline, RefusesPointsThatMakeNoCurve) {
  EXPECT_EQ(complaint({0, 1, 2}, {0, 1}), "x has 3 values and y has 2");
  EXPECT_EQ(complaint({0}, {0}), "1 point(s); a curve needs two or more");
  EXPECT_EQ(complaint({0, 1, 1}, {0, 1, 2}), "x must increase from point to point; 1 follows 1");
  EXPECT_EQ(complaint({0, std::nan("")}, {0, 1}), "point 2 (nan, 1) is not finite");
}

}  // namespace
}  // namespace qvslv
