#include "hydro/volume.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/hydro/hulls.h"
#include "tests/reference/hydro_reference.h"

// The water column over one patch, compared with exact integration over the wet part of its plan, and in the cases that
// have a simple answer.

namespace qvtest {
namespace {

using namespace qvref;

constexpr double k_first = 0.0, k_last = 100.0;

struct column_of_patch {
  double volume = 0.0, volume_sum = 0.0;
  v3 centre = {7, 7, 7}, moment_sum{};
};

/// The patch as it stands in the water frame, whose axes are the ground's.
column_of_patch column_over(const std::array<v3, 3>& q, double level, double x_first = k_first,
                            double x_last = k_last) {
  qvhydro::Chydro_force_sub sub;
  for (const v3& node : q) sub.nodes.push_back({node[0], node[1], node[2]});
  qvhydro::Cpatch patch;
  v3 normal = cross(q[1] - q[0], q[2] - q[0]);
  qvref::normalise(normal);
  for (int k = 0; k < 3; ++k) {
    patch.node_ids[k] = k;
    patch.normal[k] = normal[static_cast<std::size_t>(k)];
  }
  const double turn[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}, nowhere[3] = {};
  column_of_patch c;
  qvhydro::Calculation_VolumeAndVolumeCenter(x_first, x_last, &sub, &patch, turn, nowhere, nowhere, turn, level,
                                             c.volume, c.centre.data(), c.volume_sum, c.moment_sum.data());
  return c;
}

double area_of(const v3& a, const v3& b, const v3& c) {
  double area = -1.0;
  qvhydro::Calculation_Area(a.data(), b.data(), c.data(), area);
  return area;
}

TEST(ProjectedArea, IsThatOfTheTriangleInPlanWhateverItsHeights) {
  EXPECT_DOUBLE_EQ(area_of({0, 0, 0}, {3, 0, 0}, {0, 4, 0}), 6.0);
  EXPECT_DOUBLE_EQ(area_of({0, 0, 5}, {3, 0, -70}, {0, 4, 1e9}), 6.0);
  EXPECT_DOUBLE_EQ(area_of({0, 4, 0}, {3, 0, 0}, {0, 0, 0}), 6.0) << "never negative";
}

TEST(ProjectedArea, IsZeroWhereTheSidesFormNoTriangle) {
  EXPECT_EQ(area_of({1, 1, 0}, {2, 2, 0}, {3, 3, 0}), 0.0);
  EXPECT_EQ(area_of({1, 1, 0}, {3, 3, 0}, {2, 2, 0}), 0.0);
  EXPECT_EQ(area_of({2, 2, 0}, {1, 1, 0}, {3, 3, 0}), 0.0);
  EXPECT_EQ(area_of({1, 1, 0}, {1, 1, 5}, {4, 4, 0}), 0.0) << "two corners in one place";
  EXPECT_EQ(area_of({1, 1, 0}, {1, 1, 5}, {1, 1, 9}), 0.0);
}

TEST(ProjectedArea, IsZeroWhereItIsNotANumber) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(area_of({nan, 0, 0}, {3, 0, 0}, {0, 4, 0}), 0.0);
  EXPECT_EQ(area_of({inf, 0, 0}, {3, 0, 0}, {0, 4, 0}), 0.0);
}

TEST(WaterColumn, OfALevelPatchFacingDownIsThePrismAboveIt) {
  const column_of_patch c = column_over({v3{1, 1, -2}, {1, 5, -2}, {4, 1, -2}}, 0.5);
  EXPECT_DOUBLE_EQ(c.volume, 6.0 * 2.5);
  EXPECT_DOUBLE_EQ(c.volume_sum, c.volume);
  const v3 centre = {2.0, 7.0 / 3.0, -0.75};
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_DOUBLE_EQ(c.centre[k], centre[k]);
    EXPECT_NEAR(c.moment_sum[k], c.volume * centre[k], 1e-13);
  }
}

TEST(WaterColumn, CountsNegativeUnderAPatchFacingUp) {
  const column_of_patch down = column_over({v3{1, 1, -2}, {1, 5, -1}, {4, 1, -3}}, 0.0);
  const column_of_patch up = column_over({v3{1, 1, -2}, {4, 1, -3}, {1, 5, -1}}, 0.0);
  EXPECT_GT(down.volume, 1.0);
  EXPECT_DOUBLE_EQ(up.volume, -down.volume);
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_NEAR(up.centre[k], down.centre[k], 1e-14) << "the centre of a column knows no sign";
    EXPECT_NEAR(up.moment_sum[k], -down.moment_sum[k], 1e-12);
  }
}

TEST(WaterColumn, OfAVerticalPatchIsNothingWhateverItsDepth) {
  for (const double level : {-2.5, -1.5, -1.0, 0.0, 50.0}) {
    const column_of_patch c = column_over({v3{1, 1, -3}, {4, 1, -2}, {2, 1, -1}}, level);
    EXPECT_EQ(c.volume, 0.0) << level;
    EXPECT_EQ(c.moment_sum, v3{}) << level;
    EXPECT_EQ(c.centre, (v3{7, 7, 7})) << "not written";
  }
}

