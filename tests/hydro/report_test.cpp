#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qvbrisk/subroutines.h"
#include "tests/hydro/hydro_scene.h"
#include "tests/hydro/module_state.h"

// The report of a floating body: what is summed, when it is consumed, and the attitude and levers it gives.

namespace qvtest {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr double k_degree = 3.141592653589793 / 180.0;
const char* const k_massless = "HYDRO FORCE REPORT ERROR : THE MASS EQUALS ZERO";

/// A box of mass 3 that is under water up to its middle, its force marker 0.25 above the surface.
class FloatingBox : public HydroScene {
public:
  FloatingBox() : HydroScene(box_hull(4, 2, 2)) {
    parameters.mass = 3.0;
    force_marker().position = {0, 0, 0.25};
  }
  void turn(const mat3& axes) { body().axes = axes; }
};

mat3 product(const mat3& A, const mat3& B) { return qvref::operator*(qvref::m33(A), qvref::m33(B)); }

void expect_near(const vec3& actual, const vec3& expected, double digits) {
  for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(actual[k], expected[k], digits) << k;
}

TEST(Report, GivesBuoyancyAndBothCentres) {
  FloatingBox scene;
  scene.parameters.density = 5.0;
  scene.call(0.0, 2);
  const hull_report r = scene.report();
  EXPECT_DOUBLE_EQ(r.buoyancy, 5.0 * 8.0);
  expect_near(r.buoyancy_centre, {0, 0, -0.5}, 1e-14);
  expect_near(r.mass_centre, {0, 0, 0.25}, 0.0);
}

TEST(Report, WeighsItsSubElementsByMassAndByBuoyancy) {
  FloatingBox scene;
  scene.parameters.subs = 2;
  scene.place({10, 0, 0}, rotation({0, 0, 1}, 0.0));
  scene.call(0.0, 2);
  scene.parameters.sub = 1;
  scene.parameters.mass = 1.0;
  scene.parameters.scale = 3.0;
  scene.place({20, 4, 0}, rotation({0, 0, 1}, 0.0));
  scene.call(0.0, 2);
  const hull_report r = scene.report();
  EXPECT_DOUBLE_EQ(r.buoyancy, 8.0 + 24.0);
  expect_near(r.mass_centre, {(3 * 10 + 20) / 4.0, 1.0, 0.0}, 1e-13);
  expect_near(r.buoyancy_centre, {(10 + 3 * 20) / 4.0, 3.0, -0.5}, 1e-13);
}

TEST(Report, SumsCallsWithFlagTwoOnlyAndAsManyAsThereAre) {
  FloatingBox scene;
  for (const int iflag : {0, 1, 3}) scene.call(0.0, iflag);
  scene.call_report();
  EXPECT_EQ(scene.take_report(), k_massless);
  for (int i = 0; i < 3; ++i) scene.call(0.0, 2);
  EXPECT_DOUBLE_EQ(scene.report().buoyancy, 3 * 8.0) << "sums only grow";
}

TEST(Report, ConsumesTheSums) {
  FloatingBox scene;
  scene.call(0.0, 2);
  EXPECT_DOUBLE_EQ(scene.report().buoyancy, 8.0);
  EXPECT_THAT(scene.call_report(), Each(0.0));
  EXPECT_EQ(scene.take_report(), k_massless);
  scene.call(0.0, 2);
  EXPECT_DOUBLE_EQ(scene.report().buoyancy, 8.0) << "and they fill again from zero";
}

TEST(Report, OfASetUpCallLeavesTheSumsAndGivesZeros) {
  FloatingBox scene;
  scene.points = {k_body_marker};
  scene.body().position = {1, 2, 0};
  scene.host.forces[scene.force_of_report] = {1, 2, 3};
  scene.call(0.0, 2);
  EXPECT_THAT(scene.call_report(1), Each(0.0));
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_DOUBLE_EQ(scene.report().buoyancy, 8.0);
}

TEST(Report, WithFlagZeroConsumesAsWithTwo) {
  FloatingBox scene;
  scene.call(0.0, 2);
  EXPECT_DOUBLE_EQ(scene.call_report(0)[0], 8.0);
  scene.call_report(2);
  EXPECT_EQ(scene.take_report(), k_massless);
}

TEST(Report, OfABodyWithoutMassIsRefusedEvenWhenItFloats) {
  FloatingBox scene;
  scene.parameters.mass = 0.0;
  scene.call(0.0, 2);
  EXPECT_THAT(scene.call_report(), Each(0.0));
  EXPECT_EQ(scene.take_report(), k_massless);
}

TEST(Report, OfABodyOutOfTheWaterPutsTheCentreOfBuoyancyIntoTheCentreOfMass) {
  FloatingBox scene;
  scene.place({1, 2, 30}, rotation({1, 2, 3}, 0.4));
  scene.call(0.0, 2);
  const hull_report r = scene.report();
  EXPECT_EQ(r.buoyancy, 0.0);
  EXPECT_EQ(r.first_lever, 0.0);
  EXPECT_EQ(r.second_lever, 0.0);
  for (const vec3& place : {r.mass_centre, r.buoyancy_centre, r.first_lever_point, r.second_lever_point}) {
    expect_near(place, {1, 2, 30}, 0.0);
  }
}

struct attitude_case {
  double heading, pitch, roll;  // [deg]
};

const attitude_case k_attitude_cases[] = {{0, 0, 0},    {0, 0, 20},   {0, 0, -20},   {0, 15, 0},
                                          {0, -15, 0},  {70, 10, 30}, {200, -35, 5}, {10, 0, 170},
                                          {0, 0, -170}, {-40, 80, 3}, {123, -5, -95}};

/// Heading about z, then pitch about y, then roll about x: the level frame keeps the heading, and the angles that the
/// report gives are the other two when one of them is small.
TEST(Angles, AreThoseBetweenTheBodyAndALevelFrameOfItsHeading) {
  for (const attitude_case& row : k_attitude_cases) {
    FloatingBox scene;
    const mat3 z = rotation({0, 0, 1}, row.heading * k_degree);
    const mat3 y = rotation({0, 1, 0}, row.pitch * k_degree), x = rotation({1, 0, 0}, row.roll * k_degree);
    const mat3 axes = product(z, product(x, y));  // roll first keeps the body's y axis upright over the level one
    scene.turn(axes);
    scene.call(0.0, 2);
    const hull_report r = scene.report();
    // In the level frame the body's axes are those of the rotation with the heading taken off.
    const vec3 level_x = qvref::cross({axes[3], axes[4], axes[5]}, {0, 0, 1});
    const double size = length(level_x);
    const vec3 lx = {level_x[0] / size, level_x[1] / size, 0}, ly = {-level_x[1] / size, level_x[0] / size, 0};
    const auto dot = [](const vec3& a, const vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; };
    const vec3 by = {axes[3], axes[4], axes[5]}, bz = {axes[6], axes[7], axes[8]}, bx = {axes[0], axes[1], axes[2]};
    EXPECT_NEAR(dot(lx, by), 0.0, 1e-15) << "the level x axis lies across the body's y axis";
    const auto turned = [](double radians) { return radians < 0 ? radians / k_degree + 360 : radians / k_degree; };
    EXPECT_NEAR(r.first_angle, turned(std::atan2(by[2], bz[2])), 1e-9);
    EXPECT_NEAR(r.second_angle, turned(std::atan2(-bx[2], std::hypot(dot(ly, bx), dot(lx, bx)))), 1e-9);
    EXPECT_GE(r.first_angle, 0.0);
    EXPECT_LE(r.first_angle, 360.0);
    EXPECT_GE(r.second_angle, 0.0);
    EXPECT_LE(r.second_angle, 360.0);
  }
}

TEST(Angles, AreRollAndPitchOfABodyThatOnlyRollsOrOnlyPitches) {
  const double angles[][2] = {{20, 20}, {-20, 340}, {100, 100}, {-1e-3, 359.999}, {0, 0}};
  for (const auto& [turn, expected] : angles) {
    FloatingBox scene;
    scene.turn(rotation({1, 0, 0}, turn * k_degree));
    scene.call(0.0, 2);
    const hull_report rolled = scene.report();
    EXPECT_NEAR(rolled.first_angle, expected, 1e-11) << turn;
    EXPECT_NEAR(rolled.second_angle, 0.0, 1e-11) << turn;
    if (std::fabs(turn) > 90) continue;
    scene.turn(rotation({0, 1, 0}, turn * k_degree));
    scene.call(0.0, 2);
    const hull_report pitched = scene.report();
    EXPECT_NEAR(pitched.first_angle, 0.0, 1e-11) << turn;
    EXPECT_NEAR(pitched.second_angle, expected, 1e-11) << turn;
  }
}

TEST(Angles, TooSmallForTheirDigitsBelowZeroStayWithinTheCircle) {
  FloatingBox scene;
  scene.turn(rotation({1, 0, 0}, -1e-17));
  scene.call(0.0, 2);
  const hull_report r = scene.report();
  EXPECT_GE(r.first_angle, 0.0);
  EXPECT_LE(r.first_angle, 360.0) << "what rounds to 360 may stay 360";
}

TEST(Levers, AreTheHorizontalWaysFromTheCentreOfMassToTheCentreOfBuoyancy) {
  FloatingBox scene;
  const double heading = 0.6;
  scene.turn(rotation({0, 0, 1}, heading));
  scene.force_marker().position = {-0.3, 0.7, 1.0};
  scene.call(0.0, 2);
  const hull_report r = scene.report();
  const vec3 x = {std::cos(heading), std::sin(heading), 0}, y = {-std::sin(heading), std::cos(heading), 0};
  const double along_x = 0.3 * x[0] - 0.7 * x[1], along_y = 0.3 * y[0] - 0.7 * y[1];
  EXPECT_NEAR(r.first_lever, std::fabs(along_x), 1e-13);
  EXPECT_NEAR(r.second_lever, std::fabs(along_y), 1e-13);
  expect_near(r.first_lever_point, {-0.3 + along_x * x[0], 0.7 + along_x * x[1], 1.0}, 1e-13);
  expect_near(r.second_lever_point, {-0.3 + along_y * y[0], 0.7 + along_y * y[1], 1.0}, 1e-13);
}

TEST(Levers, OfAHeeledBoxAreItsRightingLever) {
  // Righting lever of a wall-sided hull: BM (1 + tan2 / 2) sin about the keel point under the centre line (see
  // closed_hull_test).
  FloatingBox scene;
  const double phi = 0.3, bm = 2.0 * 2.0 / 12.0, t = std::tan(phi);
  scene.turn(rotation({1, 0, 0}, phi));
  const vec3 mass = times(scene.body().axes, {0, 0, 0.2});
  scene.force_marker().position = mass;
  scene.call(0.0, 2);
  const double lever = (bm * (1 + t * t / 2) - 0.5 - 0.2) * std::sin(phi);
  EXPECT_NEAR(scene.report().second_lever, std::fabs(lever), 1e-6);
}

TEST(LevelFrame, OfABodyWhoseYAxisStandsUprightHasNoHeading) {
  FloatingBox scene;
  scene.turn({1, 0, 0, 0, 0, 1, 0, -1, 0});
  scene.call(0.0, 2);
  const hull_report r = scene.report();
  EXPECT_EQ(r.first_lever, 0.0);
  EXPECT_EQ(r.second_lever, 0.0);
  EXPECT_NEAR(r.first_angle, 90.0, 1e-13);
}

TEST(Vertical, IsTheWatersThirdAxis) {
  FloatingBox scene;
  const mat3 tilt = rotation({1, 0, 0}, 20 * k_degree);
  scene.water().axes = tilt;
  scene.turn(tilt);
  scene.call(0.0, 2);
  EXPECT_NEAR(scene.report().first_angle, 0.0, 1e-13);
}

TEST(ReportedForce, IsTheThirdComponentInTheAxesOfItsMarker) {
  FloatingBox scene;
  scene.host.markers[77].axes = rotation({1, 0, 0}, 90 * k_degree);
  scene.marker_of_force = 77;
  scene.host.forces[scene.force_of_report] = {1, -2, 3};
  scene.call(0.0, 2);
  EXPECT_NEAR(scene.report().force, 2.0, 1e-15);
}

TEST(CheckPoints, GiveTheirHeightOverTheWaterAndTheirPlace) {
  FloatingBox scene;
  scene.water().axes = rotation({0, 1, 0}, 0.3);
  scene.host.markers[61].position = {1, 2, 3};
  scene.host.markers[62].position = {-4, 5, 6};
  scene.points = {62, 61};
  scene.call(0.0, 2);
  const std::vector<double> r = scene.call_report();
  ASSERT_EQ(r.size(), 26U);
  const auto height = [&](const vec3& p) {
    return transposed_times(scene.water().axes, {p[0] + 100.0, p[1], p[2]})[2];
  };
  EXPECT_THAT(
      (std::vector<double>(r.begin() + 18, r.end())),
      ElementsAre(testing::DoubleEq(height({-4, 5, 6})), -4, 5, 6, testing::DoubleEq(height({1, 2, 3})), 1, 2, 3));
}

TEST(Requests, OfAReportAreTheSameInASetUpCall) {
  FloatingBox scene;
  scene.host.markers[61] = {};
  scene.points = {61, k_body_marker};
  scene.call(0.0, 2);
  scene.host.log = true;
  for (const int iflag : {1, 2}) {
    scene.host.requests.clear();
    scene.call_report(iflag);
    EXPECT_THAT(scene.host.requests,
                ElementsAre("AM 5", "AM 8", "TFORCE 40 8 8", "TDISP 61 8 8", "TDISP 61", "TDISP 5 8 8", "TDISP 5"));
  }
}

TEST(ReportStore, OfTheModuleStaysAtZero) {
  FloatingBox scene;
  scene.call(0.0, 2);
  scene.report();
  EXPECT_THAT(qvhydro::s_HydroForce_Report[static_cast<std::size_t>(scene.parameters.id)], ElementsAre(0.0, 0.0));
}

}  // namespace
}  // namespace qvtest
