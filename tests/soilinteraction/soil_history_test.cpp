#include <gtest/gtest.h>

#include "tests/soilinteraction/soil_scene.h"

// What converged steps leave behind in the points, seen through the forces.

namespace qvtest {
namespace {

const qvref::body k_point = {1, 0.5, 0.25, 1, 1};

/// A single point at its touch-down place on level ground.
struct history_scene {
  SoilScene scene;

  explicit history_scene(const qvref::soil& soil) : scene(flat_mesh(8, 8, 0.5), soil, k_point) {
    put(2.0, 2.0, -0.05);
    scene.call(1);
  }
  void put(double x, double y, double z) { scene.body().position = {x + 0.25, y + 0.125, z}; }
  double shear_1() const { return scene.point(0, 0, 0); }
  double normal() const { return scene.point(0, 0, 2); }
  double dynamic_sinkage() const { return scene.point(0, 0, 7); }
};

/// The shear force of the loam after the shear displacement j at a depth, slipping ahead.
double shear_after(double j, double depth) {
  const qvref::soil soil = as_read(loam());
  return qvref::wong_shear(soil, j, 1.0, -qvref::bekker_pressure(soil, 0.25, -depth)) * 0.125;
}

TEST(ShearDisplacement, IsNoneUntilAStepHasConvergedInContact) {
  history_scene h(loam());
  h.scene.body().velocity = {1.0, 0.0, 0.0};
  for (const double x : {2.1, 2.2, 2.3}) {
    h.put(x, 2.0, -0.05);
    h.scene.call(0);
    EXPECT_EQ(h.shear_1(), 0.0) << "evaluations alone leave nothing behind";
  }
}

TEST(ShearDisplacement, IsTheWayFromTheFirstConvergedPlaceHoweverManyEvaluationsLieBetween) {
  history_scene h(loam());
  h.scene.body().velocity = {1.0, 0.0, 0.0};
  h.scene.call(2);
  EXPECT_EQ(h.shear_1(), 0.0) << "the step that touches down";
  for (const double x : {2.01, 2.5, 1.7, 2.03}) {
    h.put(x, 2.0, -0.05);
    h.scene.call(0);
    EXPECT_NEAR(h.shear_1(), shear_after(x - 2.0, 0.05), 1e-10) << x;
  }
  h.put(2.02, 2.0, -0.05);
  h.scene.call(2);
  EXPECT_NEAR(h.shear_1(), shear_after(0.02, 0.05), 1e-10);
  h.put(2.04, 2.0, -0.05);
  h.scene.call(2);
  EXPECT_NEAR(h.shear_1(), shear_after(0.04, 0.05), 1e-10) << "later steps do not move the start";
}

TEST(ShearDisplacement, IsMeasuredAlongTheTangentsOfTouchDownAlsoWhenTheBodyHasTurned) {
  history_scene h(loam());
  h.scene.call(2);
  h.scene.body().axes = rotation({0, 0, 1}, 1.5707963267948966);  // first tangent now along y
  const vec3 lever = times(h.scene.body().axes, {-0.25, -0.125, 0.0});
  h.scene.body().position = {2.03 - lever[0], 2.0 - lever[1], -0.05};
  h.scene.body().velocity = {0.0, 1.0, 0.0};
  h.scene.call(0);
  EXPECT_NEAR(h.shear_1(), shear_after(0.03, 0.05), 1e-9) << "way along x, slip along y";
}

TEST(ShearDisplacement, StartsAnewAfterTheContactWasLostInAConvergedStep) {
  history_scene h(loam());
  h.scene.body().velocity = {1.0, 0.0, 0.0};
  h.scene.call(2);
  h.put(2.1, 2.0, 0.01);
  h.scene.call(2);  // in the air
  h.put(2.2, 2.0, -0.05);
  h.scene.call(0);
  EXPECT_EQ(h.shear_1(), 0.0);
  h.scene.call(2);
  h.put(2.23, 2.0, -0.05);
  h.scene.call(0);
  EXPECT_NEAR(h.shear_1(), shear_after(0.03, 0.05), 1e-10);
}

TEST(ShearDisplacement, SurvivesALiftThatDidNotConverge) {
  history_scene h(loam());
  h.scene.body().velocity = {1.0, 0.0, 0.0};
  h.scene.call(2);
  h.put(2.1, 2.0, 0.01);
  h.scene.call(0);
  EXPECT_EQ(h.normal(), 0.0);
  h.put(2.03, 2.0, -0.05);
  h.scene.call(0);
  EXPECT_NEAR(h.shear_1(), shear_after(0.03, 0.05), 1e-10);
}

TEST(ShearDisplacement, IsLostOverAHoleAndBeyondTheRoadToo) {
  soil_mesh mesh = flat_mesh(8, 8, 0.5);
  mesh.triangles.erase(mesh.triangles.begin(), mesh.triangles.begin() + 2);  // the square at the origin
  for (const vec3& away : {vec3{0.25, 0.25, -0.05}, vec3{-3.0, 0.25, -0.05}, vec3{9.0, 0.25, -0.05}}) {
    SoilScene scene(mesh, loam(), k_point);
    const auto put = [&](const vec3& at) { scene.body().position = {at[0] + 0.25, at[1] + 0.125, at[2]}; };
    scene.body().velocity = {1.0, 0.0, 0.0};
    put({2.0, 2.0, -0.05});
    scene.call(1);
    scene.call(2);
    put(away);
    scene.call(2);
    EXPECT_EQ(scene.area(), 0.0);
    put({2.03, 2.0, -0.05});
    scene.call(0);
    EXPECT_EQ(scene.point(0, 0, 0), 0.0);
  }
}

TEST(ShearDisplacement, FollowsARoadThatMovesWithTheBody) {
  history_scene h(loam());
  h.scene.call(2);
  h.scene.road().position = {5.0, 1.0, 0.3};
  h.put(7.0, 3.0, 0.25);
  h.scene.body().velocity = {1.0, 0.0, 0.0};
  h.scene.call(0);
  EXPECT_NEAR(h.shear_1(), 0.0, 1e-9) << "the same place on the road";
}

TEST(SetUp, ASecondSetUpCallKeepsTheHistory) {
  history_scene h(loam());
  h.scene.body().velocity = {1.0, 0.0, 0.0};
  h.scene.call(2);
  h.put(2.03, 2.0, -0.05);
  h.scene.call(1);
  EXPECT_NEAR(h.shear_1(), shear_after(0.03, 0.05), 1e-10);
}

// --- the lag of the dynamic sinkage ------------------------------------------------------------------------------

qvref::soil slipping_loam() {
  qvref::soil soil = loam();
  soil.coefficient_ds = 0.2;
  soil.critical_pressure = 2e5;
  soil.exponent_pr = 0.8;
  soil.exponent_sd = 0.5;
  return soil;
}

double dynamic_sinkage_after(double last_pressure, double j) { return -0.2 * std::pow(last_pressure / 2e5, 0.8) * j; }

TEST(DynamicSinkage, LagsOneConvergedStepBehindThePressure) {
  history_scene h(slipping_loam());
  const double first_pressure = -qvref::bekker_pressure(slipping_loam(), 0.25, -0.05);
  h.scene.call(2);
  EXPECT_EQ(h.dynamic_sinkage(), 0.0);
  h.put(2.03, 2.0, -0.07);
  for (int evaluation = 0; evaluation < 3; ++evaluation) {
    h.scene.call(0);
    EXPECT_NEAR(h.dynamic_sinkage(), dynamic_sinkage_after(first_pressure, 0.03), 1e-15) << "from the first step";
  }
  h.scene.call(2);
  const double static_sinkage = 0.07 + dynamic_sinkage_after(first_pressure, 0.03);
  const double second_pressure = -qvref::bekker_pressure(slipping_loam(), 0.25, -static_sinkage);
  EXPECT_NEAR(h.normal(), second_pressure * 0.125, 1e-10);
  h.put(2.04, 2.0, -0.07);
  h.scene.call(0);
  EXPECT_NEAR(h.dynamic_sinkage(), dynamic_sinkage_after(second_pressure, 0.04), 1e-15) << "from the second step";
}

TEST(StaleNormalForce, APointStillInContactWhosePressureFellToZeroCarriesItsLastForceOnUntilItPressesAgain) {
  history_scene h(slipping_loam());
  h.scene.call(2);
  const double force = h.normal();
  ASSERT_GT(force, 1e3);
  h.put(2.9, 2.0, -0.05);  // slips so far that the dynamic sinkage takes all of it
  h.scene.call(2);
  ASSERT_LT(h.dynamic_sinkage(), -0.05);
  EXPECT_EQ(h.normal(), force);
  h.put(2.9, 2.0, -0.01);
  h.scene.call(0);
  EXPECT_EQ(h.dynamic_sinkage(), 0.0) << "the pressure of the last step was 0";
  EXPECT_LT(h.normal(), force);
}

// --- repeated, rejected and reordered evaluations ----------------------------------------------------------------

qvref::soil always_pressing() {
  qvref::soil soil = slipping_loam();
  soil.coefficient_ds = -0.2;  // slip digs in: the pressure never falls to 0 and no force goes stale
  return soil;
}

/// A plate driven over waves; `between` evaluations with other states before each converged step.
std::vector<std::vector<double>> drive(const soil_mesh& mesh, int between, unsigned seed) {
  random_source random(seed);
  SoilScene scene(mesh, always_pressing(), {1, 0.6, 0.4, 5, 4});
  std::vector<std::vector<double>> converged;
  scene.body().position = {1.0, 2.0, 0.0};
  scene.call(1);
  for (int step = 0; step < 30; ++step) {
    marker_state there;
    there.position = {1.0 + 0.05 * step, 2.0 + 0.01 * step, 0.1 * std::sin(0.8 * step)};
    there.axes = rotation({0.1, 0.3, 1.0}, 0.02 * step);
    there.velocity = {1.0, 0.2, 0.3 * std::cos(0.8 * step)};
    for (int k = 0; k < between; ++k) {
      scene.body() = there;
      for (double& p : scene.body().position) p += uniform(random, -0.1, 0.1);
      scene.body().velocity[0] = uniform(random, -2.0, 2.0);
      scene.call(0);
    }
    scene.body() = there;
    scene.call(2);
    converged.push_back(scene.result());
  }
  return converged;
}

TEST(History, RepeatedRejectedAndReorderedEvaluationsChangeNoConvergedStep) {
  random_source random(3);
  soil_mesh mesh = flat_mesh(8, 8, 0.5);
  make_rolling(mesh, 0.1, random);
  const auto plain = drive(mesh, 0, 1);
  const auto with_trials = drive(mesh, 4, 2), in_another_order = drive(mesh, 3, 77);
  double contact = 0.0;
  for (std::size_t step = 0; step < plain.size(); ++step) {
    EXPECT_EQ(first_difference(plain[step], with_trials[step]), -1) << "step " << step;
    EXPECT_EQ(first_difference(plain[step], in_another_order[step]), -1) << "step " << step;
    contact += plain[step][6];
  }
  EXPECT_GT(contact, 0.1);
}

TEST(History, TheSameEvaluationTwiceGivesTheSameBits) {
  history_scene h(always_pressing());
  h.scene.call(2);
  h.put(2.03, 2.01, -0.06);
  const std::vector<double> once = h.scene.call(0);
  EXPECT_EQ(first_difference(once, h.scene.call(0)), -1);
  EXPECT_EQ(first_difference(once, h.scene.call(3)), -1) << "any other flag is an ordinary evaluation";
  EXPECT_EQ(first_difference(once, h.scene.call(-1)), -1);
}

}  // namespace
}  // namespace qvtest
