#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "qvbrisk/subroutines.h"
#include "tests/support/scripted_host.h"

namespace {

using qvtest::ScriptedHost;

constexpr double k_eps = std::numeric_limits<double>::epsilon();
constexpr double k_untouched = 77;

struct ball {
  double id;
  double diameter;
  double mass, velocity, spin;
};

/// Calls the report for these balls. The result has one more triple than they need, to see that it stays untouched.
std::vector<double> report(const std::vector<ball>& balls, ScriptedHost& host) {
  std::vector<double> par = {-99, static_cast<double>(balls.size())};
  for (const ball& b : balls) par.push_back(b.id);
  for (const ball& b : balls) par.push_back(b.diameter);
  for (const ball& b : balls) {
    const int id = static_cast<int>(b.id);
    host.masses[id] = b.mass;
    host.scalars[{"VM", id}] = b.velocity;
    host.scalars[{"WM", id}] = b.spin;
  }
  std::vector<double> result(3 * balls.size() + 3, k_untouched);
  qvballplacing_report(host.handle(), 1.5, par.data(), -1, -1, -1, result.data());
  for (size_t k = 3 * balls.size(); k < result.size(); ++k) EXPECT_EQ(result[k], k_untouched);
  EXPECT_TRUE(host.reports.empty());
  EXPECT_TRUE(host.stops.empty());
  return result;
}

TEST(BallReport, GivesDiameterAndBothEnergiesOfEveryBall) {
  ScriptedHost host;
  const std::vector<double> result = report({{11, 0.5, 8, 3, 4}, {12.9, 2, 5, 0.5, 10}}, host);
  EXPECT_EQ(result[0], 0.5);
  EXPECT_EQ(result[1], 36);                      // 8 * 9 / 2
  EXPECT_NEAR(result[2], 1.6, 4 * k_eps * 1.6);  // 0.4 * 8 * 0.0625 = 0.2, times 16 / 2
  EXPECT_EQ(result[3], 2);
  EXPECT_EQ(result[4], 0.625);                   // 5 * 0.25 / 2
  EXPECT_NEAR(result[5], 100, 4 * k_eps * 100);  // 0.4 * 5 * 1 = 2, times 100 / 2
  EXPECT_EQ(host.unanswered, 0);
}

TEST(BallReport, EnergiesAreThoseOfASolidSphere) {
  EXPECT_TRUE(rc::check([] {
    const auto drawn = *rc::gen::container<std::vector<std::vector<int>>>(
        rc::gen::container<std::vector<int>>(4, rc::gen::inRange(0, 100000)));
    std::vector<ball> balls;
    for (const auto& d : drawn) {
      balls.push_back({static_cast<double>(balls.size()) + 1, d[0] / 7.0, d[1] / 7.0, d[2] / 7.0, d[3] / 7.0});
    }
    ScriptedHost host;
    const std::vector<double> result = report(balls, host);
    for (size_t i = 0; i < balls.size(); ++i) {
      const ball& b = balls[i];
      const double translation = 0.5 * b.mass * b.velocity * b.velocity;
      const double rotation = 0.05 * b.mass * b.diameter * b.diameter * b.spin * b.spin;  // (2/5 m d^2/4) w^2 / 2
      RC_ASSERT(result[3 * i] == b.diameter);
      RC_ASSERT(std::fabs(result[3 * i + 1] - translation) <= 4 * k_eps * translation);
      RC_ASSERT(std::fabs(result[3 * i + 2] - rotation) <= 10 * k_eps * rotation);
    }
  }));
}

TEST(BallReport, TakesItsProductsInTheStatedOrder) {
  ScriptedHost host;
  const ball b = {3, 0.7, 1.1, 0.3, 1.3};
  const std::vector<double> result = report({b}, host);
  const double inertia = 0.4 * b.mass * std::pow(0.5 * b.diameter, 2.0);
  EXPECT_EQ(result[1], b.velocity * b.mass * 0.5 * b.velocity);
  EXPECT_EQ(result[2], b.spin * inertia * 0.5 * b.spin);
}

TEST(BallReport, AsksForMassAndBothSpeedsUnderTheSameId) {
  ScriptedHost host;
  host.log = true;
  report({{7.99, 1, 1, 1, 1}, {-3.5, 1, 1, 1, 1}}, host);
  EXPECT_EQ(host.unanswered, 0) << "the mass is known under this id only";
  EXPECT_EQ(host.requests, (std::vector<std::string>{"VM 7", "WM 7", "VM -3", "WM -3"}));
}

TEST(BallReport, WithoutBallsWritesNothing) {
  ScriptedHost host;
  host.log = true;
  report({}, host);
  EXPECT_TRUE(host.requests.empty());
}

TEST(BallReport, AtRestABallHasNoEnergy) {
  ScriptedHost host;
  const std::vector<double> result = report({{1, 0.25, 9, 0, 0}}, host);
  EXPECT_EQ(result[0], 0.25);
  EXPECT_EQ(result[1], 0);
  EXPECT_EQ(result[2], 0);
}

TEST(BallReport, WithoutADiameterSpinCarriesNoEnergy) {
  ScriptedHost host;
  const std::vector<double> result = report({{1, 0, 9, 2, 1e6}}, host);
  EXPECT_EQ(result[0], 0);
  EXPECT_EQ(result[1], 18);
  EXPECT_EQ(result[2], 0);
}

TEST(BallReport, ServicesThatFailLeaveZeros) {
  double par[4] = {0, 1, 5, 0.5};
  for (const char* answered : {"", "mass", "VM", "WM"}) {
    ScriptedHost host;
    host.masses[6] = 4;  // of another ball
    const std::string name = answered;
    if (name == "mass") host.masses[5] = 4;
    if (name == "VM" || name == "WM") host.scalars[{name, 5}] = 3;
    double result[3] = {k_untouched, k_untouched, k_untouched};
    qvballplacing_report(host.handle(), 0, par, 4, 0, 0, result);
    EXPECT_EQ(result[0], 0.5) << name;
    EXPECT_EQ(result[1], 0) << name;
    EXPECT_EQ(result[2], 0) << name;
    EXPECT_EQ(host.unanswered, name.empty() ? 3 : 2) << name;
    EXPECT_TRUE(host.reports.empty());
  }
}

TEST(BallReport, AFailedBallDoesNotBorrowFromTheOneBefore) {
  ScriptedHost host;
  host.masses[1] = 2;
  host.scalars[{"VM", 1}] = 3;
  host.scalars[{"WM", 1}] = 4;
  double par[6] = {0, 2, 1, 2, 1, 1};
  double result[6];
  qvballplacing_report(host.handle(), 0, par, 6, 0, 0, result);
  EXPECT_EQ(result[1], 9);
  EXPECT_EQ(result[4], 0);
  EXPECT_EQ(result[5], 0);
}

TEST(BallReport, ACountThatIsNoneWritesNothing) {
  const double inf = std::numeric_limits<double>::infinity();
  for (double count : {std::nan(""), inf, -inf, 3e9, -3e9, -1.0, -0.0, 0.9, -2147483648.0}) {
    ScriptedHost host;
    double par[4] = {0, count, 5, 0.5};
    double result[3] = {k_untouched, k_untouched, k_untouched};
    qvballplacing_report(host.handle(), 0, par, 4, 0, 0, result);
    for (double r : result) EXPECT_EQ(r, k_untouched) << count;
    EXPECT_EQ(host.unanswered, 0) << count;
    EXPECT_TRUE(host.reports.empty());
  }
}

TEST(BallReport, AnIdThatIsNoneHasADiameterAndNoEnergy) {
  const double inf = std::numeric_limits<double>::infinity();
  for (double id : {std::nan(""), inf, -inf, 3e9, -3e9, 1e300}) {
    ScriptedHost host;
    double par[6] = {0, 2, id, 1, 0.5, 0.25};
    host.masses[1] = 2;
    host.scalars[{"VM", 1}] = 3;
    double result[6];
    qvballplacing_report(host.handle(), 0, par, 6, 0, 0, result);
    EXPECT_EQ(result[0], 0.5) << id;
    EXPECT_EQ(result[1], 0) << id;
    EXPECT_EQ(result[2], 0) << id;
    EXPECT_EQ(result[3], 0.25) << id;
    EXPECT_EQ(result[4], 9) << id << ": the next ball is reported";
    EXPECT_TRUE(host.reports.empty());
  }
}

}  // namespace
