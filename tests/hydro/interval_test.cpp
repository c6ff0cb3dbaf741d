#include "hydro/interval.h"

#include <gtest/gtest.h>

#include "hydro/wave_table.h"
#include "tests/hydro/hulls.h"
#include "tests/reference/hydro_reference.h"

// Compares the searches with their definition: the first interval that holds x, from the beginning; for a time row,
// from the row that is kept.

namespace qvtest {
namespace {

struct axis_pair {
  qvhydro::interval_axis axis;
  qvref::axis values;

  explicit axis_pair(const qvref::axis& file) : values(file) {
    axis.resize(static_cast<int>(file.size()));
    for (std::size_t i = 0; i < file.size(); ++i) axis[static_cast<int>(i)] = file[i];
    axis.close();
    values.push_back(values.back());
  }
  int count() const { return static_cast<int>(values.size()) - 1; }
};

std::vector<double> places_around(const qvref::axis& axis) {
  std::vector<double> places = {-1e300, 1e300, std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()};
  for (const double a : axis) {
    for (const double x : {a, std::nextafter(a, -1e300), std::nextafter(a, 1e300), a + 0.3, a - 0.3}) {
      places.push_back(x);
    }
  }
  return places;
}

qvref::axis random_axis(random_source& random, bool increasing) {
  qvref::axis axis(static_cast<std::size_t>(whole(random, 1, 12)));
  double at = uniform(random, -5, 5);
  for (double& a : axis) {
    a = increasing ? at : whole(random, -3, 3);
    at += uniform(random, 0.01, 3);
  }
  return axis;
}

TEST(IntervalAxis, HasOneEntryMoreThatRepeatsTheLast) {
  const axis_pair p({1, 2, 5});
  EXPECT_EQ(p.axis.count(), 3);
  EXPECT_EQ(p.axis.last(), 5);
  EXPECT_EQ(p.axis[3], 5);
}

TEST(IntervalAxis, FindsTheFirstIntervalThatHoldsThePlaceWhateverTheGuess) {
  random_source random(1);
  for (int i = 0; i < 400; ++i) {
    const axis_pair p(random_axis(random, i % 2 == 0));
    for (const double x : places_around(p.values)) {
      const int expected = qvref::find_interval(p.values, p.count(), x);
      for (int guess = 0; guess < p.count(); ++guess) {
        ASSERT_EQ(p.axis.find(x, guess), expected) << x << " guessed in " << guess;
      }
    }
  }
}

TEST(IntervalAxis, OfOneEntryHoldsNothing) {
  const axis_pair p({4});
  for (const double x : {3.0, 4.0, 5.0}) EXPECT_EQ(p.axis.find(x, 0), -1);
}

TEST(TimeBlend, IsTheOneOfTheDefinitionForAnySequenceOfTimes) {
  random_source random(2);
  for (int i = 0; i < 400; ++i) {
    const axis_pair rows(random_axis(random, i % 2 == 0));
    qvhydro::wave_table table;
    table.wave_time = rows.axis;
    table.wave_rows = rows.count();
    qvref::wave_file wave;
    wave.time = rows.values;
    wave.rows = rows.count();
    int time_index = 0;
    const std::vector<double> places = places_around(rows.values);
    for (int call = 0; call < 30; ++call) {
      const double time = places[static_cast<std::size_t>(whole(random, 0, static_cast<int>(places.size()) - 1))];
      const int iflag = whole(random, 0, 3);
      const qvref::time_weights expected = qvref::find_row(wave, time_index, time, iflag);
      const qvhydro::time_blend blend = qvhydro::blend_at(table, time, iflag == 1);
      ASSERT_EQ(blend.row, expected.row) << "time " << time;
      ASSERT_EQ(blend.w0, expected.w0) << "time " << time;
      ASSERT_EQ(blend.w1, expected.w1) << "time " << time;
      ASSERT_EQ(table.time_index, time_index) << "time " << time;
    }
  }
}

}  // namespace
}  // namespace qvtest
