#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

constexpr double k_tolerance = 1e-7;  // integration at accuracy 1e-9, motions of order one

TEST(PrescribedMotion, AtPositionLevelFollowsItsExpressionAndDrivesTheSpeed) {
  TestModel built(2.0, 0.1);
  const int arm = built.add_body("arm", 1, {1, 1, 1});
  built.model.gravity = {3, -9.81, 0};
  Joint& joint = built.add_joint(JointType::revolute, 0, built.add_marker(arm, {0.5, 0, 0}));
  joint.motions.push_back({0, MotionLevel::position, expression("0.5*sin(2*t) + t^2")});
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    EXPECT_NEAR(out.at("joint0.angle", row), 0.5 * std::sin(2 * t) + t * t, 1e-14);
    EXPECT_NEAR(out.at("joint0.angle_rate", row), std::cos(2 * t) + 2 * t, 1e-11);  // differences of spacing 1e-3
  }
}

TEST(PrescribedMotion, AtVelocityLevelStartsFromTheInitialCoordinate) {
  TestModel built(2.0, 0.1);
  const int sled = built.add_body("sled", 1, {1, 1, 1});
  Joint& joint = built.add_joint(JointType::slider, 0, built.add_marker(sled, {0, 0, 0}));
  joint.position = {0.25};
  joint.motions.push_back({0, MotionLevel::velocity, expression("cos(3*t)")});
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    EXPECT_NEAR(out.at("joint0.travel_rate", row), std::cos(3 * t), 1e-14);
    EXPECT_NEAR(out.at("joint0.travel", row), 0.25 + std::sin(3 * t) / 3, k_tolerance);
  }
}

TEST(PrescribedMotion, OfOneCoordinateLeavesTheOthersOfTheJointFree) {
  TestModel built(1.0, 0.1);
  const int puck = built.add_body("puck", 2, {0.1, 0.1, 0.2});
  built.model.gravity = {0, -2, 0};
  Joint& joint = built.add_joint(JointType::planar, 0, built.add_marker(puck, {0, 0, 0}));
  joint.velocity = {1, 0, 3};
  joint.motions.push_back({1, MotionLevel::velocity, expression("0.5*t")});
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    EXPECT_NEAR(out.at("joint0.angle", row), t, k_tolerance);
    EXPECT_NEAR(out.at("joint0.x", row), 0.25 * t * t, k_tolerance);
    EXPECT_NEAR(out.at("joint0.y", row), 3 * t - t * t, k_tolerance);
  }
}

TEST(PrescribedMotion, MovesAMasslessCarrierThatNeedsNoInertia) {
  TestModel built(1.0, 0.1);
  const int carrier = built.add_body("carrier", 0, {0, 0, 0}), load = built.add_body("load", 1, {1, 1, 1});
  Joint& rail = built.add_joint(JointType::slider, 0, built.add_marker(carrier, {0, 0, 0}));
  rail.motions.push_back({0, MotionLevel::velocity, expression("2")});
  const int on_carrier = built.add_marker(carrier, {0, 0, 0}), on_load = built.add_marker(load, {0, 0, 0});
  built.add_joint(JointType::weld, on_carrier, on_load);
  const TestRun out = run_to_end(built);
  EXPECT_NEAR(out.position("load", out.rows.size() - 1)[0], 2, k_tolerance);
}

TEST(AppliedForce, GivesMassTimesAccelerationInTheAxesOfItsMarker) {
  constexpr double mass = 4;
  const Rotation askew = product(turn(2, 0.5), turn(0, -0.7));
  TestModel built(1.0, 0.25);
  const int block = built.add_body("block", mass, {1, 1, 1});
  const int axes = built.add_marker(k_ground, {0, 0, 0}, askew);
  built.add_force(1 + block, {"2", "3*t", "0"}).axes = axes;
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    expect_near(rotate(askew, {2 * t / mass, 1.5 * t * t / mass, 0}), out.velocity("block", row), k_tolerance);
    expect_near({0, 0, 0}, out.spin("block", row), k_tolerance, "through the centre of mass");
  }
}

