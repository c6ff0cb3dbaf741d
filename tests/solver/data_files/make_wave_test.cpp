#include "solver/data_files/make_wave.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "tests/solver/data_files/water_library.h"
#include "tests/solver/data_files/wave_settings.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace qvtest;
using qvslv::WaveFile;
using testing::HasSubstr;

constexpr double k_nine_digits = 5e-9;  // relative; what is lost in the text of the file

/// What a reader gets from the file's text.
WaveFile table_in_file(const WaveSettings& settings) {
  const WaveFile made = qvslv::wave_table(settings);
  return *qvslv::read_wave_text(qvslv::wave_text(made, qvslv::settings_line(settings)));
}

TEST(WaveNumber, SatisfiesTheDispersionRelationToTheLastDigits) {
  for (double kh = 1e-4; kh < 60; kh *= 1.07) {
    const double depth = 7.3;
    const double omega = std::sqrt(k_g * kh / depth * std::tanh(kh));
    const double k = qvslv::wave_number(omega, depth, k_g);
    // omega^2 goes with at most k^2: an error of k counts twice; a few roundings on each side.
    EXPECT_NEAR(k_g * k * std::tanh(k * depth) / (omega * omega), 1.0, 16 * k_rounding) << kh;
    EXPECT_NEAR(k * depth / kh, 1.0, 16 * k_rounding) << kh;
  }
}

TEST(WaveNumber, InDeepWaterIsOmegaSquaredOverGravity) {
  EXPECT_DOUBLE_EQ(qvslv::wave_number(1.3, 0, k_g), 1.3 * 1.3 / k_g);
  EXPECT_DOUBLE_EQ(qvslv::wave_number(1.3, 500, k_g), 1.3 * 1.3 / k_g);  // k h = 86: tanh is 1
}

TEST(WaveNumber, InShallowWaterWavesTravelWithTheRootOfGravityTimesDepth) {
  const double depth = 2;
  for (const double omega : {1e-3, 1e-2, 5e-2}) {
    const double kh = qvslv::wave_number(omega, depth, k_g) * depth;
    // k h = omega sqrt(h/g) (1 + (k h)^2 / 6 + order 4)
    const double first = omega * std::sqrt(depth / k_g);
    EXPECT_NEAR(kh / first, 1 + first * first / 6, std::pow(first, 4) + 4 * k_rounding);
  }
}

struct published_case {
  double depth_over_deep_length, depth_over_length;
};
// Tables of the functions of d/L, Shore Protection Manual (1984), appendix C, table C-1.
const published_case k_published[] = {{0.0100, 0.0403}, {0.0500, 0.0942}, {0.1000, 0.1410}, {0.5000, 0.5018}};

TEST(WaveNumber, AgreesWithThePublishedTables) {
  for (const published_case& row : k_published) {
    const double depth = 10, deep_length = depth / row.depth_over_deep_length;
    const double omega = std::sqrt(k_g * k_two_pi / deep_length);
    EXPECT_NEAR(depth * qvslv::wave_number(omega, depth, k_g) / k_two_pi, row.depth_over_length, 5e-5);
  }
}

TEST(MakeWave, RegularWaveIsACosineThatTravelsAlongX) {
  for (const double depth : {0.0, 4.0}) {
    for (const bool against : {false, true}) {
      WaveSettings s = regular(1.2, 6, depth);
      s.against_x = against;
      s = qvslv::completed(s);
      const WaveFile wave = table_in_file(s);
      const double omega = k_two_pi / 6;
      const double k = (against ? -1 : 1) * qvslv::wave_number(omega, depth, k_g);
      for (size_t i = 0; i < wave.time.size(); i += 7)
        for (size_t j = 0; j < wave.x.size(); j += 5)
          EXPECT_NEAR(wave.elevation[i][j], 0.6 * std::cos(k * wave.x[j] - omega * wave.time[i]), 0.6 * k_nine_digits);
    }
  }
}