struct dry_case {
  const char* why;
  std::array<double, 3> heights;
};

const dry_case k_dry_cases[] = {
    {"all above", {1, 2, 3}},
    {"two above, one at the level", {1, 0, 2}},
    {"one above, two at the level", {0, 1, 0}},
    {"all at the level", {0, 0, 0}},
};

TEST(WaterColumn, IsNothingOverAPatchThatOnlyTouchesTheWater) {
  for (const dry_case& row : k_dry_cases) {
    const auto& z = row.heights;
    const column_of_patch c = column_over({v3{1, 1, z[0]}, {1, 5, z[1]}, {4, 1, z[2]}}, 0.0);
    EXPECT_EQ(c.volume, 0.0) << row.why;
    EXPECT_EQ(c.volume_sum, 0.0) << row.why;
  }
}

TEST(WaterColumn, OfAPatchBeyondAnEndOfTheWaveTableIsNothing) {
  const auto shifted = [](double x) { return std::array<v3, 3>{v3{x, 1, -2}, {x, 5, -2}, {x + 3, 1, -2}}; };
  EXPECT_EQ(column_over(shifted(-3.5), 0.0).volume, 0.0);
  EXPECT_EQ(column_over(shifted(100.5), 0.0).volume, 0.0);
  EXPECT_EQ(column_over(shifted(50), 0.0, 60, 100).volume, 0.0) << "the table need not start at 0";
}

TEST(WaterColumn, OfAPatchOverAnEndOfTheWaveTableIsTakenWhole) {
  const double whole_column = 6.0 * 2.0;
  for (const double x : {-1.0, -3.0, 98.0, 100.0}) {
    const column_of_patch c = column_over({v3{x, 1, -2}, {x, 5, -2}, {x + 3, 1, -2}}, 0.0);
    EXPECT_DOUBLE_EQ(c.volume, whole_column) << "from " << x << "; a corner at an end is not beyond it";
  }
}

// Whichever corner it is: the one at an end of the table is not beyond it, and the whole patch counts.
TEST(WaterColumn, OfAPatchWithOneCornerExactlyAtAnEndOfTheWaveTableIsTakenWhole) {
  for (std::size_t first = 0; first < 3; ++first) {
    const auto turned = [first](const std::array<v3, 3>& q) {
      return std::array<v3, 3>{q[first], q[(first + 1) % 3], q[(first + 2) % 3]};
    };
    const std::array<v3, 3> before = {v3{k_first, 1, -2}, {-3, 1, -2}, {-3, 5, -2}};
    const std::array<v3, 3> behind = {v3{k_last, 1, -2}, {k_last + 3, 5, -2}, {k_last + 3, 1, -2}};
    EXPECT_DOUBLE_EQ(std::fabs(column_over(turned(before), 0.0).volume), 12.0) << "corner " << first;
    EXPECT_DOUBLE_EQ(std::fabs(column_over(turned(behind), 0.0).volume), 12.0) << "corner " << first;
  }
}

// With a corner above the level, one at it and one below, the column is put together from the corner above: three
// pieces, of which the one at the level is empty. Their sum rounds in its own way.
TEST(WaterColumn, OfACornerAboveOneAtAndOneBelowTheLevelIsThatOfTheLiteralReferenceToTheBit) {
  random_source random(9);
  for (int i = 0; i < 200; ++i) {
    const double level = uniform(random, -0.5, 0.5);
    std::array<v3, 3> q = {v3{uniform(random, 10, 12), uniform(random, -1, 1), level + uniform(random, 0.1, 1)},
                           {uniform(random, 10, 12), uniform(random, -1, 1), level},
                           {uniform(random, 10, 12), uniform(random, -1, 1), level - uniform(random, 0.1, 1)}};
    std::rotate(q.begin(), q.begin() + i % 3, q.end());
    const double facing = cross(q[1] - q[0], q[2] - q[0])[2];
    const column_of_patch c = column_over(q, level);
    const qvref::column_result expected = qvref::water_column(k_first, k_last, q, facing, level);
    ASSERT_EQ(c.volume, expected.volume) << i;
    for (std::size_t k = 0; k < 3; ++k) ASSERT_EQ(c.moment_sum[k], expected.moment[k]) << i;
  }
}

TEST(WaterColumn, AddsToTheSumsItIsGiven) {
  qvhydro::Chydro_force_sub sub;
  sub.nodes = {{1, 1, -2}, {1, 5, -2}, {4, 1, -2}};
  qvhydro::Cpatch patch;
  patch.normal[2] = -1.0;
  patch.node_ids[1] = 1, patch.node_ids[2] = 2;
  const double turn[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}, nowhere[3] = {};
  double volume = 0.0, centre[3], sum = 100.0, moment[3] = {1000.0, 0.0, 0.0};
  for (int i = 0; i < 2; ++i) {
    qvhydro::Calculation_VolumeAndVolumeCenter(0, 100, &sub, &patch, turn, nowhere, nowhere, turn, 0.0, volume, centre,
                                               sum, moment);
  }
  EXPECT_DOUBLE_EQ(sum, 100.0 + 2 * 12.0);
  EXPECT_DOUBLE_EQ(moment[0], 1000.0 + 2 * 12.0 * 2.0);
}

