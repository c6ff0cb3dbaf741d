#include <gtest/gtest.h>

#include "qvbrisk/layouts.h"
#include "tests/hydro/hydro_scene.h"
#include "tests/hydro/module_state.h"

// The level that a patch feels: interpolation over time and place, the ends of the table, and the order of the nodes.

namespace qvtest {
namespace {

constexpr double k_deep = -50.0;
constexpr double k_nan = std::numeric_limits<double>::quiet_NaN();

/// A table with the value of `elevation` and `velocity` at every row and column.
template <class Elevation, class Velocity>
qvref::wave_file sampled(const std::vector<double>& time, const std::vector<double>& x, Elevation&& elevation,
                         Velocity&& velocity) {
  qvref::wave_file wave;
  wave.rows = static_cast<int>(time.size());
  wave.cols = static_cast<int>(x.size());
  wave.time = time;
  wave.x = x;
  for (const double t : time) {
    wave.elevation.emplace_back();
    wave.velocity.emplace_back();
    for (const double at : x) {
      wave.elevation.back().push_back(elevation(t, at));
      wave.velocity.back().push_back(velocity(t, at));
    }
  }
  return wave;
}

double nothing(double, double) { return 0.0; }

/// A small level patch far below the surface, facing down: the volume over it tells the mean level at its corners.
class Probe {
public:
  explicit Probe(const qvref::wave_file& wave, double reach = 1e-3)
      : m_area(reach * reach / 2), m_scene(one_patch({0, 0, 0}, {0, reach, 0}, {reach, 0, 0}), wave) {}

