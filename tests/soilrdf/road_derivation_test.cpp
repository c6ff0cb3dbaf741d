#include "soilrdf/road_derivation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "tests/soilrdf/meshes.h"

namespace {

using namespace qvsoilrdf;
using qvtest::generator;
using qvtest::mesh;
using qvtest::road_of;

constexpr double k_eps = std::numeric_limits<double>::epsilon();

TEST(RoadDerivation, TwoTrianglesMakeAGridOfHalfTheirSize) {
  const CRoad road = road_of({{{0, 0, 0}, {10, 0, 0}, {10, 4, 0}, {0, 4, 0}}, {{1, 2, 3}, {1, 3, 4}}});
  EXPECT_EQ(road.max_dx, 10);
  EXPECT_EQ(road.max_dy, 4);
  EXPECT_EQ(road.nx, 2);
  EXPECT_EQ(road.ny, 2);
  EXPECT_EQ(road.cell_dx, 5);
  EXPECT_EQ(road.cell_dy, 2);
  EXPECT_EQ(road.x_offset, 0);
  EXPECT_EQ(road.y_offset, 0);
}

TEST(RoadDerivation, TheLargestDifferenceIsCyclicAndSigned) {
  struct {
    const char* why;
    double x[3];
    double largest;
  } const rows[] = {
      {"2, 1, 0: steps of 1 down, 2 up", {2, 1, 0}, 1},
      {"0, 1, 2: 2 down at the end", {0, 1, 2}, 2},
      {"1, 0, 2", {1, 0, 2}, 1},
      {"0, 2, 1", {0, 2, 1}, 1},
      {"2, 0, 1", {2, 0, 1}, 2},
      {"1, 2, 0", {1, 2, 0}, 2},
      {"9, 6, 5", {9, 6, 5}, 3},
      {"equal corners", {3, 3, 3}, 0},
  };
  for (const auto& row : rows) {
    // A second, small triangle gives the road an extent of its own.
    mesh m = {{{row.x[0], 0, 0}, {row.x[1], 1, 0}, {row.x[2], 2, 0}, {0, 0, 0}, {0.1, 0.1, 0}, {0, 0.1, 0}},
              {{1, 2, 3}, {4, 5, 6}}};
    EXPECT_EQ(road_of(m).max_dx, std::max(row.largest, 0.1)) << row.why;
    for (auto& p : m.points) std::swap(p[0], p[1]);
    EXPECT_EQ(road_of(m).max_dy, std::max(row.largest, 0.1)) << row.why;
  }
}

struct grid_case {
  const char* why;
  double extent;   // of the road
  double largest;  // corner difference: cells are half of it
  int count;
};

const grid_case k_grid_cases[] = {
    {"divides evenly", 10, 10, 2},
    {"a rest stretches the cells", 10, 3, 6},
    {"five of two", 10, 4, 5},
    {"one cell and a bit", 1.2, 1.2, 2},
    {"0.9 holds 0.05 eighteen times; 18 times 0.05 is not above 0.9", 0.9, 0.1, 18},
};

/// A road of this extent whose largest triangle is so large, both ways.
CRoad road_of_extent(double extent, double largest) {
  return road_of({{{0, 0, 0}, {largest, 0, 0}, {0, largest, 0}, {extent, extent, 0}}, {{2, 3, 1}}});
}

TEST(RoadDerivation, CellsAreHalfTheLargestDifferenceStretchedToFill) {
  for (const grid_case& row : k_grid_cases) {
    const CRoad road = road_of_extent(row.extent, row.largest);
    EXPECT_EQ(road.nx, row.count) << row.why;
    EXPECT_EQ(road.ny, row.count) << row.why;
    EXPECT_EQ(road.cell_dx, row.extent / row.count) << row.why;
    EXPECT_EQ(road.cell_dy, row.extent / row.count) << row.why;
  }
}

TEST(RoadDerivation, AQuotientRoundedUpTakesOneCellLess) {
  // Search extents whose quotient by the cell rounds up to the next integer: the rest is negative there.
  int seen = 0;
  for (int k = 1; k < 4000; ++k) {
    for (double largest : {0.2, 0.6, 1.4, 0.1}) {
      const double half = 0.5 * largest;
      const double extent = std::nextafter(half * k, 0.0);
      const int c = static_cast<int>(extent / half);
      if (extent < largest || extent - c * half >= 0) continue;
      ++seen;
      const CRoad road = road_of_extent(extent, largest);
      ASSERT_EQ(road.nx, c > 1 ? c - 1 : c) << extent << " by " << half;
      ASSERT_EQ(road.cell_dx, extent / road.nx);
      ASSERT_EQ(road.ny, road.nx);
      if (seen > 30) return;
    }
  }
  EXPECT_GT(seen, 0);
}

TEST(RoadDerivation, NormalsAreUnitUprightAndNormalToTheTriangle) {
  for (const qvtest::mesh_kind& kind : qvtest::k_mesh_kinds) {
    if (std::string(kind.name) == "slivers") continue;  // their normals carry the rounding of the difference
    for (unsigned seed = 0; seed < 10; ++seed) {
      SCOPED_TRACE(kind.name + std::string(", seed ") + std::to_string(seed));
      generator random(seed);
      const CRoad road = road_of(kind.make(random));
      for (size_t k = 0; k < road.elements.size(); ++k) {
        const CElement e = road.element(k);
        const CNode* n[3];
        for (int c = 0; c < 3; ++c) n[c] = &road.nodes[static_cast<size_t>(e.node[c] - 1)];
        const double a[3] = {n[1]->x - n[0]->x, n[1]->y - n[0]->y, n[1]->z - n[0]->z};
        const double b[3] = {n[2]->x - n[0]->x, n[2]->y - n[0]->y, n[2]->z - n[0]->z};
        const double length = std::hypot(e.normal[0], e.normal[1], e.normal[2]);
        ASSERT_GE(e.normal[2], 0);
        for (int c = 0; c < 3; ++c) {
          const double third = c == 0   ? n[0]->x + n[1]->x + n[2]->x
                               : c == 1 ? n[0]->y + n[1]->y + n[2]->y
                                        : n[0]->z + n[1]->z + n[2]->z;
          ASSERT_EQ(e.center[c], third / 3);
        }
        ASSERT_EQ(e.d, -(e.normal[0] * e.center[0] + e.normal[1] * e.center[1] + e.normal[2] * e.center[2]));
        if (length == 0) continue;  // no area
        ASSERT_NEAR(length, 1, 4 * k_eps);
        const double area = std::hypot(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]);
        const double size_a = std::hypot(a[0], a[1], a[2]), size_b = std::hypot(b[0], b[1], b[2]);
        // The cross product's rounding is an epsilon of the product of the edges, seen against the area.
        const double edges = (size_a + size_b) * (size_a + size_b);
        const double slack = 16 * k_eps * edges / area;
        ASSERT_LE(std::fabs(a[0] * e.normal[0] + a[1] * e.normal[1] + a[2] * e.normal[2]), slack * size_a);
        ASSERT_LE(std::fabs(b[0] * e.normal[0] + b[1] * e.normal[1] + b[2] * e.normal[2]), slack * size_b);
      }
    }
  }
}

