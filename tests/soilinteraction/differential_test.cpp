#include <gtest/gtest.h>

#include "tests/soilinteraction/soil_scene.h"

// The exported subroutine against the literal reference: random roads, bodies, motions and call sequences. Both form
// the same sums in the same order, so results are equal bit for bit (zeros of either sign count as equal, and a
// NaN equals another). Contact decisions are part of that: a point out of contact has zeros in its slots.

namespace qvtest {
namespace {

/// How often the interesting things happened, so that a test that exercises nothing fails.
struct census {
  long points = 0, in_contact = 0, not_numbers = 0;
};

qvref::body random_body(random_source& random) {
  static const int k_counts[][2] = {{1, 1}, {1, 5},  {6, 1},  {2, 2},   {5, 4},
                                    {9, 3}, {1, 64}, {65, 1}, {13, 11}, {23, 17}};
  const auto& counts = k_counts[whole(random, 0, 9)];
  qvref::body body;
  body.shape = whole(random, 0, 1) == 0 ? 1 : whole(random, 2, 3);
  body.a = uniform(random, 0.2, counts[0] > 10 ? 2.5 : 1.0);
  body.w = uniform(random, 0.1, counts[1] > 10 ? 2.5 : 0.8);
  body.nx = counts[0];
  body.ny = counts[1];
  return body;
}

vec3 random_vector(random_source& random, double size) {
  return {uniform(random, -size, size), uniform(random, -size, size), uniform(random, -size, size)};
}

mat3 random_rotation(random_source& random, double angle) {
  vec3 axis = random_vector(random, 1.0);
  axis[2] += 1.1;
  return rotation(axis, uniform(random, -angle, angle));
}

/// A marker at a place of the road, tilted and moving.
void place(marker_state& marker, const marker_state& road, const vec3& on_road, random_source& random) {
  const vec3 way = times(road.axes, on_road);
  for (std::size_t c = 0; c < 3; ++c) marker.position[c] = road.position[c] + way[c];
  marker.axes = random_rotation(random, 0.6);
  marker.velocity = random_vector(random, 2.0);
  marker.angular_velocity = random_vector(random, 3.0);
}

/// A place over a node of the mesh, near or some way off, now and then beyond the road.
vec3 random_place(const soil_mesh& mesh, const qvref::body& body, random_source& random) {
  const qvref::v3& node =
      mesh.nodes[static_cast<std::size_t>(whole(random, 0, static_cast<int>(mesh.nodes.size()) - 1))];
  const double lift = body.shape == 1 ? 0.0 : 0.9 * body.a;
  return {node[0] + uniform(random, -0.3, 0.3), node[1] + uniform(random, -0.3, 0.3),
          node[2] + lift + uniform(random, -0.2, 0.12)};
}

void move_road(SoilScene& scene, random_source& random) {
  scene.road().position = random_vector(random, 20.0);
  scene.road().axes = random_rotation(random, 3.0);
  scene.road().velocity = random_vector(random, 1.0);
  scene.road().angular_velocity = random_vector(random, 0.5);
}

/// A small step from where the body is, as an integrator makes it.
void drift(marker_state& marker, random_source& random) {
  const vec3 step = random_vector(random, 0.01);
  for (std::size_t c = 0; c < 3; ++c) marker.position[c] += step[c];
  marker.velocity = random_vector(random, 2.0);
}

void count(const qvref::soil_element& reference, const std::vector<double>& result, census& seen) {
  seen.points += static_cast<long>((result.size() - 7) / 8);
  seen.in_contact += reference.points_in_contact();
  for (const double value : result) seen.not_numbers += std::isnan(value) ? 1 : 0;
}

/// The moment of a force that overflowed: by the tilde matrix 0 times infinity is NaN, by the cross product
/// the moment stays infinite. Neither is a number, and that has to do.
bool overflowed_moment(std::size_t entry, double a, double b) {
  return entry >= 3 && entry <= 5 && !std::isfinite(a) && !std::isfinite(b);
}

int difference_of(const std::vector<double>& a, const std::vector<double>& b) {
  if (a.size() != b.size()) return 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!same(a[i], b[i]) && !overflowed_moment(i, a[i], b[i])) return static_cast<int>(i);
  }
  return -1;
}

/// One call of both; false when they differ (and the failure is reported).
bool compare_call(SoilScene& scene, qvref::soil_element& reference, int iflag, census& seen) {
  std::vector<double> expected;
  reference.call(qvref::fetch_kinematics(scene.host.handle(), k_body_marker, k_road_marker, k_ground_marker), iflag,
                 expected);
  const std::vector<double>& result = scene.call(iflag);
  const std::string report = scene.take_report();
  const int difference = difference_of(result, expected);
  if (difference >= 0 || !report.empty()) {
    ADD_FAILURE() << "entry " << difference << ": " << result[static_cast<std::size_t>(std::max(difference, 0))]
                  << ", reference " << expected[static_cast<std::size_t>(std::max(difference, 0))] << "; said \""
                  << report << "\"";
    return false;
  }
  count(reference, result, seen);
  return true;
}

