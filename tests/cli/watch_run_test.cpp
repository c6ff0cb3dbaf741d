#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/cli/process.h"
#include "tests/solver/checks/sound_models.h"
#include "tests/solver/model_file/mistake.h"

/// What looks wrong only while a run goes on, as a user sees it.
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

std::string changed(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  if (at == std::string::npos) throw std::invalid_argument("the model does not hold: " + from);
  return text.replace(at, from.size(), to);
}

/// A plate that slides over sand at a speed.
std::string sliding_plate(const char* speed) {
  return changed(k_wheel_model, "position = [0, 0, 0.48]", std::string("position = [0, 0, 0.48]\nvelocity = ") + speed);
}

/// The vehicle, turned about its place at a rate.
std::string turning_vehicle(const char* rate) {
  return changed(k_track_model, "position = [-3, 0, 0.33]\n",
                 "\n[[joint]]\nname = \"turn\"\ntype = \"revolute\"\nbody = \"vehicle\"\nposition = [-3, 0, 0.33]\n"
                 "axis = \"z\"\nmotion = \"" +
                     std::string(rate) + "*t\"\n");
}

std::string boat_at(const char* x) {
  return changed(sound_afloat_model(), "position = [30,", std::string("position = [") + x + ",");
}

std::string wheel_at(const char* height) {
  return changed(k_wheel_model, "[0, 0, 0.48]", std::string("[0, 0, ") + height + "]");
}

struct watched {
  const char* why;
  std::string odd, sound;  ///< a model that is told of, and one just inside the limit
  const char* id;
  const char* message;  ///< as docs/bad-input.md shows it; "..." for digits
};

std::vector<watched> watched_models() {
  return {
      {"A wheel that leaves its road", sliding_plate("[0, 6, 0]"), sliding_plate("[0, 0.5, 0]"), "contact-leaves-road",
       "model.toml:40:1: element 'tyre': at the time "},
      {"A hull that drifts off its WAVE table", boat_at("57.8"), boat_at("57"), "hull-leaves-table",
       "model.toml:87:1: element 'hull': at the time "},
      {"A driven track that turns", turning_vehicle("0.3"), turning_vehicle("0.25"), "track-heading",
       "model.toml:78:1: element 'left': at the time "},
      {"A body that the soil throws", wheel_at("0.27"), wheel_at("0.3"), "contact-throws",
       "model.toml:39:1: element 'tyre': at the time "},
  };
}

/// The warnings with an id in run.json.
long count(const fs::path& folder, const std::string& id) {
  const auto record = nlohmann::json::parse(file_text(folder / "run.json"));
  return std::count_if(record["warnings"].begin(), record["warnings"].end(),
                       [&](const auto& warning) { return warning["id"] == id; });
}

TEST(RunCommand, WarnsOnceOfWhatLooksWrongOnTheWay) {
  const fs::path folder = fresh_folder();
  for (const watched& row : watched_models()) {
    SCOPED_TRACE(row.why);
    write_text(folder / "model.toml", row.odd);
    const CommandResult result = run_command({"run", "model.toml", "--out", "o", "--quiet"}, folder);
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.err, HasSubstr(std::string("warning: ") + row.message));
    EXPECT_EQ(count(folder / "o", row.id), 1);
    write_text(folder / "model.toml", row.sound);
    EXPECT_EQ(run_command({"run", "model.toml", "--out", "o", "--quiet"}, folder).code, 0);
    EXPECT_EQ(count(folder / "o", row.id), 0);
  }
}

TEST(RunCommand, UnderStrictEndsWhereItWouldWarn) {
  const fs::path folder = fresh_folder();
  write_text(folder / "model.toml", sliding_plate("[0, 6, 0]"));
  const CommandResult result = run_command({"run", "model.toml", "--out", "o", "--quiet", "--strict"}, folder);
  EXPECT_NE(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr("element 'tyre': at the time "));
  const auto record = nlohmann::json::parse(file_text(folder / "o/run.json"));
  EXPECT_EQ(record["outcome"], "failed");
  EXPECT_FALSE(record["complete"]);
  EXPECT_GT(record["time_reached"], 2.0 / 6) << "2 m at 6 m/s";
  EXPECT_LT(record["time_reached"], 2.0) << "the end";
}

TEST(RunCommand, TheWarningsOnTheWayAreOnThePage) {
  const std::string page = bad_input_page();
  for (const watched& row : watched_models()) EXPECT_THAT(page, HasSubstr(std::string("| ") + row.why + " |"));
}

}  // namespace
