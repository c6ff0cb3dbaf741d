#include <gtest/gtest.h>

#include "qvbrisk/layouts.h"
#include "qvbrisk/subroutines.h"
#include "tests/soilinteraction_mtl/belt_scene.h"

// The exported subroutines against the literal reference: random roads, chains of nodes, motions and call sequences.
// Both form the same sums in the same order, so results are equal bit for bit (zeros of either sign count as equal, and
// a NaN equals another). Contact decisions are part of that: a point out of contact has zeros in its slots.

namespace qvtest {
namespace {

/// How often the interesting things happened, so that a test that exercises nothing fails.
struct census {
  long calls = 0, points = 0, in_contact = 0, stale = 0, not_numbers = 0, sheared = 0;
};

vec3 random_vector(random_source& random, double size) {
  return {uniform(random, -size, size), uniform(random, -size, size), uniform(random, -size, size)};
}

mat3 random_rotation(random_source& random, double angle) {
  vec3 axis = random_vector(random, 1.0);
  axis[2] += 1.1;
  return rotation(axis, uniform(random, -angle, angle));
}

/// A chain of circles along x: sprocket and idler higher than the wheels between them, now and then anything goes.
std::vector<circle> random_chain(random_source& random) {
  const int count = whole(random, 2, k_belt_nodes);
  const bool equal = whole(random, 0, 2) == 0, wild = whole(random, 0, 7) == 0;
  const double radius = uniform(random, 0.1, 0.3);
  std::vector<circle> chain;
  double x = -0.25 * count;
  for (int i = 0; i < count; ++i) {
    const bool end = i == 0 || i == count - 1;
    circle c = {x, end ? uniform(random, 0.0, 0.2) : uniform(random, -0.02, 0.02), radius};
    if (!equal) c.radius = uniform(random, 0.08, 0.25);
    c.z += c.radius;
    if (wild) c.z = uniform(random, -0.5, 0.5);
    chain.push_back(c);
    x += uniform(random, 0.3, 0.7);
  }
  if (whole(random, 0, 9) == 0) chain[1].x = chain[0].x, chain[1].z = chain[0].z;  // one centre: the span stays
  return chain;
}

vec3 unit(const vec3& v) {
  const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
  return {v[0] / length, v[1] / length, v[2] / length};
}

/// The gear's axes with its y axis, the axle, a little askew.
mat3 askew(const mat3& gear, random_source& random) {
  const vec3 y = unit(times(gear, {uniform(random, -0.05, 0.05), 1.0, uniform(random, -0.05, 0.05)}));
  const vec3 z = unit(cross(times(gear, {1.0, 0.0, 0.0}), y));
  const vec3 x = cross(y, z);
  return {x[0], x[1], x[2], y[0], y[1], y[2], z[0], z[1], z[2]};
}

mat3 product(const mat3& A, const mat3& B) {
  mat3 C{};
  for (std::size_t c = 0; c < 3; ++c) {
    const vec3 column = times(A, {B[3 * c], B[3 * c + 1], B[3 * c + 2]});
    for (std::size_t r = 0; r < 3; ++r) C[3 * c + r] = column[r];
  }
  return C;
}

/// Turns the gear about z and by up to `tilt` about y, puts it on a place of the road and sets every part of it moving.
void place_gear(BeltScene& scene, const std::vector<circle>& chain, const vec3& on_road, random_source& random,
                double tilt = 0.2) {
  const mat3 heading = rotation({0.0, 0.0, 1.0}, uniform(random, -3.0, 3.0));
  const mat3 gear = product(heading, rotation({0.1, 1.0, 0.0}, uniform(random, -tilt, tilt)));
  for (std::size_t part = 0; part <= chain.size(); ++part) {
    const bool is_node = part < chain.size();
    marker_state& marker = is_node ? scene.node(part) : scene.vehicle();
    const vec3 in_gear = is_node ? vec3{chain[part].x, 0.0, chain[part].z} : vec3{0.1, 0.02, 0.4};
    vec3 there = times(gear, in_gear);
    for (std::size_t c = 0; c < 3; ++c) there[c] += on_road[c];
    there = times(scene.road().axes, there);
    for (std::size_t c = 0; c < 3; ++c) marker.position[c] = scene.road().position[c] + there[c];
    marker.velocity = random_vector(random, 2.0);
    marker.angular_velocity = random_vector(random, 3.0);
    marker.axes =
        is_node ? random_rotation(random, 1.0) : product(scene.road().axes, tilt == 0.0 ? gear : askew(gear, random));
  }
}

void move_frames(BeltScene& scene, random_source& random) {
  for (marker_state* marker : {&scene.road(), &scene.reference()}) {
    marker->position = random_vector(random, 20.0);
    marker->axes = random_rotation(random, 3.0);
    marker->velocity = random_vector(random, 1.0);
    marker->angular_velocity = random_vector(random, 0.5);
  }
}

/// A small step from where the gear is, as an integrator makes it.
void drift(BeltScene& scene, random_source& random) {
  const vec3 step = random_vector(random, 0.02);
  for (std::size_t part = 0; part <= scene.parameters.radii.size(); ++part) {
    marker_state& marker = part < scene.parameters.radii.size() ? scene.node(part) : scene.vehicle();
    for (std::size_t c = 0; c < 3; ++c) marker.position[c] += step[c];
    marker.velocity = random_vector(random, 2.0);
  }
  scene.belt_speed() = whole(random, 0, 3) == 0 ? 0.0 : uniform(random, -3.0, 3.0);
}

std::string difference_of(const char* what, const std::vector<double>& result, const std::vector<double>& expected) {
  const int at = first_difference(result, expected);
  if (at < 0) return "";
  const auto entry = static_cast<std::size_t>(at);
  char text[200];
  std::snprintf(text, sizeof text, "%s %d of %zu: %.17g, reference %.17g. ", what, at, expected.size(), result[entry],
                expected[entry]);
  return text;
}

template <std::size_t N>
std::vector<double> list_of(const std::array<double, N>& values) {
  return {values.begin(), values.end()};
}

std::string difference_of_sums(BeltScene& scene, const qvref::track& reference) {
  std::string text = difference_of("shear sum", scene.shear_sum(), list_of(reference.shear_sum()));
  for (std::size_t node = 0; node < reference.normal_sums().size(); ++node) {
    text +=
        difference_of("normal sum", scene.normal_sum(static_cast<int>(node)), list_of(reference.normal_sums()[node]));
  }
  return text + difference_of("contact sum", scene.contact_sum(), list_of(reference.contact_sum()));
}

void count(const qvref::track& reference, const std::vector<double>& result, census& seen) {
  ++seen.calls;
  seen.points += static_cast<long>((result.size() - 4) / 8);
  seen.in_contact += reference.points_in_contact();
  seen.stale += reference.stale_points();
  seen.sheared += reference.shear_sum()[0] != 0.0 ? 1 : 0;
  for (const double value : result) seen.not_numbers += std::isnan(value) ? 1 : 0;
}

/// One call of both; false when they differ (and the failure is reported).
bool compare_call(BeltScene& scene, qvref::track& reference, int iflag, double time, census& seen) {
  std::vector<double> expected;
  reference.call(scene.host.handle(), time, scene.parameters.layout(), iflag, expected);
  const std::vector<double>& result = scene.call(iflag, time);
  const std::string difference = difference_of("entry", result, expected) + difference_of_sums(scene, reference);
  const std::string report = scene.take_report();
  if (!difference.empty() || !report.empty()) {
    ADD_FAILURE() << difference << "iflag " << iflag << "; said \"" << report << "\"";
    return false;
  }
  count(reference, result, seen);
  return true;
}

bool run_sequence(int kind, unsigned seed, census& seen) {
  random_source random(seed);
  const soil_mesh mesh = random_mesh(kind, random);
  const qvref::soil soil = random_soil(random);
  const std::vector<circle> chain = random_chain(random);
  BeltScene scene(mesh, soil, chain);
  scene.parameters.thickness = whole(random, 0, 1) == 0 ? 0.0 : uniform(random, 0.0, 0.05);
  scene.parameters.width = uniform(random, 0.1, 0.8);
  static const int k_counts[][2] = {{2, 2}, {3, 4}, {7, 3}, {4, 5}, {6, 2}, {5, 4}, {2, 5}, {23, 17}, {3, 70}};
  const auto& counts = k_counts[whole(random, 0, 8)];  // within a block, over some, a shared row longer than one
  scene.parameters.n_long = counts[0];
  scene.parameters.n_lat = counts[1];
  qvref::track reference(qvref::derive_road(mesh.nodes, mesh.triangles, as_read(soil)), scene.parameters.layout());
  double time = 0.0;
  for (int step = 0; step < 8; ++step) {
    if (step % 3 == 0) move_frames(scene, random);
    const qvref::v3& there =
        mesh.nodes[static_cast<std::size_t>(whole(random, 0, static_cast<int>(mesh.nodes.size()) - 1))];
    place_gear(scene, chain, {there[0], there[1], there[2] + uniform(random, -0.2, 0.05)}, random);
    if (step == 0 && !compare_call(scene, reference, 1, time, seen)) return false;
    for (int evaluation = whole(random, 2, 5); evaluation > 0; --evaluation) {
      drift(scene, random);
      time += 0.01;
      const int iflag = whole(random, 0, 1) == 0 ? 2 : whole(random, 0, 3) == 0 ? 1 : 0;
      if (!compare_call(scene, reference, iflag, time, seen)) return false;
    }
  }
  return true;
}

class RandomTrackScenes : public testing::TestWithParam<int> {};

TEST_P(RandomTrackScenes, GiveTheResultsOfTheLiteralReferenceBitForBit) {
  census seen;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    ASSERT_TRUE(run_sequence(GetParam(), seed, seen)) << k_mesh_names[GetParam()] << ", seed " << seed;
  }
  EXPECT_GT(seen.in_contact, seen.points / 40) << "hardly any contact";
  EXPECT_LT(seen.in_contact, seen.points - seen.points / 20) << "hardly any point out of contact";
  EXPECT_GT(seen.sheared, seen.calls / 20) << "hardly any shear";
  EXPECT_GT(seen.stale, 0) << "no normal force stood on without pressure";
  EXPECT_GT(seen.not_numbers, 0) << "no arc too wide for its circle, no negative ratio under a fractional exponent";
}

INSTANTIATE_TEST_SUITE_P(Meshes, RandomTrackScenes, testing::Range(0, k_mesh_kinds));

/// Turns one axis of the marker round, so that its matrix has the determinant -1: the marker of a mirror image.
void mirror(marker_state& marker, int axis) {
  for (int c = 0; c < 3; ++c) {
    double& entry = marker.axes[static_cast<std::size_t>(3 * axis + c)];
    entry = -entry;
  }
}

TEST(MirroredTrackMarkers, GiveTheResultsOfTheLiteralReferenceBitForBit) {
  census seen;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    random_source random(seed);
    const soil_mesh mesh = random_mesh(static_cast<int>(seed) % k_mesh_kinds, random);
    const std::vector<circle> chain = level_circles(4, 0.5, 0.2, 0.0);
    BeltScene scene(mesh, loam(), chain);
    qvref::track reference(qvref::derive_road(mesh.nodes, mesh.triangles, as_read(loam())), scene.parameters.layout());
    for (int step = 0; step < 6; ++step) {
      move_frames(scene, random);
      marker_state* const markers[] = {&scene.road(), &scene.vehicle(), &scene.node(1)};
      if (seed % 3 == 0) mirror(scene.road(), step % 3);
      place_gear(scene, chain, {0.0, 0.0, uniform(random, -0.2, 0.0)}, random);
      if (seed % 3 != 0) mirror(*markers[seed % 3], step % 3);
      ASSERT_TRUE(compare_call(scene, reference, step == 0 ? 1 : step % 3, 0.1 * step, seen)) << "seed " << seed;
    }
  }
  EXPECT_GT(seen.in_contact, seen.points / 40);
}