bool compare_sums(SoilScene& scene, const qvref::soil_element& reference) {
  const std::vector<double> sums = call_sum(scene.host, scene.parameters.road, 2);
  for (std::size_t c = 0; c < 4; ++c) {
    if (!same(sums[c], reference.sums()[c])) {
      ADD_FAILURE() << "sum " << c << ": " << sums[c] << ", reference " << reference.sums()[c];
      return false;
    }
  }
  return true;
}

bool run_sequence(int kind, unsigned seed, census& seen) {
  random_source random(seed);
  const soil_mesh mesh = random_mesh(kind, random);
  const qvref::soil soil = random_soil(random);
  const qvref::body body = random_body(random);
  SoilScene scene(mesh, soil, body);
  qvref::soil_element reference(qvref::derive_road(mesh.nodes, mesh.triangles, as_read(soil)), body);
  scene.ground().axes = random_rotation(random, 1.0);
  scene.ground().position = random_vector(random, 5.0);
  for (int step = 0; step < 12; ++step) {
    if (step % 4 == 0) move_road(scene, random);
    place(scene.body(), scene.road(), random_place(mesh, body, random), random);
    if (step == 0 && !compare_call(scene, reference, 1, seen)) return false;
    for (int evaluation = whole(random, 1, 5); evaluation > 0; --evaluation) {
      drift(scene.body(), random);
      const int iflag = whole(random, 0, 2) == 0 ? 2 : whole(random, 0, 1) == 0 ? 0 : 3;
      if (!compare_call(scene, reference, iflag, seen)) return false;
      if (!compare_sums(scene, reference)) return false;
    }
  }
  return true;
}

class RandomSoilScenes : public testing::TestWithParam<int> {};

TEST_P(RandomSoilScenes, GiveTheResultsOfTheLiteralReferenceBitForBit) {
  census seen;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    ASSERT_TRUE(run_sequence(GetParam(), seed, seen)) << k_mesh_names[GetParam()] << ", seed " << seed;
  }
  EXPECT_GT(seen.in_contact, seen.points / 40) << "hardly any contact";
  EXPECT_LT(seen.in_contact, seen.points - seen.points / 20) << "hardly any point out of contact";
  EXPECT_GT(seen.not_numbers, 0) << "no negative ratio under a fractional exponent";
}

INSTANTIATE_TEST_SUITE_P(Meshes, RandomSoilScenes, testing::Range(0, k_mesh_kinds));

/// Turns one axis of the marker round, so that its matrix has the determinant -1: the marker of a mirror image.
void mirror(marker_state& marker, std::size_t axis) {
  for (std::size_t c = 0; c < 3; ++c) marker.axes[3 * axis + c] = -marker.axes[3 * axis + c];
}

bool run_mirrored(unsigned seed, bool mirror_body, bool mirror_road, census& seen) {
  random_source random(seed);
  const soil_mesh mesh = random_mesh(static_cast<int>(seed) % k_mesh_kinds, random);
  const qvref::body body = random_body(random);
  SoilScene scene(mesh, loam(), body);
  qvref::soil_element reference(qvref::derive_road(mesh.nodes, mesh.triangles, as_read(loam())), body);
  for (int step = 0; step < 9; ++step) {
    move_road(scene, random);
    if (mirror_road) mirror(scene.road(), static_cast<std::size_t>(step) % 3);
    place(scene.body(), scene.road(), random_place(mesh, body, random), random);
    if (mirror_body) mirror(scene.body(), static_cast<std::size_t>(whole(random, 0, 2)));
    if (!compare_call(scene, reference, step == 0 ? 1 : step % 3, seen)) return false;
  }
  return true;
}

TEST(MirroredMarkers, GiveTheResultsOfTheLiteralReferenceBitForBit) {
  for (const auto& [body, road] : {std::pair{true, false}, {false, true}, {true, true}}) {
    census seen;
    for (unsigned seed = 1; seed <= 24; ++seed) ASSERT_TRUE(run_mirrored(seed, body, road, seen)) << "seed " << seed;
    EXPECT_GT(seen.in_contact, seen.points / 40);
  }
}