TEST(MakeWave, BetweenTablePointsTheSurfaceDiffersFromTheCosineByTheChordsHeight) {
  const WaveSettings s = qvslv::completed(regular(1.2));
  const WaveFile wave = table_in_file(s);
  const double omega = k_two_pi / 6, k = omega * omega / k_g;
  const double wx = k * (wave.x[1] - wave.x[0]), wt = omega * (wave.time[1] - wave.time[0]);
  const double chord = 0.6 * (wx * wx + wt * wt) / 8;
  for (double t = 0.05; t < s.duration; t += 1.37)
    for (double x = 0.05; x < s.extent; x += 3.1)
      EXPECT_NEAR(wave.elevation_at(t, x), 0.6 * std::cos(k * x - omega * t), 1.0001 * chord);
}

/// A sea with everything that enters the velocity, in steps so fine that differences are derivatives.
WaveSettings fine_steps(WaveKind kind, double depth, double ramp) {
  WaveSettings s = sea(kind, 1.0, 8.0);
  s.depth = depth;
  s.ramp = ramp;
  s.duration = 4;
  s.time_step = 0.01;
  s.extent = 60;
  s.x_step = 2;
  return s;
}

TEST(MakeWave, VerticalVelocityIsTheSurfacesRateOfChange) {
  for (const WaveKind kind : {WaveKind::regular, WaveKind::pierson_moskowitz, WaveKind::jonswap}) {
    for (const double depth : {0.0, 6.0}) {
      for (const double ramp : {0.0, 3.0}) {
        const WaveFile wave = qvslv::wave_table(fine_steps(kind, depth, ramp));
        const double step = wave.time[1];
        // Central differences lose h^2/6 of the third derivative, which is at most about omega^3 per unit of height;
        // the ramp has one of pi^3 / (2 ramp^3), and its end a jump in the second derivative.
        const double highest = 3 * k_two_pi / 8 + (ramp > 0 ? 3.2 / ramp : 0);
        const double bound = step * step / 6 * highest * highest * highest * 2 + (ramp > 0 ? step : 0.0);
        for (size_t i = 1; i + 1 < wave.time.size(); ++i) {
          const bool at_ramp_end = std::abs(wave.time[i] - ramp) < 1.5 * step;
          for (size_t j = 0; j < wave.x.size(); ++j) {
            const double rate = (wave.elevation[i + 1][j] - wave.elevation[i - 1][j]) / (2 * step);
            EXPECT_NEAR(wave.velocity[i][j], rate, at_ramp_end ? bound : bound - (ramp > 0 ? step : 0.0));
          }
        }
      }
    }
  }
}

TEST(MakeWave, RampLetsTheWaterRestAtTimeZeroAndEndsInTheSameWaves) {
  WaveSettings s = small_sea(WaveKind::jonswap);
  const WaveFile whole = qvslv::wave_table(s);
  s.ramp = 20;
  const WaveFile grown = qvslv::wave_table(s);
  for (size_t j = 0; j < grown.x.size(); ++j) {
    EXPECT_EQ(grown.elevation[0][j], 0);
    EXPECT_EQ(grown.velocity[0][j], 0);
  }
  for (size_t i = 0; i < grown.time.size(); ++i) {
    if (grown.time[i] < 20) continue;
    EXPECT_EQ(grown.elevation[i], whole.elevation[i]);
    EXPECT_EQ(grown.velocity[i], whole.velocity[i]);
  }
  const double halfway = 0.5;  // (1 - cos(pi/2)) / 2
  EXPECT_NEAR(grown.elevation_at(10, 50), halfway * whole.elevation_at(10, 50), k_rounding);
}

