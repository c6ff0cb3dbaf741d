#include "solver/data_files/make_current.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "tests/solver/data_files/water_library.h"
#include "tests/support/temporary_folder.h"

namespace {

using qvslv::CurrentFile;
using qvslv::CurrentSettings;
using qvslv::ProfileKind;

CurrentSettings currents(const std::string& along_x, const std::string& along_y = "none") {
  return {qvslv::parse_profile(along_x), qvslv::parse_profile(along_y)};
}

TEST(MakeCurrent, UniformCurrentIsTheSameEverywhere) {
  const CurrentFile current = qvslv::current_tables(currents("uniform:1.5", "uniform:-0.25"));
  for (const double x : {-1e6, -1.0, 0.0, 7.0, 1e6}) {
    EXPECT_EQ(current.along_x.speed_at(x, -x), 1.5);
    EXPECT_EQ(current.along_y.speed_at(-x, x), -0.25);
  }
}

TEST(MakeCurrent, NoCurrentIsATableOfZeros) {
  const CurrentFile current = qvslv::current_tables(currents("uniform:1"));
  EXPECT_EQ(current.along_y.key.size(), 1u);  // the format knows no empty table
  EXPECT_EQ(current.along_y.speed_at(3, 4), 0);
}

TEST(MakeCurrent, LinearCurrentOverYIsAStraightLineHeldBeyondItsEnds) {
  const CurrentFile current = qvslv::current_tables(currents("linear:0.5:1.5@y:-20:20"));
  EXPECT_EQ(current.along_x.mode, 0);
  for (const double y : {-20.0, -13.0, 0.0, 7.5, 19.0})
    EXPECT_DOUBLE_EQ(current.along_x.speed_at(99, y), 0.5 + (y + 20) / 40);
  EXPECT_EQ(current.along_x.speed_at(0, -50), 0.5);
  EXPECT_EQ(current.along_x.speed_at(0, 50), 1.5);
}

TEST(MakeCurrent, CurrentOverXIsZeroBeyondItsEnds) {
  const CurrentFile current = qvslv::current_tables(currents("none", "linear:1:3@x:10:30"));
  EXPECT_EQ(current.along_y.mode, 1);
  EXPECT_DOUBLE_EQ(current.along_y.speed_at(10, 99), 1);
  EXPECT_DOUBLE_EQ(current.along_y.speed_at(25, 99), 2.5);
  EXPECT_EQ(current.along_y.speed_at(9.99, 20), 0);
  EXPECT_EQ(current.along_y.speed_at(30, 20), 0);  // the last interval is open there
}

TEST(MakeCurrent, PowerCurrentIsTheSeventhRootOfTheDistanceFromTheBank) {
  for (const char* text : {"power:1.4@y:0:40", "power:1.4@y:40:0", "power:1.4@y:-300:-260", "power:-1.4@x:5:45"}) {
    SCOPED_TRACE(text);
    const qvslv::CurrentProfile profile = qvslv::parse_profile(text);
    const CurrentFile current = qvslv::current_tables({profile, {}});
    for (double share = 1e-5; share < 1; share *= 1.3) {
      const double at = profile.begin + share * (profile.end - profile.begin);
      const double speed = current.along_x.speed_at(profile.over_x ? at : 0, profile.over_x ? 0 : at);
      constexpr double k_chord = 0.011;  // of the speed, see k_power_intervals
      EXPECT_NEAR(speed, profile.speed * std::pow(share, 1.0 / 7), k_chord * 1.4) << share;
    }
    for (size_t i = 0; i < current.along_x.key.size(); ++i) {
      const double share = (current.along_x.key[i] - profile.begin) / (profile.end - profile.begin);
      EXPECT_NEAR(current.along_x.value[i], profile.speed * std::pow(std::fmax(share, 0), 1.0 / 7), 1e-12);
      if (i > 0) {
        EXPECT_GT(current.along_x.key[i], current.along_x.key[i - 1]);
      }
    }
  }
}

TEST(MakeCurrent, PowerCurrentRunsFromZeroAtTheBankToItsSpeed) {
  const CurrentFile current = qvslv::current_tables(currents("power:2@y:50:10"));
  EXPECT_EQ(current.along_x.speed_at(0, 50), 0);
  EXPECT_EQ(current.along_x.speed_at(0, 80), 0);
  EXPECT_DOUBLE_EQ(current.along_x.speed_at(0, 10), 2);
  EXPECT_DOUBLE_EQ(current.along_x.speed_at(0, -5), 2);
}

TEST(MakeCurrent, EveryProfileReadsBackFromItsText) {
  for (const char* text :
       {"none", "uniform:1.5", "uniform:-0.25", "linear:0.5:1.5@y:-50:50", "linear:0:-3@x:200:0", "power:1.5@y:0:40"})
    EXPECT_EQ(qvslv::profile_text(qvslv::parse_profile(text)), text);
  EXPECT_EQ(qvslv::profile_text(qvslv::parse_profile("uniform:+1e0")), "uniform:1");
}

struct wrong_profile {
  const char* text;
  const char* message;
};
constexpr const char* k_forms =
    "a profile is none, uniform:SPEED, linear:SPEED:SPEED@AXIS:BEGIN:END or power:SPEED@AXIS:BEGIN:END";
const std::string k_is_no_form = std::string(": ") + k_forms;

TEST(MakeCurrent, MistakenProfilesAreNamed) {
  const wrong_profile cases[] = {
      {"lienar:1:2@y:0:1", "'lienar:1:2@y:0:1': 'lienar' is not known; did you mean 'linear'?"},
      {"uniform:fast", "'uniform:fast': 'fast' is no number"},
      {"uniform:1m", "'uniform:1m': '1m' is no number"},
      {"uniform:", "'uniform:': '' is no number"},
      {"power:1@z:0:1", "'power:1@z:0:1': behind the @ an axis and two positions are expected, for instance @y:0:40"},
      {"power:1@y:0", "'power:1@y:0': behind the @ an axis and two positions are expected, for instance @y:0:40"},
  };
  for (const wrong_profile& row : cases) {
    try {
      qvslv::parse_profile(row.text);
      ADD_FAILURE() << row.text << " was read";
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), row.message);
    }
  }
  for (const std::string text : {"uniform", "uniform:1:2", "uniform:1@y:0:1", "linear:1@y:0:1", "power:1", "none:0"}) {
    try {
      qvslv::parse_profile(text);
      ADD_FAILURE() << text << " was read";
    } catch (const std::invalid_argument& error) {
      EXPECT_EQ(error.what(), "'" + text + "'" + k_is_no_form);
    }
  }
}

