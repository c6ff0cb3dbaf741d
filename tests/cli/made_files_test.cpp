#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/cli/plate_model.h"
#include "tests/cli/process.h"

// Files that a model describes are made in a folder of their own, under names that tell their settings.

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// Names of the files in a folder, sorted.
std::vector<std::string> names_in(const fs::path& folder) {
  std::vector<std::string> names;
  if (!fs::exists(folder)) return names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

struct MadeFiles : testing::Test {
  fs::path folder = fresh_folder(), made = folder / "made";

  CommandResult run(std::vector<std::string> more = {}) {
    std::vector<std::string> arguments = {"run", "press.toml", "--made", made.string()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run_command(arguments, folder);
  }

  void SetUp() override { write_text(folder / "press.toml", k_plate_model); }
};

TEST_F(MadeFiles, RoadIsMadeOnceForItsSettingsAndNothingIsWrittenBesideTheModel) {
  EXPECT_THAT(run().err, StartsWith("made road " + made.string() + "/field-"));
  ASSERT_EQ(names_in(made).size(), 1u);
  const fs::path road = made / names_in(made)[0];
  const auto written = fs::last_write_time(road);
  EXPECT_EQ(run().err, "");
  EXPECT_EQ(fs::last_write_time(road), written);
  EXPECT_THAT(run({"--set", "road.1.spacing=0.25"}).err, HasSubstr(" (128 triangles)"));
  EXPECT_EQ(names_in(made).size(), 2u);
  EXPECT_EQ(fs::last_write_time(road), written);
  EXPECT_THAT(names_in(folder), ElementsAre("made", "press.toml", "results"));
}

TEST_F(MadeFiles, FileThatWasCutOffIsMadeAnew) {
  run();
  const fs::path road = made / names_in(made)[0];
  const std::string whole = file_text(road);
  fs::resize_file(road, 0);
  EXPECT_EQ(run().code, 0);
  EXPECT_EQ(file_text(road), whole);
}

TEST_F(MadeFiles, GoToTheCacheFolderUnlessAnotherIsNamed) {
  const std::vector<std::string> arguments = {"run", "press.toml"};
  const fs::path cache = folder / "cache", home = folder / "home";
  EXPECT_EQ(run_command(arguments, folder, {{"XDG_CACHE_HOME", cache.string()}}).code, 0);
  EXPECT_EQ(names_in(cache / "qvbrisk/made").size(), 1u);
  // A path that is not absolute does not count.
  EXPECT_EQ(run_command(arguments, folder, {{"XDG_CACHE_HOME", "cache"}, {"HOME", home.string()}}).code, 0);
  EXPECT_EQ(names_in(home / ".cache/qvbrisk/made").size(), 1u);
}

TEST_F(MadeFiles, WithoutAnyFolderForThemTheOptionIsNamed) {
  const CommandResult result = run_command({"run", "press.toml"}, folder, {{"XDG_CACHE_HOME", ""}, {"HOME", ""}});
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("no folder for made files: neither XDG_CACHE_HOME nor HOME names one; use --made"));
}

TEST_F(MadeFiles, FolderThatCannotBeWrittenIsNamedWithTheOption) {
  write_text(folder / "file", "no folder");
  const CommandResult result = run_command({"run", "press.toml", "--made", (folder / "file/made").string()}, folder);
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("cannot make the folder " + (folder / "file/made").string() + ": Not a directory"));
  EXPECT_THAT(result.err, HasSubstr("--made"));
}

TEST_F(MadeFiles, FileOfTheUserBesideTheModelIsNotTakenForTheDescribedOneAndToldOf) {
  run_command({"make", "road", "--out", "other.rdf", "--size", "2", "2", "--spacing", "1"}, folder);
  const std::string text = file_text(folder / "other.rdf");
  const std::string own = text.substr(text.find('\n') + 1);  // without the line that tells the settings
  write_text(folder / "field.rdf", own);
  const CommandResult result = run();
  EXPECT_THAT(result.err, HasSubstr("warning: press.toml: the file 'field.rdf' beside the model is not used"));
  EXPECT_EQ(file_text(folder / "field.rdf"), own);
  EXPECT_THAT(file_text(folder / "results/press/run.json"), HasSubstr("\"id\": \"file-beside-table\""));
}

TEST_F(MadeFiles, ExpandWritesThemUnderTheModelsNamesToTakeAlong) {
  const CommandResult result = run_command({"expand", "press.toml", "--files", "other/host"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("text = \"field.rdf\""));
  EXPECT_THAT(result.out, Not(HasSubstr(made.string())));
  EXPECT_THAT(names_in(folder / "other/host"), ElementsAre("field.rdf"));
  run();
  EXPECT_EQ(file_text(folder / "other/host/field.rdf"), file_text(made / names_in(made)[0]));
}

TEST_F(MadeFiles, NameThatLeadsOutOfTheFolderIsNotTakenAlong) {
  const CommandResult result = run_command({"expand", "press.toml", "--files", "out", "--set",
                                            "road.1.file=../field.rdf", "--set", "element.soil.road=../field.rdf"},
                                           folder);
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("the name leads out of the folder out"));
  EXPECT_FALSE(fs::exists(folder / "field.rdf"));
}

// One run of each soil alone gives what its runs among the others must give.
TEST_F(MadeFiles, EightyRunsOfTwoSoilsAtATimeAllGetTheirOwnSoil) {
  constexpr int k_pairs = 40, k_at_a_time = 8;
  const std::string soils[] = {"dry_sand", "sandy_loam_22pct"};
  std::string expected[2];
  const auto arguments = [&](int soil, const std::string& out) {
    return std::vector<std::string>{
        "run", "press.toml", "--made", made.string(), "--set", "road.1.soil=" + soils[soil], "--out", out, "-q"};
  };
  for (int soil = 0; soil < 2; ++soil) {
    const std::string out = "alone" + std::to_string(soil);
    ASSERT_EQ(run_command(arguments(soil, out), folder).code, 0);
    expected[soil] = file_text(folder / out / "results.csv");
  }
  ASSERT_NE(expected[0], expected[1]);
  fs::remove_all(made);
  for (int first = 0; first < 2 * k_pairs; first += k_at_a_time) {
    std::vector<RunningCommand> running;
    running.reserve(k_at_a_time);
    for (int i = first; i < first + k_at_a_time; ++i)
      running.emplace_back(arguments(i % 2, "run" + std::to_string(i)), folder);
    for (RunningCommand& command : running) EXPECT_EQ(command.wait().code, 0);
    if (first == k_pairs) fs::remove_all(made);  // and while the files are made once more
  }
  for (int i = 0; i < 2 * k_pairs; ++i)
    EXPECT_EQ(file_text(folder / ("run" + std::to_string(i)) / "results.csv"), expected[i % 2]) << i;
}

}  // namespace