TEST(MakeWave, TableBeginsAtZeroAndHasTwentyPointsToTheShortestWave) {
  const WaveSettings s = qvslv::completed(sea(WaveKind::jonswap, 2, 9));
  const WaveFile wave = table_in_file(s);
  EXPECT_EQ(wave.time.front(), 0);
  EXPECT_EQ(wave.x.front(), 0);
  EXPECT_DOUBLE_EQ(wave.time.back(), 180);  // 20 peak periods
  const double length = k_g * 81 / k_two_pi;
  EXPECT_NEAR(wave.x.back(), 5 * length, 1e-9);
  EXPECT_NEAR(wave.time[1], 9.0 / 3 / 20, 1e-12);
  EXPECT_LE(wave.x[1], length / 9 / 20 * (1 + 1e-9));
  EXPECT_GT(wave.x[1], length / 9 / 20 * 0.99);
  for (size_t j = 1; j < wave.x.size(); ++j) EXPECT_NEAR(wave.x[j] - wave.x[j - 1], wave.x[1], 1e-9);
}

TEST(MakeWave, StepsAreShortenedSoThatWholeOnesFit) {
  WaveSettings s = regular();
  s.duration = 10;
  s.time_step = 0.3;
  s.extent = 50;
  s.x_step = 2.5;
  s = qvslv::completed(s);
  EXPECT_EQ(qvslv::time_rows(s), 35);  // 34 steps of 0.294
  EXPECT_EQ(qvslv::columns_along_x(s), 21);
  EXPECT_DOUBLE_EQ(qvslv::wave_table(s).time[17], 5.0);
}

TEST(MakeWave, StillWaterIsTwoRowsOfTwoZeros) {
  const WaveSettings s = qvslv::completed(still_water(12));
  EXPECT_EQ(qvslv::mistake_in(s), "");
  EXPECT_TRUE(qvslv::doubts_about(s).empty());
  EXPECT_EQ(qvslv::wave_text(qvslv::wave_table(s), qvslv::settings_line(s)),
            "2,2\n0,12\n0,0,0,0,0\n1,0,0,0,0\nMADE BY qvbrisk, wave still, duration 1, extent 12\n");
  WaveSettings longer = s;
  longer.duration = 30;
  EXPECT_EQ(table_in_file(longer).time, (std::vector<double>{0, 30}));
  EXPECT_EQ(qvslv::time_rows(longer), 2);
  EXPECT_EQ(qvslv::columns_along_x(longer), 2);
}

class WaveFileOnDisk : public testing::Test {
protected:
  std::string made(const WaveSettings& settings) const {
    qvslv::write_wave_file(settings, m_folder.path("sea.wave"));
    return m_folder.path("sea.wave");
  }
  qvtest::TemporaryFolder m_folder;
};

TEST_F(WaveFileOnDisk, IsReadByTheLibraryToTheDigitsThatWereWritten) {
  const WaveSettings s = small_sea(WaveKind::jonswap);
  qvhydro::wave_table library;
  std::string message;
  ASSERT_TRUE(qvtest::library_reads_wave(made(s), library, message)) << message;
  const WaveFile wave = qvslv::wave_table(s);
  ASSERT_EQ(library.wave_rows, static_cast<int>(wave.time.size()));
  ASSERT_EQ(library.wave_cols, static_cast<int>(wave.x.size()));
  for (int j = 0; j < library.wave_cols; ++j) EXPECT_EQ(library.wave_x[j], wave.x[static_cast<size_t>(j)]);
  for (int i = 0; i < library.wave_rows; ++i) {
    const size_t row = static_cast<size_t>(i);
    EXPECT_EQ(library.wave_time[i], wave.time[row]);
    for (int j = 0; j < library.wave_cols; ++j) {
      const double elevation = wave.elevation[row][static_cast<size_t>(j)];
      const double velocity = wave.velocity[row][static_cast<size_t>(j)];
      ASSERT_NEAR(library.wave_elevation[i][j], elevation, k_nine_digits * std::abs(elevation));
      ASSERT_NEAR(library.wave_velocity[i][j], velocity, k_nine_digits * std::abs(velocity));
    }
  }
}

