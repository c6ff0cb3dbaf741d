#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "solver/data_files/road_mesh.h"
#include "solver/results/hull_picture.h"
#include "solver/results/marker_pose.h"
#include "solver/results/shape_mesh.h"
#include "solver/results/water_surface.h"
#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

/// Volume inside a closed surface whose triangles look outwards (divergence theorem).
double volume(const TriangleMesh& mesh) {
  double sum = 0;
  for (const auto& t : mesh.triangles) {
    const auto corner = [&](size_t k) { return mesh.points[static_cast<size_t>(t[k])]; };
    sum += dot(corner(0), cross(corner(1), corner(2))) / 6;
  }
  return sum;
}

/// Every edge of a closed surface is walked once in each direction.
void expect_closed(const TriangleMesh& mesh) {
  std::map<std::pair<int, int>, int> walks;
  for (const auto& t : mesh.triangles) {
    for (size_t k = 0; k < 3; ++k) ++walks[{t[k], t[(k + 1) % 3]}];
  }
  for (const auto& [edge, count] : walks) {
    EXPECT_EQ(count, 1);
    EXPECT_EQ(walks.count({edge.second, edge.first}), 1u);
  }
}

TEST(ShapeMesh, BoxIsClosedAndLooksOutwards) {
  const TriangleMesh mesh = shape_mesh({ShapeKind::box, {2, 3, 5}, 0, 0, 1});
  expect_closed(mesh);
  EXPECT_NEAR(volume(mesh), 30, 1e-12);
}

TEST(ShapeMesh, CylinderIsAPrismAlongItsAxis) {
  const double base = 0.5 * k_round_sides * std::sin(2 * k_pi / k_round_sides);  // area in the unit circle
  for (int axis = 0; axis < 3; ++axis) {
    const TriangleMesh mesh = shape_mesh({ShapeKind::cylinder, {0, 0, 0}, 0.5, 3, axis});
    expect_closed(mesh);
    EXPECT_NEAR(volume(mesh), base * 0.25 * 3, 1e-12) << "axis " << axis;
    double reach = 0;
    for (const Vec3& p : mesh.points) reach = std::max(reach, p[static_cast<size_t>(axis)]);
    EXPECT_DOUBLE_EQ(reach, 1.5) << "axis " << axis;
  }
}

TEST(ShapeMesh, SphereIsInscribed) {
  const TriangleMesh mesh = shape_mesh({ShapeKind::sphere, {0, 0, 0}, 2, 0, 1});
  expect_closed(mesh);
  const double ball = 4.0 / 3 * k_pi * 8;
  EXPECT_LT(volume(mesh), ball);
  // A chord of angle d stays inside by (d/2)^2/2; over both directions the volume loses at most a few of that.
  EXPECT_GT(volume(mesh), ball * (1 - 4 * std::pow(k_pi / k_round_sides, 2) / 2));
  for (const Vec3& p : mesh.points) EXPECT_NEAR(norm(p), 2, 1e-12);
}

TEST(ShapeMesh, NoShapeIsEmpty) { EXPECT_TRUE(shape_mesh({}).points.empty()); }

std::string road_file(const std::string& text) {
  const std::string folder = test_folder();
  std::filesystem::create_directories(folder);
  std::ofstream(folder + "/road.rdf") << text;
  return folder + "/road.rdf";
}

TEST(RoadMesh, TakesNodesAndTrianglesAndNothingElse) {
  const auto mesh =
      read_road_mesh(road_file("FILE_TYPE = 'RDF'\nSOIL_TYPE=DRY_SAND\nNUMBER_OF_NODES = 4\n"
                               "{ number x y z }\n1 0 0 0.5\n2 1 0 0\n3 1 1 0\n4 0 1 1e-1\nspacer\n"
                               "NUMBER_OF_ELEMENTS = 2\n1 2 3 0\n1 3 4 0\n\nVERSION = 1\n"));
  ASSERT_TRUE(mesh.has_value());
  ASSERT_EQ(mesh->points.size(), 4u);
  EXPECT_EQ(mesh->points[3], (Vec3{0, 1, 0.1}));
  ASSERT_EQ(mesh->triangles.size(), 2u);
  EXPECT_EQ(mesh->triangles[1], (std::array<int, 3>{0, 2, 3}));
}

