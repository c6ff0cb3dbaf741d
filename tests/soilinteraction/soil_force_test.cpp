#include <gtest/gtest.h>

#include "tests/soilinteraction/soil_scene.h"

// Forces of whole bodies and single points through the exported subroutine, against closed forms and symmetries.

namespace qvtest {
namespace {

double dot(const vec3& a, const vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double size_of(const vec3& v) { return std::sqrt(dot(v, v)); }
vec3 unit(const vec3& v) { return {v[0] / size_of(v), v[1] / size_of(v), v[2] / size_of(v)}; }
vec3 y_axis(const mat3& A) { return {A[3], A[4], A[5]}; }

constexpr double k_stiffness = 5270.0 / 0.25 + 1515040.0;  // kc / b + kphi of the loam under a width of 0.25

const qvref::body k_plate = {1, 0.5, 0.25, 6, 4};

/// Level ground, 4 by 4, marker in its lower corner.
soil_mesh level() { return flat_mesh(8, 8, 0.5); }

/// Touches down with one converged step, then moves by `way` and evaluates with the velocity given.
void touch_down_and_move(SoilScene& scene, const vec3& way, const vec3& velocity) {
  scene.call(1);
  scene.call(2);
  for (std::size_t c = 0; c < 3; ++c) scene.body().position[c] += way[c];
  scene.body().velocity = velocity;
  scene.call(0);
}

TEST(PlateOnLevelGround, IsPushedUpByBekkersPressureOverItsArea) {
  SoilScene scene(level(), loam(), k_plate);
  scene.body().position = {2.0, 2.0, -0.08};
  scene.call(1);
  const double expected = k_stiffness * std::pow(0.08, 0.7) * 0.125;
  EXPECT_NEAR(scene.total(2), expected, 24 * 4e-16 * expected) << "24 points, a few roundings each";
  EXPECT_EQ(scene.total(0), 0.0);
  EXPECT_EQ(scene.total(1), 0.0);
  EXPECT_NEAR(scene.area(), 0.125, 1e-15);
  for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(scene.moment()[c], 0.0, 1e-12 * expected) << "centred";
}

TEST(PlateOnLevelGround, DraggedFarResistsWithTheResidualStrengthOfTheSoil) {
  SoilScene scene(level(), loam(), k_plate);
  scene.body().position = {2.0, 2.0, -0.08};
  touch_down_and_move(scene, {1.2, 0.0, 0.0}, {0.3, 0.0, 0.0});
  const double pressure = k_stiffness * std::pow(0.08, 0.7);
  const double residual = (1720.0 + pressure * std::tan(29.0 * 3.141592653589793 / 180.0)) / 1.5;
  EXPECT_NEAR(scene.total(0), -residual * 0.125, 1e-12 * residual);
  EXPECT_EQ(scene.total(1), 0.0);
}

TEST(PlateOnLevelGround, OfOnePointTurnsAboutItsMarkerBecauseThePointIsAtItsRear) {
  SoilScene scene(level(), loam(), {1, 0.5, 0.25, 1, 1});
  scene.body().position = {2.0, 2.0, -0.08};
  scene.call(1);
  const double f = scene.total(2);
  EXPECT_GT(f, 1e4);
  EXPECT_NEAR(scene.moment()[0], -0.125 * f, 1e-15 * f) << "right side: y = -w/2";
  EXPECT_NEAR(scene.moment()[1], 0.25 * f, 1e-15 * f) << "rear edge: x = -a/2";
  EXPECT_EQ(scene.moment()[2], 0.0);
}

TEST(PlateOnLevelGround, HeldAboveFeelsNothing) {
  SoilScene scene(level(), loam(), k_plate);
  scene.body().position = {2.0, 2.0, 0.001};
  scene.call(1);
  for (std::size_t entry = 0; entry < 7; ++entry) EXPECT_EQ(scene.total(entry), 0.0);
  for (int i = 0; i < k_plate.nx; ++i) {
    for (int j = 0; j < k_plate.ny; ++j) {
      for (const std::size_t entry : {0, 1, 2, 6, 7}) EXPECT_EQ(scene.point(i, j, entry), 0.0);
      EXPECT_NEAR(scene.point(i, j, 3), 1.75 + i * 0.1, 1e-15);
      EXPECT_NEAR(scene.point(i, j, 4), 1.875 + j * 0.25 / 3, 1e-15);
      EXPECT_EQ(scene.point(i, j, 5), 0.001);
    }
  }
}

TEST(PlateOnLevelGround, ExactlyOnTheSurfaceFeelsNothing) {
  SoilScene scene(level(), loam(), k_plate);
  scene.body().position = {2.0, 2.0, 0.0};
  scene.call(1);
  for (std::size_t entry = 0; entry < 7; ++entry) EXPECT_EQ(scene.total(entry), 0.0);
}

TEST(PlateOverTheRoadsEnd, OnlyThePointsOverTheRoadAreInContact) {
  SoilScene scene(level(), loam(), {1, 1.0, 0.25, 11, 1});
  scene.body().position = {4.0, 2.0, -0.08};  // its middle over the end, which belongs to the road
  scene.call(1);
  for (int i = 0; i < 11; ++i) EXPECT_EQ(scene.point(i, 0, 6), i <= 5 ? -0.08 : 0.0) << i;
  EXPECT_NEAR(scene.area(), 0.25 * 6 / 11, 1e-15);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_TRUE(scene.host.stops.empty());
}

TEST(PlateOverAHole, OnlyThePointsOverTrianglesAreInContact) {
  soil_mesh mesh = level();
  mesh.triangles.erase(mesh.triangles.begin() + 2 * (4 * 8 + 4), mesh.triangles.begin() + 2 * (4 * 8 + 4) + 2);
  SoilScene scene(mesh, loam(), {1, 1.0, 0.25, 2, 1});
  scene.body().position = {1.75, 2.375, -0.08};  // front point in the middle of the square [2, 2.5] x [2, 2.5]
  scene.call(1);
  EXPECT_EQ(scene.point(0, 0, 6), -0.08);
  EXPECT_EQ(scene.point(1, 0, 6), 0.0);
  EXPECT_EQ(scene.point(1, 0, 2), 0.0);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_TRUE(scene.host.stops.empty());
}

// --- one point: frame, ratios, velocities ------------------------------------------------------------------------

/// A single point, given where the point itself is to be.
struct one_point {
  SoilScene scene;
  qvref::body body;

  one_point(const soil_mesh& mesh, const qvref::soil& soil, int shape)
      : scene(mesh, soil, {shape, 0.5, 0.25, 1, 1}), body(scene.parameters.body) {}

  vec3 lever() { return times(scene.body().axes, {body.shape == 1 ? -0.25 : 0.5, -0.125, 0.0}); }
  void put(const vec3& at) {
    for (std::size_t c = 0; c < 3; ++c) scene.body().position[c] = at[c] - lever()[c];
  }
};

/// The plane z = x/4 - y/8 + 1.
soil_mesh slope() {
  soil_mesh mesh = level();
  for (qvref::v3& node : mesh.nodes) node[2] = node[0] / 4 - node[1] / 8 + 1.0;
  return mesh;
}

const vec3 k_slope_normal = unit({-0.25, 0.125, 1.0});

TEST(OnePointOnASlope, ForceIsTheLocalForceInTheFrameOfRoadNormalAndBodyAxis) {
  one_point point(slope(), loam(), 1);
  SoilScene& scene = point.scene;
  scene.body().axes = rotation({0.2, -0.4, 1.0}, 0.9);
  point.put({2.1, 1.7, 1.2});
  touch_down_and_move(scene, {0.03, -0.02, 0.01}, {0.4, -0.7, -0.1});
  const vec3 t1 = unit(cross(y_axis(scene.body().axes), k_slope_normal)), t2 = cross(k_slope_normal, t1);
  vec3 expected;
  for (std::size_t c = 0; c < 3; ++c) {
    expected[c] =
        scene.point(0, 0, 0) * t1[c] + scene.point(0, 0, 1) * t2[c] + scene.point(0, 0, 2) * k_slope_normal[c];
    EXPECT_NE(scene.point(0, 0, c), 0.0);
  }
  const vec3 moment = cross(point.lever(), expected);
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_NEAR(scene.force()[c], expected[c], 1e-14 * size_of(expected));
    EXPECT_NEAR(scene.moment()[c], moment[c], 1e-14 * size_of(expected));
  }
}

TEST(OnePointOnASlope, SinkageIsTheDistanceAlongTheNormal) {
  one_point point(slope(), loam(), 1);
  point.put({2.1, 1.7, 2.1 / 4 - 1.7 / 8 + 1.0 - 0.06});
  point.scene.call(1);
  EXPECT_NEAR(point.scene.point(0, 0, 6), -0.06 * k_slope_normal[2], 1e-15);
}

TEST(OnePointOnASlope, AreaIsTheCosineBetweenPlateAndRoadTimesThePlates) {
  for (const double tilt : {0.0, 0.3, 1.0, 1.7, 2.9}) {
    one_point point(slope(), loam(), 1);
    point.scene.body().axes = rotation({1.0, 0.3, 0.0}, tilt);
    point.put({2.1, 1.7, 1.0});
    point.scene.call(1);
    const mat3& A = point.scene.body().axes;
    EXPECT_NEAR(point.scene.area(), 0.125 * std::fabs(dot({A[6], A[7], A[8]}, k_slope_normal)), 1e-15) << tilt;
  }
}

TEST(WheelOnLevelGround, AreaIsTheCosineOfThePointsPlaceOnTheRim) {
  SoilScene scene(level(), loam(), {2, 0.5, 0.2, 24, 1});
  scene.body().position = {2.0, 2.1, -0.6};  // under the ground with its top
  scene.call(1);
  double sum = 0.0;
  for (int i = 0; i < 24; ++i) sum += std::fabs(std::sin(i * 6.283185307179586 / 24));
  EXPECT_NEAR(scene.area(), sum / 24 * 2 * 3.141592653589793 * 0.5 * 0.2, 1e-14);
}

// The wheel's plane is taken as the x-z plane of the road's axes, so a wheel that leans keeps its ratio.
TEST(WheelOnLevelGround, LeaningItDoesNotChangeTheRatioOfItsLowestPoint) {
  for (const double lean : {0.0, 0.2, -0.5}) {
    SoilScene scene(level(), loam(), {2, 0.5, 0.2, 4, 1});
    scene.body().axes = rotation({1.0, 0.0, 0.0}, lean);
    const vec3 lowest = times(scene.body().axes, {0.0, -0.1, -0.5});
    scene.body().position = {2.0 - lowest[0], 2.0 - lowest[1], -0.05 - lowest[2]};
    scene.call(1);
    EXPECT_NEAR(scene.point(3, 0, 6), -0.05, 1e-15);
    EXPECT_NEAR(scene.area(), 2 * 3.141592653589793 * 0.5 * 0.2 / 4, 1e-15) << lean;
  }
}

TEST(WheelOnLevelGround, SpinningForwardsOnTheSpotIsPushedForwardsAlongItsRollingDirection) {
  for (const double heading : {0.0, 0.7, 2.5}) {
    SoilScene scene(level(), loam(), {2, 0.5, 0.2, 36, 1});
    scene.body().axes = rotation({0, 0, 1}, heading);
    scene.body().position = {2.0, 2.0, 0.42};
    const vec3 ahead = {std::cos(heading), std::sin(heading), 0.0};
    touch_down_and_move(scene, {-0.02 * ahead[0], -0.02 * ahead[1], 0.0}, {});
    const vec3 y = y_axis(scene.body().axes);
    scene.body().angular_velocity = {3 * y[0], 3 * y[1], 3 * y[2]};
    scene.call(0);
    EXPECT_GT(dot(scene.force(), ahead), 100.0) << heading;
    EXPECT_NEAR(dot(scene.force(), y), 0.0, 1e-12 * size_of(scene.force())) << heading;
    EXPECT_LT(dot(scene.moment(), y), -50.0) << "and braked";
  }
}

struct slip_case {
  const char* why;
  double slip, sign;
};

TEST(SlipVelocity, BelowTheThresholdCountsAsRest) {
  const slip_case cases[] = {{"rest", 0.0, 0.0},
                             {"half the threshold", 5e-9, 0.0},
                             {"just below", std::nextafter(1e-8, 0.0), 0.0},
                             {"the threshold itself slips", 1e-8, -1.0},
                             {"the other way", -1e-8, 1.0},
                             {"half the threshold the other way", -5e-9, 0.0}};
  for (const slip_case& c : cases) {
    one_point point(level(), loam(), 1);
    point.put({2.0, 2.0, -0.05});
    touch_down_and_move(point.scene, {0.02, 0.0, 0.0}, {c.slip, 0.0, 0.0});
    EXPECT_EQ(qvref::sign(point.scene.point(0, 0, 0)), c.sign) << c.why;
    EXPECT_EQ(point.scene.point(0, 0, 1), 0.0) << c.why;
  }
}

TEST(SlipVelocity, IsMeasuredFromTheRoadMarkerWhileTheNormalVelocityTakesTheRoadsTurningIn) {
  one_point point(level(), loam(), 1);
  SoilScene& scene = point.scene;
  scene.road().angular_velocity = {0.0, -0.5, 2.0};  // the road's point (2.02, 2, 0) moves with (-4, 4.04, 1.01)
  point.put({2.0, 2.0, -0.08});
  touch_down_and_move(scene, {0.02, 0.0, 0.0}, {});
  EXPECT_EQ(scene.point(0, 0, 0), 0.0) << "no slip from the marker";
  const double pressure_force = k_stiffness * std::pow(0.08, 0.7) * 0.125;
  const double damping = k_stiffness * 0.02 * std::pow(0.08, -0.3);
  const double expected = pressure_force + 1.01 * damping * 0.125;  // the body sinks with 1.01 against the road
  EXPECT_NEAR(scene.point(0, 0, 2), expected, 1e-14 * expected);
}

TEST(SlipVelocity, IsRelativeToAMovingRoad) {
  one_point point(level(), loam(), 1);
  point.put({2.0, 2.0, -0.05});
  point.scene.road().velocity = {0.5, -0.25, 0.0};
  touch_down_and_move(point.scene, {0.02, 0.02, 0.0}, {0.5, 0.0, 0.0});
  EXPECT_EQ(point.scene.point(0, 0, 0), 0.0) << "carried along";
  EXPECT_LT(point.scene.point(0, 0, 1), 0.0) << "slips to the left";
}

TEST(ConcreteRoad, CarriesTheNormalForceAndNoShear) {
  qvref::soil hard = loam();
  hard.type = "CONCRETE";
  SoilScene scene(level(), hard, k_plate);
  scene.body().position = {2.0, 2.0, -0.08};
  touch_down_and_move(scene, {0.05, 0.05, 0.0}, {0.5, -0.5, 0.0});
  EXPECT_NEAR(scene.total(2), k_stiffness * std::pow(0.08, 0.7) * 0.125, 1e-10);
  EXPECT_EQ(scene.total(0), 0.0);
  EXPECT_EQ(scene.total(1), 0.0);
}

// --- invariance --------------------------------------------------------------------------------------------------

/// Everything of the scene turned about the vertical through the ground marker, then moved.
void turn_scene(SoilScene& scene, double angle, const vec3& way) {
  const mat3 R = rotation({0, 0, 1}, angle);
  for (marker_state* marker : {&scene.body(), &scene.road()}) {
    mat3 turned;
    for (std::size_t c = 0; c < 3; ++c) {
      const vec3 axis = times(R, {marker->axes[3 * c], marker->axes[3 * c + 1], marker->axes[3 * c + 2]});
      std::copy(axis.begin(), axis.end(), turned.begin() + static_cast<std::ptrdiff_t>(3 * c));
    }
    marker->axes = turned;
    marker->position = times(R, marker->position);
    for (std::size_t c = 0; c < 3; ++c) marker->position[c] += way[c];
    marker->velocity = times(R, marker->velocity);
    marker->angular_velocity = times(R, marker->angular_velocity);
  }
}

/// A tilted plate that slips over rolling ground, after two converged steps.
void drag_over_waves(SoilScene& scene, double angle, const vec3& way) {
  const double heights[] = {0.02, 0.0, -0.02};
  for (int step = 0; step < 3; ++step) {
    scene.body().position = {2.0 + 0.01 * step, 1.9 - 0.02 * step, heights[step]};
    scene.body().axes = rotation({0.3, -0.2, 1.0}, 0.4 + 0.02 * step);
    scene.body().velocity = {0.5, -1.0, -0.3};
    scene.body().angular_velocity = {0.1, 0.3, -0.2};
    scene.road().axes = rotation({1.0, 0.5, 0.2}, 0.1);
    scene.road().position = {0.1, -0.1, -0.05};
    scene.road().velocity = {0.05, 0.1, 0.0};
    scene.road().angular_velocity = {0.01, -0.02, 0.03};
    turn_scene(scene, angle, way);
    if (step == 0) scene.call(1);
    scene.call(step == 2 ? 0 : 2);
  }
}

TEST(SoilForce, TurnsWithTheSceneAboutTheVertical) {
  random_source random(5);
  soil_mesh mesh = level();
  make_rolling(mesh, 0.1, random);
  SoilScene here(mesh, loam(), k_plate);
  drag_over_waves(here, 0.0, {0, 0, 0});
  ASSERT_GT(size_of(here.force()), 1e3);
  for (const double angle : {0.4, 1.5707963267948966, 3.0}) {
    SoilScene there(mesh, loam(), k_plate);
    drag_over_waves(there, angle, {3.0, -7.0, 2.0});
    const mat3 R = rotation({0, 0, 1}, angle);
    const vec3 force = times(R, here.force()), moment = times(R, here.moment());
    // Sinkages carry some 1e-15 of the distance moved, relative to 0.01 of depth.
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_NEAR(there.force()[c], force[c], 1e-11 * size_of(force)) << angle;
      EXPECT_NEAR(there.moment()[c], moment[c], 1e-11 * size_of(force)) << angle;
    }
    EXPECT_NEAR(there.area(), here.area(), 1e-13) << angle;
  }
}

TEST(SoilForce, IsMirroredByASceneMirroredAcrossTheHeading) {
  SoilScene left(level(), loam(), {1, 0.5, 0.25, 5, 5}), right(level(), loam(), {1, 0.5, 0.25, 5, 5});
  left.body().position = right.body().position = {2.0, 2.0, -0.05};
  touch_down_and_move(left, {0.01, 0.02, -0.01}, {0.3, 0.2, -0.1});
  touch_down_and_move(right, {0.01, -0.02, -0.01}, {0.3, -0.2, -0.1});
  const double size = size_of(left.force());
  EXPECT_NEAR(left.total(0), right.total(0), 1e-13 * size);
  EXPECT_NEAR(left.total(1), -right.total(1), 1e-13 * size);
  EXPECT_NEAR(left.total(2), right.total(2), 1e-13 * size);
  EXPECT_NE(left.total(1), 0.0);
}

TEST(SoilForce, TakesPowerOutOfASlippingPlate) {
  random_source random(8);
  SoilScene scene(level(), loam(), k_plate);
  scene.body().position = {2.0, 2.0, -0.06};
  scene.call(1);
  for (int step = 0; step < 50; ++step) {
    for (std::size_t c = 0; c < 2; ++c) {
      scene.body().position[c] += uniform(random, -0.01, 0.01);
      scene.body().velocity[c] = uniform(random, -1.0, 1.0);
    }
    scene.call(2);
    EXPECT_LE(dot(scene.force(), scene.body().velocity), 0.0) << step;
  }
}

TEST(SoilForce, TotalsAreTheSumsOverThePoints) {
  random_source random(6);
  soil_mesh mesh = level();
  make_rolling(mesh, 0.1, random);
  SoilScene scene(mesh, loam(), k_plate);
  drag_over_waves(scene, 0.0, {0, 0, 0});
  double normal = 0.0, all = 0.0;
  for (int i = 0; i < k_plate.nx; ++i) {
    for (int j = 0; j < k_plate.ny; ++j) {
      normal += scene.point(i, j, 2);
      all += std::fabs(scene.point(i, j, 0)) + std::fabs(scene.point(i, j, 1)) + scene.point(i, j, 2);
    }
  }
  EXPECT_GT(size_of(scene.force()), 0.5 * normal);
  EXPECT_LE(size_of(scene.force()), all);
  const std::vector<double> sums = call_sum(scene.host, scene.parameters.road, 2);
  for (std::size_t c = 0; c < 3; ++c) EXPECT_EQ(sums[c], scene.total(c));
  EXPECT_EQ(sums[3], scene.area());
}

// The pressure law takes the element's width; the WIDTH of the road file is read and left alone.
TEST(Pressure, DoesNotDependOnTheWidthInTheRoadFile) {
  const qvref::body plate = {1, 0.5, 0.25, 3, 2};
  std::vector<double> results[2];
  for (int k = 0; k < 2; ++k) {
    SoilScene scene(flat_mesh(8, 8, 0.5), loam(), plate);
    write_text(scene.file, (k == 0 ? "WIDTH = 0.01\n" : "WIDTH = 40\n") + rdf_text(flat_mesh(8, 8, 0.5), loam()));
    scene.body().position = {2.0, 2.0, -0.05};
    results[k] = scene.call(1);
    EXPECT_EQ(scene.take_report(), "");
  }
  EXPECT_GT(results[0][2], 0.0);
  EXPECT_EQ(first_difference(results[0], results[1]), -1);
}

TEST(MirroredRoadMarker, ShowsTheMirrorImageOfItsRoad) {
  soil_mesh rising = flat_mesh(8, 8, 0.5, -2.0, -2.0), falling = rising;
  for (qvref::v3& node : rising.nodes) node[2] = 0.125 * node[0];
  for (qvref::v3& node : falling.nodes) node[2] = -0.125 * node[0];
  const qvref::body plate = {1, 0.6, 0.3, 5, 3};
  SoilScene mirrored(rising, loam(), plate), plain(falling, loam(), plate);
  mirrored.road().axes[0] = -1.0;
  for (SoilScene* scene : {&mirrored, &plain}) {
    scene->body().position = {0.71, 0.13, -0.14};
    scene->body().velocity = {0.4, -0.2, -0.1};
    scene->call(1);
    scene->call(2);
    scene->body().position[0] += 0.01;
    scene->call(0);
  }
  ASSERT_GT(plain.total(2), 1e4);
  for (std::size_t i = 0; i < plain.result().size(); ++i) {
    EXPECT_NEAR(mirrored.result()[i], plain.result()[i], 1e-12 * std::max(1.0, std::fabs(plain.total(2)))) << i;
  }
}

// Heights may only be compared along the road marker's axis where its axes are a rotation to the last digits: with a z
// axis that leans by 4e-7 without the others, a place 100 m from the marker looks higher along it by 0.04 mm.
TEST(RoadMarker, WithAxesThatAreNotQuiteUprightCarriesAPointFarFromItAllTheSame) {
  constexpr double k_lean = 4e-7, k_sunk = 1e-5;
  SoilScene scene(flat_mesh(4, 4, 0.5, 99.0, -1.0), loam(), {1, 0.5, 0.25, 3, 3});
  scene.road().axes[6] = k_lean;
  scene.body().position = {100.0, 0.1, -k_sunk};
  scene.call(1);
  EXPECT_NEAR(scene.point(1, 1, 6), -k_sunk, 1e-11) << "sinkage";
  EXPECT_GT(scene.total(2), 0.0);
  scene.body().position[2] = k_sunk;
  scene.call(0);
  EXPECT_EQ(scene.total(2), 0.0) << "above it";
}

}  // namespace
}  // namespace qvtest