TEST_F(WaveFileOnDisk, IsInterpolatedHereAsInTheLibrary) {
  const WaveSettings s = small_sea(WaveKind::pierson_moskowitz);
  qvhydro::wave_table library;
  std::string message;
  const std::string path = made(s);
  ASSERT_TRUE(qvtest::library_reads_wave(path, library, message));
  const WaveFile wave = *qvslv::read_wave_file(path);
  for (double t = 0; t < 1.1 * s.duration; t += 0.731)
    for (double x = 0; x < s.extent; x += 1.77)
      EXPECT_NEAR(wave.elevation_at(t, x), qvtest::library_elevation(library, t, x), 8 * k_rounding) << t << " " << x;
}

TEST_F(WaveFileOnDisk, OfStillWaterIsLevelInTheLibraryAtAnyTimeAndPlace) {
  qvhydro::wave_table library;
  std::string message;
  ASSERT_TRUE(qvtest::library_reads_wave(made(qvslv::completed(still_water(12))), library, message)) << message;
  ASSERT_EQ(library.wave_rows, 2);
  ASSERT_EQ(library.wave_cols, 2);
  EXPECT_EQ(library.wave_x[1], 12);
  for (const double t : {0.0, 0.4, 1.0, 1e4})  // the second row is at 1
    for (const double x : {0.0, 5.0, 11.9}) EXPECT_EQ(qvtest::library_elevation(library, t, x), 0);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) EXPECT_EQ(library.wave_velocity[i][j], 0);
}

TEST_F(WaveFileOnDisk, OfStillWaterIsOutdatedByAnotherExtentOrDurationOnly) {
  WaveSettings s = qvslv::completed(still_water(12));
  const std::string path = made(s);
  s.seed = 7;  // counts for a spectrum
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::current);
  s.extent = 13;
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::outdated);
  s = qvslv::completed(still_water(12));
  s.duration = 2;
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::outdated);
}

TEST_F(WaveFileOnDisk, KnowsWhetherItWasMadeWithTheseSettings) {
  WaveSettings s = small_sea(WaveKind::jonswap);
  const std::string path = m_folder.path("sea.wave");
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::missing);
  made(s);
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::current);
  s.gamma = 5;
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::outdated);
  m_folder.write("sea.wave", "1,1\n0\n0,0,0\n");
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::foreign);
  m_folder.write("sea.wave", "");
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::foreign);
}

TEST_F(WaveFileOnDisk, AppearsWholeAndLeavesNothingElseBehind) {
  made(qvslv::completed(regular()));
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(m_folder.path("")))
    names.push_back(entry.path().filename().string());
  EXPECT_EQ(names, std::vector<std::string>{"sea.wave"});
}

TEST_F(WaveFileOnDisk, CannotBeWrittenIntoAFolderThatIsNotThere) {
  try {
    qvslv::write_wave_file(qvslv::completed(regular()), m_folder.path("none/sea.wave"));
    FAIL() << "written";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), HasSubstr(std::strerror(ENOENT)));
  }
}

TEST(WaveFile, IsHeldBeyondTheEndsOfItsAxesAndStraightBetween) {
  WaveFile wave;
  wave.time = {1, 3};
  wave.x = {0, 2, 6};
  wave.elevation = {{1, 3, 7}, {2, 4, 8}};  // 0.5 t + 0.5 + x: linear in both
  wave.velocity = {{0, 0, 0}, {2, 2, 2}};
  EXPECT_DOUBLE_EQ(wave.elevation_at(1.5, 1), 0.75 + 0.5 + 1);
  EXPECT_DOUBLE_EQ(wave.elevation_at(2, 5), 1 + 0.5 + 5);
  EXPECT_DOUBLE_EQ(wave.elevation_at(0, -4), 1);
  EXPECT_DOUBLE_EQ(wave.elevation_at(9, 9), 8);
  EXPECT_DOUBLE_EQ(wave.velocity_at(2.5, 1), 1.5);
  EXPECT_EQ(WaveFile().elevation_at(0, 0), 0);
}