TEST(RoadMesh, LeavesOutTrianglesOfNodesThatAreNotThere) {
  const auto mesh =
      read_road_mesh(road_file("NUMBER_OF_NODES = 3\n1 0 0 0\n2 1 0 0\n3 0 1 0\n\n"
                               "NUMBER_OF_ELEMENTS = 4\n1 2 3 0\n1 2 4 0\n0 1 2 0\nwords\n\n"));
  ASSERT_TRUE(mesh.has_value());
  EXPECT_EQ(mesh->triangles.size(), 1u);
}

TEST(RoadMesh, IsNothingForFilesWithoutOne) {
  EXPECT_FALSE(read_road_mesh("/nowhere/road.rdf").has_value());
  for (const char* text : {"", "NUMBER_OF_NODES", "NUMBER_OF_NODES = -5\nNUMBER_OF_ELEMENTS = 1e300\n",
                           "NUMBER_OF_NODES = 3\n1 0 0 0\n"}) {
    EXPECT_FALSE(read_road_mesh(road_file(text)).has_value()) << "\"" << text << "\"";
  }
}

TEST(RoadMeshes, HandOverOnceWhatWasReadAheadAndReadTheRest) {
  const std::string path =
      road_file("NUMBER_OF_NODES = 3\n1 0 0 0\n2 1 0 0\n3 0 1 0\n\nNUMBER_OF_ELEMENTS = 1\n1 2 3 0\n");
  RoadMeshes roads;
  EXPECT_TRUE(roads.take(path).has_value()) << "not read ahead";
  roads.read_ahead(path);
  roads.read_ahead("/nowhere/road.rdf");
  std::filesystem::remove(path);
  const auto mesh = roads.take(path);
  ASSERT_TRUE(mesh.has_value());
  EXPECT_EQ(mesh->triangles.size(), 1u);
  EXPECT_FALSE(roads.take(path).has_value()) << "it is gone, and its file too";
  EXPECT_FALSE(roads.take("/nowhere/road.rdf").has_value());
}

// --- hulls and water -----------------------------------------------------------------------------------------------

/// A ball on a body and the sea it floats in; both frames stand askew.
struct FloatingBall {
  TestModel built{1, 1};
  EvenSurface surface{0.3, 0.2, -0.5};
  Recording recording;
  Frame frame;
  int water_marker, hull_marker;

  FloatingBall() {
    built.add_body("ball", 1, {1, 1, 1});
    built.body(0).center = {0.5, 0, -0.25};
    water_marker = built.add_marker(k_ground, {-20, 3, 7}, product(turn(2, 0.7), turn(0, 0.2)));
    hull_marker = built.add_marker(0, {1, 2, 3}, turn(1, 0.4));
    const auto& markers = built.model.markers;
    const int water_id = markers[static_cast<size_t>(water_marker)].id;
    const int hull_id = markers[static_cast<size_t>(hull_marker)].id;
    const TriangleMesh mesh = shape_mesh({ShapeKind::sphere, {0, 0, 0}, 2, 0, 1});
    built.add_element("hull", "qvhydro_force", ElementKind::force, hull_par(water_id, hull_id, 1, mesh), 34);
    recording.model = &built.model;
    recording.waters.push_back({water_marker, surface.wave(4, 41, 1)});
    recording.hulls.push_back(*read_hull(built.model, 0));
    recording.hulls[0].water = 0;
    frame.time = 1.5;
    place_middle({18, 1.25, surface.at(frame.time, 18)});
  }
  FloatingBall(const FloatingBall&) = delete;
  FloatingBall& operator=(const FloatingBall&) = delete;

