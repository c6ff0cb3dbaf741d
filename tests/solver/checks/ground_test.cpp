#include "solver/checks/ground.h"

#include <gtest/gtest.h>

#include <cmath>

#include "solver/data_files/road_check.h"

namespace {

using namespace qvslv;

RoadSettings rolling() {
  RoadSettings s;
  s.kind = RoadKind::rolling;
  s.size_x = 6;
  s.size_y = 4;
  s.corner_x = -1;
  s.corner_y = -3;
  s.spacing = 0.4;
  s.amplitude = 0.3;
  s.wavelength = 3;
  s.soil = soil_presets().front().soil;
  return s;
}

TEST(Ground, OfSettingsIsThatOfTheFileTheyMake) {
  const Ground made(rolling()), read(check_road_text(road_text(rolling()), "a.rdf").mesh);
  EXPECT_NEAR(made.edge(), 0.4, 1e-12);
  EXPECT_NEAR(read.edge(), 0.45, 0.06);  // of the two edges that are measured, one is a diagonal now and then
  EXPECT_FALSE(made.flat());
  EXPECT_FALSE(read.flat());
  for (int k = 0; k < 200; ++k) {
    const double x = -1 + 6 * std::fmod(0.6180339887 * k, 1), y = -3 + 4 * std::fmod(0.7548776662 * k, 1);
    const auto a = made.find(x, y), b = read.find(x, y);
    ASSERT_TRUE(a && b) << x << " " << y;
    EXPECT_NEAR(a->height, b->height, 1e-8);  // the file holds ten digits
    for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(a->normal[i], b->normal[i], 1e-7);
  }
}

TEST(Ground, EndsAtItsOutermostNodes) {
  const Ground ground(rolling());
  EXPECT_TRUE(ground.covers(-1, 1) && ground.covers(5, -3));
  EXPECT_FALSE(ground.covers(-1.001, 0) || ground.covers(0, 1.001));
  EXPECT_TRUE(ground.find(5, 1));
  EXPECT_FALSE(ground.find(5.001, 1));
}

TEST(Ground, HasNoSurfaceOverAHole) {
  const Ground ground(TriangleMesh{{{0, 0, 1}, {2, 0, 1}, {0, 2, 1}, {2, 2, 1}}, {{0, 1, 2}}});
  EXPECT_TRUE(ground.find(0.5, 0.5));
  EXPECT_TRUE(ground.covers(1.5, 1.5));
  EXPECT_FALSE(ground.find(1.5, 1.5));
}

TEST(Ground, IsTheHighestOfTrianglesThatOverlapAndItsNormalPointsUpWhateverTheirTurningSense) {
  const Ground ground(
      TriangleMesh{{{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {0, 0, 1}, {4, 0, 3}, {0, 4, 1}}, {{0, 1, 2}, {3, 5, 4}}});
  const auto spot = ground.find(1, 1);
  ASSERT_TRUE(spot);
  EXPECT_NEAR(spot->height, 1.5, 1e-12);  // it rises by one half along x
  EXPECT_NEAR(spot->normal[2], 1 / std::sqrt(1.25), 1e-12);
  EXPECT_NEAR(spot->normal[0], -0.5 / std::sqrt(1.25), 1e-12);
  EXPECT_FALSE(ground.flat());
}

TEST(Ground, IsFlatOnASlope) {
  RoadSettings slope = rolling();
  slope.kind = RoadKind::slope;
  slope.amplitude = slope.wavelength = 0;
  slope.grade = 0.3;
  EXPECT_TRUE(Ground(slope).flat());
  EXPECT_TRUE(Ground(check_road_text(road_text(slope), "a.rdf").mesh).flat());
}

}  // namespace