TEST(WaveFile, SurfaceAtATimeIsThatOfTheFileBitForBitOnAnyAxis) {
  struct axis_case {
    const char* why;
    std::vector<double> x;
  };
  const axis_case cases[] = {{"even, rounded", {0, 0.1, 0.2, 0.30000000000000004, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9}},
                             {"uneven", {-1, 0, 0.001, 0.002, 0.5, 7, 8, 9, 9.5, 10}},
                             {"with a step", {0, 1, 2, 3, 3, 3, 4, 5, 6, 7}},
                             {"back and forth, as a file that ends too soon leaves it", {0, 1, 2, 0, 0, 5, 0, 0, 0, 0}},
                             {"all at one place", std::vector<double>(10, 2.0)},
                             {"one column", {3}}};
  for (const axis_case& c : cases) {
    SCOPED_TRACE(c.why);
    WaveFile wave;
    wave.time = {0, 0.5, 2};
    wave.x = c.x;
    for (int row = 0; row < 3; ++row) {
      wave.elevation.emplace_back();
      for (size_t k = 0; k < c.x.size(); ++k)
        wave.elevation.back().push_back(std::sin(static_cast<double>(k) + 0.7 * row));
    }
    for (const double time : {-1.0, 0.0, 0.3, 0.5, 1.9, 2.0, 3.0}) {
      const qvslv::SurfaceAt surface(wave, time);
      for (double x = -2; x < 12; x += 0.0173) EXPECT_EQ(surface.elevation(x), wave.elevation_at(time, x)) << x;
      for (const double x : c.x) EXPECT_EQ(surface.elevation(x), wave.elevation_at(time, x)) << x;
    }
  }
  EXPECT_EQ(qvslv::SurfaceAt(WaveFile(), 0).elevation(0), 0);
}

struct mistake_case {
  const char* why;
  void (*spoil)(WaveSettings& s);
  const char* text;
};
const mistake_case k_mistakes[] = {
    {"a negative height", [](WaveSettings& s) { s.height = -1; }, "the wave height must be greater than 0"},
    {"a height that is no number", [](WaveSettings& s) { s.height = std::nan(""); },
     "the wave height must be greater than 0"},
    {"no period", [](WaveSettings& s) { s.period = 0; }, "the wave period must be greater than 0"},
    {"no gravity", [](WaveSettings& s) { s.gravity = 0; }, "gravity must be greater than 0"},
    {"a negative depth", [](WaveSettings& s) { s.depth = -2; },
     "the depth must be greater than 0 (leave it out for deep water)"},
    {"gamma below 1", [](WaveSettings& s) { s.gamma = 0.5; }, "gamma must lie between 1 and 20"},
    {"no components", [](WaveSettings& s) { s.components = 0; },
     "the number of components must lie between 1 and 5000"},
    {"a wave that breaks", [](WaveSettings& s) { s.height = 15; },
     "waves of this period are 99.92 long here and break at a height of 14.19; lower the height or lengthen the "
     "period"},
    {"a wave that breaks in shallow water", [](WaveSettings& s) { s.depth = 2, s.height = 1.8; },
     "waves of this period are 34.69 long here and break at a height of 1.71; lower the height or lengthen the "
     "period"},
    {"a negative ramp", [](WaveSettings& s) { s.ramp = -1; }, "the ramp's time must not be negative"},
    {"a negative duration", [](WaveSettings& s) { s.duration = -1; }, "the duration must be greater than 0"},
    {"a negative time step", [](WaveSettings& s) { s.time_step = -1; }, "the time step must be greater than 0"},
    {"positions below 0", [](WaveSettings& s) { s.extent = -100; },
     "the extent must be greater than 0: positions run from 0 to it"},
    {"an x step that is no number", [](WaveSettings& s) { s.x_step = std::nan(""); },
     "the x step must be greater than 0"},
    {"a time step beyond the duration", [](WaveSettings& s) { s.duration = 1, s.time_step = 1.1; },
     "the time step is longer than the duration"},
    {"an x step beyond the extent", [](WaveSettings& s) { s.extent = 1, s.x_step = 1.1; },
     "the x step is longer than the extent"},
    {"a table without end", [](WaveSettings& s) { s.duration = 1e6; },
     "this makes a table of more than 10 million points; shorten the duration or the extent, or widen the steps"},
    {"times that cannot show the waves", [](WaveSettings& s) { s.time_step = 1.5; },
     "the time step is over half the shortest period: it cannot be shown"},
    {"positions that cannot show the waves", [](WaveSettings& s) { s.x_step = 6; },
     "the x step is over half the shortest wave length: it cannot be shown"},
};

