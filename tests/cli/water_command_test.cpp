#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "solver/data_files/wave_file.h"
#include "tests/cli/process.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::vector<std::string> names_in(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

TEST(MakeWaveCommand, WritesAWaveTellsWhatItIsAndPassesTheCheck) {
  const fs::path folder = fresh_folder();
  const CommandResult made = run_command(
      {"make", "wave", "--height", "1", "--period", "5", "--duration", "30", "--extent", "80", "-o", "a.wave"}, folder);
  EXPECT_EQ(made.code, 0) << made.err;
  EXPECT_EQ(made.err, "");
  EXPECT_EQ(made.out,
            "made wave a.wave: regular, height 1, period 5, wave length 39.03, height over length 2.6 %\n"
            "  121 times from 0 to 30, 42 positions from 0 to 80\n");
  const CommandResult checked = run_command({"check", "a.wave"}, folder);
  EXPECT_EQ(checked.code, 0);
  EXPECT_EQ(checked.err, "");
  EXPECT_THAT(checked.out, HasSubstr("a.wave: 121 times from 0 to 30, 42 positions from 0 to 80\n"));
  EXPECT_THAT(checked.out, HasSubstr("\nok\n"));
  EXPECT_THAT(names_in(folder), ElementsAre("a.wave"));
}

TEST(MakeWaveCommand, TellsTheHeightThatTheSeaInTheTableHas) {
  const fs::path folder = fresh_folder();
  const CommandResult made =
      run_command({"make",   "wave", "--kind",  "jonswap", "--Hs",   "1.5", "--Tp",       "7",   "--gamma", "2",
                   "--seed", "4",    "--depth", "20",      "--ramp", "10",  "--duration", "100", "--out",   "a.wave"},
                  folder);
  EXPECT_EQ(made.code, 0) << made.err;
  EXPECT_THAT(made.out, HasSubstr("made wave a.wave: jonswap, significant height 1.5, peak period 7, wave length "));
  EXPECT_THAT(made.out, HasSubstr("; significant height of the table 1."));
  const std::string text = file_text(folder / "a.wave");
  EXPECT_THAT(text.substr(text.rfind("MADE BY")),
              HasSubstr("MADE BY qvbrisk, wave jonswap, height 1.5, period 7, gamma 2, seed 4, components 200, depth "
                        "20, direction +x, ramp 10, duration 100 in steps of "));
}

TEST(MakeWaveCommand, SendsWavesAgainstTheAxisToo) {
  const fs::path folder = fresh_folder();
  for (const char* direction : {"+x", "-x"})
    EXPECT_EQ(run_command({"make", "wave", "--height", "1", "--period", "5", "--direction", direction, "--out",
                           std::string(direction) + ".wave"},
                          folder)
                  .code,
              0);
  // Two steps of a twentieth of the period and of the length: the crest has come along, or is four steps away.
  const auto with = qvslv::read_wave_file((folder / "+x.wave").string());
  const auto against = qvslv::read_wave_file((folder / "-x.wave").string());
  ASSERT_TRUE(with && against);
  EXPECT_NEAR(with->elevation[2][2], 0.5, 1e-8);
  EXPECT_NEAR(against->elevation[2][2], 0.5 * std::cos(0.4 * 3.141592653589793), 1e-8);
}

TEST(MakeWaveCommand, MakesStillWaterFromAnExtentAlone) {
  const fs::path folder = fresh_folder();
  const CommandResult made =
      run_command({"make", "wave", "--kind", "still", "--extent", "12", "--out", "calm.wave"}, folder);
  EXPECT_EQ(made.code, 0) << made.err;
  EXPECT_EQ(made.err, "");
  EXPECT_EQ(made.out, "made wave calm.wave: still water\n  2 times from 0 to 1, 2 positions from 0 to 12\n");
  EXPECT_EQ(file_text(folder / "calm.wave"),
            "2,2\n0,12\n0,0,0,0,0\n1,0,0,0,0\nMADE BY qvbrisk, wave still, duration 1, extent 12\n");
  const CommandResult checked = run_command({"check", "calm.wave"}, folder);
  EXPECT_EQ(checked.code, 0);
  EXPECT_EQ(checked.err, "");
  EXPECT_THAT(checked.out, HasSubstr("\nok\n"));
}