/// Everything in sixteenths: belt points exactly on nodes, edges, borders and the surface.
bool run_on_lattice(unsigned seed, census& seen) {
  random_source random(seed);
  soil_mesh mesh = flat_mesh(8, 6, 0.5, -2.0, -1.5);
  for (qvref::v3& node : mesh.nodes) node[2] = whole(random, -2, 2) / 16.0;
  if (whole(random, 0, 1) == 1) shuffle(mesh, random);
  if (whole(random, 0, 2) == 0) make_holes(mesh, 5, random);
  const qvref::soil soil = random_soil(random);
  const std::vector<circle> chain = level_circles(whole(random, 2, 5), 0.5, 0.25, 0.0);
  BeltScene scene(mesh, soil, chain);
  scene.parameters.width = whole(random, 1, 4) / 2.0;
  qvref::track reference(qvref::derive_road(mesh.nodes, mesh.triangles, as_read(soil)), scene.parameters.layout());
  for (int step = 0; step < 25; ++step) {
    scene.put(chain, whole(random, -36, 8) / 16.0, whole(random, -3, 2) / 16.0);
    scene.move({whole(random, -1, 1) * 0.5, whole(random, -1, 1) * 5e-9, whole(random, -1, 1) * 0.25});
    if (!compare_call(scene, reference, step == 0 ? 1 : whole(random, 0, 2) * 2, step / 16.0, seen)) return false;
  }
  return true;
}

