#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

#include "solver/model_file/recipes.h"
#include "solver/read_model.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::string k_water_model = R"toml(gravity = [0, 0, -9.81]
[simulation]
end_time = 40

[[wave]]
name = "sea"
file = "data/sea.wave"
kind = "jonswap"
Hs = 1.5
Tp = 7
seed = 3
depth = 30
direction = "-x"
extent = 200

[[wave]]
file = "swell.wave"
kind = "regular"
height = 1
period = 9
duration = 20

[[current]]
name = "river"
file = "river.current"
along_x = { profile = "power", speed = 1.5, range = [0, 40] }
along_y = { profile = "linear", speeds = [0, 0.5], over = "x", range = [10, 90] }
)toml";

std::string changed(const std::string& from, const std::string& to) {
  std::string text = k_water_model;
  const size_t at = text.find(from);
  if (at == std::string::npos) throw std::invalid_argument("the model does not hold: " + from);
  return text.replace(at, from.size(), to);
}

std::string message_of(const std::string& text) {
  try {
    qvslv::read_model_text(text, "model.toml");
  } catch (const qvslv::ModelError& error) {
    return error.what();
  }
  return "no mistake was found";
}

TEST(ModelFileWater, WavesTakeGravityAndDurationFromTheModel) {
  const qvslv::ModelFile file = qvslv::read_model_text(k_water_model, "folder/model.toml", {}, "/cache");
  ASSERT_EQ(file.waves.size(), 2u);
  EXPECT_THAT(file.waves[0].path, testing::MatchesRegex("/cache/sea-[0-9a-f]+.wave"));
  const qvslv::WaveSettings& sea = file.waves[0].settings;
  EXPECT_EQ(sea.kind, qvslv::WaveKind::jonswap);
  EXPECT_EQ(sea.height, 1.5);
  EXPECT_EQ(sea.period, 7);
  EXPECT_EQ(sea.gamma, 3.3);
  EXPECT_EQ(sea.seed, 3u);
  EXPECT_EQ(sea.depth, 30);
  EXPECT_TRUE(sea.against_x);
  EXPECT_EQ(sea.duration, 40);
  EXPECT_EQ(sea.extent, 200);
  EXPECT_EQ(sea.gravity, 9.81);
  EXPECT_EQ(qvslv::mistake_in(sea), "");
  EXPECT_EQ(file.waves[1].settings.duration, 20);
  EXPECT_FALSE(file.waves[1].settings.against_x);
}

TEST(ModelFileWater, ATableThatEndsBeforeTheRunIsWarnedOf) {
  EXPECT_THAT(finding_texts(qvslv::read_model_text(k_water_model, "model.toml").findings),
              ElementsAre("model.toml:16:1: wave 2: the table ends at 20, the run at 40: from there on the water keeps "
                          "its last shape"));
}

const std::string k_swell = "kind = \"regular\"\nheight = 1\nperiod = 9\nduration = 20\n";

TEST(ModelFileWater, StillWaterTakesAnExtentAndOutlastsTheRun) {
  const std::string text = changed(k_swell, "kind = \"still\"\nextent = 12\n");
  const qvslv::ModelFile file = qvslv::read_model_text(text, "model.toml");
  EXPECT_TRUE(file.findings.empty());
  const qvslv::WaveSettings& still = file.waves[1].settings;
  EXPECT_EQ(still.kind, qvslv::WaveKind::still);
  EXPECT_EQ(qvslv::settings_line(still), "MADE BY qvbrisk, wave still, duration 1, extent 12");
  EXPECT_EQ(qvslv::mistake_in(still), "");
}

/// Every key of a wave but these: name, file, kind, extent, duration.
TEST(ModelFileWater, StillWaterRefusesEveryKeyOfWaves) {
  for (const char* line :
       {"height = 1", "period = 6", "Hs = 1", "Tp = 6", "gamma = 2", "seed = 2", "components = 9", "depth = 3",
        "direction = \"+x\"", "ramp = 1", "time_step = 1", "x_step = 1", "gravity = 9.81"}) {
    SCOPED_TRACE(line);
    const std::string key = std::string(line).substr(0, std::string(line).find(' '));
    const std::string text =
        changed(k_swell, "kind = \"still\"\nextent = 12\nduration = 3\n" + std::string(line) + "\n");
    EXPECT_THAT(
        message_of(text),
        HasSubstr("wave 2, " + key + ": still water has no such key; known: name, file, kind, extent, duration"));
  }
}