  /// Level at x of the water frame, whose origin is 100 behind the ground's.
  double level(double time, double x, int iflag = 0) {
    m_scene.place({x - 100.0, 0.0, k_deep}, rotation({0, 0, 1}, 0.0));
    return m_scene.forces(time, iflag).volume / m_area + k_deep;
  }
  HydroScene& scene() { return m_scene; }

private:
  double m_area;
  HydroScene m_scene;
};

/// Tolerance: roundings of the probe's area, whose side is 1e-3 at coordinates of 100, times its depth.
constexpr double k_probe_digits = 1e-9;

TEST(Surface, BetweenRowsAndColumnsIsInterpolatedInTimeAndPlace) {
  // A table reproduces exactly a function that is linear in time at each place and linear in place at each time.
  const auto elevation = [](double t, double x) { return 1.0 + 0.25 * t + 0.125 * x - 0.03125 * t * x; };
  Probe probe(sampled({0, 1, 3, 4}, {0, 2, 10, 30}, elevation, nothing));
  for (const double t : {0.0, 0.5, 1.0, 2.9, 3.0, 3.999}) {
    for (const double x : {0.0, 1.0, 2.0, 9.0, 10.0, 25.0, 29.9}) {
      EXPECT_NEAR(probe.level(t, x), elevation(t, x + 1e-3 / 3), k_probe_digits) << t << ", " << x;
    }
  }
}

TEST(Surface, BeforeTheFirstRowAndBehindTheLastStandsAsInThatRow) {
  Probe probe(sampled(
      {1, 2, 3}, {0, 100}, [](double t, double) { return t * t; }, nothing));
  EXPECT_NEAR(probe.level(0.0, 50), 1.0, k_probe_digits);
  EXPECT_NEAR(probe.level(-1e9, 50), 1.0, k_probe_digits);
  EXPECT_NEAR(probe.level(1.5, 50), 2.5, k_probe_digits);
  EXPECT_NEAR(probe.level(3.0, 50), 9.0, k_probe_digits) << "exactly at the last row";
  EXPECT_NEAR(probe.level(1e9, 50), 9.0, k_probe_digits);
}

TEST(TimeRow, IsNeverSearchedBackwards) {
  Probe probe(sampled(
      {0, 1, 2, 3, 4}, {0, 100}, [](double t, double) { return t * t; }, nothing));
  const auto row = [&] { return element_of(probe.scene().parameters.id).time_index; };
  EXPECT_NEAR(probe.level(2.5, 50), 6.5, k_probe_digits);
  EXPECT_EQ(row(), 2);
  EXPECT_NEAR(probe.level(0.5, 50), 4.0, k_probe_digits) << "row 2 as it stands";
  EXPECT_EQ(row(), 2);
  EXPECT_NEAR(probe.level(2.0, 50), 4.0, k_probe_digits) << "within the row it interpolates again";
  EXPECT_NEAR(probe.level(3.25, 50), 9 + 0.25 * 7, k_probe_digits);
  EXPECT_EQ(row(), 3);
  EXPECT_NEAR(probe.level(9.0, 50), 16.0, k_probe_digits);
  EXPECT_EQ(row(), 4);
  EXPECT_NEAR(probe.level(0.0, 50), 16.0, k_probe_digits) << "past the end there is no way back";
}

TEST(TimeRow, IsSharedByTheSubElementsOfAnElement) {
  Probe probe(sampled(
      {0, 1, 2}, {0, 100}, [](double t, double) { return t; }, nothing));
  probe.scene().parameters.subs = 2;
  EXPECT_NEAR(probe.level(1.5, 50), 1.5, k_probe_digits);
  probe.scene().parameters.sub = 1;
  EXPECT_NEAR(probe.level(0.5, 50), 1.0, k_probe_digits);
}

TEST(TimeRow, AdvancesInEveryCallButASetUpCallAndEvenWhileTheElementIsSwitchedOff) {
  Probe probe(sampled(
      {0, 1, 2, 3}, {0, 100}, [](double t, double) { return t; }, nothing));
  const auto row = [&] { return element_of(probe.scene().parameters.id).time_index; };
  probe.level(1.5, 50, 1);
  EXPECT_EQ(row(), 0);
  probe.level(1.5, 50, 3);
  EXPECT_EQ(row(), 1);
  probe.scene().parameters.subs = 2;
  HydroScene off(one_patch({0, 0, 0}, {0, 1, 0}, {1, 0, 0}), calm_water());
  off.parameters.scale = 0.0;
  off.call(1500.0);
  EXPECT_EQ(element_of(off.parameters.id).time_index, 1);
}

TEST(TimeRow, OfATimeThatIsNotANumberStaysAndTheWaterStandsAtZero) {
  Probe probe(sampled(
      {0, 1, 2, 3}, {0, 100}, [](double t, double) { return 1 + t; }, nothing));
  EXPECT_NEAR(probe.level(1.5, 50), 2.5, k_probe_digits);
  EXPECT_NEAR(probe.level(k_nan, 50), 0.0, k_probe_digits);
  EXPECT_NEAR(probe.level(1.5, 50), 2.5, k_probe_digits);
}

TEST(SetUpCall, SeesTheWaterAtZeroAndAtRest) {
  const qvref::wave_file wave = calm_water(200.0, 3.0, 5.0);
  Probe probe(wave);
  EXPECT_NEAR(probe.level(0.0, 50, 1), 0.0, k_probe_digits);
  EXPECT_NEAR(probe.level(0.0, 50, 0), 3.0, k_probe_digits);
  EXPECT_NEAR(probe.level(0.0, 50, 1), 0.0, k_probe_digits) << "not only the first";
  HydroScene plate(plate_hull(2, 2), wave);
  plate.place({0, 0, 1}, rotation({1, 0, 0}, 3.141592653589793));
  EXPECT_EQ(length(plate.forces(0.0, 1).drag), 0.0) << "above z = 0";
  EXPECT_GT(plate.forces(0.0, 0).drag[2], 1.0);
  plate.place({0, 0, -1}, rotation({1, 0, 0}, 3.141592653589793));
  EXPECT_EQ(length(plate.forces(0.0, 1).drag), 0.0) << "still water";
}

TEST(Surface, OfATableThatStartsBehindZeroIsAtZeroBeforeIt) {
  Probe probe(sampled(
                  {0, 10}, {20, 60}, [](double, double) { return 2.0; }, nothing),
              1.0);
  // The patch must not lie before the table as a whole: the column would not count.
  EXPECT_NEAR(probe.level(1.0, 19.5), 2.0 / 3.0, 1e-12) << "one corner of three is over the table";
  EXPECT_NEAR(probe.level(1.0, 20.0), 2.0, 1e-12);
}

struct end_case {
  const char* why;
  double x;         // of the body, in the water frame
  double expected;  // mean level
};

// A patch with corners at 0, 0 and +1 along x, in water that stands at 3 over a table from 0 to 100.
const end_case k_end_cases[] = {
    {"inside", 50.0, 3.0},
    {"its first two corners before zero: all three count as 0", -0.5, 0.0},
    {"its last corner exactly at the end of the table", 99.0, 2.0},
    {"its last corner beyond the end", 99.5, 2.0},
    {"just inside", 98.999, 3.0},
    {"its first two corners exactly at the end", 100.0, 0.0},
};

TEST(EndsOfTheTable, EndTheNodeLoopAndLaterNodesCountWithElevationZero) {
  for (const end_case& row : k_end_cases) {
    Probe probe(calm_water(100.0, 3.0), 1.0);
    EXPECT_NEAR(probe.level(0.0, row.x), row.expected, 1e-12) << row.why;
  }
}

TEST(EndsOfTheTable, LeaveANodeAtTheLastPositionOrBeforeZeroWithoutDrag) {
  const std::pair<double, int> places[] = {{50.0, 3}, {99.0, 2}, {98.5, 3}, {100.0, 0}, {-1e-9, 0}, {0.0, 3}};
  for (const auto& [x, wet_nodes] : places) {
    HydroScene scene(one_patch({0, 0, 0}, {0, 1, 0}, {1, 0, 0}), calm_water(100.0));
    scene.place({x - 100.0, 0.0, -1.0}, rotation({1, 0, 0}, 0.0));
    scene.move({0, 0, -2});
    EXPECT_NEAR(scene.forces().normal_drag[2], wet_nodes * (0.5 / 3) * 0.5 * 4, 1e-14) << x;
  }
}

TEST(NodeOrder, DecidesTheLevelOfAPatchThatIsPartlyDry) {
  // In water at 3 the corner at 4 is dry: it counts with its elevation, those listed after it with 0.
  const qvref::v3 dry = {0, 0, 4}, a = {0, 3, 0}, b = {3, 0, 0};
  const std::pair<hull, double> orders[] = {
      {one_patch(dry, a, b), 1.0}, {one_patch(b, dry, a), 2.0}, {one_patch(a, b, dry), 3.0}};
  for (const auto& [shape, level] : orders) {
    HydroScene scene(shape, calm_water(200.0, 3.0));
    const std::array<qvref::v3, 3> q = {shape.nodes[0], shape.nodes[1], shape.nodes[2]};
    EXPECT_NEAR(scene.forces().volume, integrate_column(q, level).volume, 1e-13) << level;
  }
}

TEST(NodeOrder, DecidesWhichNodesGetDrag) {
  const qvref::v3 dry = {0, 0, 4}, a = {0, 3, 0}, b = {3, 0, 0};
  const auto drag_of = [](const hull& shape) {
    HydroScene scene(shape, calm_water(200.0, 3.0));
    scene.parameters.tangential_coef = 1.0;
    scene.move({1, 2, 3});
    return length(scene.forces().tangential_drag);
  };
  const double none = drag_of(one_patch(dry, a, b)), one = drag_of(one_patch(b, dry, a)),
               two = drag_of(one_patch(a, b, dry));
  EXPECT_EQ(none, 0.0);
  EXPECT_GT(one, 0.1);
  EXPECT_DOUBLE_EQ(two, 2 * one);
}

TEST(NodeExactlyAtTheSurface, IsWet) {
  HydroScene scene(plate_hull(2, 2), calm_water(200.0, 3.0));
  scene.place({0, 0, 3}, rotation({0, 0, 1}, 0.0));
  scene.move({0, 0, 1});
  EXPECT_DOUBLE_EQ(scene.forces().normal_drag[2], -0.5 * 4);
  scene.place({0, 0, std::nextafter(3.0, 4.0)}, rotation({0, 0, 1}, 0.0));
  EXPECT_EQ(scene.forces().normal_drag[2], 0.0);
}

TEST(WaveColumns, FoundLastAreKeptInThePatchAndStayWhereNoneIsFound) {
  HydroScene scene(one_patch({0, 0, 0}, {0, 1, 0}, {1, 0, 0}),
                   sampled(
                       {0, 10}, {10, 20, 30, 40}, [](double, double) { return 0.0; }, nothing));
  const auto columns = [&] {
    const qvhydro::Cpatch& patch = element_of(scene.parameters.id).subs[0].patches[0];
    return std::array<int, 3>{patch.wave_col[0], patch.wave_col[1], patch.wave_col[2]};
  };
  const auto call_at = [&](double x) {
    scene.place({x - 100, 0, -1}, rotation({0, 0, 1}, 0.0));
    scene.call(1.0);
    return columns();
  };
  EXPECT_EQ(call_at(19.5), (std::array<int, 3>{0, 0, 1}));
  EXPECT_EQ(call_at(35.0), (std::array<int, 3>{2, 2, 2}));
  EXPECT_EQ(call_at(5.0), (std::array<int, 3>{2, 2, 2})) << "before the first position";
  EXPECT_EQ(call_at(9.5), (std::array<int, 3>{2, 2, 0}));
  EXPECT_EQ(call_at(39.5), (std::array<int, 3>{2, 2, 0})) << "the third is beyond the end";
  EXPECT_EQ(call_at(-1.0), (std::array<int, 3>{2, 2, 0})) << "the first is, the others are not reached";
  EXPECT_EQ(element_of(scene.parameters.id).wave_x_first, 10.0);
  EXPECT_EQ(element_of(scene.parameters.id).wave_x_last, 40.0);
}

TEST(WaveColumns, OfACornerThatWasDryBeforeAreKeptOnceItIsReached) {
  HydroScene scene(one_patch({0, 0, 0}, {0, 1, 0}, {1, 0, 0}),
                   sampled(
                       {0, 10}, {10, 20, 30, 40}, [](double, double) { return 0.0; }, nothing));
  const auto columns_at = [&](double x, double z) {
    scene.place({x - 100, 0, z}, rotation({0, 0, 1}, 0.0));
    scene.call(1.0);
    const qvhydro::Cpatch& patch = element_of(scene.parameters.id).subs[0].patches[0];
    return std::array<int, 3>{patch.wave_col[0], patch.wave_col[1], patch.wave_col[2]};
  };
  EXPECT_EQ(columns_at(35.0, 1.0), (std::array<int, 3>{2, 0, 0})) << "dry: the first corner alone is reached";
  EXPECT_EQ(columns_at(5.0, -1.0), (std::array<int, 3>{2, 0, 0})) << "wet, where there are no columns";
  EXPECT_EQ(columns_at(35.0, -1.0), (std::array<int, 3>{2, 2, 2})) << "wet, where the nodes were found before";
}

TEST(AxisThatDoesNotIncrease, NeverLeavesTheTable) {
  const auto elevation = [](double t, double x) { return t + x; };
  const std::vector<std::vector<double>> axes = {{0, 0, 0}, {3, 2, 1}, {0, 5, 5, 9}, {0, 9, 4, 12}, {7}, {0}, {-1, -5}};
  for (const auto& times : axes) {
    for (const auto& places : axes) {
      const qvref::wave_file wave = sampled(times, places, elevation, elevation);
      HydroScene scene(box_hull(3, 3, 3), wave);
      for (const double x : {-1.0, 0.0, 1.5, 4.5, 7.0, 20.0}) {
        for (const double t : {-1.0, 0.0, 2.5, 5.0, 8.0, 20.0}) {
          scene.place({x - 100, 0, 0.2}, rotation({1, 2, 1}, 0.3));
          for (const double value : scene.call(t)) EXPECT_TRUE(std::isfinite(value) || std::isnan(value));
          EXPECT_EQ(scene.take_report(), "");
        }
      }
    }
  }
}

struct activity_case {
  const char* why;
  double scale, t_start, t_end, time;
  bool active;
};

const activity_case k_activity_cases[] = {
    {"no interval", 1, 0, 0, 5, true},
    {"an interval that ends before it starts is none", 1, 3, 2, 5, true},
    {"before", 1, 1, 2, 0.5, false},
    {"at the start", 1, 1, 2, 1, true},
    {"within", 1, 1, 2, 1.5, true},
    {"at the end", 1, 1, 2, 2, true},
    {"behind", 1, 1, 2, 2.0001, false},
    {"scaled to nothing", 0, 0, 0, 5, false},
    {"a negative scale counts", -1, 0, 0, 5, true},
    {"not a number", 1, 1, 2, k_nan, false},
};

TEST(Activity, IsDecidedByTheIntervalAndTheScale) {
  for (const activity_case& row : k_activity_cases) {
    HydroScene scene(box_hull(2, 2, 2));
    scene.parameters.scale = row.scale;
    scene.parameters.t_start = row.t_start;
    scene.parameters.t_end = row.t_end;
    scene.parameters.mass = 1.0;
    scene.move({1, 2, 3}, {4, 5, 6});
    scene.force_marker().position = {7, 8, 9};
    const std::vector<double> result = scene.call(row.time, 2);
    if (row.active) {
      EXPECT_DOUBLE_EQ(result[33], 4.0) << row.why;
      EXPECT_DOUBLE_EQ(result[8], row.scale * 4.0) << row.why;
    } else {
      std::vector<double> expected(QV_HULL_RESULT_LENGTH, 0.0);
      for (const std::size_t slot : {9, 30}) {
        expected[slot] = 7, expected[slot + 1] = 8, expected[slot + 2] = 9;
      }
      EXPECT_EQ(first_difference(result, expected), -1) << row.why;
    }
  }
}

}  // namespace
}  // namespace qvtest
