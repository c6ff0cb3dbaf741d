#include "soilrdf/cell_fill.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/soilrdf/meshes.h"

namespace {

using namespace qvsoilrdf;
using qvtest::generator;

CCell cell_of(double x_lo, double x_hi, double y_lo, double y_hi) {
  CCell cell;
  cell.x_lo = x_lo, cell.x_hi = x_hi, cell.y_lo = y_lo, cell.y_hi = y_hi;
  return cell;
}

std::vector<std::int32_t> filled(CCell cell, const qvtest::mesh& m) {
  const CRoad road = qvtest::undivided_road(m);
  FindElementsBelongtoCell(cell, road.nodes, road.elements);
  return cell.elements;
}

using list = std::vector<std::int32_t>;

qvtest::mesh triangle(double x1, double y1, double x2, double y2, double x3, double y3) {
  return {{{x1, y1, 0}, {x2, y2, 0}, {x3, y3, 0}}, {{1, 2, 3}}};
}

TEST(CellFill, ACornerInTheClosedCellListsTheTriangle) {
  EXPECT_EQ(filled(cell_of(0, 5, 0, 2), triangle(0, 0, 10, 0, 10, 4)), list{1});
  EXPECT_EQ(filled(cell_of(-1, 0, -1, 0), triangle(0, 0, 10, 0, 10, 4)), list{1}) << "touched at its corner";
  EXPECT_EQ(filled(cell_of(-1, -1e-9, -1, 0), triangle(0, 0, 10, 0, 10, 4)), list{});
}

TEST(CellFill, ACellInsideATriangleIsNotGivenIt) {
  EXPECT_EQ(filled(cell_of(2, 3, 1, 2), triangle(0, 0, 10, 0, 0, 10)), list{});
}

TEST(CellFill, ATriangleThatOnlyCrossesTheCellIsListed) {
  EXPECT_EQ(filled(cell_of(4, 6, -1, 1), triangle(0, -5, 10, 5, 0, 5)), list{1}) << "a diagonal edge";
  EXPECT_EQ(filled(cell_of(0, 1, 0, 1), triangle(-1, 0.5, 2, 0.5, 2, 9)), list{1}) << "straight across";
  EXPECT_EQ(filled(cell_of(0, 1, 0, 1), triangle(-1, 2, 2, 2, 0, 3)), list{}) << "past it";
}

TEST(CellFill, ATriangleOnASharedBorderIsListedOnBothSides) {
  const qvtest::mesh m = triangle(1, 0, 1.5, 0.5, 1, 1);
  EXPECT_EQ(filled(cell_of(0, 1, 0, 1), m), list{1});
  EXPECT_EQ(filled(cell_of(1, 2, 0, 1), m), list{1});
}

TEST(CellFill, NumbersAreAppendedInElementOrder) {
  CCell cell = cell_of(0, 1, 0, 1);
  cell.elements = {99};
  qvtest::mesh m = triangle(0, 0, 1, 0, 0, 1);
  m.triangles = {{1, 2, 3}, {1, 1, 1}, {3, 2, 1}};
  m.points.push_back({5, 5, 0});
  m.triangles.push_back({4, 4, 4});
  m.triangles.push_back({4, 4, 1});
  const CRoad road = qvtest::undivided_road(m);
  FindElementsBelongtoCell(cell, road.nodes, road.elements);
  EXPECT_EQ(cell.elements, (list{99, 1, 2, 3, 5}));
}

TEST(CellFill, HeightsPlayNoPart) {
  qvtest::mesh m = triangle(0, 0, 10, 0, 10, 4);
  for (auto& p : m.points) p[2] = 1e9;
  EXPECT_EQ(filled(cell_of(0, 5, 0, 2), m), list{1});
}

TEST(CellFill, EdgesOfTheCellCrossEdgesOfTheTriangle) {
  CNode K, L, M;
  K.x = -1, K.y = 0.5;
  L.x = 2, L.y = 0.5;
  M.x = 0.5, M.y = 9;
  EXPECT_TRUE(CrossCheck_Element(cell_of(0, 1, 0, 1), K, L, M));
  EXPECT_FALSE(CrossCheck_Element(cell_of(0.4, 0.6, 1, 2), K, L, M)) << "inside";
  EXPECT_FALSE(CrossCheck_Element(cell_of(10, 11, 0, 1), K, L, M)) << "outside";
}

// --- segments -------------------------------------------------------------------------------------------------

TEST(Segments, StatedCases) {
  EXPECT_FALSE(FindInterSectionPoint(0, 0, 1, 0, 0, 0, 0, 1)) << "both start in the same point";
  EXPECT_TRUE(FindInterSectionPoint(0, 0, 2, 0, 1, -1, 1, 1));
  EXPECT_TRUE(FindInterSectionPoint(0, 0, 1, 0, 1, 0, 1, 1)) << "one ends where the other starts";
  EXPECT_FALSE(FindInterSectionPoint(0, 0, 2, 0, 1, 0, 3, 0)) << "overlapping on a line";
  EXPECT_FALSE(FindInterSectionPoint(0, 0, 1, 0, 0, 1, 1, 1)) << "parallel";
  EXPECT_FALSE(FindInterSectionPoint(0, 0, 0, 0, -1, 0, 1, 0)) << "no length";
  EXPECT_FALSE(FindInterSectionPoint(0, 0, 1, 0, 2, -1, 2, 1)) << "beyond the end";
}

long sign(long x) { return x > 0 ? 1 : x < 0 ? -1 : 0; }

TEST(Segments, OnWholeNumbersTheyMeetWhereTheirEndsLieOnBothSides) {
  // Independent: exact orientation signs instead of parameters along the segments.
  EXPECT_TRUE(rc::check([] {
    const auto c = *rc::gen::container<std::vector<long>>(8, rc::gen::inRange(-6L, 7L));
    const auto side = [&](size_t a, size_t b, size_t p) {
      return sign((c[2 * b] - c[2 * a]) * (c[2 * p + 1] - c[2 * a + 1]) -
                  (c[2 * b + 1] - c[2 * a + 1]) * (c[2 * p] - c[2 * a]));
    };
    const bool parallel = (c[2] - c[0]) * (c[7] - c[5]) == (c[3] - c[1]) * (c[6] - c[4]);
    const bool same_start = c[0] == c[4] && c[1] == c[5];
    const bool meet =
        !parallel && !same_start && side(0, 1, 2) * side(0, 1, 3) <= 0 && side(2, 3, 0) * side(2, 3, 1) <= 0;
    const std::vector<double> d(c.begin(), c.end());
    RC_ASSERT(FindInterSectionPoint(d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]) == meet);
  }));
}

