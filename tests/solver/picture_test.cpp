#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "solver/shape_mesh.h"
#include "solver/terrain.h"
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

}  // namespace