TEST(MakeCurrent, MistakenSettingsAreNamed) {
  EXPECT_EQ(qvslv::mistake_in(currents("uniform:1")), "");
  EXPECT_EQ(qvslv::mistake_in(currents("none")), "give a profile along x or along y (or both)");
  EXPECT_EQ(qvslv::mistake_in(currents("linear:1:2@y:3:3")),
            "along x: the stretch must run from one position to another");
  EXPECT_EQ(qvslv::mistake_in(currents("none", "power:1@y:1e6:1000001")),
            "along y: the stretch is too short for its distance from 0");
  CurrentSettings infinite = currents("uniform:1");
  infinite.along_x.speed = std::numeric_limits<double>::infinity();
  EXPECT_EQ(qvslv::mistake_in(infinite), "along x: the speed must be a finite number");
  EXPECT_THROW(qvslv::current_tables(infinite), std::invalid_argument);
}

void expect_same(const qvslv::CurrentTable& made, const qvhydro::current_table& read) {
  ASSERT_EQ(read.key.count(), static_cast<int>(made.key.size()));
  EXPECT_EQ(read.mode, made.mode);
  for (size_t i = 0; i < made.key.size(); ++i) {
    constexpr double k_twelve_digits = 5e-12;
    EXPECT_NEAR(read.key[static_cast<int>(i)], made.key[i], k_twelve_digits * std::abs(made.key[i]));
    EXPECT_NEAR(read.value[i], made.value[i], k_twelve_digits * std::abs(made.value[i]));
    if (i > 0) {
      EXPECT_GT(read.key[static_cast<int>(i)], read.key[static_cast<int>(i) - 1]);
    }
  }
}

TEST(MakeCurrent, FileIsReadByTheLibraryToTheDigitsThatWereWritten) {
  const qvtest::TemporaryFolder folder;
  for (const CurrentSettings& settings :
       {currents("power:1.4@y:0:40", "linear:0.1:0.3@x:0:200"), currents("power:0.7@x:1e5:100010.1"),
        currents("uniform:1.5", "power:1@y:30:-30")}) {
    qvslv::write_current_file(settings, folder.path("tide.current"));
    qvhydro::current_table along_x, along_y;
    std::string message;
    ASSERT_TRUE(qvtest::library_reads_current(folder.path("tide.current"), along_x, along_y, message)) << message;
    const CurrentFile made = qvslv::current_tables(settings);
    expect_same(made.along_x, along_x);
    expect_same(made.along_y, along_y);
  }
}

TEST(MakeCurrent, FileKnowsWhetherItWasMadeWithTheseSettings) {
  const qvtest::TemporaryFolder folder;
  const std::string path = folder.path("tide.current");
  EXPECT_EQ(qvslv::made_file_state(path, currents("uniform:1")), qvslv::MadeFileState::missing);
  qvslv::write_current_file(currents("uniform:1"), path);
  EXPECT_EQ(qvslv::made_file_state(path, currents("uniform:1")), qvslv::MadeFileState::current);
  EXPECT_EQ(qvslv::made_file_state(path, currents("uniform:2")), qvslv::MadeFileState::outdated);
  folder.write("tide.current", "1,0\n0,1\n1,0\n0,0\n");
  EXPECT_EQ(qvslv::made_file_state(path, currents("uniform:1")), qvslv::MadeFileState::foreign);
}

}  // namespace