// --- points in triangles --------------------------------------------------------------------------------------

TEST(PointInTriangle, StatedCases) {
  EXPECT_TRUE(FindInTriangle(0.5, 0, 0, 0, 1, 0, 0, 1)) << "on an edge";
  EXPECT_TRUE(FindInTriangle(0, 1, 0, 0, 1, 0, 0, 1)) << "a corner";
  EXPECT_TRUE(FindInTriangle(0.2, 0.2, 0, 0, 1, 0, 0, 1));
  EXPECT_TRUE(FindInTriangle(0.2, 0.2, 0, 0, 0, 1, 1, 0)) << "turned the other way";
  EXPECT_FALSE(FindInTriangle(0.6, 0.6, 0, 0, 1, 0, 0, 1));
  EXPECT_TRUE(CheckThePointInsideTriangle(0, 0, 1, 0, 0, 1, 0, 0)) << "a corner";
  EXPECT_TRUE(CheckThePointInsideTriangle(0, 0, 1, 0, 0, 1, 0.2, 0.2));
  EXPECT_FALSE(CheckThePointInsideTriangle(0, 0, 1, 0, 0, 1, 100, 100)) << "far away";
  EXPECT_FALSE(CheckThePointInsideTriangle(0, 0, 1, 0, 0, 1, std::nan(""), 0));
}

TEST(PointInTriangle, SignTestAgreesWithOrientationOnWholeNumbers) {
  EXPECT_TRUE(rc::check([] {
    const auto c = *rc::gen::container<std::vector<long>>(8, rc::gen::inRange(-6L, 7L));
    const auto side = [&](size_t a, size_t b) {  // of the point, which comes first
      return (c[2 * b] - c[2 * a]) * (c[1] - c[2 * a + 1]) - (c[2 * b + 1] - c[2 * a + 1]) * (c[0] - c[2 * a]);
    };
    const long area = (c[4] - c[2]) * (c[7] - c[3]) - (c[5] - c[3]) * (c[6] - c[2]);
    const long s[3] = {side(1, 2), side(2, 3), side(3, 1)};
    const bool counter = s[0] >= 0 && s[1] >= 0 && s[2] >= 0, clockwise = s[0] <= 0 && s[1] <= 0 && s[2] <= 0;
    RC_PRE(area != 0);
    const std::vector<double> d(c.begin(), c.end());
    RC_ASSERT(FindInTriangle(d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]) == (counter || clockwise));
  }));
}

TEST(PointInTriangle, InATriangleWithoutAreaOnlyPointsThatVanishInBothSumsCount) {
  EXPECT_TRUE(FindInTriangle(2, 0, 2, 0, 2, 0, 2, 0));
  EXPECT_TRUE(FindInTriangle(5, 0, 0, 0, 1, 0, 2, 0)) << "anywhere on the line";
  EXPECT_FALSE(FindInTriangle(0.5, 1e-9, 0, 0, 1, 0, 2, 0));
}

TEST(PointInTriangle, AngleTestAgreesWithTheSignTestAwayFromTheEdges) {
  EXPECT_TRUE(rc::check([] {
    generator random(*rc::gen::arbitrary<unsigned>());
    double c[8];
    for (double& x : c) x = qvtest::between(random, -1, 1);
    const auto cross = [&](int a, int b) {
      return (c[2 * b] - c[2 * a]) * (c[1] - c[2 * a + 1]) - (c[2 * b + 1] - c[2 * a + 1]) * (c[0] - c[2 * a]);
    };
    // A point a hundredth of the triangle away from an edge is seen under angles that miss 360 by much more than 1e-4.
    RC_PRE(std::fabs(cross(1, 2)) > 0.01 && std::fabs(cross(2, 3)) > 0.01 && std::fabs(cross(3, 1)) > 0.01);
    RC_ASSERT(CheckThePointInsideTriangle(c[2], c[3], c[4], c[5], c[6], c[7], c[0], c[1]) ==
              FindInTriangle(c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7]));
  }));
}

}  // namespace
