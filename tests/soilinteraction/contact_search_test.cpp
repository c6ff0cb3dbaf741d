#include "soilinteraction/contact_search.h"

#include <gtest/gtest.h>

#include "tests/soilinteraction/library_probe.h"

// The facet search against its definition, arc cosines and all, where the answer hangs on the last digits.

namespace qvtest {
namespace {

using qvsoilinteraction::Croad_contact;
using qvsoilinteraction::search_contact_facet;

constexpr double k_offsets[] = {0.0,  1e-16, 1e-15, 1e-13,  1e-11,   1e-9, 1e-8,    1e-7,   1e-6, 1e-5,
                                1e-4, 1e-3,  3e-3,  3.5e-3, 3.54e-3, 4e-3, 4.37e-3, 4.4e-3, 1e-2};

struct search_census {
  long found[5] = {};
};

/// A mesh on both sides: the library's road and the reference's.
struct both_roads {
  explicit both_roads(const soil_mesh& mesh)
      : library(read_road(mesh, loam())), reference(qvref::derive_road(mesh.nodes, mesh.triangles, loam())) {}

  /// One search on both, compared.
  bool agree(const qvref::v3& p, search_census& seen) const {
    Croad_contact rc;
    const double untouched[3] = {rc.facet_point[0], rc.facet_point[1], rc.facet_point[2]};
    const int status = search_contact_facet(library, p.data(), rc);
    const qvref::facet_search expected = qvref::search_facet(reference, p);
    ++seen.found[static_cast<int>(expected.how)];
    if (expected.how == qvref::found::outside_extent) return status == 2;
    bool equal = status == 1 && same(rc.facet_d, expected.d);
    const bool has_normal = expected.normal != qvref::v3{};
    for (std::size_t c = 0; c < 3; ++c) {
      equal = equal && same(rc.facet_normal[c], expected.normal[c]) &&
              same(rc.facet_point[c], has_normal ? expected.point[c] : untouched[c]);
    }
    return equal;
  }