TEST(MakeWave, MistakenSettingsAreNamed) {
  EXPECT_EQ(qvslv::mistake_in(qvslv::completed(sea(WaveKind::jonswap))), "");
  for (const mistake_case& row : k_mistakes) {
    SCOPED_TRACE(row.why);
    WaveSettings s = sea(WaveKind::jonswap);
    row.spoil(s);
    s = qvslv::completed(s);
    EXPECT_EQ(qvslv::mistake_in(s), row.text);
    EXPECT_THROW(qvslv::wave_table(s), std::invalid_argument);
  }
}

const mistake_case k_still_mistakes[] = {
    {"no extent", [](WaveSettings& s) { s.extent = 0; },
     "still water needs an extent: positions run from 0 to it, and there is no wave length to choose it by"},
    {"positions below 0", [](WaveSettings& s) { s.extent = -12; },
     "the extent must be greater than 0: positions run from 0 to it"},
    {"a negative duration", [](WaveSettings& s) { s.duration = -1; }, "the duration must be greater than 0"},
    {"a duration that is no number", [](WaveSettings& s) { s.duration = std::nan(""); },
     "the duration must be greater than 0"},
    {"a height", [](WaveSettings& s) { s.height = 1; }, "still water has no height and no period"},
    {"a period", [](WaveSettings& s) { s.period = 6; }, "still water has no height and no period"},
};

TEST(MakeWave, MistakenSettingsOfStillWaterAreNamed) {
  for (const mistake_case& row : k_still_mistakes) {
    SCOPED_TRACE(row.why);
    WaveSettings s = still_water(12);
    row.spoil(s);
    s = qvslv::completed(s);
    EXPECT_EQ(qvslv::mistake_in(s), row.text);
    EXPECT_THROW(qvslv::wave_table(s), std::invalid_argument);
  }
}

TEST(MakeWave, DoubtfulSettingsAreNamed) {
  EXPECT_TRUE(qvslv::doubts_about(qvslv::completed(regular(1, 6))).empty());
  // Deep water, H/L = 0.1: the second harmonic is k H / 4 = 16 % of the wave.
  const double length = k_g * 36 / k_two_pi;
  EXPECT_THAT(qvslv::doubts_about(qvslv::completed(regular(0.1 * length, 6))),
              testing::ElementsAre(HasSubstr("harmonic of 16 %")));
  // In shallow water even a flat wave is no cosine: k H / 8 (3 coth^3(k h) - coth(k h)).
  const double k = qvslv::wave_number(k_two_pi / 20, 1, k_g), coth = 1 / std::tanh(k);
  char expected[40];
  std::snprintf(expected, sizeof expected, "harmonic of %.0f %%", 100 * k * 0.1 / 8 * (3 * coth * coth * coth - coth));
  EXPECT_THAT(qvslv::doubts_about(qvslv::completed(regular(0.1, 20, 1))), testing::ElementsAre(HasSubstr(expected)));
  WaveSettings s = regular(1, 6);
  s.time_step = 1;
  EXPECT_THAT(qvslv::doubts_about(qvslv::completed(s)),
              testing::ElementsAre(HasSubstr("leave 6 points to the shortest wave")));
  s = regular(1, 6);
  s.ramp = 500;
  EXPECT_THAT(qvslv::doubts_about(qvslv::completed(s)), testing::ElementsAre(HasSubstr("never reach their height")));
}

}  // namespace
