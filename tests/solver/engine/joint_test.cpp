#include <gtest/gtest.h>

#include <cmath>

#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

// Integration at accuracy 1e-9 for a few seconds of motions of order one.
constexpr double k_tolerance = 1e-7;

double energy(const TestRun& out, size_t row) {
  return out.at("kinetic_energy", row) + out.at("potential_energy", row);
}

void expect_energy_kept(const TestRun& out, double tolerance) {
  for (size_t row = 1; row < out.rows.size(); ++row) {
    EXPECT_NEAR(energy(out, row), energy(out, 0), tolerance) << "at time " << out.at("time", row);
  }
}

TEST(FreeBody, FliesOnAParabolaWhileItsSpinKeepsEnergyAndAngularMomentum) {
  TestModel built(2.0, 0.1);
  const Vec3 moments = {0.2, 0.5, 0.6};
  const int brick = built.add_body("brick", 3.0, moments);
  built.model.gravity = {0, 0, -9.81};
  built.body(brick).position = {1, 2, 3};
  built.body(brick).velocity = {4, 0, 5};
  built.body(brick).angular_velocity = {0.1, 3.0, 0.05};  // about the middle axis: it tumbles
  const TestRun out = run_to_end(built);
  const auto angular_momentum = [&](size_t row) {
    const Rotation axes = out.orientation("brick", row);
    const Vec3 w = rotate(transposed(axes), out.spin("brick", row));
    return rotate(axes, {moments[0] * w[0], moments[1] * w[1], moments[2] * w[2]});
  };
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    expect_near({1 + 4 * t, 2, 3 + 5 * t - 0.5 * 9.81 * t * t}, out.position("brick", row), k_tolerance);
    expect_near(angular_momentum(0), angular_momentum(row), k_tolerance);
  }
  expect_energy_kept(out, 1e-6);
  EXPECT_GT(norm(out.spin("brick", out.rows.size() - 1) - out.spin("brick", 0)), 0.05) << "it did tumble";
}

TEST(FreeBody, StartsFromItsFrameAlsoWhenTheCentreOfMassIsElsewhere) {
  TestModel built(0.5, 0.5);
  const int club = built.add_body("club", 2.0, {0.1, 0.1, 0.1});
  built.body(club).center = {0.5, 0, 0};
  built.model.markers[1].position = {0.5, 0, 0};
  built.body(club).position = {1, 1, 1};
  built.body(club).orientation = turn(2, k_pi / 2);
  built.body(club).velocity = {0, 0, 0};
  built.body(club).angular_velocity = {0, 0, 2};
  const TestRun out = run_to_end(built);
  expect_near({1, 1.5, 1}, out.position("club", 0), 1e-12);
  expect_near({-1, 0, 0}, out.velocity("club", 0), 1e-12);  // w x (0, 0.5, 0)
  expect_near({1 - 0.5, 1.5, 1}, out.position("club", 1), k_tolerance, "its centre goes straight on");
}

TEST(FreeBody, ProductsOfInertiaAreEntriesOfItsMatrix) {
  TestModel built(0.1, 0.1);
  const int plate = built.add_body("plate", 1, {2, 3, 4});
  built.body(plate).inertia.xy = -0.5;
  built.body(plate).inertia.xz = 0.25;
  built.body(plate).inertia.yz = 0.125;
  const Vec3 w = {1, 2, 3};
  built.body(plate).angular_velocity = w;
  const Vec3 momentum = {2 * w[0] - 0.5 * w[1] + 0.25 * w[2], -0.5 * w[0] + 3 * w[1] + 0.125 * w[2],
                         0.25 * w[0] + 0.125 * w[1] + 4 * w[2]};
  EXPECT_NEAR(run_to_end(built).at("kinetic_energy", 0), 0.5 * dot(w, momentum), 1e-12);
}

TEST(Revolute, SmallSwingsTakeTheirPeriodFromInertiaAboutThePin) {
  constexpr double mass = 2, length = 0.8, inertia = 0.1, gravity = 9.81, start = 1e-3;
  TestModel built(5.0, 0.05);
  const int bob = built.add_body("bob", mass, {inertia, inertia, inertia});
  built.model.gravity = {0, -gravity, 0};
  const int top = built.add_marker(bob, {0, length, 0});
  built.add_joint(JointType::revolute, 0, top).position = {start};
  const TestRun out = run_to_end(built);
  const double omega = std::sqrt(mass * gravity * length / (inertia + mass * length * length));
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    // The period of finite swings is longer by start^2/16; accuracy 1e-9 is relative to unit angles.
    EXPECT_NEAR(out.at("joint0.angle", row), start * std::cos(omega * t),
                start * omega * t * start * start / 16 + 1e-7);
  }
  expect_energy_kept(out, 1e-7);
}

