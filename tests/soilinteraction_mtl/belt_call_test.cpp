#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "soilinteraction_mtl/containers.h"
#include "tests/soilinteraction_mtl/belt_scene.h"

// The protocol of the force subroutine and the layout of its results: set-up, requests, blocks of points, shared rows,
// and the length that all spans are evaluated with.

namespace qvtest {
namespace {

using testing::Each;

constexpr double k_depth = 0.05;

soil_mesh level() { return flat_mesh(16, 8, 0.5, -2.0, -2.0); }

/// Circles in a row on level ground, the belt k_depth in it.
BeltScene sunken(int nodes = 2, double step = 2.0) {
  BeltScene scene(level(), loam(), level_circles(nodes, step, 0.25, -k_depth));
  scene.host.log = true;
  return scene;
}

long string_requests(const ScriptedHost& host) {
  return std::count(host.requests.begin(), host.requests.end(), "string " + std::to_string(k_file_string));
}

// --- set-up ------------------------------------------------------------------------------------------------------

TEST(TrackSetUp, FetchesTheFileTheMarkersEveryNodeAndTheBeltSpeed) {
  BeltScene scene = sunken();
  scene.call(1);
  const std::vector<std::string> expected = {"string 4",      "AM 1 14",      "AM 5 14",        "TDISP 1 14 14",
                                             "TDISP 5 14 14", "TVEL 1 14 14", "RVEL 1 14 1",    "TVEL 5 14 14",
                                             "RVEL 5 14 5",   "TDISP 1 5 5",  "TDISP 21 14 14", "TVEL 21 14 14",
                                             "RVEL 21 14 21", "AM 21 14",     "TDISP 22 14 14", "TVEL 22 14 14",
                                             "RVEL 22 14 22", "AM 22 14",     "VARVAL 11"};
  EXPECT_THAT(scene.host.requests, testing::UnorderedElementsAreArray(expected));
  EXPECT_EQ(scene.host.unanswered, 0);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_TRUE(scene.host.stops.empty());
}

TEST(TrackSetUp, AlsoEvaluates) {
  BeltScene scene = sunken();
  const std::vector<double> at_set_up = scene.call(1);
  EXPECT_GT(at_set_up[2], 1e4);
  EXPECT_EQ(first_difference(at_set_up, scene.call(0)), -1);
  EXPECT_EQ(first_difference(at_set_up, scene.call(3)), -1) << "any other flag is an ordinary evaluation";
  EXPECT_EQ(first_difference(at_set_up, scene.call(-1)), -1);
}

TEST(TrackSetUp, ReadsARoadOnce) {
  BeltScene scene = sunken();
  scene.call(1);
  std::filesystem::remove(scene.file);  // there is nothing to read any more
  scene.call(1);
  EXPECT_EQ(string_requests(scene.host), 1);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_GT(scene.total(2), 1e4);
}

TEST(TrackSetUp, GivesEveryRoadOneTrackOfTheFirstCallersNodes) {
  using namespace qvsoilinteractionmtl;
  BeltScene scene = sunken();
  scene.call(1);
  ASSERT_EQ(s_MTLsoil_forces.size(), static_cast<std::size_t>(k_belt_roads));
  for (std::size_t road = 0; road < s_MTLsoil_forces.size(); ++road) {
    ASSERT_EQ(s_MTLsoil_forces[road].size(), 1U);
    ASSERT_EQ(s_MTLsoil_forces[road][0].size(), static_cast<std::size_t>(k_belt_nodes));
    ASSERT_EQ(s_MTLsoil_contact_forces_Sum[road].size(), 1U);
    ASSERT_EQ(s_MTLsoil_shear_forces_Sum[road].size(), 1U);
    ASSERT_EQ(s_MTLsoil_normal_forces_Sum[road][0].size(), static_cast<std::size_t>(k_belt_nodes));
  }
}

TEST(TrackSetUp, MarksBothSidesOfEveryNodeAndSizesTheirGrids) {
  using namespace qvsoilinteractionmtl;
  BeltScene scene = sunken(3);
  scene.call(1);
  const auto& records = s_MTLsoil_forces[static_cast<std::size_t>(scene.parameters.road)][0];
  for (std::size_t node = 0; node < records.size(); ++node) {
    for (std::size_t side = 0; side < 2; ++side) {
      const CSoilInteractionMTL& record = records[node][side];
      if (node >= 3) {
        EXPECT_EQ(record.track_id, -16394);
        continue;
      }
      EXPECT_EQ(record.track_id, 0);
      EXPECT_EQ(record.side, static_cast<int>(side));
      EXPECT_EQ(record.nLong, 5);
      EXPECT_EQ(record.nLat, 3);
      EXPECT_EQ(record.road_contacts.size(), 5U);
      EXPECT_EQ(record.soil_contacts[4].size(), 3U);
      EXPECT_EQ(record.soil_contacts[4][2].soil_type, "SOIL");
    }
  }
}

TEST(TrackSetUp, LeavesTheContainersThatNothingUsesEmpty) {
  BeltScene scene = sunken();
  scene.call(1);
  scene.call(2);
  EXPECT_TRUE(qvsoilinteractionmtl::s_MTLsoil_shear_forces_Sum_p.empty());
  EXPECT_TRUE(qvsoilinteractionmtl::s_MTLsoil_normal_forces_Sum_p.empty());
  EXPECT_TRUE(qvsoilinteractionmtl::s_MTLsoil_Input.empty());
}

TEST(TrackBeforeItsSetUp, HasNoPointsAndExertsNothing) {
  BeltScene scene = sunken();
  for (const int iflag : {0, 2}) {
    EXPECT_THAT(scene.call(iflag), Each(0.0));
    EXPECT_EQ(scene.take_report(), "");
  }
  EXPECT_TRUE(scene.host.requests.empty());
}

TEST(Tracks, OnRoadsOfTheirOwnKeepApart) {
  BeltScene left = sunken(), right = sunken(3);
  left.call(1);
  right.call(1);
  const std::vector<double> before = left.call(0);
  right.put(level_circles(3, 2.0, 0.25, -0.1));
  right.call(2);
  EXPECT_EQ(left.shear_sum(), std::vector<double>(6, 0.0));
  EXPECT_NEAR(left.contact_sum()[2], before[2], 1e-9);
  EXPECT_EQ(first_difference(before, left.call(0)), -1);
}

TEST(TrackAndPlate, KeepRoadTablesOfTheirOwn) {
  BeltScene track = sunken();
  SoilScene plate(flat_mesh(8, 8, 0.5), loam(), {1, 0.5, 0.25, 3, 2});
  plate.parameters.road = track.parameters.road;
  plate.body().position = {2.0, 2.0, -0.05};
  plate.host.log = true;
  track.call(1);
  plate.call(1);
  EXPECT_EQ(string_requests(plate.host), 1) << "each module reads a road it needs for itself";
}

// --- results -----------------------------------------------------------------------------------------------------

TEST(TrackResult, HoldsForcePositionSinkageAndDynamicSinkageOfEveryPoint) {
  BeltScene scene = sunken();
  scene.call(1);
  const double force = loam_pressure(0.5, k_depth) * 2.0 * 0.5 / 15;
  for (int row = 0; row < 5; ++row) {
    for (int column = 0; column < 3; ++column) {
      const bool first = row == 0 && column == 0;
      EXPECT_NEAR(scene.point(row, column, 0), first ? 1.0 : 0.0, 1e-12) << "the first has the area";
      EXPECT_EQ(scene.point(row, column, 1), 0.0);
      EXPECT_NEAR(scene.point(row, column, 2), force, 1e-12 * force);
      EXPECT_EQ(scene.point(row, column, 3), 0.5 * row);
      EXPECT_EQ(scene.point(row, column, 4), 0.25 * column - 0.25);
      EXPECT_NEAR(scene.point(row, column, 5), -k_depth, 1e-15);
      EXPECT_NEAR(scene.point(row, column, 6), -k_depth, 1e-15);
      EXPECT_EQ(scene.point(row, column, 7), 0.0);
    }
  }
}

TEST(TrackResult, BeginsWithTheSumsOfTheLocalForcesAndAZero) {
  BeltScene scene = sunken();
  scene.move({-2.0, -1.0, 0.0});  // against the belt and sideways
  scene.call(1);
  scene.call(2, 0.01);
  scene.belt_speed() = 1.0;
  scene.call(0);
  const qvref::soil soil = as_read(loam());
  const double p = loam_pressure(0.5, k_depth);
  EXPECT_NEAR(scene.total(0), qvref::wong_shear(soil, 0.03, -3.0, p), 1e-8) << "of an area of one";
  EXPECT_NEAR(scene.total(1), qvref::wong_shear(soil, 0.01, -1.0, p), 1e-8);
  EXPECT_NEAR(scene.total(2), p, 1e-8);
  EXPECT_EQ(scene.total(3), 0.0);
}

TEST(TrackResult, HasTheAreaOfAllPointsInTheFirstPointsForceAndNotOneEntryBefore) {
  BeltScene scene = sunken();
  scene.move({-2.0, 0.0, 0.0});
  scene.call(1);
  scene.call(2, 0.01);
  scene.call(0);
  const double own_force = scene.point(0, 1, 0);  // what its neighbour has, the first has too
  ASSERT_GT(own_force, 1.0);
  EXPECT_NEAR(scene.total(4), own_force + 1.0, 1e-9);
  EXPECT_EQ(scene.total(3), 0.0);
  EXPECT_NEAR(scene.contact_sum()[0], 15 * own_force, 1e-7) << "the sums hold the force alone";
}

TEST(TrackResult, HasTheAreaThereEvenWhenTheFirstPointIsOutOfContact) {
  BeltScene scene = sunken();
  scene.put(level_circles(2, 2.0, 0.25, -k_depth), -2.25);  // the first row is beyond the road
  scene.call(1);
  EXPECT_EQ(scene.point(0, 1, 2), 0.0);
  EXPECT_NEAR(scene.total(4), 12.0 / 15.0, 1e-14);
}

TEST(TrackResult, OfAPointOutOfContactIsItsPositionAlone) {
  BeltScene scene = sunken();
  scene.put(level_circles(2, 2.0, 0.25, 0.01));
  for (const int iflag : {1, 0, 2}) {
    scene.call(iflag);
    for (int row = 0; row < 5; ++row) {
      EXPECT_EQ(scene.point(row, 2, 3), 0.5 * row);
      EXPECT_EQ(scene.point(row, 2, 4), 0.25);
      for (const std::size_t entry : {0U, 1U, 2U, 6U, 7U}) EXPECT_EQ(scene.point(row, 2, entry), 0.0);
    }
    for (std::size_t entry = 0; entry < 5; ++entry) EXPECT_EQ(scene.total(entry), 0.0);
  }
}

TEST(TrackResult, OfASurfaceJustTouchedIsOutOfContact) {
  BeltScene scene = sunken();
  scene.put(level_circles(2, 2.0, 0.25, 0.0));
  scene.call(1);
  EXPECT_EQ(scene.total(4), 0.0);
}

TEST(BeltThickness, IsAddedToEveryRadius) {
  BeltScene thin = sunken(3), thick = sunken(3);
  thick.parameters.thickness = 0.125;
  for (double& radius : thick.parameters.radii) radius = 0.125;
  EXPECT_EQ(first_difference(thin.call(1), thick.call(1)), -1);
}

// --- shared rows -------------------------------------------------------------------------------------------------

TEST(SharedRow, HasTheForcesOfBothSpansThatMeetThere) {
  BeltScene scene = sunken(4, 1.5);
  scene.call(1);
  const double single = scene.point(1, 1, 2);
  for (int row = 0; row < scene.rows(); ++row) {
    const bool shared = row == 4 || row == 8;
    EXPECT_NEAR(scene.point(row, 1, 2), shared ? 2.0 * single : single, 1e-9) << "row " << row;
    EXPECT_NEAR(scene.point(row, 1, 6), -k_depth, 1e-15) << "the sinkage is not summed";
  }
}

/// A chain that sags: the belt bends around its inner nodes. The middle span is level, k_depth in the ground.
std::vector<circle> bowl() {
  std::vector<circle> circles;
  for (const double x : {-1.5, -0.5, 0.5, 1.5}) circles.push_back({x, 0.15 * x * x - 0.0375 + 0.2 - k_depth, 0.2});
  return circles;
}

double distance_from_node(BeltScene& scene, std::size_t node, int row) {
  const vec3& centre = scene.node(node).position;
  return std::hypot(scene.point(row, 1, 3) - centre[0], scene.point(row, 1, 5) - centre[2]);
}

TEST(SharedRow, ShowsTheCornerWhereTheNextSpanBegins) {
  BeltScene scene(level(), loam(), bowl());
  scene.call(1);
  const double half_bend = 0.5 * std::atan(0.3);
  EXPECT_NEAR(distance_from_node(scene, 1, 4), 0.2 / std::cos(half_bend), 1e-12);
  EXPECT_NEAR(distance_from_node(scene, 2, 8), 0.2 / std::cos(half_bend), 1e-12);
}

TEST(InnerSpan, RunsFromACornerToAnUnmovedTangentPoint) {
  BeltScene scene(level(), loam(), bowl());
  scene.call(1);
  const double begin = scene.point(4, 1, 3), step = scene.point(5, 1, 3) - begin;
  EXPECT_NEAR(begin, -0.5 - 0.2 * std::tan(0.5 * std::atan(0.3)), 1e-12) << "the corner";
  EXPECT_NEAR(begin + 4.0 * step, 0.5, 1e-12) << "straight below the node, not the corner behind it";
  EXPECT_NEAR(scene.point(7, 1, 3), begin + 3.0 * step, 1e-12);
}

TEST(FirstAndLastSpan, RunToTheCorners) {
  BeltScene scene(level(), loam(), bowl());
  scene.call(1);
  for (const int first_row : {0, 8}) {
    const double step = scene.point(first_row + 1, 1, 3) - scene.point(first_row, 1, 3);
    const double end = scene.point(first_row, 1, 3) + 4.0 * step;
    EXPECT_NEAR(end, scene.point(first_row + 4, 1, 3), 1e-12) << "row " << first_row;
  }
}

TEST(SharedRow, KeepsTheForceAndSinkageOfTheSpanBeforeWhereTheNextOneIsOutOfContact) {
  // The road ends between the tangent point where the middle span ends, at 0.5, and the corner at 0.53.
  BeltScene scene(flat_mesh(8, 8, 0.5, 0.515 - 4.0, -2.0), loam(), bowl());
  scene.call(1);
  ASSERT_NEAR(scene.point(8, 1, 3), 0.5 + 0.2 * std::tan(0.5 * std::atan(0.3)), 1e-12) << "the corner's place";
  const double L = std::sqrt(1.0 + 0.3 * 0.3);
  EXPECT_NEAR(scene.point(8, 1, 2), loam_pressure(0.5, k_depth) * L * 0.5 / 15, 1e-9);
  EXPECT_NEAR(scene.point(8, 1, 6), -k_depth, 1e-14);
}

// --- the length of the last span ---------------------------------------------------------------------------------

std::vector<circle> two_spans(double first, double last) {
  return {{0.0, 0.25 - k_depth, 0.25}, {first, 0.25 - k_depth, 0.25}, {first + last, 0.25 - k_depth, 0.25}};
}

TEST(LengthOfTheLastSpan, GivesTheAreaOfEverySpan) {
  for (const auto& [first, last] : {std::pair{1.0, 2.0}, {2.0, 1.0}}) {
    BeltScene scene(level(), loam(), two_spans(first, last));
    scene.call(1);
    const double area = last * 0.5 / 15;
    EXPECT_NEAR(scene.contact_sum()[3], 30 * area, 1e-13);
    EXPECT_NEAR(scene.point(1, 1, 2), loam_pressure(0.5, k_depth) * area, 1e-9) << "in the first span";
    EXPECT_NEAR(scene.point(6, 1, 2), loam_pressure(0.5, k_depth) * area, 1e-9) << "in the last span";
    EXPECT_NEAR(scene.point(1, 1, 3), 0.25 * first, 1e-13) << "while the rows lie where they lie";
  }
}

TEST(LengthOfTheLastSpan, GivesTheBekkerWidthOfEverySpanWhereItIsLessThanTheBelts) {
  BeltScene scene(level(), loam(), two_spans(2.0, 0.25));
  scene.call(1);
  EXPECT_NEAR(scene.point(1, 1, 2), loam_pressure(0.25, k_depth) * 0.25 * 0.5 / 15, 1e-9);
}

TEST(LengthOfTheLastSpan, IsThatOfTheSpanBeforeWhenTheLastTwoNodesHaveOneCentre) {
  BeltScene scene(level(), loam(), two_spans(1.5, 1.0));
  scene.call(1);
  EXPECT_NEAR(scene.contact_sum()[3], 2.0 * 0.5, 1e-14);
  scene.put(two_spans(1.5, 0.0));
  scene.call(0);
  EXPECT_NEAR(scene.contact_sum()[3], 2.0 * 1.5 * 0.5, 1e-14) << "the last span stays where it was";
  EXPECT_NEAR(scene.point(8, 1, 3), 2.5, 1e-14);
}

TEST(LengthOfTheLastSpan, StartsAtZeroInACallWhereNoSpanCouldBeLaid) {
  BeltScene scene(level(), loam(), level_circles(2, 2.0, 0.25, -k_depth));
  scene.call(1);
  scene.put({{1.0, 0.2, 0.25}, {1.0, 0.2, 0.25}});
  scene.call(0);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_EQ(scene.point(3, 1, 3), 1.5) << "the span stays where the last call laid it";
  EXPECT_NEAR(scene.point(3, 1, 6), -k_depth, 1e-15) << "and is in contact";
  EXPECT_EQ(scene.contact_sum()[3], 0.0) << "without an area";
}

// --- hard ground -------------------------------------------------------------------------------------------------

TEST(TrackOnConcrete, HasShearForcesEqualToTheNormalForceWhateverTheSlip) {
  qvref::soil hard = loam();
  hard.type = "CONCRETE";
  for (const double speed : {0.0, 2.0, -2.0}) {
    BeltScene scene(level(), hard, level_circles(3, 1.0, 0.25, -k_depth));
    scene.belt_speed() = speed;
    scene.call(1);
    scene.call(2);
    ASSERT_GT(scene.total(2), 1e4);
    EXPECT_EQ(scene.total(0), scene.total(2));
    EXPECT_EQ(scene.total(1), scene.total(2));
  }
}

}  // namespace
}  // namespace qvtest