  qvsoilrdf::CRoad library;
  qvref::road reference;
};

std::string text_of(const qvref::v3& p) {
  char text[120];
  std::snprintf(text, sizeof text, "(%.17g, %.17g, %.17g)", p[0], p[1], p[2]);
  return text;
}

/// Points along and around an edge A B: at fractions of it, offset across it by fractions of its length.
bool sweep_edge(const both_roads& roads, const qvref::v3& A, const qvref::v3& B, search_census& seen) {
  static const double k_fractions[] = {0.0, 1e-12, 1e-6, 1e-3, 0.1, 0.37, 0.5, 0.75, 1.0 - 1e-3, 1.0 - 1e-9, 1.0};
  const double ex = B[0] - A[0], ey = B[1] - A[1];
  for (const double t : k_fractions) {
    for (const double offset : k_offsets) {
      for (const double side : {-1.0, 1.0}) {
        const qvref::v3 p = {A[0] + t * ex - side * offset * ey, A[1] + t * ey + side * offset * ex, 0.3};
        if (roads.agree(p, seen)) continue;
        ADD_FAILURE() << "at " << text_of(p) << ", " << t << " along, offset " << side * offset;
        return false;
      }
    }
  }
  return true;
}

/// Points around a corner, from all sides.
bool sweep_corner(const both_roads& roads, const qvref::v3& A, double length, search_census& seen) {
  for (const double offset : k_offsets) {
    for (int direction = 0; direction < 24; ++direction) {
      const double angle = direction * 0.2617993877991494 + 0.01;
      const qvref::v3 p = {A[0] + offset * length * std::cos(angle), A[1] + offset * length * std::sin(angle), -0.2};
      if (roads.agree(p, seen)) continue;
      ADD_FAILURE() << "at " << text_of(p) << ", offset " << offset << " direction " << angle;
      return false;
    }
  }
  return true;
}

bool sweep_mesh(const soil_mesh& mesh, search_census& seen) {
  const both_roads roads(mesh);
  const std::size_t stride = mesh.triangles.size() / 40 + 1;
  for (std::size_t t = 0; t < mesh.triangles.size(); t += stride) {
    for (std::size_t k = 0; k < 3; ++k) {
      const qvref::v3& A = roads.reference.nodes[static_cast<std::size_t>(mesh.triangles[t][k] - 1)];
      const qvref::v3& B = roads.reference.nodes[static_cast<std::size_t>(mesh.triangles[t][(k + 1) % 3] - 1)];
      const double length = std::hypot(B[0] - A[0], B[1] - A[1]);
      if (!sweep_edge(roads, A, B, seen) || !sweep_corner(roads, A, length, seen)) return false;
    }
  }
  return true;
}

class FacetSearch : public testing::TestWithParam<int> {};

TEST_P(FacetSearch, AgreesWithTheDefinitionAroundEveryEdgeAndCorner) {
  search_census seen;
  for (unsigned seed = 1; seed <= 4; ++seed) {
    random_source random(seed);
    ASSERT_TRUE(sweep_mesh(random_mesh(GetParam(), random), seen)) << k_mesh_names[GetParam()] << ", seed " << seed;
  }
  for (const qvref::found how : {qvref::found::corner, qvref::found::edge, qvref::found::inside}) {
    EXPECT_GT(seen.found[static_cast<int>(how)], 100) << "kind " << static_cast<int>(how);
  }
  EXPECT_GT(seen.found[static_cast<int>(qvref::found::outside_extent)], 10);
}

TEST_P(FacetSearch, AgreesWithTheDefinitionAnywhereOnTheRoad) {
  search_census seen;
  for (unsigned seed = 1; seed <= 6; ++seed) {
    random_source random(seed + 100);
    const both_roads roads(random_mesh(GetParam(), random));
    const qvref::road& r = roads.reference;
    for (int trial = 0; trial < 3000; ++trial) {
      const qvref::v3 p = {uniform(random, r.x_min - 0.05, r.x_max + 0.05),
                           uniform(random, r.y_min - 0.05, r.y_max + 0.05), uniform(random, -1.0, 1.0)};
      ASSERT_TRUE(roads.agree(p, seen)) << k_mesh_names[GetParam()] << ", seed " << seed << " at " << text_of(p);
    }
  }
  EXPECT_GT(seen.found[static_cast<int>(qvref::found::inside)], 1000);
}

INSTANTIATE_TEST_SUITE_P(Meshes, FacetSearch, testing::Range(0, k_mesh_kinds));

/// One triangle of every thinness and orientation, next to a fat one far away, which sizes the cells.
TEST(FacetSearchOfOneTriangle, AgreesWithTheDefinitionHoweverThinTheTriangle) {
  search_census seen;
  for (const double height : {1.0, 0.3, 0.06, 0.051, 0.05, 0.049, 0.03, 1e-2, 1e-3, 1e-5, 1e-7, 0.0}) {
    for (int turn = 0; turn < 12; ++turn) {
      const double c = std::cos(turn * 0.55), s = std::sin(turn * 0.55);
      const auto turned = [&](double x, double y) { return qvref::v3{c * x - s * y, s * x + c * y, 0.25 * x}; };
      soil_mesh mesh;
      mesh.nodes = {turned(0, 0), turned(1, 0), turned(0.2 + 0.05 * turn, height), {-3, -3, 0}, {-2, -3, 0},
                    {-3, -2, 0},  {3, 3, 0}};
      mesh.triangles = {{1, 2, 3}, {4, 5, 6}};
      const both_roads roads(mesh);
      for (std::size_t k = 0; k < 3; ++k) {
        ASSERT_TRUE(sweep_edge(roads, mesh.nodes[k], mesh.nodes[(k + 1) % 3], seen))
            << "height " << height << ", turn " << turn;
        ASSERT_TRUE(sweep_corner(roads, mesh.nodes[k], 1.0, seen)) << "height " << height << ", turn " << turn;
      }
    }
  }
  for (const long count : {seen.found[1], seen.found[2], seen.found[3], seen.found[4]}) EXPECT_GT(count, 500);
}

// An edge of length L appears under an angle whose cosine is -1 + tol from a height of about L/2 tan(sqrt(2 tol)/2):
// 0.004373 L for the first triangle of a search, 0.003536 L for the others.
TEST(FacetSearchEdges, TheFirstTriangleOfASearchReachesFartherOverItsEdges) {
  soil_mesh mesh;
  mesh.nodes = {{0, 0, 0}, {1, 0, 0}, {0.5, 1, 0}, {0, -1, 0}, {1, -1, 0}, {0.5, -0.4, 0}};
  const std::array<int, 3> upper = {1, 2, 3}, lower = {4, 5, 6};
  const double at[3] = {0.5, -0.004, 0.0};  // below the upper triangle, over a hole
  Croad_contact rc;
  mesh.triangles = {upper, lower};
  EXPECT_EQ(search_contact_facet(read_road(mesh, loam()), at, rc), 1);
  EXPECT_EQ(rc.facet_normal[2], 1.0) << "first in the list: reached";
  mesh.triangles = {lower, upper};
  EXPECT_EQ(search_contact_facet(read_road(mesh, loam()), at, rc), 1);
  EXPECT_EQ(rc.facet_normal[2], 0.0) << "second in the list: out of reach";
  const double nearer[3] = {0.5, -0.0035, 0.0};
  EXPECT_EQ(search_contact_facet(read_road(mesh, loam()), nearer, rc), 1);
  EXPECT_EQ(rc.facet_normal[2], 1.0) << "within reach of any triangle";
}

TEST(FacetSearchEdges, APointOnASharedEdgeIsFoundInTheFirstTriangleOfTheList) {
  soil_mesh mesh;
  mesh.nodes = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0.5}, {0, 1, 0.5}};
  const std::array<int, 3> right = {1, 2, 3}, left = {1, 3, 4};
  mesh.nodes[1][2] = 1.0;  // the two planes differ
  const double at[3] = {0.5, 0.5, 0.0};
  Croad_contact first, second;
  mesh.triangles = {right, left};
  search_contact_facet(read_road(mesh, loam()), at, first);
  mesh.triangles = {left, right};
  search_contact_facet(read_road(mesh, loam()), at, second);
  EXPECT_LT(first.facet_normal[0], -0.5) << "the right triangle rises along x";
  EXPECT_EQ(second.facet_normal[0], 0.0) << "the left one does not";
}