TEST(Revolute, TurnsAboutTheZAxisOfItsMarkers) {
  TestModel built(1.0, 0.25);
  const int disc = built.add_body("disc", 1, {0.2, 0.3, 0.4});
  const Rotation askew = product(turn(0, 0.7), turn(1, 0.2));
  const int in_ground = built.add_marker(k_ground, {1, 2, 3}, askew);
  const int in_disc = built.add_marker(disc, {0, 0, 0});
  Joint& pin = built.add_joint(JointType::revolute, in_ground, in_disc);
  pin.position = {0.4};
  pin.velocity = {1.5};
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const Rotation expected = product(askew, turn(2, 0.4 + 1.5 * out.at("time", row)));
    const Rotation found = out.orientation("disc", row);
    for (size_t k = 0; k < 9; ++k) EXPECT_NEAR(found[k], expected[k], k_tolerance) << "entry " << k;
  }
}

TEST(Slider, FallsAlongTheXAxisOfItsMarkers) {
  constexpr double slope = 0.6, gravity = 9.81;
  TestModel built(1.5, 0.25);
  const int sled = built.add_body("sled", 7, {1, 1, 1});
  built.model.gravity = {0, 0, -gravity};
  const int rail = built.add_marker(k_ground, {0, 0, 2}, turn(1, slope));  // x points down the slope
  const int runner = built.add_marker(sled, {0, 0, -0.1});
  Joint& joint = built.add_joint(JointType::slider, rail, runner);
  joint.position = {0.5};
  joint.velocity = {-1.0};
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    const double travel = 0.5 - t + 0.5 * gravity * std::sin(slope) * t * t;
    EXPECT_NEAR(out.at("joint0.travel", row), travel, k_tolerance);
    EXPECT_NEAR(out.at("joint0.travel_rate", row), -1 + gravity * std::sin(slope) * t, k_tolerance);
    const Vec3 expected = Vec3{0, 0, 2} + rotate(turn(1, slope), {travel, 0, 0.1});
    expect_near(expected, out.position("sled", row), k_tolerance);
  }
}

TEST(Cylindrical, FallsAndTurnsIndependently) {
  TestModel built(1.0, 0.25);
  const int screw = built.add_body("screw", 2, {0.3, 0.3, 0.1});
  built.model.gravity = {0, 0, -9.81};
  Joint& joint = built.add_joint(JointType::cylindrical, 0, built.add_marker(screw, {0, 0, 0}));
  joint.position = {0.2, 1.0};
  joint.velocity = {3.0, 0.5};
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    EXPECT_NEAR(out.at("joint0.angle", row), 0.2 + 3 * t, k_tolerance);
    EXPECT_NEAR(out.at("joint0.travel", row), 1 + 0.5 * t - 0.5 * 9.81 * t * t, k_tolerance);
    expect_near({0, 0, 3}, out.spin("screw", row), k_tolerance);
  }
}

TEST(Universal, TurnsAboutXThenAboutTheNewY) {
  constexpr double a = 0.7, b = -0.4, a_rate = 0.3, b_rate = 1.1;
  TestModel built(2.0, 0.25);
  const int rod = built.add_body("rod", 2, {0.3, 0.25, 0.1});
  built.model.gravity = {0, 0, -9.81};
  Joint& joint = built.add_joint(JointType::universal, 0, built.add_marker(rod, {0.1, 0.05, 0.6}));
  joint.position = {a, b};
  joint.velocity = {a_rate, b_rate};
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const Rotation expected = product(turn(0, out.at("joint0.angle_x", row)), turn(1, out.at("joint0.angle_y", row)));
    const Rotation found = out.orientation("rod", row);
    for (size_t k = 0; k < 9; ++k) EXPECT_NEAR(found[k], expected[k], 1e-12) << "entry " << k;
  }
  EXPECT_NEAR(out.at("joint0.angle_x", 0), a, 1e-15);
  EXPECT_NEAR(out.at("joint0.angle_y", 0), b, 1e-15);
  expect_near(Vec3{a_rate, 0, 0} + rotate(turn(0, a), {0, b_rate, 0}), out.spin("rod", 0), 1e-12);
  expect_energy_kept(out, 1e-6);
}

TEST(Planar, GlidesInTheParentsPlaneWhileItTurns) {
  TestModel built(1.0, 0.25);
  const int puck = built.add_body("puck", 2, {0.1, 0.1, 0.2});
  const Rotation table = product(turn(0, 0.3), turn(2, 1.0));
  const int on_table = built.add_marker(k_ground, {1, 0, 0}, table);
  Joint& joint = built.add_joint(JointType::planar, on_table, built.add_marker(puck, {0, 0, 0}));
  joint.position = {0.2, 0.5, -0.5};
  joint.velocity = {4, 1, 2};
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    EXPECT_NEAR(out.at("joint0.angle", row), 0.2 + 4 * t, k_tolerance);
    expect_near(Vec3{1, 0, 0} + rotate(table, {0.5 + t, -0.5 + 2 * t, 0}), out.position("puck", row), k_tolerance);
    const Rotation expected = product(table, turn(2, 0.2 + 4 * t));
    const Rotation found = out.orientation("puck", row);
    for (size_t k = 0; k < 9; ++k) EXPECT_NEAR(found[k], expected[k], k_tolerance) << "entry " << k;
  }
}