TEST(MakeWaveCommand, WarnsOfWavesTooSteepForTheTheory) {
  const fs::path folder = fresh_folder();
  const CommandResult made = run_command({"make", "wave", "--height", "4", "--period", "5", "--out", "a.wave"}, folder);
  EXPECT_EQ(made.code, 0);
  EXPECT_THAT(made.err, HasSubstr("warning: real waves of this height, length and depth have higher crests"));
}

TEST(MakeCurrentCommand, WritesACurrentTellsWhatItIsAndPassesTheCheck) {
  const fs::path folder = fresh_folder();
  const CommandResult made = run_command({"make", "current", "--along-x", "power:1.5@y:0:40", "--along-y",
                                          "linear:-0.5:0.5@x:0:100", "--out", "tide.current"},
                                         folder);
  EXPECT_EQ(made.code, 0) << made.err;
  EXPECT_EQ(made.out,
            "made current tide.current\n"
            "  along x: 41 points over y from 0 to 40, speed 0 to 1.5, held outside\n"
            "  along y: 2 points over x from 0 to 100, speed -0.5 to 0.5, 0 outside\n");
  const CommandResult checked = run_command({"check", "tide.current"}, folder);
  EXPECT_EQ(checked.code, 0);
  EXPECT_EQ(checked.err, "");
  EXPECT_THAT(checked.out, HasSubstr("\nok\n"));
}

TEST(CheckCommand, NamesFileAndLineOfWhatWouldBeMisunderstoodInWaterFiles) {
  const fs::path folder = fresh_folder();
  write_text(folder / "a.wave", "1,2\n0 10\n0,0,0,0,0\n");
  const CommandResult wave = run_command({"check", "a.wave"}, folder);
  EXPECT_EQ(wave.code, 0);
  EXPECT_THAT(wave.err, HasSubstr("warning: a.wave:2: '1' was taken for the separator"));
  EXPECT_THAT(wave.out, HasSubstr("can be used; see the warnings\n"));
  write_text(folder / "a.current", "0,0\n");
  const CommandResult current = run_command({"check", "a.current"}, folder);
  EXPECT_EQ(current.code, 2);
  EXPECT_THAT(current.err, HasSubstr("error: a.current: the number of pairs of the table along x (C1) is 0"));
}

const std::string k_model = R"toml(gravity = [0, 0, -9.81]
[simulation]
end_time = 0.1
[[wave]]
file = "sea.wave"
kind = "regular"
height = 0.5
period = 4
duration = 8
[[current]]
file = "tide.current"
along_x = { profile = "uniform", speed = 1.5 }
[[body]]
name = "stone"
mass = 1
inertia = [1, 1, 1]
)toml";

TEST(WaterOfAModel, IsMadeByARunOnceAndAgainWhenItsSettingsChange) {
  const fs::path folder = fresh_folder();
  write_text(folder / "model.toml", k_model);
  EXPECT_THAT(run_command({"check", "model.toml"}, folder).out,
              HasSubstr("  wave sea.wave: a run makes it first (41 times, 101 positions)\n"
                        "  current tide.current: a run makes it first\n"));
  EXPECT_THAT(names_in(folder), ElementsAre("model.toml"));
  const CommandResult first = run_command({"run", "model.toml", "--out", "r"}, folder);
  EXPECT_EQ(first.code, 0) << first.err;
  EXPECT_THAT(first.err,
              testing::ContainsRegex(
                  "made wave .*/sea-.*wave \\(41 times, 101 positions\\)\nmade current .*/tide-.*current\n"));
  EXPECT_THAT(run_command({"run", "model.toml", "--out", "r"}, folder).err, Not(HasSubstr("made ")));
  const CommandResult changed = run_command({"run", "model.toml", "--out", "r", "--set", "wave.1.period=5"}, folder);
  EXPECT_THAT(changed.err, testing::ContainsRegex("made wave .*/sea-.*wave \\(33 times, 101 positions\\)\n"));
  EXPECT_THAT(changed.err, Not(HasSubstr("made current")));
}