TEST(ModelFileWater, CurrentsReadAsTheProfilesOfTheCommandLine) {
  const qvslv::ModelFile file = qvslv::read_model_text(k_water_model, "model.toml");
  ASSERT_EQ(file.currents.size(), 1u);
  EXPECT_EQ(qvslv::settings_line(file.currents[0].settings),
            "MADE BY qvbrisk, current along x power:1.5@y:0:40, along y linear:0:0.5@x:10:90");
}

/// docs/bad-input.md shows the same rows.
struct mistake {
  const char* why;
  const char* from;
  const char* to;
  const char* message;
};
// clang-format off
const mistake k_mistakes[] = {
    {"A spectrum with the height of a single wave", "Hs = 1.5", "height = 1.5", "model.toml:9:10: wave 'sea', height: a spectrum is given by 'Hs' instead"},
    {"A regular wave with a spectrum's period", "period = 9", "Tp = 9", "model.toml:20:6: wave 2, Tp: a regular wave is given by 'period' instead"},
    {"A key of a spectrum in a regular wave", "duration = 20", "seed = 20", "model.toml:21:8: wave 2, seed: a wave of kind regular has no such key"},
    {"An unknown kind of wave", "\"jonswap\"", "\"jonswop\"", "model.toml:8:8: wave 'sea', kind: 'jonswop' is not known; did you mean 'jonswap'?"},
    {"A negative wave height", "height = 1\n", "height = -1\n", "model.toml:19:10: wave 2, height: must be greater than 0, is -1"},
    {"A wave so steep that it breaks", "height = 1\n", "height = 20\n", "model.toml:16:1: wave 2: waves of this period are 126.5 long here and break at a height of 17.96; lower the height or lengthen the period"},
    {"A height in still water", "kind = \"regular\"\n", "kind = \"still\"\n", "model.toml:19:10: wave 2, height: still water has no such key; known: name, file, kind, extent, duration"},
    {"Still water without its extent", "kind = \"regular\"\nheight = 1\nperiod = 9\n", "kind = \"still\"\n", "model.toml:16:1: wave 2: still water needs an extent: positions run from 0 to it, and there is no wave length to choose it by"},
    {"A direction beside the water marker's x axis", "\"-x\"", "\"y\"", "model.toml:13:13: wave 'sea', direction: 'y' is not known; known: +x, -x"},
    {"Two waves of one file", "\"swell.wave\"", "\"data/sea.wave\"", "model.toml:17:8: wave 2, file: another [[wave]] describes this file already"},
    {"A current without a profile", "along_x = { profile = \"power\", speed = 1.5, range = [0, 40] }\nalong_y = { profile = \"linear\", speeds = [0, 0.5], over = \"x\", range = [10, 90] }", "", "model.toml:23:1: current 'river': give a profile along x or along y (or both)"},
    {"A linear current with one speed", "speeds = [0, 0.5]", "speed = 0.5", "model.toml:27:41: current 'river', along_y, speed: a linear profile is given by 'speeds' (at both ends of the range) instead"},
    {"A power profile without its range", ", range = [0, 40]", "", "model.toml:26:11: current 'river', along_x: the key 'range' is missing"},
    {"A uniform current with a range", "profile = \"power\"", "profile = \"uniform\"", "model.toml:26:55: current 'river', along_x, range: a uniform profile is the same everywhere"},
};
// clang-format on

TEST(ModelFileWater, EveryMistakeIsNamedAtItsPlaceAndShownOnThePage) {
  std::ifstream stream(QVBRISK_BAD_INPUT_PAGE);
  std::ostringstream page;
  page << stream.rdbuf();
  for (const mistake& row : k_mistakes) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(message_of(changed(row.from, row.to)), row.message);
    EXPECT_THAT(page.str(), HasSubstr(std::string("| ") + row.why + " |"));
    EXPECT_THAT(page.str(), HasSubstr("`" + std::string(row.message) + "`"));
  }
}

}  // namespace