TEST(HeightsNearTheLargestNumber, GiveTheResultsOfTheLiteralReference) {
  census seen;
  for (const double z : {1e99, 1e101, 1e200, 1e308}) {
    const soil_mesh mesh = flat_mesh(6, 5, 0.5, -1.5, -1.0);
    const qvref::body body = {1, 0.5, 0.25, 3, 2};
    SoilScene scene(mesh, loam(), body);
    qvref::soil_element reference(qvref::derive_road(mesh.nodes, mesh.triangles, as_read(loam())), body);
    scene.body().position = {0.1, 0.1, 0.0};
    ASSERT_TRUE(compare_call(scene, reference, 1, seen));
    scene.body().position[2] = z;
    ASSERT_TRUE(compare_call(scene, reference, 0, seen)) << z;
  }
}

/// Points exactly on nodes, edges and the borders of the extent: everything in sixteenths.
bool run_on_lattice(unsigned seed, census& seen) {
  random_source random(seed);
  soil_mesh mesh = flat_mesh(6, 5, 0.5, -1.5, -1.0);
  for (qvref::v3& node : mesh.nodes) node[2] = whole(random, -2, 2) / 16.0;
  if (whole(random, 0, 1) == 1) shuffle(mesh, random);
  if (whole(random, 0, 2) == 0) make_holes(mesh, 5, random);
  const qvref::soil soil = random_soil(random);
  const qvref::body body = {1, whole(random, 1, 6) / 2.0, whole(random, 1, 4) / 2.0, 7, 5};
  SoilScene scene(mesh, soil, body);
  qvref::soil_element reference(qvref::derive_road(mesh.nodes, mesh.triangles, as_read(soil)), body);
  for (int step = 0; step < 40; ++step) {
    scene.body().position = {whole(random, -24, 24) / 16.0, whole(random, -20, 20) / 16.0, whole(random, -3, 2) / 16.0};
    scene.body().velocity = {whole(random, -1, 1) * 0.5, whole(random, -1, 1) * 5e-9, whole(random, -1, 1) * 0.25};
    if (!compare_call(scene, reference, step == 0 ? 1 : whole(random, 0, 2) * 2, seen)) return false;
  }
  return true;
}

TEST(SoilLattice, PointsOnNodesEdgesAndBordersGiveTheResultsOfTheLiteralReference) {
  census seen;
  for (unsigned seed = 1; seed <= 100; ++seed) ASSERT_TRUE(run_on_lattice(seed, seen)) << "seed " << seed;
  EXPECT_GT(seen.in_contact, seen.points / 20);
  EXPECT_LT(seen.in_contact, seen.points - seen.points / 20);
}

/// Points a hair over and under a road that may lie far from its marker and be tilted: what is decided here is
/// whether the point is in contact at all.
TEST(SoilSurface, APointWithinRoundingOfTheSurfaceIsInContactWhenTheReferenceSaysSo) {
  static const double k_offsets[] = {0.0, 1e-16, 1e-14, 1e-12, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-3};
  random_source random(11);
  census seen;
  for (int round = 0; round < 40; ++round) {
    soil_mesh mesh = random_mesh(round % 3 == 0 ? 6 : round % 3, random);
    const qvref::body body = {1, 0.25, 0.25, 1, 1};
    SoilScene scene(mesh, loam(), body);
    qvref::soil_element reference(qvref::derive_road(mesh.nodes, mesh.triangles, as_read(loam())), body);
    move_road(scene, random);
    place(scene.body(), scene.road(), {0, 0, 0}, random);
    ASSERT_TRUE(compare_call(scene, reference, 1, seen));
    for (int trial = 0; trial < 60; ++trial) {
      const auto& triangle = mesh.triangles[static_cast<std::size_t>(trial) % mesh.triangles.size()];
      vec3 on_road = {0, 0, 0};
      const double weight[3] = {0.25, 0.5, 0.25};
      for (std::size_t k = 0; k < 3; ++k)
        for (std::size_t c = 0; c < 3; ++c)
          on_road[c] += weight[k] * mesh.nodes[static_cast<std::size_t>(triangle[k] - 1)][c];
      on_road[2] += k_offsets[trial % 11] * (trial % 2 == 0 ? 1.0 : -1.0);
      place(scene.body(), scene.road(), on_road, random);
      const vec3 to_point = times(scene.body().axes, {-0.125, -0.125, 0.0});
      for (std::size_t c = 0; c < 3; ++c) scene.body().position[c] -= to_point[c];
      ASSERT_TRUE(compare_call(scene, reference, 2, seen)) << "round " << round << ", trial " << trial;
    }
  }
  EXPECT_GT(seen.in_contact, seen.points / 4);
  EXPECT_LT(seen.in_contact, 3 * seen.points / 4);
}

}  // namespace
}  // namespace qvtest
