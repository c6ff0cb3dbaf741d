#include "solver/checks/waterline.h"

#include <gtest/gtest.h>

#include <cmath>

#include "solver/data_files/hull_mesh.h"

namespace {

using namespace qvslv;

TEST(Waterline, OfABoxDividesItsHeightAsTheWeightDividesItsDisplacement) {
  const TriangleMesh box = barge_mesh({4, 2, 1}, 0, 0, {3, 2, 5});  // from z = -0.5 to 0.5
  for (const double share : {0.01, 0.25, 0.5, 0.93}) EXPECT_NEAR(find_level(box, share), share - 0.5, 2e-6);
}

/// A cap of the height h of a sphere of radius 1 has the volume pi h^2 (3 - h) / 3.
TEST(Waterline, OfASphereCutsOffACapOfItsVolume) {
  const TriangleMesh sphere = icosphere_mesh(1, 5);
  const double h = 0.4, share = h * h * (3 - h) / 4;
  EXPECT_NEAR(find_level(sphere, share), h - 1, 1e-3);  // the flat triangles lie a thousandth inside
}

TEST(Waterline, MeasuresTheUprightTrianglesThatItMeets) {
  const TriangleMesh box = barge_mesh({4, 2, 1}, 0, 0, {3, 2, 5});
  const auto line = waterline_at(box, -0.25);
  ASSERT_TRUE(line);
  EXPECT_NEAR(line->panel_height, 0.2, 1e-12);
  EXPECT_NEAR(line->draught, 0.25, 1e-12);
  EXPECT_FALSE(waterline_at(box, 0.51));
  EXPECT_FALSE(waterline_at(box, -0.51));
}

TEST(Waterline, MeetsNoUprightTriangleOnAFlatRamp) {
  const TriangleMesh ramp{{{0, 0, -0.1}, {10, 0, 0.1}, {0, 10, -0.1}}, {{0, 1, 2}}};
  EXPECT_FALSE(waterline_at(ramp, 0));
}

}  // namespace