TEST(WaterColumn, HasItsCentreInGlobalAxesAndItsMomentInTheWaters) {
  qvhydro::Chydro_force_sub sub;
  sub.nodes = {{0, 0, 0}, {0, 3, 0}, {3, 0, 0}};
  qvhydro::Cpatch patch;
  patch.normal[2] = -1.0;
  patch.node_ids[1] = 1, patch.node_ids[2] = 2;
  // The water's x axis is the ground's y axis, its y axis the ground's -x axis.
  const double turn[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}, A5[9] = {0, 1, 0, -1, 0, 0, 0, 0, 1};
  const double d[3] = {10, 20, -4}, p5[3] = {1000, 2000, 3000};
  double volume = 0.0, centre[3], sum = 0.0, moment[3] = {};
  qvhydro::Calculation_VolumeAndVolumeCenter(0, 100, &sub, &patch, turn, d, p5, A5, 0.0, volume, centre, sum, moment);
  EXPECT_DOUBLE_EQ(volume, 4.5 * 4);
  EXPECT_DOUBLE_EQ(moment[0] / volume, 11.0);
  EXPECT_DOUBLE_EQ(moment[1] / volume, 21.0);
  EXPECT_DOUBLE_EQ(moment[2] / volume, -2.0);
  EXPECT_DOUBLE_EQ(centre[0], 1000 - 21.0);
  EXPECT_DOUBLE_EQ(centre[1], 2000 + 11.0);
  EXPECT_DOUBLE_EQ(centre[2], 2998);
}

// --- against exact integration ------------------------------------------------------------------------------------

constexpr double k_size = 4.0;  // of the random triangles
/// Heron's formula loses half its digits on a sliver: sqrt(2^-52) of the size squared, times the depth.
constexpr double k_sliver = 4 * 1.5e-8 * k_size * k_size * k_size;

struct comparison {
  std::vector<double> errors;
  int one_below = 0, one_above = 0, none_above = 0, at_level = 0;

  void add(const std::array<v3, 3>& q, double level) {
    const column_of_patch c = column_over(q, level);
    const body_of_water exact = integrate_column(q, level);
    const double sign = cross(q[1] - q[0], q[2] - q[0])[2] < 0.0 ? 1.0 : -1.0;
    double error = std::fabs(c.volume - sign * exact.volume);
    EXPECT_LE(error, k_sliver) << "volume " << c.volume << ", exact " << exact.volume;
    for (std::size_t k = 0; k < 3; ++k) {
      const double moment_error = std::fabs(c.moment_sum[k] - sign * exact.moment[k]);
      EXPECT_LE(moment_error, k_sliver * 60.0) << "moment " << k << " of places up to 60 away";
      error = std::max(error, moment_error / 60.0);
    }
    errors.push_back(error);
    int above = 0;
    for (const v3& p : q) {
      above += p[2] > level ? 1 : 0;
      at_level += p[2] == level ? 1 : 0;
    }
    ++(above == 2 ? one_below : above == 1 ? one_above : none_above);
  }
  double median() {
    std::nth_element(errors.begin(), errors.begin() + static_cast<long>(errors.size() / 2), errors.end());
    return errors[errors.size() / 2];
  }
};

TEST(WaterColumn, OfAnyTriangleIsTheIntegralOfDepthOverItsWetPlan) {
  random_source random(5);
  comparison seen;
  for (int i = 0; i < 20000; ++i) {
    const v3 middle = {uniform(random, 10, 60), uniform(random, -60, 60), 0};
    std::array<v3, 3> q;
    for (v3& p : q) {
      p = middle + v3{uniform(random, -1, 1), uniform(random, -1, 1), uniform(random, -2, 2)};
    }
    seen.add(q, uniform(random, -1.5, 1.5));
  }
  EXPECT_GT(seen.one_below, 3000);
  EXPECT_GT(seen.one_above, 3000);
  EXPECT_GT(seen.none_above, 3000);
  EXPECT_LT(seen.median(), 1e-13) << "slivers are the exception";
}

TEST(WaterColumn, OfCornersExactlyAtTheLevelAndOfEqualDepthIsTheSameIntegral) {
  random_source random(6);
  comparison seen;
  for (int i = 0; i < 5000; ++i) {
    std::array<v3, 3> q;
    for (v3& p : q) p = {30.0 + whole(random, -2, 2), 1.0 * whole(random, -2, 2), 0.5 * whole(random, -2, 2)};
    if (cross(q[1] - q[0], q[2] - q[0])[2] == 0.0) continue;
    seen.add(q, 0.0);
  }
  EXPECT_GT(seen.at_level, 1000);
  EXPECT_LT(seen.median(), 1e-13);
}

}  // namespace
}  // namespace qvtest
