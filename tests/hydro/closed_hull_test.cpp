#include <gtest/gtest.h>

#include "tests/hydro/hydro_scene.h"

// Whole hulls in calm water, compared with polyhedra clipped at the surface and with the sphere; and what must not
// change the result.

namespace qvtest {
namespace {

constexpr double k_pi = 3.141592653589793;

mat3 random_rotation(random_source& random) {
  const vec3 axis = {uniform(random, -1, 1), uniform(random, -1, 1), uniform(random, 0.1, 1)};
  return rotation(axis, uniform(random, -k_pi, k_pi));
}

/// Heel about x after trim about y after heading about z.
mat3 attitude(double heading, double trim, double heel) {
  const mat3 z = rotation({0, 0, 1}, heading), y = rotation({0, 1, 0}, trim), x = rotation({1, 0, 0}, heel);
  return qvref::operator*(qvref::m33(z), qvref::operator*(qvref::m33(y), qvref::m33(x)));
}

/// Tolerance of half the digits: the area of a patch that stands upright, seen from above, comes from Heron's formula.
double sliver(double size) { return 1e-7 * size * size * size; }

void expect_displaces(HydroScene& scene, const body_of_water& expected, double size) {
  const hull_forces f = scene.forces();
  EXPECT_NEAR(f.volume, expected.volume, sliver(size));
  EXPECT_NEAR(f.buoyancy[2], expected.volume, sliver(size)) << "density and gravity are 1";
  if (expected.volume < 0.01 * size * size * size) return;
  const vec3 centre = expected.centre();
  for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(f.buoyancy_centre[k], centre[k], 100 * sliver(size)) << k;
}

struct barge_case {
  double draught, heel_deg, trim_deg, heading_deg;
};

const barge_case k_barge_cases[] = {
    {0.5, 0, 0, 0},    {1.0, 0, 0, 30},  {0.7, 10, 0, 0},   {0.7, 0, 5, 0},    {1.0, 25, 10, 70}, {1.5, 60, 20, 200},
    {0.1, 3, 1, 5},    {1.9, -40, 2, 0}, {1.0, 90, 0, 0},   {1.0, 180, 0, 0},  {0.4, 0, 90, 0},   {0.3, 135, -30, 111},
    {2.5, 12, 34, 56}, {1.0, 45, 0, 90}, {-0.3, 30, 0, 12}, {-5.0, 30, 0, 12}, {0.0, 0, 0, 0},    {2.0, 0, 0, 0},
};

TEST(BoxBarge, DisplacesTheVolumeOfItsClippedPolyhedronAtAnyDraughtHeelAndTrim) {
  const double size = 6.0;
  for (const barge_case& row : k_barge_cases) {
    HydroScene scene(box_hull(6, 3, 2));
    const mat3 axes = attitude(row.heading_deg * k_pi / 180, row.trim_deg * k_pi / 180, row.heel_deg * k_pi / 180);
    const vec3 place = {1, 2, 1.0 - row.draught};
    scene.place(place, axes);
    SCOPED_TRACE(testing::Message() << "draught " << row.draught << ", heel " << row.heel_deg << ", trim "
                                    << row.trim_deg << ", heading " << row.heading_deg);
    expect_displaces(scene, clip_hull(box_hull(6, 3, 2), axes, place, 0.0), size);
  }
}

TEST(BoxBarge, UprightDisplacesLengthTimesBreadthTimesDraughtAndActsAtHalfOfIt) {
  HydroScene scene(box_hull(6, 3, 2));
  scene.place({1, 2, 0.25}, rotation({0, 0, 1}, 0.0));
  const hull_forces f = scene.forces();
  EXPECT_DOUBLE_EQ(f.volume, 6 * 3 * 0.75);
  EXPECT_DOUBLE_EQ(f.buoyancy_centre[0], 1.0);
  EXPECT_DOUBLE_EQ(f.buoyancy_centre[1], 2.0);
  EXPECT_DOUBLE_EQ(f.buoyancy_centre[2], -0.375);
  EXPECT_NEAR(f.torque[0], 0.0, 1e-13);
  EXPECT_NEAR(f.torque[1], 0.0, 1e-13);
}

TEST(BoxBarge, HeeledIsRightedByTheLeverOfTheWallSidedFormula) {
  // Righting lever of a wall-sided hull about a marker on its centre line: (BM (1 + tan2(phi) / 2) - KM + KB) sin(phi).
  const double breadth = 3.0, draught = 1.0, phi = 0.2, height_of_marker = 1.2;
  HydroScene scene(box_hull(6, breadth, 2));
  const double bm = breadth * breadth / (12 * draught), kb = draught / 2, t = std::tan(phi);
  const double lever = (bm * (1 + t * t / 2) + kb - height_of_marker) * std::sin(phi);
  // Keep the keel point under the marker, so that the displacement stays: the waterline turns about the centre line.
  const mat3 axes = rotation({1, 0, 0}, phi);
  const vec3 to_centre = times(axes, {0, 0, 1.0 - draught});
  scene.body().axes = axes;
  scene.body().position = to_centre;
  scene.force_marker().position = times(axes, {0, 0, height_of_marker - draught});
  const hull_forces f = scene.forces();
  EXPECT_NEAR(f.volume, 6 * breadth * draught, sliver(6));
  EXPECT_NEAR(f.torque[0], -lever * f.volume, 10 * sliver(6));
  EXPECT_GT(lever, 0.01);
}

TEST(RandomHulls, DisplaceTheVolumeOfTheirClippedPolyhedra) {
  random_source random(3);
  int floating = 0;
  for (int i = 0; i < 150; ++i) {
    const hull shape = random_hull(random);
    HydroScene scene(shape);
    const mat3 axes = random_rotation(random);
    const vec3 place = {uniform(random, -50, 50), uniform(random, -50, 50), uniform(random, -1.5, 1.5)};
    scene.place(place, axes);
    const body_of_water expected = clip_hull(shape, axes, place, 0.0);
    expect_displaces(scene, expected, 6.0);
    floating += expected.volume > 0.1 ? 1 : 0;
  }
  EXPECT_GT(floating, 80);
}

TEST(SubmergedHull, KeepsItsVolumeAndCentreHoweverItIsMovedAndTurned) {
  random_source random(4);
  const hull shape = random_hull(random);
  HydroScene scene(shape);
  const body_of_water whole_hull = clip_hull(shape, {1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 0, -100}, 0.0);
  const vec3 own_centre = {whole_hull.centre()[0], whole_hull.centre()[1], whole_hull.centre()[2] + 100};
  for (int i = 0; i < 100; ++i) {
    const mat3 axes = random_rotation(random);
    const vec3 place = {uniform(random, -80, 80), uniform(random, -80, 80), uniform(random, -30, -9)};
    scene.place(place, axes);
    const hull_forces f = scene.forces();
    const double digits = 1e-7 * whole_hull.volume * std::fabs(place[2]);
    EXPECT_NEAR(f.volume, whole_hull.volume, digits);
    const vec3 turned = times(axes, own_centre);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(f.buoyancy_centre[k], place[k] + turned[k], 30 * digits);
  }
}

TEST(Buoyancy, PointsAlongTheWatersThirdAxisOnly) {
  random_source random(8);
  for (int i = 0; i < 100; ++i) {
    HydroScene scene(random_hull(random));
    scene.water().axes = i % 2 == 0 ? mat3{1, 0, 0, 0, 1, 0, 0, 0, 1} : random_rotation(random);
    const vec3 middle = times(scene.water().axes, {100, 0, uniform(random, -1, 0)});
    for (std::size_t k = 0; k < 3; ++k) scene.water().position[k] = -middle[k];
    scene.place({0, 0, 0}, random_rotation(random));
    const hull_forces f = scene.forces();
    EXPECT_GT(length(f.buoyancy), 0.05);
    const vec3 up = {scene.water().axes[6], scene.water().axes[7], scene.water().axes[8]};
    EXPECT_NEAR(length(cross(up, f.buoyancy)), 0.0, 4e-15 * length(f.buoyancy));
    if (i % 2 == 0) {
      EXPECT_EQ(f.buoyancy[0], 0.0);
      EXPECT_EQ(f.buoyancy[1], 0.0);
    }
  }
}

TEST(Buoyancy, TurnsWithTheWaterFrame) {
  random_source random(9);
  const hull shape = random_hull(random);
  const mat3 body_axes = random_rotation(random);
  HydroScene upright(shape);
  upright.place({1, 2, -0.2}, body_axes);
  const hull_forces before = upright.forces();
  const mat3 turn = random_rotation(random);
  HydroScene turned(shape);
  turned.water().axes = turn;
  turned.water().position = times(turn, upright.water().position);
  turned.place(times(turn, upright.body().position), qvref::operator*(qvref::m33(turn), qvref::m33(body_axes)));
  const hull_forces after = turned.forces();
  EXPECT_NEAR(after.volume, before.volume, 1e-12);
  for (const auto part :
       {&hull_forces::force, &hull_forces::torque, &hull_forces::buoyancy, &hull_forces::buoyancy_centre}) {
    const vec3 expected = times(turn, before.*part);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR((after.*part)[k], expected[k], 1e-11);
  }
}

// --- the sphere --------------------------------------------------------------------------------------------------

/// The factor by which the error shrinks when every patch is quartered.
double order(double coarse, double fine) { return std::log2(std::fabs(coarse) / std::fabs(fine)); }

TEST(Sphere, ConvergesToTheSphericalCapWithTheSquareOfThePatchSize) {
  const double R = 1.5;
  for (const double depth : {0.4, 1.5, 2.2, 3.5}) {
    const double d = std::min(depth, 2 * R);
    const double volume = k_pi * d * d * (3 * R - d) / 3;
    const double centre = R - depth - 3 * (2 * R - d) * (2 * R - d) / (4 * (3 * R - d));
    double volume_error[4], centre_error[4];
    for (int level = 2; level < 5; ++level) {
      HydroScene scene(sphere_hull(R, level));
      scene.place({0, 0, R - depth}, rotation({1, 2, 3}, 0.4));
      const hull_forces f = scene.forces();
      volume_error[level - 2] = f.volume - volume;
      centre_error[level - 2] = f.buoyancy_centre[2] - centre;
    }
    EXPECT_LT(std::fabs(volume_error[2]), 0.01 * volume) << depth;
    for (int i = 0; i < 2; ++i) {
      EXPECT_NEAR(order(volume_error[i], volume_error[i + 1]), 2.0, 0.15) << "depth " << depth << ", level " << i;
      if (depth < 2 * R) {
        EXPECT_NEAR(order(centre_error[i], centre_error[i + 1]), 2.0, 0.3) << "depth " << depth << ", level " << i;
      }
    }
  }
}

TEST(Sphere, TowedFeelsTheIntegralsOfBothDragLawsOverItsSurface) {
  const double R = 1.5, speed = 2.0, coefficient = 0.7;
  const double pressure = k_pi * R * R * speed * speed / 4;            // rho / 2 (U cos)^2 over the front half
  const double friction = coefficient * speed * 8 * k_pi * R * R / 3;  // coefficient times the speed along the surface
  double normal_error[3], tangential_error[3];
  for (int level = 2; level < 5; ++level) {
    HydroScene scene(sphere_hull(R, level));
    scene.parameters.tangential_coef = coefficient;
    scene.place({0, 0, -10}, rotation({1, 2, 3}, 0.4));
    const vec3 way = times(rotation({0, 1, 1}, 0.9), {1, 0, 0});
    scene.move({speed * way[0], speed * way[1], speed * way[2]});
    const hull_forces f = scene.forces();
    const double normal = way[0] * f.normal_drag[0] + way[1] * f.normal_drag[1] + way[2] * f.normal_drag[2];
    const double tangential =
        way[0] * f.tangential_drag[0] + way[1] * f.tangential_drag[1] + way[2] * f.tangential_drag[2];
    normal_error[level - 2] = normal + pressure;
    tangential_error[level - 2] = tangential + friction;
    EXPECT_LT(length(cross(way, f.drag)), 0.02 * pressure) << "no side force";
  }
  EXPECT_LT(std::fabs(normal_error[2]), 0.01 * pressure);
  EXPECT_LT(std::fabs(tangential_error[2]), 0.005 * friction);
  for (int i = 0; i < 2; ++i) EXPECT_NEAR(order(tangential_error[i], tangential_error[i + 1]), 2.0, 0.2);
  EXPECT_LT(std::fabs(normal_error[2]), std::fabs(normal_error[0]) / 8) << "the front half has a jagged border";
}

TEST(SymmetricHull, FeelsMirroredDragWhenItMovesTheOtherWay) {
  HydroScene scene(box_hull(2, 2, 2));
  scene.parameters.tangential_coef = 0.3;
  scene.parameters.tangential_exp = 1.7;
  scene.place({0, 0, -5}, rotation({0, 0, 1}, 0.0));
  for (const vec3& way : {vec3{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.3, -0.5, 0.8}}) {
    scene.move(way);
    const hull_forces there = scene.forces();
    scene.move({-way[0], -way[1], -way[2]});
    const hull_forces back = scene.forces();
    EXPECT_GT(length(there.drag), 0.5);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(there.drag[k], -back.drag[k], 1e-13);
  }
}

TEST(MovingHull, OnlyLosesEnergyToWaterAtRest) {
  random_source random(12);
  for (int i = 0; i < 100; ++i) {
    HydroScene scene(random_hull(random));
    scene.parameters.tangential_coef = uniform(random, 0, 1);
    scene.parameters.tangential_exp = uniform(random, 0.5, 2.5);
    scene.place({0, 0, uniform(random, -4, 1)}, random_rotation(random));
    const vec3 v = {uniform(random, -3, 3), uniform(random, -3, 3), uniform(random, -3, 3)};
    const vec3 w = {uniform(random, -3, 3), uniform(random, -3, 3), uniform(random, -3, 3)};
    scene.move(v, w);
    const hull_forces f = scene.forces();
    const auto power = [&](const vec3& force, const vec3& torque) {
      double sum = 0.0;
      for (std::size_t k = 0; k < 3; ++k) sum += force[k] * v[k] + torque[k] * w[k];
      return sum;
    };
    EXPECT_LE(power(f.normal_drag, f.normal_torque), 0.0);
    EXPECT_LE(power(f.tangential_drag, f.tangential_torque), 0.0);
  }
}

}  // namespace
}  // namespace qvtest