TEST(RoadDerivation, ATurnedTriangleHasTheSameUprightNormal) {
  const CRoad up = road_of({{{0, 0, 0}, {1, 0, 1}, {0, 1, 0}}, {{1, 2, 3}}});
  const CRoad down = road_of({{{0, 0, 0}, {1, 0, 1}, {0, 1, 0}}, {{1, 3, 2}}});
  for (int c = 0; c < 3; ++c) EXPECT_EQ(up.element(0).normal[c], down.element(0).normal[c]) << c;
  EXPECT_NEAR(up.element(0).normal[0], -std::sqrt(0.5), k_eps);
  EXPECT_EQ(up.element(0).normal[1], 0);
  EXPECT_NEAR(up.element(0).normal[2], std::sqrt(0.5), k_eps);
}

TEST(RoadDerivation, AWallKeepsTheSideItWasGiven) {
  // z of the normal is 0: nothing turns it.
  const CRoad road = road_of({{{0, 0, 0}, {1, 1, 0}, {0, 0, 1}}, {{1, 2, 3}, {1, 3, 2}}});
  for (int c = 0; c < 2; ++c) EXPECT_EQ(road.element(0).normal[c], -road.element(1).normal[c]);
  EXPECT_EQ(road.element(0).normal[2], 0);
}

TEST(RoadDerivation, ATriangleWithoutAreaHasNoNormal) {
  const CRoad road = road_of({{{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}, {{1, 2, 3}}});
  for (int c = 0; c < 3; ++c) EXPECT_EQ(road.element(0).normal[c], 0) << c;
  EXPECT_EQ(road.element(0).d, 0);
  EXPECT_EQ(road.element(0).center[1], 1);
}

TEST(RoadDerivation, OffsetsAreTheNegatedLowerBounds) {
  const CRoad road = road_of({{{-3, 7, 0}, {5, 7, 0}, {-3, 9, 0}}, {{1, 2, 3}}});
  EXPECT_EQ(road.x_offset, 3);
  EXPECT_EQ(road.y_offset, -7);
}

void make_all_tiles(const CRoad& road) {
  for (std::int32_t i = 0; i < road.nx; ++i)
    for (std::int32_t j = 0; j < road.ny; ++j) road.make_ready(road.cells.index(i, j));
}

TEST(RoadDerivation, ThereIsOneFacetPerElementWithThePlanGradientsOfItsCorners) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    generator random(seed);
    const CRoad road = road_of(qvtest::k_mesh_kinds[1].make(random));
    ASSERT_EQ(road.facets.size(), road.elements.size());
    make_all_tiles(road);
    for (size_t k = 0; k < road.facets.size(); ++k) {
      const CFacet& facet = road.facets[k];
      for (int c = 0; c < 3; ++c) {
        const CNode& node = road.nodes[static_cast<size_t>(road.elements[k].node[c] - 1)];
        const double x = node.x - facet.corner[0], y = node.y - facet.corner[1];
        if (std::isnan(facet.gradient[0])) continue;  // thin: judged by its angles
        // Corners above 3 degrees: coordinates are sums of terms up to 20, the gradients are floats.
        constexpr double k_rounding = 2 * 20 * 6e-8;
        ASSERT_NEAR(double(facet.gradient[0]) * x + double(facet.gradient[1]) * y, c == 1 ? 1 : 0, k_rounding) << c;
        ASSERT_NEAR(double(facet.gradient[2]) * x + double(facet.gradient[3]) * y, c == 2 ? 1 : 0, k_rounding) << c;
      }
    }
  }
}

}  // namespace
