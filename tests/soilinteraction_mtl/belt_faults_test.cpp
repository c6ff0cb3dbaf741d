#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "soilinteraction_mtl/containers.h"
#include "tests/soilinteraction/allocation_control.h"
#include "tests/soilinteraction_mtl/belt_scene.h"

// Every text that parameters, states and files can provoke, letter for letter. This program's allocator refuses
// requests of a gigabyte and more (allocation_control), so that a model with two thousand million roads needs no such
// machine.

namespace qvtest {
namespace {

using testing::Each;

constexpr double k_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double k_inf = std::numeric_limits<double>::infinity();
constexpr double k_depth = 0.05;

std::vector<circle> sunken_circles(int nodes = 2) { return level_circles(nodes, 1.0, 0.25, -k_depth); }

BeltScene sunken(int nodes = 2, module_state module = module_state::sized) {
  return {flat_mesh(16, 8, 0.5, -2.0, -2.0), loam(), sunken_circles(nodes), module};
}

struct guard_case {
  std::size_t parameter;
  double value;
  const char* text;
};

#define QV_INT_RANGE "; it must be a number between -2147483648 and 2147483647."

const guard_case k_guards[] = {
    {0, 1, "The track index (parameter 0) is 1; it must lie between 0 and 0."},
    {0, -1, "The track index (parameter 0) is -1; it must lie between 0 and 0."},
    {0, k_nan, "The track index (parameter 0) is nan" QV_INT_RANGE},
    {1, -1, "The road index (parameter 1) is -1; it must lie between 0 and 1023."},
    {1, k_belt_roads, "The road index (parameter 1) is 1024; it must lie between 0 and 1023."},
    {1, k_inf, "The road index (parameter 1) is inf" QV_INT_RANGE},
    {2, 2147483648.0, "The string id of the RDF file (parameter 2) is 2147483648" QV_INT_RANGE},
    {3, k_nan, "The marker id I (parameter 3) is nan" QV_INT_RANGE},
    {4, -2147483649.0, "The marker id J (parameter 4) is -2147483649" QV_INT_RANGE},
    {5, -k_inf, "The reference marker id (parameter 5) is -inf" QV_INT_RANGE},
    {6, -2, "The number of roads (parameter 6) is -2; it must not be negative."},
    {6, k_nan, "The number of roads (parameter 6) is nan" QV_INT_RANGE},
    {9, 1, "The grid count along a span (parameter 9) is 1; it must be at least 2."},
    {9, 1.999, "The grid count along a span (parameter 9) is 1; it must be at least 2."},
    {9, -3, "The grid count along a span (parameter 9) is -3; it must be at least 2."},
    {9, k_nan, "The grid count along a span (parameter 9) is nan" QV_INT_RANGE},
    {9, 4, "The number of grid points (parameters 9, 10 and 12) is 12; it must be at least the 15 of the set-up."},
    {9, 1e9,
     "The number of grid points is 1000000000 rows (parameters 9 and 12) of 3 (parameter 10); it must not exceed "
     "268435455."},
    {10, 1, "The grid count across the belt (parameter 10) is 1; it must be at least 2."},
    {10, 0, "The grid count across the belt (parameter 10) is 0; it must be at least 2."},
    {10, 2, "The number of grid points (parameters 9, 10 and 12) is 10; it must be at least the 15 of the set-up."},
    {10, 2e9,
     "The number of grid points is 5 rows (parameters 9 and 12) of 2000000000 (parameter 10); it must not exceed "
     "268435455."},
    {11, k_nan, "The variable id (parameter 11) is nan" QV_INT_RANGE},
    {12, 1, "The number of nodes (parameter 12) is 1; it must be at least 2."},
    {12, -1, "The number of nodes (parameter 12) is -1; it must be at least 2."},
    {12, 3, "The number of nodes (parameter 12) is 3; it must not exceed the 2 of the set-up."},
    {14, k_nan, "The marker id of node 0 (parameter 14) is nan" QV_INT_RANGE},
    {16, 4e9, "The marker id of node 1 (parameter 16) is 4e+09" QV_INT_RANGE},
};

TEST(TrackGuards, NameTheParameterItsValueAndItsRange) {
  BeltScene scene = sunken();
  scene.call(1);
  for (const guard_case& c : k_guards) {
    for (const int iflag : {0, 1, 2}) {
      const std::string said = scene.report_with(c.parameter, c.value, iflag, 8 * 15);
      const std::string expected = std::string("SOILINTERACTION MTL ERROR : ") + c.text;
      EXPECT_EQ(said, expected) << "iflag " << iflag;
    }
  }
  EXPECT_GT(scene.call(0)[2], 1e4) << "and the track works on";
  EXPECT_EQ(scene.take_report(), "");
}

TEST(TrackGuards, LetPassWhatNoCallLooksAt) {
  BeltScene scene = sunken();
  scene.call(1);
  EXPECT_EQ(scene.report_with(13, k_nan, 0), "");
  EXPECT_EQ(scene.report_with(6, 0.0, 0), "") << "the containers stand";
  EXPECT_EQ(scene.report_with(0, -0.75, 0), "") << "truncated";
}

TEST(TrackGuards, RefuseMoreNodesThanTheFirstTrackOfAllHad) {
  BeltScene scene = sunken(k_belt_nodes + 1);
  EXPECT_THAT(scene.call(1), Each(0.0));
  EXPECT_EQ(scene.take_report(),
            "SOILINTERACTION MTL ERROR : The number of nodes (parameter 12) is 10; it must not exceed the 9 of the "
            "set-up.");
}

TEST(TrackGuards, RefuseASecondTrackOnARoad) {
  BeltScene scene = sunken();
  scene.call(1);
  const double force = scene.total(2);
  scene.parameters.track = 1.0;
  scene.call(1);
  EXPECT_EQ(scene.take_report(),
            "SOILINTERACTION MTL ERROR : The track index (parameter 0) is 1; it must lie between 0 and 0.");
  scene.parameters.track = 0.0;
  EXPECT_EQ(scene.call(0)[2], force);
}

TEST(TrackGuards, LeaveTheSumsOfTheCallBefore) {
  BeltScene scene = sunken();
  scene.call(1);
  scene.report_with(9, 1, 0);
  EXPECT_GT(scene.contact_sum()[2], 1e4);
}

// The roads stand since the set-up of a track that ran out of memory for the rest.
TEST(TrackGuards, RefuseNoRoadsWhereTheContainersDoNotStandYet) {
  BeltScene scene = sunken();
  scene.call(1);
  auto kept = std::move(qvsoilinteractionmtl::s_MTLsoil_forces);
  qvsoilinteractionmtl::s_MTLsoil_forces = {};
  EXPECT_EQ(scene.report_with(6, 0.0, 1),
            "SOILINTERACTION MTL ERROR : The number of roads (parameter 6) is 0; it must be at least 1.");
  qvsoilinteractionmtl::s_MTLsoil_forces = std::move(kept);
  EXPECT_GT(scene.call(0)[2], 1e4);
}

// --- standard exceptions -----------------------------------------------------------------------------------------

TEST(TrackExceptions, AreReportedBehindTheModulesPrefixAndTheSetUpCanBeTriedAgain) {
  if (module_may_be_sized()) GTEST_SKIP() << "the containers stand already in this process";
  BeltScene scene = sunken(2, module_state::untouched);
  EXPECT_EQ(scene.report_with(6, 2147483647.0, 1), "SOILINTERACTION MTL ERROR : std::bad_alloc");
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "") << "with a sensible number of roads it works";
  EXPECT_GT(scene.total(2), 1e4);
}

// --- files -------------------------------------------------------------------------------------------------------

TEST(TrackRoadFile, ThatCannotBeOpenedIsAReportAndIsAskedForAgain) {
  BeltScene scene = sunken();
  const std::wstring good = scene.host.strings[k_file_string];
  scene.host.strings[k_file_string] = L"no such file.rdf";
  scene.host.path = L"/nowhere/model.x";
  EXPECT_THAT(scene.call(1), Each(0.0));
  EXPECT_EQ(scene.take_report(), "READ RDF ERROR : FAILED TO OPEN RDF FILE. ");
  EXPECT_TRUE(scene.host.stops.empty()) << "only a reading that broke off stops the solver";
  scene.host.strings[k_file_string] = good;
  EXPECT_GT(scene.call(1)[2], 1e4);
}

TEST(TrackRoadFile, IsLookedForBesideTheModelToo) {
  BeltScene scene = sunken();
  const std::size_t slash = scene.file.rfind('/');
  scene.host.strings[k_file_string] = std::wstring(scene.file.begin() + static_cast<long>(slash) + 1, scene.file.end());
  scene.host.path = std::wstring(scene.file.begin(), scene.file.begin() + static_cast<long>(slash)) + L"/model.x";
  EXPECT_GT(scene.call(1)[2], 1e4);
  EXPECT_EQ(scene.take_report(), "");
}

TEST(TrackRoadFile, WithAFormatErrorIsAReport) {
  BeltScene scene = sunken();
  write_text(scene.file, "LENGTH = 'cubit'\n");
  EXPECT_THAT(scene.call(1), Each(0.0));
  EXPECT_EQ(scene.take_report(), " READ RDF ERROR : CUBIT is an unsupported LENGTH UNIT. \n");
  EXPECT_THAT(scene.call(0), Each(0.0)) << "nothing is set up";
  EXPECT_EQ(scene.take_report(), "");
}

// --- states that are no numbers ----------------------------------------------------------------------------------

/// After a call with one node at a strange place: no report, and what the points over the road carry.
TEST(BeltPointThatIsNotFinite, IsOutOfContactWithoutAWord) {
  for (const double strange : {k_nan, k_inf, -k_inf}) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      BeltScene scene = sunken(3);
      scene.call(1);
      scene.call(2);
      scene.node(2).position[axis] = strange;  // the first span keeps its start, not its end: the corner is gone
      for (const int iflag : {0, 2}) {
        scene.call(iflag);
        EXPECT_EQ(scene.take_report(), "");
        EXPECT_EQ(scene.total(2), 0.0);
        EXPECT_EQ(scene.total(4), 0.0);
        EXPECT_FALSE(std::isfinite(scene.point(scene.rows() - 1, 1, 3))) << "its position is written all the same";
      }
      scene.put(sunken_circles(3));
      EXPECT_GT(scene.call(0)[2], 1e4) << "and the track works on";
    }
  }
}