TEST(TrackLattice, PointsOnNodesEdgesAndBordersGiveTheResultsOfTheLiteralReference) {
  census seen;
  for (unsigned seed = 1; seed <= 60; ++seed) ASSERT_TRUE(run_on_lattice(seed, seen)) << "seed " << seed;
  EXPECT_GT(seen.in_contact, seen.points / 20);
  EXPECT_LT(seen.in_contact, seen.points - seen.points / 20);
}

TEST(TrackWithOtherCountsThanAtSetUp, KeepsTheRecordsGridAndGivesTheResultsOfTheLiteralReference) {
  census seen;
  for (unsigned seed = 1; seed <= 30; ++seed) {
    random_source random(seed);
    const soil_mesh mesh = random_mesh(1, random);
    const std::vector<circle> chain = level_circles(6, 0.5, 0.2, 0.0);
    BeltScene scene(mesh, loam(), chain);
    qvref::track reference(qvref::derive_road(mesh.nodes, mesh.triangles, as_read(loam())), scene.parameters.layout());
    place_gear(scene, chain, {0.0, 0.0, -0.1}, random);
    ASSERT_TRUE(compare_call(scene, reference, 1, 0.0, seen));
    std::vector<double> wider = scene.parameters.list();
    ++wider[QV_TRACK_POINTS_ACROSS];  // the host is told of other counts here, and only once
    call_with(qvsoil_interaction_mtl, scene.host, wider, 1, scene.parameters.results() + 8 * 50);
    ASSERT_EQ(scene.host.reports.size(), 1U);
    scene.host.reports.clear();
    for (int step = 1; step < 12; ++step) {
      drift(scene, random);
      scene.parameters.radii.resize(static_cast<std::size_t>(whole(random, 2, 6)), 0.2);
      scene.parameters.n_long = whole(random, 5, 7);
      scene.parameters.n_lat = whole(random, 3, 4);
      ASSERT_TRUE(compare_call(scene, reference, step % 3, 0.1 * step, seen)) << "seed " << seed << ", step " << step;
    }
  }
  EXPECT_GT(seen.in_contact, seen.points / 20);
}

