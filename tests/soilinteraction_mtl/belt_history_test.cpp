#include <gtest/gtest.h>

#include "soilinteraction_mtl/containers.h"
#include "tests/soilinteraction_mtl/belt_scene.h"

// What accepted steps leave behind in the belt's points, seen through the forces and in the records.

namespace qvtest {
namespace {

constexpr double k_depth = 0.05;

/// Two circles on level ground, the belt k_depth in it: an area of one, under one pressure.
struct history_scene {
  BeltScene scene;

  explicit history_scene(const qvref::soil& soil)
      : scene(flat_mesh(16, 8, 0.5, -2.0, -2.0), soil, level_circles(2, 2.0, 0.25, -k_depth)) {
    scene.call(1);
  }
  /// The vehicle carries the belt with `vehicle`, which circulates with `belt`.
  void slip(double vehicle, double belt) {
    scene.move({vehicle, 0.0, 0.0});
    scene.belt_speed() = belt;
  }
  void lift(double height) { scene.put(level_circles(2, 2.0, 0.25, height - k_depth)); }
  double shear() const { return scene.total(0); }
  const qvsoilinteractionmtl::Croad_contact_mtl& record(std::size_t row = 1) const {
    const auto road = static_cast<std::size_t>(scene.parameters.road);
    return qvsoilinteractionmtl::s_MTLsoil_forces[road][0][0][1].road_contacts[row][1];
  }
};

/// Shear stress of the loam at k_depth.
double stress(double j, double slip) {
  return qvref::wong_shear(as_read(loam()), j, slip, loam_pressure(0.5, k_depth));
}

// --- shear displacement ------------------------------------------------------------------------------------------

TEST(BeltShearDisplacement, IsNoneUntilAStepHasBeenAcceptedInContact) {
  history_scene h(loam());
  h.slip(1.0, 3.0);
  for (const double time : {0.1, 0.2, 0.3}) {
    h.scene.call(0, time);
    EXPECT_EQ(h.shear(), 0.0) << "evaluations alone leave nothing behind";
  }
  h.scene.call(2, 0.4);
  EXPECT_EQ(h.shear(), 0.0) << "nor has the step that touches down any";
}

TEST(BeltShearDisplacement, CountsMinusTheTimeOfTheLastAcceptedStepAsTheTimeSinceThen) {
  for (const double slip : {-2.0, 1.5}) {
    history_scene h(loam());
    h.slip(1.0, 1.0 - slip);
    h.scene.call(2, 0.01);
    for (const double time : {0.01, 0.5, 100.0}) {
      h.scene.call(0, time);
      EXPECT_NEAR(h.shear(), stress(0.01 * slip, slip), 1e-9) << "at " << time << ": the time of the call is no matter";
      EXPECT_NEAR(h.record().shear_disp[0], -0.01 * slip, 1e-16) << "against the slip";
    }
  }
}

TEST(BeltShearDisplacement, AddsWhatTheLastAcceptedStepHad) {
  history_scene h(loam());
  h.slip(1.0, 1.5);
  h.scene.call(2, 0.01);
  h.scene.call(2, 0.03);  // captures 0.5 * 0.01
  h.scene.call(0, 0.04);
  EXPECT_NEAR(h.record().shear_disp[0], 0.5 * (0.01 + 0.03), 1e-16);
  EXPECT_NEAR(h.shear(), stress(0.02, -0.5), 1e-9);
  h.scene.call(2, 0.04);
  h.scene.call(0, 0.05);
  EXPECT_NEAR(h.record().shear_disp[0], 0.5 * (0.01 + 0.03 + 0.04), 1e-16);
}

TEST(BeltShearDisplacement, StartsAfreshAtEveryCallWhileTheBeltIsAtRest) {
  history_scene h(loam());
  h.slip(-0.5, 0.0);
  for (const double time : {0.01, 0.02, 0.04}) h.scene.call(2, time);
  h.scene.call(0, 0.05);
  EXPECT_NEAR(h.record().shear_disp[0], 0.5 * 0.04, 1e-16) << "without what was captured";
  h.slip(-0.5, 1e-300);
  h.scene.call(0, 0.05);
  EXPECT_NEAR(h.record().shear_disp[0], 0.5 * (0.04 + 0.02), 1e-16) << "any speed but 0 turns the belt";
}

TEST(BeltShearDisplacement, ABeltWhoseSpeedIsNotANumberDoesNotCountAsAtRest) {
  history_scene h(loam());
  h.slip(0.0, 1.0);
  h.scene.call(2, 0.01);
  h.scene.call(2, 0.02);
  h.scene.move({0.0, -1.0, 0.0});
  h.scene.call(2, 0.03);
  h.scene.belt_speed() = std::numeric_limits<double>::quiet_NaN();
  h.scene.call(0, 0.04);
  EXPECT_NEAR(h.record().shear_disp[1], 0.02 + 0.03, 1e-16) << "across, where the belt's speed does not enter";
}

TEST(BeltShearDisplacement, StartsAnewAfterTheContactWasLostInAnAcceptedStep) {
  history_scene h(loam());
  h.slip(1.0, 1.5);
  h.scene.call(2, 0.01);
  h.scene.call(2, 0.02);
  h.lift(0.1);
  h.scene.call(2, 0.03);
  h.lift(0.0);
  h.scene.call(0, 0.04);
  EXPECT_EQ(h.shear(), 0.0);
  h.scene.call(2, 0.05);
  h.scene.call(0, 0.06);
  EXPECT_NEAR(h.record().shear_disp[0], 0.5 * 0.05, 1e-16);
}

TEST(BeltShearDisplacement, SurvivesALiftThatWasNotAccepted) {
  history_scene h(loam());
  h.slip(1.0, 1.5);
  h.scene.call(2, 0.01);
  h.scene.call(2, 0.02);
  h.lift(0.1);
  h.scene.call(0, 0.03);
  EXPECT_EQ(h.scene.total(2), 0.0);
  h.lift(0.0);
  h.scene.call(0, 0.03);
  EXPECT_NEAR(h.record().shear_disp[0], 0.5 * (0.01 + 0.02), 1e-16);
}

TEST(BeltShearDisplacement, IsKeptByASecondSetUpCall) {
  history_scene h(loam());
  h.slip(1.0, 1.5);
  h.scene.call(2, 0.01);
  h.scene.call(1, 0.02);
  EXPECT_NEAR(h.shear(), stress(0.005, -0.5), 1e-9);
}

// --- slip --------------------------------------------------------------------------------------------------------

TEST(BeltSlip, IsMeasuredOnTheVehiclesAxesAgainstGroundThatRunsWithTheBelt) {
  history_scene h(loam());
  h.scene.call(2, 0.01);
  // A quarter turn of the vehicle's axes alone: its x axis along y, its y axis, the axle, back along x.
  h.scene.vehicle().axes = rotation({0, 0, 1}, 1.5707963267948966);
  h.scene.vehicle().velocity = {0.25, 4.0, 0.0};
  h.scene.road().velocity = {0.0, 1.0, 0.0};
  h.scene.belt_speed() = 2.0;
  h.scene.call(0);
  EXPECT_NEAR(h.record().slip_velocity[0], 4.0 - (1.0 + 2.0), 1e-15);
  EXPECT_NEAR(h.record().slip_velocity[1], -0.25, 1e-15);
}

TEST(BeltSlip, TakesTheVehiclesAndTheRoadsTurningIn) {
  history_scene h(loam());
  h.scene.call(2, 0.01);
  h.scene.vehicle().angular_velocity = {0.0, 0.0, 3.0};
  h.scene.road().angular_velocity = {0.0, 0.0, 1.0};
  h.scene.call(0);
  const double y = 0.0, x = 0.5;  // of the record's point, from both markers
  EXPECT_NEAR(h.record().slip_velocity[0], -(3.0 - 1.0) * y, 1e-15);
  EXPECT_NEAR(h.record().slip_velocity[1], (3.0 - 1.0) * x, 1e-15);
}

TEST(BeltSlip, BelowTheThresholdCountsAsRest) {
  for (const auto& [speed, expected] : {std::pair{9.9e-9, 0.0}, {-9.9e-9, 0.0}, {1.1e-8, -1.1e-8}}) {
    history_scene h(loam());
    h.scene.call(2, 0.01);
    h.slip(0.0, speed);
    h.scene.call(0);
    EXPECT_EQ(h.record().slip_velocity[0], expected);
  }
}

TEST(BeltSlip, OfAPointWithoutContactAfterTheLastAcceptedStepIsNotMeasuredAndItsLastOneStands) {
  history_scene h(loam());
  h.slip(1.0, 1.5);
  h.scene.call(0);
  EXPECT_EQ(h.record().slip_velocity[0], 0.0) << "never measured";
  h.scene.call(2, 0.01);
  h.scene.call(0);
  EXPECT_EQ(h.record().slip_velocity[0], -0.5);
  h.lift(0.1);
  h.scene.call(2, 0.02);
  h.lift(0.0);
  h.slip(1.0, 7.0);
  h.scene.call(0);
  EXPECT_EQ(h.record().slip_velocity[0], -0.5);
}

TEST(BeltNormalVelocity, IsThatOfTheNodeAndItsTurningAgainstTheRoadAndItsTurning) {
  history_scene h(loam());
  h.scene.vehicle().velocity = {0.0, 0.0, 99.0};  // is no matter here
  h.scene.node(0).velocity = {5.0, 0.0, -0.5};
  h.scene.node(0).angular_velocity = {0.0, 2.0, 0.0};
  h.scene.node(0).axes = rotation({0, 1, 0}, 0.7);
  h.scene.road().velocity = {0.0, 0.0, 0.125};
  h.scene.road().angular_velocity = {0.0, 1.0, 0.0};
  h.scene.call(1);       // which fills the record
  const double x = 0.5;  // of the record's point, from the node and from the road's marker
  EXPECT_NEAR(h.record().normal_velocity, -0.5 - 2.0 * x - (0.125 - 1.0 * x), 1e-14);
}

// --- history in the records --------------------------------------------------------------------------------------

TEST(BeltHistory, GoesFromNoneToFirstToSustainedContactWithAcceptedStepsOnly) {
  history_scene h(loam());
  for (const int iflag : {1, 0, 3}) {
    h.scene.call(iflag);
    EXPECT_EQ(h.record().contact_state, 0.0);
  }
  for (const double state : {1.0, 2.0, 2.0}) {
    h.scene.call(2);
    EXPECT_EQ(h.record().contact_state, state);
    h.scene.call(0);
    EXPECT_EQ(h.record().contact_state, state);
  }
  h.lift(0.1);
  h.scene.call(2);
  EXPECT_EQ(h.record().contact_state, 0.0);
}

TEST(BeltHistory, KeepsThePressureTheSinkagesAndTheTimeOfTheAcceptedStep) {
  history_scene h(loam());
  h.scene.call(2, 0.5);
  EXPECT_NEAR(h.record().last_pressure, loam_pressure(0.5, k_depth), 1e-9);
  EXPECT_NEAR(h.record().last_static_sinkage, -k_depth, 1e-15);
  EXPECT_NEAR(h.record().max_sinkage, k_depth, 1e-15);
  EXPECT_EQ(h.record().last_update_time, 0.5);
  EXPECT_EQ(h.record().first_contact_tangent_1[0], 1.0);
  EXPECT_EQ(h.record().first_contact_tangent_2[1], 1.0);
  EXPECT_EQ(h.record().first_contact_position[0], 0.5);
  h.lift(0.02);
  h.scene.call(2, 0.75);
  EXPECT_NEAR(h.record().max_sinkage, k_depth, 1e-15) << "the largest";
  EXPECT_NEAR(h.record().last_static_sinkage, 0.02 - k_depth, 1e-15) << "the last";
  h.scene.put(level_circles(2, 2.0, 0.25, -k_depth), 0.125);
  h.scene.call(2, 1.0);
  EXPECT_EQ(h.record().first_contact_position[0], 0.5) << "where it touched down";
}

TEST(BeltHistory, OfALostContactIsNothingButTheTime) {
  history_scene h(loam());
  h.scene.call(2, 0.5);
  h.lift(0.1);
  h.scene.call(2, 0.75);
  EXPECT_EQ(h.record().last_update_time, 0.75);
  EXPECT_EQ(h.record().update_time, 0.0);
  for (const double value :
       {h.record().max_sinkage, h.record().last_pressure, h.record().last_static_sinkage, h.record().last_shear_disp[0],
        h.record().first_contact_tangent_1[0], h.record().first_contact_position[0]}) {
    EXPECT_EQ(value, 0.0);
  }
}

TEST(BeltHistory, AccumulatesNothingInTheRecordsOfTheSpansEnd) {
  history_scene h(loam());
  h.scene.call(2);
  const auto road = static_cast<std::size_t>(h.scene.parameters.road);
  EXPECT_EQ(qvsoilinteractionmtl::s_MTLsoil_forces[road][0][1][0].road_contacts[1][1].contact_state, 0.0);
}

// --- dynamic sinkage and what it does to the normal force --------------------------------------------------------

qvref::soil slipping_loam() {
  qvref::soil soil = loam();
  soil.coefficient_ds = 0.2;
  soil.critical_pressure = 2e5;
  soil.exponent_pr = 0.8;
  soil.exponent_sd = 0.5;
  return soil;
}

double dynamic_sinkage_after(double last_pressure, double j) { return -0.2 * std::pow(last_pressure / 2e5, 0.8) * j; }

TEST(BeltDynamicSinkage, LagsOneAcceptedStepBehindThePressure) {
  history_scene h(slipping_loam());
  h.slip(0.0, 1.0);
  h.scene.call(2, 0.03);
  EXPECT_EQ(h.scene.point(1, 1, 7), 0.0);
  h.lift(-0.02);
  for (int evaluation = 0; evaluation < 3; ++evaluation) {
    h.scene.call(0);
    EXPECT_NEAR(h.scene.point(1, 1, 7), dynamic_sinkage_after(loam_pressure(0.5, k_depth), 0.03), 1e-15);
  }
  h.scene.call(2, 0.04);
  const double second = loam_pressure(0.5, 0.07 + dynamic_sinkage_after(loam_pressure(0.5, k_depth), 0.03));
  EXPECT_NEAR(h.scene.total(2), second, 1e-8);
  h.scene.call(0);
  EXPECT_NEAR(h.scene.point(1, 1, 7), dynamic_sinkage_after(second, 0.03 + 0.04), 1e-15) << "from the second step";
}

TEST(BeltStaleNormalForce, ABeltStillInContactWhosePressureFellToZeroCarriesItsLastForceOnAndItsNodesShareIt) {
  history_scene h(slipping_loam());
  h.slip(0.0, 1.0);
  h.scene.call(2, 5.0);  // so late that the dynamic sinkage takes all of it
  const double force = h.scene.total(2);
  ASSERT_GT(force, 1e4);
  h.scene.call(2, 5.1);
  ASSERT_LT(h.scene.point(1, 1, 7), -k_depth);
  EXPECT_NEAR(h.scene.total(2), force, 1e-9);
  EXPECT_NEAR(h.scene.normal_sum(0)[2], 0.5 * force, 1e-9);
  EXPECT_NEAR(h.shear(), qvref::wong_shear(as_read(loam()), 5.0, -1.0, 0.0), 1e-9) << "of cohesion alone";
  h.slip(0.0, 0.0);
  h.lift(0.02);
  h.scene.call(0);
  EXPECT_NEAR(h.scene.total(2), loam_pressure(0.5, 0.03), 1e-9) << "the pressure of the last step was 0";
}

// --- repeated and rejected evaluations ---------------------------------------------------------------------------

/// Accepted steps over waves; `between` evaluations with other states before each.
std::vector<std::vector<double>> drive(const soil_mesh& mesh, int between, unsigned seed) {
  random_source random(seed);
  qvref::soil soil = slipping_loam();
  soil.coefficient_ds = -0.2;  // slip digs in: the pressure never falls to 0 and no force goes stale
  const std::vector<circle> chain = level_circles(4, 0.6, 0.2, 0.0);
  BeltScene scene(mesh, soil, chain);
  scene.call(1);
  std::vector<std::vector<double>> accepted;
  for (int step = 1; step <= 30; ++step) {
    for (int k = 0; k < between; ++k) {
      scene.put(chain, uniform(random, 0.0, 2.0), uniform(random, -0.2, 0.1));
      scene.move({uniform(random, -2.0, 2.0), 0.3, 0.1});
      scene.belt_speed() = uniform(random, -2.0, 2.0);
      scene.call(0, uniform(random, 0.0, 9.0));
    }
    scene.put(chain, 0.05 * step, 0.08 * std::sin(0.8 * step));
    scene.move({1.0, 0.2, 0.3 * std::cos(0.8 * step)});
    scene.belt_speed() = 1.2;
    accepted.push_back(scene.call(2, 0.001 * step));
  }
  return accepted;
}

TEST(BeltHistory, IsNotChangedByRepeatedRejectedAndReorderedEvaluations) {
  random_source random(3);
  soil_mesh mesh = flat_mesh(16, 8, 0.5, -1.0, -2.0);
  make_rolling(mesh, 0.05, random);
  const auto plain = drive(mesh, 0, 1), with_trials = drive(mesh, 4, 2), in_another_order = drive(mesh, 3, 77);
  double contact = 0.0;
  for (std::size_t step = 0; step < plain.size(); ++step) {
    // A point new in contact shows no slip of its own; nothing else of a trial may be seen.
    EXPECT_EQ(first_difference(plain[step], with_trials[step]), -1) << "step " << step;
    EXPECT_EQ(first_difference(plain[step], in_another_order[step]), -1) << "step " << step;
    contact += plain[step][4];
  }
  EXPECT_GT(contact, 1.0);
}

// The only thing that is remembered of calls that close no step: where the last call left the beginning of the span.
TEST(BeltHistory, OfASpanWhoseNodesHaveOneCentreIsTheLastCallOfAnyKind) {
  constexpr double k_radius = 0.25;
  BeltScene scene(flat_mesh(8, 8, 1.0, -2.0, -2.0), loam(),
                  {{0, 0.2, k_radius}, {1, 0.2, k_radius}, {2, 0.6, k_radius}});
  scene.call(1);
  const double chord = 2.0 * k_radius * std::sin(0.5 * std::atan(0.4));
  double corner = k_radius * std::tan(std::asin(0.5 * chord / k_radius));  // how far behind node 1 the spans meet
  ASSERT_NEAR(scene.point(4, 1, 3), 1.0 + corner, 1e-14);
  scene.put({{0, 0.2, k_radius}, {1, 0.2, k_radius}, {1, 0.2, k_radius}});
  for (const int iflag : {0, 0, 3, 2, 0}) {
    // The chord now runs from the tangent point to the corner before.
    const double next = k_radius * std::tan(std::asin(0.5 * corner / k_radius));
    scene.call(iflag);
    EXPECT_NEAR(scene.point(4, 1, 3), 1.0 + next, 1e-14) << "iflag " << iflag;
    EXPECT_LT(next, 0.6 * corner) << "equal calls differ";
    corner = next;
  }
  scene.put({{0, 0.2, k_radius}, {1, 0.2, k_radius}, {2, 0.6, k_radius}});
  scene.call(0);
  EXPECT_NEAR(scene.point(4, 1, 3), 1.0 + k_radius * std::tan(std::asin(0.5 * chord / k_radius)), 1e-14)
      << "a span that can be laid remembers nothing";
}

TEST(BeltHistory, TheSameEvaluationTwiceGivesTheSameBits) {
  history_scene h(slipping_loam());
  h.slip(1.0, 1.3);
  h.scene.call(2, 0.01);
  h.lift(-0.01);
  const std::vector<double> once = h.scene.call(0);
  EXPECT_EQ(first_difference(once, h.scene.call(0)), -1);
}

}  // namespace
}  // namespace qvtest