TEST(BeltPointThatIsNotFinite, IsAllThatAStrangeMarkerLeaves) {
  BeltScene scene = sunken();
  scene.call(1);
  const std::vector<double> good = scene.call(0);
  for (marker_state* marker : {&scene.vehicle(), &scene.road(), &scene.reference()}) {
    const marker_state before = *marker;
    marker->axes[4] = k_nan;
    scene.call(2);
    EXPECT_EQ(scene.take_report(), "");
    EXPECT_EQ(scene.contact_sum()[3], 0.0);
    *marker = before;
  }
  scene.call(1);
  EXPECT_EQ(first_difference(scene.call(0), good), -1);
}

TEST(BeltVelocityThatIsNotANumber, TravelsThroughTheLaws) {
  BeltScene scene = sunken();
  scene.call(1);
  scene.call(2);
  scene.belt_speed() = k_nan;
  scene.call(0);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_NEAR(scene.contact_sum()[3], 0.5, 1e-14) << "in contact";
}

TEST(BeltBeyondTheRoad, IsOutOfContactWithoutAWord) {
  BeltScene scene = sunken();
  scene.call(1);
  for (const double far : {-100.0, 100.0, 1e300}) {
    scene.put(sunken_circles(), far);
    scene.call(2);
    EXPECT_EQ(scene.take_report(), "");
    EXPECT_EQ(scene.total(4), 0.0);
  }
  EXPECT_TRUE(scene.host.stops.empty());
}

TEST(BeltOverAHole, IsOutOfContactWithoutAWord) {
  soil_mesh mesh = flat_mesh(16, 8, 0.5, -2.0, -2.0);
  mesh.triangles.erase(mesh.triangles.begin() + 2 * 8 * 4, mesh.triangles.begin() + 2 * 8 * 5);  // x from 0 to 0.5
  BeltScene scene(mesh, loam(), sunken_circles());
  scene.put(sunken_circles(), 0.05);
  for (const int iflag : {1, 2}) {
    scene.call(iflag);
    EXPECT_EQ(scene.take_report(), "");
    for (int row = 0; row < 5; ++row) EXPECT_EQ(scene.point(row, 0, 6) == 0.0, row < 2) << "row " << row;
  }
  EXPECT_TRUE(scene.host.stops.empty());
}

}  // namespace
}  // namespace qvtest