TEST(WaterOfAModel, StillWaterIsMadeOnceHoweverLongTheRunIs) {
  const fs::path folder = fresh_folder();
  write_text(folder / "model.toml",
             "gravity = [0, 0, -9.81]\n[simulation]\nend_time = 0.1\n[[wave]]\nname = \"calm\"\nfile = "
             "\"calm.wave\"\nkind = \"still\"\nextent = 12\n"
             "[[body]]\nname = \"stone\"\nmass = 1\ninertia = [1, 1, 1]\n");
  EXPECT_THAT(run_command({"run", "model.toml", "--out", "r"}, folder).err,
              testing::ContainsRegex("made wave .*/calm-.*wave \\(2 times, 2 positions\\)\n"));
  const CommandResult longer =
      run_command({"run", "model.toml", "--out", "r", "--set", "simulation.end_time=3"}, folder);
  EXPECT_THAT(longer.err, Not(HasSubstr("made wave")));
  EXPECT_THAT(longer.err, Not(HasSubstr("warning")));
  EXPECT_THAT(run_command({"run", "model.toml", "--out", "r", "--set", "wave.calm.extent=13"}, folder).err,
              testing::ContainsRegex("made wave .*/calm-.*wave \\(2 times, 2 positions\\)\n"));
}

struct usage_case {
  const char* why;
  std::vector<std::string> arguments;
  int code;
  const char* text;
};

TEST(MakeWaterCommands, MistakesOnTheCommandLineAreNamed) {
  const usage_case cases[] = {
      {"a wave without a height", {"make", "wave", "--period", "5", "--out", "a.wave"}, 2, "--height is required"},
      {"a wave without a period", {"make", "wave", "--height", "1", "--out", "a.wave"}, 2, "--period is required"},
      {"still water without an extent",
       {"make", "wave", "--kind", "still", "--out", "a.wave"},
       2,
       "qvbrisk: still water needs an extent: positions run from 0 to it, and there is no wave length to choose it by"},
      {"a height of still water",
       {"make", "wave", "--kind", "still", "--extent", "12", "--height", "1", "--out", "a.wave"},
       2,
       "qvbrisk: --height: still water has no such option; known: --extent, --duration, --out"},
      {"a time step of still water",
       {"make", "wave", "--kind", "still", "--extent", "12", "--time-step", "1", "--out", "a.wave"},
       2,
       "qvbrisk: --time-step: still water has no such option; known: --extent, --duration, --out"},
      {"nowhere to write a wave", {"make", "wave", "--height", "1", "--period", "5"}, 2, "--out is required"},
      {"a negative height",
       {"make", "wave", "--height", "-1", "--period", "5", "--out", "a.wave"},
       2,
       "qvbrisk: the wave height must be greater than 0"},
      {"a wave that breaks",
       {"make", "wave", "--height", "6", "--period", "5", "--out", "a.wave"},
       2,
       "qvbrisk: waves of this period are 39.03 long here and break at a height of 5.543; lower the height or lengthen "
       "the period"},
      {"an unknown kind of wave",
       {"make", "wave", "--kind", "jonswop", "--Hs", "1", "--Tp", "5", "--out", "a.wave"},
       2,
       "qvbrisk: --kind: 'jonswop' is not known; did you mean 'jonswap'?"},
      {"a direction beside the axis",
       {"make", "wave", "--height", "1", "--period", "5", "--direction", "y", "--out", "a.wave"},
       2,
       "qvbrisk: --direction: 'y' is not known; known: +x, -x"},
      {"a wave into a folder that is not there",
       {"make", "wave", "--height", "1", "--period", "5", "--out", "none/a.wave"},
       1,
       "No such file or directory"},
      {"a current without a profile",
       {"make", "current", "--out", "a.current"},
       2,
       "qvbrisk: give a profile along x or along y (or both)"},
      {"nowhere to write a current", {"make", "current", "--along-x", "uniform:1"}, 2, "--out is required"},
      {"an unknown profile",
       {"make", "current", "--along-x", "lienar:1:2@y:0:40", "--out", "a.current"},
       2,
       "qvbrisk: --along-x 'lienar:1:2@y:0:40': 'lienar' is not known; did you mean 'linear'?"},
      {"no wave file", {"check", "none.wave"}, 2, "qvbrisk: there is no WAVE file none.wave"},
      {"no current file", {"check", "none.current"}, 2, "qvbrisk: there is no CURRENT file none.current"},
  };
  const fs::path folder = fresh_folder();
  for (const usage_case& row : cases) {
    SCOPED_TRACE(row.why);
    const CommandResult result = run_command(row.arguments, folder);
    EXPECT_EQ(result.code, row.code);
    EXPECT_THAT(result.err, HasSubstr(row.text));
    EXPECT_THAT(names_in(folder), ElementsAre());
  }
}

}  // namespace
