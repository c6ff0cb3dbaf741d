#include <gtest/gtest.h>

#include "tests/soilinteraction_mtl/belt_scene.h"

// A track against closed forms, symmetry and frames.

namespace qvtest {
namespace {

constexpr double k_depth = 0.05;

soil_mesh level() { return flat_mesh(20, 8, 0.5, -5.0, -2.0); }

double loam_modulus(double width) { return loam().kc / width + loam().kphi; }

TEST(LevelTrack, CarriesItsAreaTimesThePressureSharedByItsNodes) {
  for (const int nodes : {2, 3, 5, 9}) {
    BeltScene scene(level(), loam(), level_circles(nodes, 0.5, 0.25, -k_depth));
    scene.parameters.width = 0.4;
    scene.parameters.n_long = 6;
    scene.call(1);
    const double span_force = loam_modulus(0.4) * std::pow(k_depth, loam().n) * 0.5 * 0.4;
    EXPECT_NEAR(scene.total(2), (nodes - 1) * span_force, 1e-11 * nodes * span_force);
    EXPECT_NEAR(scene.contact_sum()[2], (nodes - 1) * span_force, 1e-11 * nodes * span_force);
    for (int node = 0; node < nodes; ++node) {
      const bool at_an_end = node == 0 || node == nodes - 1;
      EXPECT_NEAR(scene.normal_sum(node)[2], at_an_end ? 0.5 * span_force : span_force, 1e-11 * span_force);
    }
  }
}

TEST(LevelTrack, SinksUntilItsAreaTimesThePressureIsItsWeight) {
  const double weight = 3e4, area = 3.0 * 0.5 * 0.4;
  const double expected = std::pow(weight / (area * loam_modulus(0.4)), 1.0 / loam().n);
  const std::vector<circle> chain = level_circles(4, 0.5, 0.25, 0.0);
  BeltScene scene(level(), loam(), chain);
  scene.parameters.width = 0.4;
  scene.call(1);
  double low = 0.0, high = 1.0;
  for (int halving = 0; halving < 60; ++halving) {
    const double depth = 0.5 * (low + high);
    scene.put(chain, 0.0, -depth);
    scene.call(0);
    (scene.total(2) < weight ? low : high) = depth;
  }
  EXPECT_NEAR(low, expected, 1e-12);
}

/// Sprocket and idler high, one wheel low in the middle.
std::vector<circle> symmetric_gear() { return {{-1.0, 0.3, 0.2}, {0.0, 0.15, 0.25}, {1.0, 0.3, 0.2}}; }

TEST(SymmetricGear, PressesSymmetrically) {
  BeltScene scene(level(), loam(), symmetric_gear());
  scene.call(1);
  const int last = scene.rows() - 1;
  int pressing = 0;
  for (int row = 0; row <= last; ++row) {
    if (row != 0) {  // the first point has the area
      EXPECT_NEAR(scene.point(row, 0, 0), row == last ? scene.point(0, 1, 0) * -1.0 : -scene.point(last - row, 0, 0),
                  1e-8);
    }
    EXPECT_NEAR(scene.point(row, 0, 2), scene.point(last - row, 2, 2), 1e-8) << "row " << row;
    EXPECT_NEAR(scene.point(row, 1, 3), -scene.point(last - row, 1, 3), 1e-14);
    EXPECT_NEAR(scene.point(row, 1, 6), scene.point(last - row, 1, 6), 1e-14);
    pressing += scene.point(row, 1, 6) < 0.0 ? 1 : 0;
  }
  EXPECT_GT(pressing, 2);
  EXPECT_LT(pressing, scene.rows());
  EXPECT_NEAR(scene.contact_sum()[0], 0.0, 1e-8);
  EXPECT_NEAR(scene.normal_sum(0)[2], scene.normal_sum(2)[2], 1e-8);
}

TEST(BeltArea, CountsTheCosineOfTheSpanToTheRoad) {
  const double rise = 0.3;
  BeltScene scene(level(), loam(), {{0.0, 0.0, 0.2}, {1.0, rise, 0.2}});
  scene.put({{0.0, -1.0, 0.2}, {1.0, rise - 1.0, 0.2}});
  scene.call(1);
  EXPECT_NEAR(scene.contact_sum()[3], 1.0 * 0.5, 1e-13) << "as long as its shadow";
}

TEST(TrackForces, TurnWithTheFrameTheyAreSeenFrom) {
  random_source random(4);
  soil_mesh mesh = level();
  make_rolling(mesh, 0.02, random);
  // Off the lattice: a point on an edge would change its triangle with the rounding.
  const std::vector<circle> chain = {{0.07, 0.2, 0.25}, {0.58, 0.2, 0.25}, {1.11, 0.2, 0.25}, {1.63, 0.2, 0.25}};
  BeltScene straight(mesh, loam(), chain), turned(mesh, loam(), chain);
  turned.reference().axes = rotation({1.0, 2.0, -0.5}, 1.1);
  turned.reference().position = {3.0, -2.0, 1.0};
  for (BeltScene* scene : {&straight, &turned}) {
    scene->parameters.width = 0.43;
    scene->parameters.n_lat = 4;
    scene->move({0.4, -0.1, -0.02});
    scene->belt_speed() = 0.5;
    scene->call(1);
    scene->call(2, 0.02);
    scene->call(0);
  }
  const auto expect_turned = [&](const std::vector<double>& seen, const std::vector<double>& from) {
    const vec3 expected = transposed_times(turned.reference().axes, {from[0], from[1], from[2]});
    for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(seen[c], expected[c], 1e-6);
  };
  ASSERT_GT(std::fabs(straight.shear_sum()[0]), 10.0);
  expect_turned(turned.shear_sum(), straight.shear_sum());
  for (int node = 0; node < 4; ++node) expect_turned(turned.normal_sum(node), straight.normal_sum(node));
  expect_turned(turned.contact_sum(), straight.contact_sum());
  for (std::size_t entry = 0; entry < 3; ++entry) {
    EXPECT_NEAR(turned.total(entry), straight.total(entry), 1e-6) << "local forces are the same from anywhere";
  }
}

TEST(TrackForces, DoNotDependOnHowTheGroundIsCutIntoTriangles) {
  random_source random(6);
  soil_mesh shuffled = flat_mesh(40, 16, 0.25, -5.0, -2.0);
  shuffle(shuffled, random);
  BeltScene coarse(level(), loam(), symmetric_gear()), fine(shuffled, loam(), symmetric_gear());
  coarse.call(1);
  fine.call(1);
  for (std::size_t entry = 0; entry < coarse.result().size(); ++entry) {
    EXPECT_NEAR(fine.total(entry), coarse.total(entry), 1e-9 * (1.0 + std::fabs(coarse.total(entry))));
  }
}

// --- thrust ------------------------------------------------------------------------------------------------------

constexpr double k_speed = 4.0, k_slip = 0.002, k_step = 0.01, k_length = 4.0;
constexpr int k_steps = 100;

/// A flat track that has driven onto the road from behind its edge within k_steps accepted steps, its belt k_slip
/// faster than it. The rows touched down one after the other, the foremost first.
BeltScene driven_on(int n_long) {
  const std::vector<circle> chain = level_circles(2, k_length, 0.25, -k_depth);
  BeltScene scene(flat_mesh(12, 8, 0.5, 0.0, -2.0), loam(), chain);
  scene.parameters.n_long = n_long;
  scene.move({k_speed, 0.0, 0.0});
  scene.belt_speed() = k_speed + k_slip;
  const auto put = [&](int step) { scene.put(chain, -k_length - 0.005 + k_speed * k_step * step); };
  put(0);
  scene.call(1);
  for (int step = 1; step <= k_steps + 1; ++step) {
    put(step);
    scene.call(2, k_step * step);
  }
  scene.call(0);
  return scene;
}

/// After accepted steps m to n, n + 1 of them in contact: minus the slip times the sum of their times.
double displacement(int m, int n) { return k_slip * k_step * 0.5 * (n * (n + 1.0) - m * (m - 1.0)); }

double thrust_stress(double j) { return qvref::wong_shear(as_read(loam()), j, -k_slip, loam_pressure(0.5, k_depth)); }

TEST(Thrust, OfASlippingFlatTrackIsTheShearOfEveryRowForTheTimeItHasBeenInTheGround) {
  BeltScene scene = driven_on(41);
  double expected = 0.0;
  for (int row = 0; row < 41; ++row) {
    const double offset = row * k_length / 40 - k_length - 0.005;
    const int touch_down = static_cast<int>(std::ceil(-offset / (k_speed * k_step)));
    const double j = displacement(touch_down, k_steps + 1);
    expected += thrust_stress(j) * k_length * 0.5 / 41;
    EXPECT_NEAR(scene.point(row, 1, 0) * 41 * 3, thrust_stress(j) * k_length * 0.5, 1e-7) << "row " << row;
  }
  EXPECT_NEAR(scene.total(0), expected, 1e-7);
  EXPECT_NEAR(scene.shear_sum()[0], expected, 1e-7);
}

TEST(Thrust, OfASlippingFlatTrackIsTheIntegralOfTheShearLawAlongIt) {
  BeltScene scene = driven_on(401);
  const int panels = 2000;
  const auto stress_at = [](double from_front) {  // the row there touched down at this time
    const double touched = from_front / k_speed, now = k_step * (k_steps + 1);
    return thrust_stress(k_slip * 0.5 * (now * now - touched * touched) / k_step);
  };
  double integral = 0.0;  // by Simpson
  for (int panel = 0; panel <= panels; ++panel) {
    const double weight = panel == 0 || panel == panels ? 1.0 : panel % 2 == 1 ? 4.0 : 2.0;
    integral += weight * stress_at(k_length * panel / panels) * 0.5 * k_length / panels / 3.0;
  }
  // Times are counted in hundreds of steps, lengths in hundreds of rows: one in a hundred of each.
  EXPECT_NEAR(scene.total(0), integral, 0.02 * integral);
  EXPECT_GT(integral, 1e4);
}

TEST(Thrust, TurnsRoundWithTheSlip) {
  const auto shear = [](double belt_speed) {
    BeltScene scene(level(), loam(), level_circles(3, 0.5, 0.25, -k_depth));
    scene.move({1.0, 0.0, 0.0});
    scene.belt_speed() = belt_speed;
    scene.call(1);
    scene.call(2, 0.01);
    scene.call(0);
    return scene.shear_sum()[0];
  };
  EXPECT_GT(shear(1.5), 100.0) << "a belt faster than the vehicle pushes it on";
  EXPECT_NEAR(shear(0.5), -shear(1.5), 1e-8) << "a slower one brakes it";
  EXPECT_EQ(shear(1.0), 0.0) << "rolling without slip does neither";
}

}  // namespace
}  // namespace qvtest
