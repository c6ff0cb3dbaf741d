#include "soilinteraction_mtl/belt_geometry.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/reference/linear_algebra.h"
#include "tests/soilinteraction/soil_meshes.h"

// The belt over its circles, by what makes a line a tangent and a point a crossing, and the grid on a span.

namespace qvtest {
namespace {

using namespace qvref;
using qvsoilinteractionmtl::CSoilInteractionMTL;
using qvsoilinteractionmtl::get_tangent_point_XZ;
using qvsoilinteractionmtl::replace_tangent_point;
using qvsoilinteractionmtl::track_records;

v3 triple(const double* from) { return {from[0], from[1], from[2]}; }
double length(const v3& v) { return std::sqrt(dot(v, v)); }
v3 unit(v3 v) {
  normalise(v);
  return v;
}

/// Two circles in a plane square to an axle of any direction.
struct circles {
  v3 c1, c2, axle;
  double r1, r2;
};

circles random_circles(random_source& random, bool equal) {
  const auto component = [&] { return uniform(random, -1.0, 1.0); };
  circles c;
  c.axle = unit({component(), component(), component()});
  const v3 across = unit(cross(c.axle, {component(), component(), component()}));
  c.c1 = {5.0 * component(), 5.0 * component(), 5.0 * component()};
  c.r1 = uniform(random, 0.05, 0.6);
  c.r2 = equal ? c.r1 : uniform(random, 0.05, 0.6);
  // Apart, overlapping, and one all but inside the other.
  const double D = std::fabs(c.r1 - c.r2) + uniform(random, 0.01, 2.0);
  c.c2 = c.c1 + D * across;
  return c;
}

struct span {
  double L = -1.0, frame[9] = {}, points[6] = {};
  v3 along() const { return triple(frame); }
  v3 axle() const { return triple(frame + 3); }
  v3 normal() const { return triple(frame + 6); }
  v3 P0() const { return triple(points); }
  v3 P1() const { return triple(points + 3); }
};

span tangent_of(const circles& c) {
  span s;
  get_tangent_point_XZ(c.c1.data(), c.r1, c.c2.data(), c.r2, c.axle.data(), s.L, s.frame, s.points);
  return s;
}

class Tangent : public testing::TestWithParam<bool> {};

TEST_P(Tangent, TouchesBothCirclesAndCrossesNeither) {
  random_source random(7);
  for (int trial = 0; trial < 500; ++trial) {
    const circles c = random_circles(random, GetParam());
    const span s = tangent_of(c);
    const v3 chord = s.P1() - s.P0();
    EXPECT_NEAR(length(s.P0() - c.c1), c.r1, 1e-14);
    EXPECT_NEAR(length(s.P1() - c.c2), c.r2, 1e-14);
    EXPECT_NEAR(dot(chord, s.P0() - c.c1), 0.0, 1e-13) << "square to the radius";
    EXPECT_NEAR(dot(chord, s.P1() - c.c2), 0.0, 1e-13);
  }
}

TEST_P(Tangent, IsTheOuterOneOnTheSideThatTheSpansNormalTurnsItsBackOn) {
  random_source random(8);
  for (int trial = 0; trial < 500; ++trial) {
    const circles c = random_circles(random, GetParam());
    const span s = tangent_of(c);
    const v3 level_normal = unit(cross(c.c2 - c.c1, c.axle));
    EXPECT_LT(dot(s.P0() - c.c1, s.normal()), 0.0);
    EXPECT_LT(dot(s.P1() - c.c2, s.normal()), 0.0) << "both on one side: an inner tangent would cross over";
    EXPECT_GT(dot(s.normal(), level_normal), 0.0);
  }
}

TEST_P(Tangent, HasTheLengthOfPythagoras) {
  random_source random(9);
  for (int trial = 0; trial < 500; ++trial) {
    const circles c = random_circles(random, GetParam());
    const span s = tangent_of(c);
    const double D = length(c.c2 - c.c1), difference = c.r1 - c.r2;
    EXPECT_NEAR(s.L, std::sqrt(D * D - difference * difference), 1e-13);
    EXPECT_NEAR(s.L, length(s.P1() - s.P0()), 1e-15);
  }
}

TEST_P(Tangent, HasARightHandedFrameOfWhatRunsAlongTheAxleAndTheNormal) {
  random_source random(10);
  for (int trial = 0; trial < 500; ++trial) {
    const circles c = random_circles(random, GetParam());
    const span s = tangent_of(c);
    const v3 expected_along = unit(s.P1() - s.P0()), expected_normal = cross(s.along(), s.axle());
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_NEAR(s.along()[k], expected_along[k], 1e-12);
      EXPECT_NEAR(s.axle()[k], c.axle[k], 1e-15);
      EXPECT_NEAR(s.normal()[k], expected_normal[k], 1e-14);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(RadiiEqualAndNot, Tangent, testing::Bool());

TEST(TangentOfEqualRadii, HasTheLevelFrameExactlyAndItsPointsStraightBelowTheCentres) {
  const span s = tangent_of({{1.0, 2.0, 3.0}, {5.0, 2.0, 3.0}, {0.0, 1.0, 0.0}, 0.25, 0.25});
  const double frame[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}, points[6] = {1, 2, 2.75, 5, 2, 2.75};
  for (int k = 0; k < 9; ++k) EXPECT_EQ(s.frame[k], frame[k]);
  for (int k = 0; k < 6; ++k) EXPECT_EQ(s.points[k], points[k]);
  EXPECT_EQ(s.L, 4.0);
}

TEST(TangentOfEqualRadii, RunsAboveTheNodesWhenTheChainRunsBackwards) {
  const span s = tangent_of({{5.0, 0.0, 1.0}, {1.0, 0.0, 1.0}, {0.0, 1.0, 0.0}, 0.25, 0.25});
  EXPECT_EQ(s.points[2], 1.25);
  EXPECT_EQ(s.frame[8], -1.0);
}

TEST(TangentOfOneCentre, LeavesLengthFrameAndPointsAsTheyAre) {
  span s;
  std::fill_n(s.frame, 9, 7.0);
  std::fill_n(s.points, 6, 8.0);
  const v3 centre = {1.0, 2.0, 3.0}, axle = {0.0, 1.0, 0.0};
  get_tangent_point_XZ(centre.data(), 0.3, centre.data(), 0.1, axle.data(), s.L, s.frame, s.points);
  EXPECT_EQ(s.L, -1.0);
  EXPECT_TRUE(std::all_of(s.frame, s.frame + 9, [](double x) { return x == 7.0; }));
  EXPECT_TRUE(std::all_of(s.points, s.points + 6, [](double x) { return x == 8.0; }));
}

TEST(TangentOfACircleInsideTheOther, DoesNotExistAndIsNotANumber) {
  const span s = tangent_of({{0.0, 0.0, 0.0}, {0.1, 0.0, 0.0}, {0.0, 1.0, 0.0}, 0.5, 0.2});
  EXPECT_TRUE(std::isnan(s.L));
  EXPECT_TRUE(std::isnan(s.points[0]));
}

// --- corners -----------------------------------------------------------------------------------------------------

/// A chain that sags like a bowl, so that the belt bends around every inner node; spans laid, corners not cut.
struct bowl {
  std::vector<double> radii;
  track_records track;
  track_records before;  ///< the same without corners

  bowl(int nodes, random_source& random) {
    std::vector<v3> centres;
    for (int i = 0; i < nodes; ++i) {
      const double x = i - 0.5 * (nodes - 1) + uniform(random, -0.1, 0.1);
      centres.push_back({x, 0.0, 0.15 * x * x});
      radii.push_back(uniform(random, 0.2, 0.22));
    }
    track.resize(centres.size(), std::vector<CSoilInteractionMTL>(2));
    const v3 axle = {0.0, 1.0, 0.0};
    double L = 0.0;
    for (std::size_t i = 0; i + 1 < centres.size(); ++i) {
      CSoilInteractionMTL &start = track[i][1], &end = track[i + 1][0];
      get_tangent_point_XZ(centres[i].data(), radii[i], centres[i + 1].data(), radii[i + 1], axle.data(), L,
                           start.frame, start.points);
      std::copy_n(start.frame, 9, end.frame);
      std::copy_n(start.points, 6, end.points);
    }
    before = track;
    replace_tangent_point(nodes, track, radii.data());
  }

  /// Where the tangents before and behind an inner node cross, in the x-z plane.
  v3 crossing(std::size_t i) const {
    const v3 p = triple(before[i][0].points + 3), d = triple(before[i][0].frame);
    const v3 q = triple(before[i][1].points), e = triple(before[i][1].frame);
    const double s = ((q[0] - p[0]) * e[2] - (q[2] - p[2]) * e[0]) / (d[0] * e[2] - d[2] * e[0]);
    return p + s * d;
  }
  v3 start_of(std::size_t node, std::size_t side) const { return triple(track[node][side].points); }
  v3 end_of(std::size_t node, std::size_t side) const { return triple(track[node][side].points + 3); }
  v3 old_start_of(std::size_t node, std::size_t side) const { return triple(before[node][side].points); }
  v3 old_end_of(std::size_t node, std::size_t side) const { return triple(before[node][side].points + 3); }
};

void expect_near(const v3& a, const v3& b, double tolerance) {
  for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(a[k], b[k], tolerance);
}

TEST(Corner, LiesWhereTheTangentsOfANodeCross) {
  random_source random(11);
  for (int trial = 0; trial < 100; ++trial) {
    const int nodes = whole(random, 3, 9);
    const bowl b(nodes, random);
    for (std::size_t i = 1; i + 1 < b.radii.size(); ++i) {
      expect_near(b.end_of(i, 0), b.crossing(i), 1e-12);
      EXPECT_EQ(b.start_of(i, 1), b.end_of(i, 0)) << "the spans meet";
    }
  }
}

TEST(Corner, IsKnownToTheStartRecordOfTheFirstSpanAndToTheEndRecordOfTheLast) {
  random_source random(12);
  for (int nodes = 3; nodes <= 9; ++nodes) {
    const bowl b(nodes, random);
    const auto last = static_cast<std::size_t>(nodes - 1);
    EXPECT_EQ(b.end_of(0, 1), b.end_of(1, 0));
    EXPECT_EQ(b.start_of(last, 0), b.start_of(last - 1, 1));
  }
}

TEST(Corner, BehindAnInnerSpanIsUnknownToItsStartRecord) {
  random_source random(13);
  for (int nodes = 4; nodes <= 9; ++nodes) {
    const bowl b(nodes, random);
    for (std::size_t i = 1; i + 2 < b.radii.size(); ++i) {
      EXPECT_EQ(b.end_of(i, 1), b.old_end_of(i, 1)) << "ends at the unmoved tangent point";
      EXPECT_GT(length(b.end_of(i, 1) - b.end_of(i + 1, 0)), 1e-3) << "while the end record has the corner";
    }
  }
}

TEST(Corner, BeforeAnInnerSpanIsUnknownToItsEndRecord) {
  random_source random(14);
  for (int nodes = 4; nodes <= 9; ++nodes) {
    const bowl b(nodes, random);
    for (std::size_t i = 2; i + 1 < b.radii.size(); ++i) EXPECT_EQ(b.start_of(i, 0), b.old_start_of(i, 0));
  }
}

TEST(Corner, LeavesTheEndsOfTheChainAndAllFramesAlone) {
  random_source random(15);
  const bowl b(6, random);
  EXPECT_EQ(b.start_of(0, 1), b.old_start_of(0, 1));
  EXPECT_EQ(b.end_of(5, 0), b.old_end_of(5, 0));
  for (std::size_t node = 0; node < 6; ++node)
    for (std::size_t side = 0; side < 2; ++side)
      EXPECT_TRUE(std::equal(b.track[node][side].frame, b.track[node][side].frame + 9, b.before[node][side].frame));
}

TEST(Corner, OfAnArcWiderThanItsCircleIsNotANumber) {
  track_records track(3, std::vector<CSoilInteractionMTL>(2));
  track[1][0].points[3] = 0.0;
  track[1][1].points[0] = 0.41;
  const double radii[3] = {0.2, 0.2, 0.2};
  replace_tangent_point(3, track, radii);
  EXPECT_TRUE(std::isnan(track[1][1].points[0]));
  EXPECT_TRUE(std::isnan(track[0][1].points[3]));
}

TEST(Corner, OfAStraightBeltIsTheTangentPoint) {
  track_records track(3, std::vector<CSoilInteractionMTL>(2));
  for (const std::size_t side : {0U, 1U}) track[1][side].frame[0] = 1.0;
  track[1][0].points[3] = track[1][1].points[0] = 4.0;
  const double radii[3] = {0.2, 0.2, 0.2};
  replace_tangent_point(3, track, radii);
  EXPECT_EQ(track[1][0].points[3], 4.0);
  EXPECT_EQ(track[1][1].points[0], 4.0);
}

// --- the grid on a span ------------------------------------------------------------------------------------------

CSoilInteractionMTL span_record(int n_long, int n_lat, int side) {
  CSoilInteractionMTL record;
  record.nLong = n_long;
  record.nLat = n_lat;
  record.side = side;
  const auto rows = static_cast<std::size_t>(n_long), columns = static_cast<std::size_t>(n_lat);
  record.road_contacts.resize(rows, std::vector<qvsoilinteractionmtl::Croad_contact_mtl>(columns));
  record.soil_contacts.resize(rows, std::vector<qvsoilinteractionmtl::Csoil_contact_mtl>(columns));
  record.set_node_weights();
  return record;
}

TEST(SpanGrid, HasItsRowsFromEndToEndAndItsColumnsAcrossTheBelt) {
  CSoilInteractionMTL record = span_record(9, 33, 1);  // more points than a block
  const v3 along = {0.6, 0.0, 0.8}, axle = {0.0, 1.0, 0.0}, normal = cross(along, axle), P0 = {1.0, 2.0, 3.0};
  const v3 P1 = P0 + 4.0 * along, marker = {0.5, -1.0, 2.0}, node = {1.5, 2.0, 3.5};
  std::copy_n(along.data(), 3, record.frame);
  std::copy_n(axle.data(), 3, record.frame + 3);
  std::copy_n(normal.data(), 3, record.frame + 6);
  std::copy_n(P0.data(), 3, record.points);
  std::copy_n(P1.data(), 3, record.points + 3);
  record.Calculation_Node_Position(0.5, marker.data(), node.data());
  EXPECT_NEAR(record.span_length, 4.0, 1e-15);
  for (int j = 0; j < 9; ++j) {
    for (int k = 0; k < 33; ++k) {
      const auto& rc = record.road_contacts[static_cast<std::size_t>(j)][static_cast<std::size_t>(k)];
      const v3 expected = P0 + (j * 0.5) * along + (k * 0.5 / 32 - 0.25) * axle;
      expect_near(triple(rc.position), expected, 1e-14);
      expect_near(triple(rc.lever_marker), expected - marker, 1e-14);
      expect_near(triple(rc.lever_node), expected - node, 1e-14);
    }
  }
}

TEST(NodeWeights, FadeFromTheStartNodeToTheEndNodeAndAddUpToOne) {
  for (const int n_long : {2, 3, 5, 17}) {
    const CSoilInteractionMTL start = span_record(n_long, 2, 1), end = span_record(n_long, 2, 0);
    const auto last = static_cast<std::size_t>(n_long - 1);
    EXPECT_EQ(start.soil_contacts[0][1].node_weight, 1.0);
    EXPECT_EQ(end.soil_contacts[0][1].node_weight, 0.0);
    EXPECT_NEAR(start.soil_contacts[last][0].node_weight, 0.0, 1e-15);
    EXPECT_NEAR(end.soil_contacts[last][0].node_weight, 1.0, 1e-15);
    for (std::size_t j = 0; j <= last; ++j) {
      const double w = start.soil_contacts[j][0].node_weight, w2 = end.soil_contacts[j][0].node_weight;
      EXPECT_NEAR(w2, static_cast<double>(j) / (n_long - 1), 1e-15);
      EXPECT_NEAR(w + w2, 1.0, 1e-15);
    }
  }
}

}  // namespace
}  // namespace qvtest