  /// Puts the middle of the ball at a place of the water's frame, the body turned about x by 0.9.
  void place_middle(const Vec3& afloat) {
    const Vec3 to_middle = rotate(turn(0, 0.9), Vec3{1, 2, 3} - built.model.bodies[0].center);
    const Vec3 middle = Vec3{-20, 3, 7} + rotate(product(turn(2, 0.7), turn(0, 0.2)), afloat);
    frame.body_poses = {{middle - to_middle, {std::cos(0.45), std::sin(0.45), 0, 0}}};
  }
  Vec3 afloat(const Vec3& point) const {
    return rotate(transposed(product(turn(2, 0.7), turn(0, 0.2))), point - Vec3{-20, 3, 7});
  }
  HullState state() const { return calc_hull_state(built.model, recording.hulls[0], &recording.waters[0], frame); }
};

TEST(HullPicture, NodesLieWhereTheirMarkerCarriesThem) {
  const FloatingBall ball;
  const HullState state = ball.state();
  ASSERT_EQ(state.points.size(), ball.recording.hulls[0].mesh.points.size());
  const Vec3 middle = {18, 1.25, ball.surface.at(1.5, 18)};
  for (size_t k = 0; k < state.points.size(); ++k) EXPECT_NEAR(norm(ball.afloat(state.points[k]) - middle), 2, 1e-12);
  // The pole of the mesh tells the axes: the marker's z, turned by 0.4 about y and 0.9 about x.
  const Vec3 pole = state.points[state.points.size() - 2], opposite = state.points.back();
  expect_near(rotate(turn(0, 0.9), {std::sin(0.4), 0, std::cos(0.4)}), 0.25 * (pole - opposite), 1e-12);
}

TEST(HullPicture, DepthIsTheHeightOfTheSurfaceOverANode) {
  const FloatingBall ball;
  const HullState state = ball.state();
  for (size_t k = 0; k < state.points.size(); ++k) {
    const Vec3 p = ball.afloat(state.points[k]);
    EXPECT_NEAR(state.depth[k], ball.surface.at(1.5, p[0]) - p[2], 1e-11);
  }
}

TEST(HullPicture, PatchesAreWetWhereTheirMiddleIsUnderWater) {
  const FloatingBall ball;
  const HullState state = ball.state();
  const auto& triangles = ball.recording.hulls[0].mesh.triangles;
  size_t wet = 0;
  for (size_t k = 0; k < triangles.size(); ++k) {
    double depth = 0;  // the surface is even: the depth of the middle is the mean of the corners'
    for (const int node : triangles[k]) depth += state.depth[static_cast<size_t>(node)] / 3;
    if (std::abs(depth) < 1e-9) continue;
    EXPECT_EQ(state.wet[k], depth > 0) << "patch " << k;
    wet += state.wet[k] ? 1 : 0;
  }
  // The middle of the ball is on the surface: half of the patches, but for those that the surface cuts.
  EXPECT_NEAR(static_cast<double>(wet), 0.5 * static_cast<double>(triangles.size()), 2.0 * k_round_sides);
}

TEST(HullPicture, IsDryBeyondTheTable) {
  struct Case {
    const char* why;
    double x;
    bool wet;
  };
  for (const Case& c : {Case{"deep under the last columns", 37, true},
                        {"behind the last column", 43, false},
                        {"before the first column", -3, false}}) {
    FloatingBall ball;
    ball.place_middle({c.x, 0, -50});
    const HullState state = ball.state();
    for (const bool wet : state.wet) EXPECT_EQ(wet, c.wet) << c.why;
    for (const double depth : state.depth) EXPECT_EQ(depth != 0, c.wet) << c.why;
  }
  const FloatingBall ball;
  const HullState state = calc_hull_state(ball.built.model, ball.recording.hulls[0], nullptr, ball.frame);
  for (const bool wet : state.wet) EXPECT_FALSE(wet) << "no water is known";
}