TEST(Ball, SwingsWithItsEnergyAndItsMomentumAboutTheVertical) {
  constexpr double mass = 2, length = 0.7;
  TestModel built(3.0, 0.1);
  const int bob = built.add_body("bob", mass, {0.05, 0.05, 0.05});
  built.model.gravity = {0, 0, -9.81};
  Joint& joint = built.add_joint(JointType::ball, 0, built.add_marker(bob, {0, 0, length}));
  joint.position = {0.5, -0.3, 0.2};
  joint.velocity = {0.4, 1.0, -0.6};
  const TestRun out = run_to_end(built);
  const Rotation start = product(product(turn(0, 0.5), turn(1, -0.3)), turn(2, 0.2));
  const Rotation found = out.orientation("bob", 0);
  for (size_t k = 0; k < 9; ++k) EXPECT_NEAR(found[k], start[k], 1e-12) << "entry " << k;
  expect_near({0.4, 1.0, -0.6}, out.spin("bob", 0), 1e-12);
  const auto vertical_momentum = [&](size_t row) {
    return mass * cross(out.position("bob", row), out.velocity("bob", row))[2] + 0.05 * out.spin("bob", row)[2];
  };
  for (size_t row = 0; row < out.rows.size(); ++row) {
    EXPECT_NEAR(norm(out.position("bob", row)), length, 1e-12);
    EXPECT_NEAR(vertical_momentum(row), vertical_momentum(0), k_tolerance);
  }
  expect_energy_kept(out, 1e-6);
}

TEST(FreeJoint, StartsFromAnglesAndPlaceInTheParentsAxes) {
  TestModel built(0.1, 0.1);
  const int probe = built.add_body("probe", 1, {1, 1, 1});
  const Rotation base = turn(2, 0.8);
  const int in_ground = built.add_marker(k_ground, {1, 1, 0}, base);
  Joint& joint = built.add_joint(JointType::free, in_ground, built.add_marker(probe, {0, 0, 0}));
  joint.position = {0.1, 0.2, 0.3, 4, 5, 6};
  joint.velocity = {0.7, 0.8, 0.9, 1, 2, 3};
  const TestRun out = run_to_end(built);
  expect_near(Vec3{1, 1, 0} + rotate(base, {4, 5, 6}), out.position("probe", 0), 1e-12);
  expect_near(rotate(base, {1, 2, 3}), out.velocity("probe", 0), 1e-12);
  expect_near(rotate(base, {0.7, 0.8, 0.9}), out.spin("probe", 0), 1e-12);
  const char* names[6] = {"angle_x", "angle_y", "angle_z", "x", "y", "z"};
  for (size_t k = 0; k < 6; ++k) {
    EXPECT_NEAR(out.at(std::string("joint0.") + names[k], 0), joint.position[k], 1e-12) << names[k];
  }
  EXPECT_NEAR(out.at("joint0.w_x", 0), 0.7, 1e-12);
  EXPECT_NEAR(out.at("joint0.z_rate", 0), 3, 1e-12);
}

TEST(Weld, KeepsTheChildInItsPlaceOnTheParent) {
  TestModel built(1.0, 0.2);
  const int arm = built.add_body("arm", 1, {1, 1, 1}), tool = built.add_body("tool", 1, {1, 1, 1});
  const Rotation askew = turn(0, 0.9);
  built.body(arm).angular_velocity = {0, 0, 1};
  const int on_arm = built.add_marker(arm, {2, 0, 0}, askew), on_tool = built.add_marker(tool, {0, 0, 0.5});
  built.add_joint(JointType::weld, on_arm, on_tool);
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const Rotation axes = out.orientation("arm", row);
    const Vec3 expected = out.position("arm", row) + rotate(axes, Vec3{2, 0, 0} - rotate(askew, {0, 0, 0.5}));
    expect_near(expected, out.position("tool", row), 1e-12);
    expect_near(out.spin("arm", row), out.spin("tool", row), 1e-12);
  }
}

TEST(Tree, AFreeBodyCarriesItsWheelsAndKeepsTheCommonMomentum) {
  TestModel built(2.0, 0.2);
  const int hull = built.add_body("hull", 5, {1, 1, 1}), wheel = built.add_body("wheel", 2, {0.2, 0.2, 0.2});
  built.body(hull).velocity = {1, 2, 3};
  const int axle = built.add_marker(hull, {1, 0, 0}), hub = built.add_marker(wheel, {0.3, 0, 0});
  built.add_joint(JointType::revolute, axle, hub).velocity = {5};
  const TestRun out = run_to_end(built);
  const Vec3 start = 5.0 * out.velocity("hull", 0) + 2.0 * out.velocity("wheel", 0);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    expect_near(start, 5.0 * out.velocity("hull", row) + 2.0 * out.velocity("wheel", row), k_tolerance);
  }
  expect_energy_kept(out, 1e-6);
}

}  // namespace