/// A belt laid a hair over and under level ground that may lie far from its marker, tilted and moving: what is decided
/// here is whether its points are in contact at all.
TEST(TrackSurface, ABeltWithinRoundingOfTheSurfaceIsInContactWhenTheReferenceSaysSo) {
  static const double k_offsets[] = {0.0, 1e-16, 1e-14, 1e-12, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-3};
  random_source random(12);
  census seen;
  for (int round = 0; round < 40; ++round) {
    const double x0 = round % 2 == 0 ? -2.0 : 431000.25, y0 = round % 2 == 0 ? -2.0 : 5412000.5;
    const soil_mesh mesh = flat_mesh(8, 8, 0.5, x0, y0);
    const std::vector<circle> chain = level_circles(3, 0.5, 0.25, 0.0);
    BeltScene scene(mesh, loam(), chain);
    qvref::track reference(qvref::derive_road(mesh.nodes, mesh.triangles, as_read(loam())), scene.parameters.layout());
    move_frames(scene, random);
    for (int trial = 0; trial < 44; ++trial) {
      const double offset = k_offsets[trial % 11] * (trial % 2 == 0 ? 1.0 : -1.0);
      place_gear(scene, chain, {x0 + 2.0, y0 + 2.0, offset}, random, 0.0);
      ASSERT_TRUE(compare_call(scene, reference, trial == 0 ? 1 : 2, 0.01 * trial, seen))
          << "round " << round << ", trial " << trial;
    }
  }
  EXPECT_GT(seen.in_contact, seen.points / 4);
  EXPECT_LT(seen.in_contact, 3 * seen.points / 4);
}

}  // namespace
}  // namespace qvtest