TEST(HullPicture, WaterBelowXZeroBearsNothing) {
  FloatingBall ball;
  for (double& x : ball.recording.waters[0].wave.x) x -= 20;
  EXPECT_FALSE(is_over(ball.recording.waters[0], -1e-9));
  EXPECT_TRUE(is_over(ball.recording.waters[0], 0));
  EXPECT_TRUE(is_over(ball.recording.waters[0], 20));
  EXPECT_FALSE(is_over(ball.recording.waters[0], 20.1));
}

TEST(HullPicture, IsNothingForParametersThatHoldNoWholeMesh) {
  FloatingBall ball;
  std::vector<double>& par = ball.built.model.elements[0].par;
  const std::vector<double> good = par;
  ASSERT_TRUE(read_hull(ball.built.model, 0).has_value());
  for (const size_t length :
       {size_t{0}, size_t{6}, size_t{20}, size_t{21}, size_t{22}, good.size() / 2, good.size() - 1}) {
    par.assign(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_FALSE(read_hull(ball.built.model, 0).has_value()) << length << " of " << good.size();
  }
  const std::pair<size_t, double> faults[] = {{20, -1}, {20, 1e300}, {20, std::nan("")}, {5, 77}, {6, 77}};
  for (const auto& [place, value] : faults) {
    par = good;
    par[place] = value;
    EXPECT_FALSE(read_hull(ball.built.model, 0).has_value()) << "par[" << place << "] = " << value;
  }
}

TEST(HullPicture, LeavesOutPatchesOfNodesThatAreNotThere) {
  FloatingBall ball;
  std::vector<double>& par = ball.built.model.elements[0].par;
  const size_t patches = ball.recording.hulls[0].mesh.triangles.size();
  par[par.size() - 1] = par[20] + 1;
  par[par.size() - 4] = -1;
  EXPECT_EQ(read_hull(ball.built.model, 0)->mesh.triangles.size(), patches - 2);
}

TEST(HullPicture, TheNumberBehindTheLastNodeIsTheOrigin) {
  FloatingBall ball;
  const TriangleMesh& mesh = ball.recording.hulls[0].mesh;
  std::vector<double>& par = ball.built.model.elements[0].par;
  par[par.size() - 1] = par[20];
  const TriangleMesh found = read_hull(ball.built.model, 0)->mesh;
  EXPECT_EQ(found.triangles.size(), mesh.triangles.size());
  ASSERT_EQ(found.points.size(), mesh.points.size() + 1);
  expect_near({0, 0, 0}, found.points[static_cast<size_t>(found.triangles.back()[2])], 0);
}

TEST(WaterSurface, ReachIsThePlanThatHullsTakeUpInTheWatersFrame) {
  FloatingBall ball;
  WaterReach reach;
  widen(reach, ball.recording, 0, ball.frame);
  ball.place_middle({25, -6, 0});
  widen(reach, ball.recording, 0, ball.frame);
  ball.frame.body_poses[0].position[1] = std::nan("");
  widen(reach, ball.recording, 0, ball.frame);
  // Polygons in the ball of radius 2 stay inside it by at most 1 - cos(half a side), here along both circles.
  const double slack = 2 * 2 * (1 - std::cos(k_pi / k_round_sides));
  const double expected[4] = {18 - 2, -6 - 2, 25 + 2, 1.25 + 2};
  const double found[4] = {reach.box.low[0], reach.box.low[1], reach.box.high[0], reach.box.high[1]};
  for (size_t k = 0; k < 4; ++k) EXPECT_NEAR(found[k], expected[k], slack) << k;
  EXPECT_NEAR(reach.length, std::hypot(4, 4), 2 * slack) << "of the ball alone, not of its way";
}

TEST(WaterSurface, StripIsTheWholeTableWhereThatIsSmall) {
  const FloatingBall ball;
  const WaterReach reach = {{{10, -1}, {13, 3}, false}, 5};
  const WaterStrip strip = choose_strip(ball.recording.waters[0], reach, 41);
  EXPECT_EQ(strip.x, ball.recording.waters[0].wave.x);
  EXPECT_DOUBLE_EQ(strip.y_low, -1 - 5);
  EXPECT_DOUBLE_EQ(strip.y_high, 3 + 5);
}

TEST(WaterSurface, StripOfALongTableCoversTheHullsWithFewColumns) {
  struct Case {
    const char* why;
    double low, high, from, to;  // of the hulls, and of the table
  };
  constexpr double spacing = 0.5;
  constexpr size_t columns = 4001, most = 100;
  const Case cases[] = {{"a short hull amid the table gets all the columns there are", 999, 1001, 975.25, 1024.75},
                        {"at the start", 0, 2, 0, 49.5},
                        {"at the end", 1998, 2000, 1950.5, 2000},
                        {"off the table", -500, -400, 0, 49.5},
                        {"long hulls get three of their lengths and a wider spacing", 900, 1000, 600, 1300},
                        {"hulls longer than the table", -100, 2100, 0, 2000}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    const Water water = {0, EvenSurface{}.wave(1, columns, spacing)};
    const WaterStrip strip = choose_strip(water, {{{c.low, 0}, {c.high, 0}, false}, c.high - c.low}, most);
    EXPECT_LE(strip.x.size(), most + 1);
    EXPECT_GT(strip.x.size(), most / 2);
    EXPECT_NEAR(strip.x.front(), c.from, spacing);
    EXPECT_NEAR(strip.x.back(), c.to, spacing);
    for (size_t k = 0; k < strip.x.size(); ++k) {
      EXPECT_EQ(std::fmod(strip.x[k], spacing), 0) << "a column of the table";
      EXPECT_TRUE(k == 0 || strip.x[k - 1] < strip.x[k]);
    }
  }
}

TEST(WaterSurface, SheetLiesOnTheSurfaceAndLooksUp) {
  const FloatingBall ball;
  const Water& water = ball.recording.waters[0];
  const WaterStrip strip = choose_strip(water, {{{10, -1}, {13, 3}, false}, 5}, 41);
  const TriangleMesh sheet = sheet_mesh(ball.built.model, water, strip, ball.frame);
  ASSERT_EQ(sheet.points.size(), 2 * strip.x.size());
  double area = 0;
  for (const Vec3& point : sheet.points) {
    const Vec3 p = ball.afloat(point);
    EXPECT_NEAR(p[2], ball.surface.at(1.5, p[0]), 1e-11);
  }
  for (const auto& t : sheet.triangles) {
    const auto corner = [&](size_t k) { return ball.afloat(sheet.points[static_cast<size_t>(t[k])]); };
    const Vec3 twice = cross(corner(1) - corner(0), corner(2) - corner(0));
    EXPECT_GT(twice[2], 0);
    area += norm(twice) / 2;
  }
  EXPECT_NEAR(area, 40 * std::hypot(1, ball.surface.slope) * 14, 1e-9);
}

TEST(WaterSurface, HoldsOutOnTablesThatMakeNoSense) {
  WaveFile one;
  one.time = {0};
  one.x = {5};
  one.elevation = {{2}};
  WaveFile unsorted = EvenSurface{}.wave(1, 6, 1);
  std::swap(unsorted.x[0], unsorted.x[4]);
  unsorted.x[5] = 0;
  WaveFile left = EvenSurface{}.wave(1, 6, 1);
  for (double& x : left.x) x -= 50;
  const FloatingBall ball;
  for (const WaveFile& wave : {one, unsorted, left}) {
    const Water water = {ball.water_marker, wave};
    for (const double x : {-60.0, 0.0, 3.0, 99.0}) {
      const WaterStrip strip = choose_strip(water, {{{x, 0}, {x + 1, 1}, false}, 1.5}, 3);
      EXPECT_LE(strip.x.size(), 4U);
      const TriangleMesh sheet = sheet_mesh(ball.built.model, water, strip, ball.frame);
      EXPECT_EQ(sheet.points.size(), 2 * strip.x.size());
    }
  }
}

}  // namespace
