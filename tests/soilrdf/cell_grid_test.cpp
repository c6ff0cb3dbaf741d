#include "soilrdf/cell_grid.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "soilinteraction/contact_search.h"
#include "soilrdf/cell_fill.h"
#include "tests/soilrdf/meshes.h"

namespace {

using namespace qvsoilrdf;
using qvtest::generator;
using qvtest::k_mesh_kinds;
using qvtest::mesh_kind;

/// Every cell's list against the definition, which looks at every triangle from the cell's side.
void expect_defined_lists(const CRoad& road) {
  for (std::int32_t i = 0; i < road.nx; ++i) {
    for (std::int32_t j = 0; j < road.ny; ++j) {
      CCell defined;
      defined.i = i;
      defined.j = j;
      defined.x_lo = road.x_min + road.cell_dx * i;
      defined.x_hi = defined.x_lo + road.cell_dx;
      defined.y_lo = road.y_min + road.cell_dy * j;
      defined.y_hi = defined.y_lo + road.cell_dy;
      FindElementsBelongtoCell(defined, road.nodes, road.elements);
      const CCell built = road.cell(i, j);
      ASSERT_EQ(built.elements, defined.elements) << "cell " << i << ", " << j;
      ASSERT_EQ(built.i, i);
      ASSERT_EQ(built.j, j);
      ASSERT_EQ(built.x_lo, defined.x_lo);
      ASSERT_EQ(built.x_hi, defined.x_hi);
      ASSERT_EQ(built.y_lo, defined.y_lo);
      ASSERT_EQ(built.y_hi, defined.y_hi);
    }
  }
}

/// The same road with a finer or coarser grid than its own.
void divide(CRoad& road, std::int32_t nx, std::int32_t ny) {
  road.nx = nx;
  road.ny = ny;
  road.cell_dx = (road.x_max - road.x_min) / nx;
  road.cell_dy = (road.y_max - road.y_min) / ny;
  build_cell_grid(road);
}

constexpr unsigned k_meshes_of_a_kind = 200;

TEST(CellGrid, HasTheListsThatTheDefinitionGivesOnEveryKindOfMesh) {
  for (const mesh_kind& kind : k_mesh_kinds) {
    for (unsigned seed = 0; seed < k_meshes_of_a_kind; ++seed) {
      SCOPED_TRACE(kind.name + std::string(", seed ") + std::to_string(seed));
      generator random(seed);
      expect_defined_lists(qvtest::road_of(kind.make(random)));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(CellGrid, HasTheDefinedListsWhenTrianglesSpanManyCells) {
  for (const mesh_kind& kind : k_mesh_kinds) {
    for (unsigned seed = 0; seed < 8; ++seed) {
      SCOPED_TRACE(kind.name + std::string(", seed ") + std::to_string(seed));
      generator random(seed);
      CRoad road = qvtest::road_of(kind.make(random));
      divide(road, qvtest::whole_between(random, 1, 60), qvtest::whole_between(random, 1, 60));
      expect_defined_lists(road);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(CellGrid, IsRebuiltNotAddedTo) {
  CRoad road = qvtest::road_of(qvtest::regular_mesh(3, 2, 1, 1));
  expect_defined_lists(road);
  build_cell_grid(road);
  expect_defined_lists(road);
}

TEST(CellGrid, CellsWithoutATriangleAreEmpty) {
  qvtest::mesh m = qvtest::regular_mesh(1, 1, 1, 1);
  m.points.push_back({10, 10, 0});  // widens the bounds, belongs to no triangle
  const CRoad road = qvtest::road_of(m);
  ASSERT_EQ(road.nx, 20);
  EXPECT_FALSE(road.cell(0, 0).elements.empty());
  EXPECT_TRUE(road.cell(10, 10).elements.empty());
  EXPECT_TRUE(road.cell(19, 19).elements.empty());
  EXPECT_EQ(road.cells.top(road.cells.index(10, 10)), -std::numeric_limits<float>::infinity());
}

TEST(CellGrid, MakesOnlyTheTileThatIsAskedFor) {
  const CRoad road = qvtest::road_of(qvtest::regular_mesh(20, 20, 1, 1));
  ASSERT_EQ(road.nx, 40);
  const auto made = [&road](std::int32_t i, std::int32_t j) { return road.cells.is_made(road.cells.index(i, j)); };
  for (std::int32_t k = 0; k < 40; ++k) EXPECT_FALSE(made(k, k)) << k;
  road.make_ready(road.cells.index(17, 9));
  EXPECT_TRUE(made(17, 9));
  EXPECT_TRUE(made(16, 8)) << "the tile's first cell";
  EXPECT_TRUE(made(23, 15)) << "the tile's last cell";
  EXPECT_FALSE(made(15, 9));
  EXPECT_FALSE(made(24, 9));
  EXPECT_FALSE(made(17, 7));
  EXPECT_FALSE(made(17, 16));
  const CRoad copy = road;
  EXPECT_EQ(copy.cell(17, 9).elements, road.cell(17, 9).elements) << "made before the copy";
  EXPECT_EQ(copy.cell(0, 0).elements, road.cell(0, 0).elements) << "made after the copy, in each of them";
}

TEST(CellGrid, IsTheSameWhoeverAsksFirst) {
  generator random(7);
  qvtest::mesh many = qvtest::regular_mesh(30, 30, 1, 1);
  for (auto& point : many.points)
    for (size_t c = 0; c < 3; ++c) point[c] += qvtest::between(random, -0.3, 0.3);
  const CRoad alone = qvtest::road_of(many), shared = qvtest::road_of(many);
  constexpr std::int32_t k_threads = 4;
  std::vector<std::thread> threads;
  std::atomic<std::int32_t> empty{0};
  const auto ask =
      [&](std::int32_t thread) {  // each begins at another column, so that neighbouring tiles are asked for
        for (std::int32_t n = 0; n < shared.nx; ++n) {
          const std::int32_t i = (n + thread * shared.nx / k_threads) % shared.nx;
          for (std::int32_t j = 0; j < shared.ny; ++j) empty += shared.cell(i, j).elements.empty() ? 1 : 0;
        }
      };
  for (std::int32_t thread = 0; thread < k_threads; ++thread) threads.emplace_back(ask, thread);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(empty, 0);
  for (std::int32_t i = 0; i < shared.nx; ++i)
    for (std::int32_t j = 0; j < shared.ny; ++j) ASSERT_EQ(shared.cell(i, j).elements, alone.cell(i, j).elements);
  for (size_t k = 0; k < alone.facets.size(); ++k)
    EXPECT_EQ(std::memcmp(&shared.facets[k], &alone.facets[k], sizeof(CFacet)), 0) << k;
}

TEST(CellGrid, KnowsThatItIsEmptyBeforeItIsBuilt) {
  EXPECT_TRUE(cell_grid().empty());
  EXPECT_FALSE(qvtest::road_of(qvtest::regular_mesh(1, 1, 1, 1)).cells.empty());
}

// --- the height over a cell -----------------------------------------------------------------------------------

/// A plan point: anywhere on the road, or in, on the edge of or just beside a triangle.
void draw_point(const CRoad& road, generator& random, double* p) {
  if (qvtest::whole_between(random, 0, 3) == 0) {
    p[0] = qvtest::between(random, road.x_min, road.x_max);
    p[1] = qvtest::between(random, road.y_min, road.y_max);
    return;
  }
  const auto last = static_cast<int>(road.elements.size()) - 1;
  const corner_numbers& element = road.elements[static_cast<size_t>(qvtest::whole_between(random, 0, last))];
  double weight[3];
  weight[0] = qvtest::between(random, 0, 1);
  weight[1] = qvtest::whole_between(random, 0, 1) != 0 ? qvtest::between(random, -0.02, 0.02)
                                                       : qvtest::between(random, 0, 1 - weight[0]);
  weight[2] = 1 - weight[0] - weight[1];
  p[0] = p[1] = 0;
  for (size_t c = 0; c < 3; ++c) {
    const CNode& node = road.corner(element, static_cast<int>(c));
    p[0] += weight[c] * node.x;
    p[1] += weight[c] * node.y;
  }
}

TEST(CellGrid, NoFacetThatTheSearchFindsReachesAboveTheTopOfItsCell) {
  for (const mesh_kind& kind : k_mesh_kinds) {
    int found = 0;
    for (unsigned seed = 0; seed < 30; ++seed) {
      SCOPED_TRACE(kind.name + std::string(", seed ") + std::to_string(seed));
      generator random(seed);
      const CRoad road = qvtest::road_of(kind.make(random));
      for (int k = 0; k < 400; ++k) {
        double p[3];
        draw_point(road, random, p);
        if (!(road.x_min <= p[0] && p[0] <= road.x_max && road.y_min <= p[1] && p[1] <= road.y_max)) continue;
        const auto i = std::min(static_cast<std::int32_t>((p[0] + road.x_offset) / road.cell_dx), road.nx - 1);
        const auto j = std::min(static_cast<std::int32_t>((p[1] + road.y_offset) / road.cell_dy), road.ny - 1);
        const std::size_t cell = road.cells.index(i, j);
        road.make_ready(cell);
        const auto top = static_cast<double>(road.cells.top(cell));
        if (top == std::numeric_limits<double>::infinity()) continue;  // promises nothing
        p[2] = std::nextafter(std::max(top, -1e30), 1e300);
        qvsoilinteraction::Croad_contact rc;
        ASSERT_EQ(qvsoilinteraction::search_contact_facet(road, p, rc), qvsoilinteraction::k_in_extent);
        const double* n = rc.facet_normal;
        if (n[0] == 0 && n[1] == 0 && n[2] == 0) continue;  // a hole, or a triangle without area
        ++found;
        ASSERT_GE(rc.sinkage, 0) << p[0] << ", " << p[1];
      }
    }
    if (kind.name == std::string("slivers")) continue;  // too thin to promise a height
    EXPECT_GT(found, 30) << kind.name << ": too little looked at";
  }
}

}  // namespace