TEST(FacetSearchHoles, APointOverAHoleLeavesNoNormalAndNoPlane) {
  soil_mesh mesh = flat_mesh(3, 3, 1.0);
  mesh.triangles.erase(mesh.triangles.begin() + 8, mesh.triangles.begin() + 10);  // the middle square
  const double at[3] = {1.5, 1.5, -0.1};
  Croad_contact rc;
  rc.facet_point[0] = 42.0;
  EXPECT_EQ(search_contact_facet(read_road(mesh, loam()), at, rc), 1);
  EXPECT_EQ(rc.facet_normal[0], 0.0);
  EXPECT_EQ(rc.facet_normal[1], 0.0);
  EXPECT_EQ(rc.facet_normal[2], 0.0);
  EXPECT_TRUE(std::isnan(rc.facet_d));
  EXPECT_EQ(rc.facet_point[0], 42.0) << "keeps its previous value";
}

TEST(FacetSearchExtent, TheExtentIsClosedOnAllFourSides) {
  const qvsoilrdf::CRoad road = read_road(flat_mesh(3, 2, 0.7, -1.1, 0.3), loam());
  const double xs[] = {road.x_min, road.x_max}, ys[] = {road.y_min, road.y_max};
  Croad_contact rc;
  for (const double x : xs) {
    for (const double y : ys) {
      const double at[3] = {x, y, -0.5};
      EXPECT_EQ(search_contact_facet(road, at, rc), 1);
      EXPECT_EQ(rc.facet_normal[2], 1.0) << "the corner node (" << x << ", " << y << ")";
    }
  }
  const double beyond[][3] = {{std::nextafter(road.x_max, 1e9), 0.5, 0.0},
                              {std::nextafter(road.x_min, -1e9), 0.5, 0.0},
                              {0.0, std::nextafter(road.y_max, 1e9), 0.0},
                              {0.0, std::nextafter(road.y_min, -1e9), 0.0}};
  for (const auto& at : beyond) EXPECT_EQ(search_contact_facet(road, at, rc), 2);
}

TEST(FacetSearchProjection, TheFacetPointIsTheFootOfThePerpendicular) {
  soil_mesh mesh;
  mesh.nodes = {{0, 0, 0}, {4, 0, 2}, {0, 4, 1}};  // the plane z = x/2 + y/4
  mesh.triangles = {{1, 2, 3}};
  const double at[3] = {1.0, 1.0, -0.25};  // 1 under the plane
  Croad_contact rc;
  ASSERT_EQ(search_contact_facet(read_road(mesh, loam()), at, rc), 1);
  const double normal_length = std::sqrt(1.0 + 0.25 + 0.0625);
  EXPECT_NEAR(rc.sinkage, -1.0 / normal_length, 1e-15);
  const double* f = rc.facet_point;
  EXPECT_NEAR(f[2], f[0] / 2 + f[1] / 4, 1e-15) << "on the plane";
  const double way[3] = {f[0] - at[0], f[1] - at[1], f[2] - at[2]};
  EXPECT_NEAR(way[0] / way[2], -0.5, 1e-14) << "along the normal (-1/2, -1/4, 1)";
  EXPECT_NEAR(way[1] / way[2], -0.25, 1e-14);
}

}  // namespace
}  // namespace qvtest