TEST(AppliedForce, OffTheCentreTurnsTheBodyAsALeverDoes) {
  TestModel built(0.5, 0.5);
  const int block = built.add_body("block", 2, {0.4, 0.4, 0.4});
  // In the marker's own axes the force turns with the body, so its torque about the centre is constant.
  const int handle = built.add_marker(block, {0.5, 0, 0});
  AppliedForce& push = built.add_force(handle, {"0", "3", "0"}, {"0", "0", "0.5"});
  push.axes = handle;
  const TestRun out = run_to_end(built);
  expect_near({0, 0, (0.5 * 3 + 0.5) / 0.4 * 0.5}, out.spin("block", 1), k_tolerance);
}

TEST(AppliedForce, ReactionActsAtTheSamePointSoThatNothingTurnsTheWhole) {
  TestModel built(1.0, 0.1);
  const int a = built.add_body("a", 2, {0.5, 0.5, 0.5}), b = built.add_body("b", 3, {0.2, 0.2, 0.2});
  built.body(b).position = {1, 0.5, -0.2};
  const int on_a = built.add_marker(a, {0.1, 0.2, 0.3}), on_b = built.add_marker(b, {0, -0.3, 0.1});
  AppliedForce& push = built.add_force(on_a, {"5", "2*t", "-1"}, {"0.3", "0", "0.1"});
  push.reaction = on_b;
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const Vec3 pa = 2.0 * out.velocity("a", row), pb = 3.0 * out.velocity("b", row);
    expect_near({0, 0, 0}, pa + pb, k_tolerance);
    expect_near({0, 0, 0},
                cross(out.position("a", row), pa) + cross(out.position("b", row), pb) + 0.5 * out.spin("a", row) +
                    0.2 * out.spin("b", row),
                k_tolerance);
  }
  EXPECT_GT(norm(out.velocity("a", out.rows.size() - 1)), 1.0);
}

TestModel two_bodies_on_a_spring(double damping) {
  TestModel built(3.0, 0.1);
  const int a = built.add_body("a", 2, {0.5, 0.5, 0.5}), b = built.add_body("b", 3, {0.2, 0.2, 0.2});
  built.body(a).velocity = {0.1, 0.4, 0};
  built.body(b).position = {1, 0.5, -0.2};
  built.body(b).angular_velocity = {1, 2, 0};
  const int on_a = built.add_marker(a, {0.1, 0.2, 0.3}), on_b = built.add_marker(b, {0, -0.3, 0.1});
  Element& spring = built.add_element("spring", "spring_damper", ElementKind::force,
                                      {static_cast<double>(built.marker_id(on_a)),
                                       static_cast<double>(built.marker_id(on_b)), k_ground_id, 40.0, damping},
                                      6);
  spring.marker = on_a;
  spring.reaction = on_b;
  return built;
}

TEST(ForceElement, BetweenTwoFreeBodiesKeepsTheirCommonMomentum) {
  const TestRun out = run_to_end(two_bodies_on_a_spring(0.7));
  const auto linear = [&](size_t row) { return 2.0 * out.velocity("a", row) + 3.0 * out.velocity("b", row); };
  const auto angular = [&](size_t row) {
    return cross(out.position("a", row), 2.0 * out.velocity("a", row)) +
           cross(out.position("b", row), 3.0 * out.velocity("b", row)) + 0.5 * out.spin("a", row) +
           0.2 * out.spin("b", row);
  };
  for (size_t row = 0; row < out.rows.size(); ++row) {
    expect_near(linear(0), linear(row), k_tolerance);
    expect_near(angular(0), angular(row), k_tolerance);
  }
  const std::vector<double> kinetic = out.column("kinetic_energy");
  EXPECT_LT(kinetic.back(), 0.9 * *std::max_element(kinetic.begin(), kinetic.end())) << "the damper takes energy";
}

TEST(ForceElement, UndampedSpringSwingsWithItsClosedForm) {
  constexpr double mass = 2, stiffness = 50;
  TestModel built(2.0, 0.05);
  const int bob = built.add_body("bob", mass, {1, 1, 1});
  built.body(bob).position = {0.3, 0, -0.1};
  Element& spring =
      built.add_element("spring", "spring_damper", ElementKind::force, {1, k_ground_id, k_ground_id, stiffness, 0}, 6);
  spring.marker = 1;
  const TestRun out = run_to_end(built);
  const double omega = std::sqrt(stiffness / mass);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double c = std::cos(omega * out.at("time", row));
    expect_near({0.3 * c, 0, -0.1 * c}, out.position("bob", row), k_tolerance);
    EXPECT_NEAR(out.at("spring.r0", row), -stiffness * 0.3 * c, stiffness * k_tolerance);
  }
}

}  // namespace
