#include <gmock/gmock.h>

#include <csignal>
#include <thread>

#include "tests/cli/plate_model.h"
#include "tests/cli/process.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string k_model = k_plate_model;

fs::path folder_with_model() {
  const fs::path folder = fresh_folder();
  write_text(folder / "press.toml", k_model);
  return folder;
}

std::vector<std::string> names_in(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

/// Files under other names than their own are half-written ones.
std::vector<std::string> unfinished_files(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (name.find(".part") != std::string::npos || name.find(".tmp") != std::string::npos) names.push_back(name);
  }
  return names;
}

// Only runs need the engine's library; the command lies where it is not.
TEST(Command, EngineThatIsMissingIsToldOfByThoseWhoNeedIt) {
  const fs::path folder = folder_with_model(), command = QVBRISK_COMMAND_PATH;
  fs::create_directories(folder / "bin");
  fs::create_directories(folder / "lib");
  fs::copy(command, folder / "bin");
  fs::copy(command.parent_path().parent_path() / "lib/libqvslv.so", folder / "lib");
  const std::string alone = (folder / "bin" / command.filename()).string();
  EXPECT_EQ(run_program(alone, {"expand", "press.toml"}, folder).code, 0);
  const CommandResult result = run_program(alone, {"run", "press.toml"}, folder);
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("qvbrisk: cannot load the engine: "));
  EXPECT_THAT(result.err, HasSubstr("libqvslv_engine.so"));
  EXPECT_FALSE(fs::exists(folder / "results"));
}

TEST(Command, RunMakesTheRoadAndWritesResultsUnderTheModelsName) {
  const fs::path folder = folder_with_model();
  const CommandResult result = run_command({"run", "press.toml"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.out, StartsWith("finished: 0.1 s simulated in "));
  EXPECT_THAT(result.out, HasSubstr("results: results/press\n"));
  EXPECT_THAT(result.err, AnyOf("", AllOf(StartsWith("made road "), HasSubstr("-"), HasSubstr(" (32 triangles)"))));
  EXPECT_EQ(ResultTable(folder / "results/press/results.csv").rows(), 6u);
  EXPECT_THAT(unfinished_files(folder), ElementsAre());
}

TEST(Command, ResultsOfAModelCalledModelAreNamedAfterItsFolder) {
  const fs::path folder = fresh_folder();
  fs::create_directories(folder / "pressing");
  write_text(folder / "pressing/model.toml", k_model);
  EXPECT_EQ(run_command({"run", "pressing/model.toml"}, folder).code, 0);
  EXPECT_TRUE(fs::exists(folder / "results/pressing/results.csv"));
}

TEST(Command, NothingIsSaidOnProgressWhenTheOutputIsNoTerminal) {
  const fs::path folder = folder_with_model();
  run_command({"run", "press.toml"}, folder);
  EXPECT_EQ(run_command({"run", "press.toml"}, folder).err, "");
}

TEST(Command, VersionIsAWordAndAFlag) {
  const fs::path folder = fresh_folder();
  const CommandResult flag = run_command({"--version"}, folder);
  EXPECT_EQ(flag.code, 0);
  EXPECT_THAT(flag.out, StartsWith("qvbrisk "));
  EXPECT_EQ(flag.out, run_command({"version"}, folder).out);
}

TEST(Command, MistakesInASetAreToldInALine) {
  const fs::path folder = fresh_folder();
  write_text(folder / "press.toml", k_model + "[parameters]\nload = 3\n");
  const auto refusal = [&folder](const std::string& option) {
    const CommandResult result = run_command({"check", "press.toml", "--set", option}, folder);
    EXPECT_EQ(result.code, 2) << option;
    return result.err;
  };
  EXPECT_THAT(refusal("load=5"), HasSubstr("there is no 'load' in the model file; did you mean 'parameters.load'?"));
  EXPECT_THAT(refusal("parameters.load=5*\r"), AllOf(Not(HasSubstr("\r")), HasSubstr("in the expression \"5*\\r\": ")));
  std::string sum = "1";
  for (int k = 0; k < 500; ++k) sum += "+load";
  EXPECT_LT(refusal("body.plate.mass=" + sum + "+lod").size(), 320u);
}

TEST(Command, QuietRunSaysNothing) {
  const fs::path folder = folder_with_model();
  const CommandResult result = run_command({"run", "press.toml", "--quiet"}, folder);
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "");
}

TEST(Command, SetReachesTheRun) {
  const fs::path folder = folder_with_model();
  const CommandResult result =
      run_command({"run", "press.toml", "--set", "simulation.end_time=0.04", "--out", "r"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(ResultTable(folder / "r/results.csv").rows(), 3u);
}

TEST(Check, JsonListsEveryFindingWithItsPlaceAndNothingElse) {
  const fs::path folder = folder_with_model();
  run_command({"make", "road", "--out", "bad.rdf", "--size", "2", "2", "--spacing", "1"}, folder);
  std::string road = file_text(folder / "bad.rdf");
  const std::string good = "SENSITIVITY=";
  write_text(folder / "bad.rdf", road.replace(road.find(good), good.size(), "SENSE="));
  const CommandResult warned = run_command({"check", "bad.rdf", "--json"}, folder);
  EXPECT_EQ(warned.code, 0);
  EXPECT_EQ(warned.err, "");
  EXPECT_THAT(warned.out, StartsWith("{\n  \"ok\": true,"));
  EXPECT_THAT(warned.out, HasSubstr("\"level\": \"warning\",\n      \"id\": \"road-no-shear\",\n      \"file\": "
                                    "\"bad.rdf\",\n      \"line\": 0,"));
  const CommandResult refused = run_command({"check", "press.toml", "--json", "--set", "gravity=1"}, folder);
  EXPECT_EQ(refused.code, 2);
  EXPECT_THAT(refused.out, HasSubstr("\"id\": \"model\""));
}

TEST(Command, StrictTakesWarningsForErrors) {
  const fs::path folder = folder_with_model();
  run_command({"make", "road", "--out", "bad.rdf", "--size", "2", "2", "--spacing", "1"}, folder);
  std::string road = file_text(folder / "bad.rdf");
  const std::string good = "SENSITIVITY=";
  write_text(folder / "bad.rdf", road.replace(road.find(good), good.size(), "SENSE="));
  const std::string use = "element.soil.road=bad.rdf";
  EXPECT_EQ(run_command({"check", "press.toml", "--set", use}, folder).code, 0);
  EXPECT_EQ(run_command({"check", "press.toml", "--set", use, "--strict"}, folder).code, 2);
  const CommandResult lenient = run_command({"run", "press.toml", "--set", use, "--quiet"}, folder);
  EXPECT_EQ(lenient.code, 0);
  EXPECT_THAT(lenient.err, HasSubstr("SENSITIVITY is missing"));
  const CommandResult strict = run_command({"run", "press.toml", "--set", use, "--strict"}, folder);
  EXPECT_EQ(strict.code, 2);
  EXPECT_THAT(strict.err, HasSubstr("error: "));
}

TEST(Command, ModelMistakeEndsWithTwoAndLeavesNothing) {
  const fs::path folder = folder_with_model();
  const CommandResult result = run_command({"run", "press.toml", "--set", "body.plate.mass=-1"}, folder);
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "--set body.plate.mass=-1: body 'plate', mass: must be greater than 0, is -1\n");
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(names_in(folder), ElementsAre("press.toml"));
}

TEST(Command, RoadThatTheSubroutineWouldRefuseIsRefusedBeforeTheRun) {
  const fs::path folder = folder_with_model();
  run_command({"make", "road", "--out", "bad.rdf", "--size", "2", "2", "--spacing", "1"}, folder);
  std::string road = file_text(folder / "bad.rdf");
  const std::string good = "NORMAL_PRESSURE=BEKKER";
  write_text(folder / "bad.rdf", road.replace(road.find(good), good.size(), "NORMAL_PRESSURE = BEKKER"));
  const CommandResult result = run_command({"run", "press.toml", "--set", "element.soil.road=bad.rdf"}, folder);
  EXPECT_THAT(result.err, HasSubstr("bad.rdf:11: NORMAL_PRESSURE: the value is ' BEKKER'"));
  EXPECT_THAT(result.err, StartsWith("error: "));
  EXPECT_EQ(result.code, 2);
}

TEST(Command, FaultInASubroutineEndsWithOneAndItsText) {
  const fs::path folder = fresh_folder();
  const std::string element = k_model.substr(0, k_model.find("[[element]]")) + R"toml(
[[string]]
name = "file"
text = "field.rdf"
[[element]]
name = "soil"
type = "subroutine"
subroutine = "qvsoil_interaction"
par = [0, "marker:plate", 0, 5, "string:file", "marker:ground", 0, 1, 1, 1, 0.5, 0.5, 2, 2, "marker:ground"]
)toml";
  write_text(folder / "press.toml", element);
  const CommandResult result = run_command({"run", "press.toml"}, folder);
  EXPECT_THAT(result.err, HasSubstr("element soil at time 0: USUB ERROR: SOILINTERACTION ERROR : The road index "
                                    "(parameter 3) is 5"));
  EXPECT_EQ(result.code, 1);
}

TEST(Command, LibraryThatIsNoneEndsWithAFault) {
  const fs::path folder = folder_with_model();
  write_text(folder / "none.so", "no library");
  const CommandResult result = run_command({"run", "press.toml", "--library", "none.so"}, folder);
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("none.so"));
}

TEST(Command, ResultsFolderThatCannotBeMadeEndsWithAFault) {
  const fs::path folder = folder_with_model();
  write_text(folder / "file", "in the way");
  const CommandResult result = run_command({"run", "press.toml", "--out", "file/results"}, folder);
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("file/results"));
}

TEST(Command, InterruptKeepsWhatThereIsAndEndsWith130) {
  const fs::path folder = folder_with_model();
  RunningCommand command(
      {"run", "press.toml", "--set", "simulation.end_time=1e6", "--set", "simulation.max_step=1e-3", "--out", "long"},
      folder);
  // Waits for the run to be under way, however slow the machine; a run that ends by itself fails the test.
  while (!command.ended() && !fs::exists(folder / "long")) std::this_thread::yield();
  ASSERT_FALSE(command.ended());
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  command.send(SIGINT);
  const CommandResult result = command.wait();
  EXPECT_EQ(result.code, 130);
  EXPECT_THAT(result.err, HasSubstr("interrupted: "));
  EXPECT_THAT(file_text(folder / "long/run.json"), HasSubstr("interrupted"));
  EXPECT_NO_THROW(ResultTable(folder / "long/results.csv"));
  EXPECT_THAT(unfinished_files(folder), ElementsAre());
}

TEST(Command, CheckTellsWhatIsInAModelAndWritesNothing) {
  const fs::path folder = folder_with_model();
  const CommandResult result = run_command({"check", "press.toml"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("  body plate: mass 100\n"));
  EXPECT_THAT(result.out, HasSubstr("  element soil: qvsoil_interaction, 15 parameters, 207 results\n"));
  EXPECT_THAT(result.out, HasSubstr("  road field.rdf: a run makes it first (32 triangles)\n"));
  EXPECT_THAT(result.out, HasSubstr("\nok\n"));
  EXPECT_THAT(names_in(folder), ElementsAre("press.toml"));
}

TEST(Command, CheckTellsWhatIsInARoad) {
  const fs::path folder = fresh_folder();
  run_command(
      {"make", "road", "--kind", "slope", "--grade", "0.1", "--size", "4", "2", "--spacing", "1", "--out", "a.rdf"},
      folder);
  const CommandResult result = run_command({"check", "a.rdf"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("a.rdf: 15 nodes, 16 triangles, x -2 to 2, y -1 to 1, z -0.2 to 0.2\n"));
  EXPECT_THAT(result.out, HasSubstr("  SINKAGE_EXPONENT  1.1\n"));
}

TEST(Command, CheckOfARoadThatWouldBeRefusedEndsWithTwo) {
  const fs::path folder = fresh_folder();
  write_text(folder / "bad.rdf", "SHEAR_PRESSURE = WONG\n");
  const CommandResult result = run_command({"check", "bad.rdf"}, folder);
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, HasSubstr("error: bad.rdf:1: SHEAR_PRESSURE: the value is ' WONG'"));
}

TEST(Command, ExpandPrintsWhatTheSubroutineIsCalledWith) {
  const CommandResult result = run_command({"expand", "press.toml"}, folder_with_model());
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("subroutine = \"qvsoil_interaction\"\n"));
  EXPECT_THAT(result.out,
              HasSubstr("  1,                      # par[9]           shape: 1 plate, any other value wheel\n"));
}

TEST(Command, MadeRoadHasTheSameBytesForTheSameSeedInAnyProcess) {
  const fs::path folder = fresh_folder();
  for (const char* name : {"a.rdf", "b.rdf"})
    EXPECT_EQ(run_command({"make", "road", "--kind", "rolling", "--seed", "5", "--amplitude", "0.2", "--wavelength",
                           "3", "--out", name},
                          folder)
                  .code,
              0);
  EXPECT_EQ(file_text(folder / "a.rdf"), file_text(folder / "b.rdf"));
  EXPECT_THAT(names_in(folder), ElementsAre("a.rdf", "b.rdf"));
}

TEST(Command, SoilValuesOnTheCommandLineReplaceThePresets) {
  const fs::path folder = fresh_folder();
  const CommandResult made = run_command(
      {"make", "road", "--soil", "LETE_sand", "--shear-displacement", "0.02", "--kc", "5", "--out", "a.rdf"}, folder);
  EXPECT_EQ(made.code, 0) << made.err;
  const std::string text = file_text(folder / "a.rdf");
  EXPECT_THAT(text, HasSubstr("\nMAX_SHEAR_DISP=0.02\n"));
  EXPECT_THAT(text, HasSubstr("\nCOHESIVE_COEFF=5\n"));
  EXPECT_THAT(text, HasSubstr("\nFRICTIONAL_COEFF=5301000\n"));
}

TEST(Command, TheShearDisplacementIsReadUnderItsFormerNameToo) {
  const fs::path folder = fresh_folder();
  const CommandResult made =
      run_command({"make", "road", "--soil", "LETE_sand", "--shear-modulus", "0.02", "--out", "a.rdf"}, folder);
  EXPECT_EQ(made.code, 0) << made.err;
  EXPECT_THAT(file_text(folder / "a.rdf"), HasSubstr("\nMAX_SHEAR_DISP=0.02\n"));
  const CommandResult both = run_command(
      {"make", "road", "--shear-modulus", "0.02", "--shear-displacement", "0.02", "--out", "b.rdf"}, folder);
  EXPECT_EQ(both.code, 2);
  EXPECT_EQ(both.err, "qvbrisk: give either --shear-displacement or --shear-modulus, its former name, not both\n");
}

TEST(Command, SoilListNamesItsSource) {
  const CommandResult result = run_command({"make", "road", "--list-soils"}, fresh_folder());
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.out, HasSubstr("LETE_sand"));
  EXPECT_THAT(result.out, HasSubstr("J. Y. Wong, Theory of Ground Vehicles"));
}

TEST(Command, VersionIsOneLine) {
  const CommandResult result = run_command({"version"}, fresh_folder());
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.out, testing::MatchesRegex("qvbrisk [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

struct usage_case {
  const char* why;
  std::vector<std::string> arguments;
  int code;
  const char* text;
};

TEST(Command, MistakesOnTheCommandLineAreNamed) {
  const usage_case cases[] = {
      {"a misspelt command", {"rnu", "press.toml"}, 2, "qvbrisk: there is no command 'rnu'; did you mean 'run'?"},
      {"no command", {}, 2, "A subcommand is required"},
      {"no model", {"run"}, 2, "model is required"},
      {"no such model", {"run", "none.toml"}, 2, "none.toml: there is no such model file"},
      {"a folder in place of a model", {"run", "."}, 2, "there is no such model file"},
      {"no such library", {"run", "press.toml", "--library", "none.so"}, 2, "File does not exist: none.so"},
      {"an unknown option", {"run", "press.toml", "--fast"}, 2, "--fast"},
      {"no road file", {"check", "none.rdf"}, 2, "qvbrisk: there is no road file none.rdf"},
      {"nowhere to write", {"make", "road"}, 2, "qvbrisk: --out is required: the road file to write"},
      {"no such soil",
       {"make", "road", "--out", "a.rdf", "--soil", "dry_snad"},
       2,
       "qvbrisk: --soil: there is no preset 'dry_snad'; did you mean 'dry_sand'?"},
      {"no such kind",
       {"make", "road", "--out", "a.rdf", "--kind", "hilly"},
       2,
       "qvbrisk: --kind: 'hilly' is not known; known: flat, slope, sine, rolling"},
      {"a slope without a grade",
       {"make", "road", "--out", "a.rdf", "--kind", "slope"},
       2,
       "qvbrisk: a slope needs a grade (rise over run, 0.1 is 10 %)"},
      {"a number that is none", {"make", "road", "--out", "a.rdf", "--spacing", "fine"}, 2, "--spacing"},
      {"a road into a folder that is not there",
       {"make", "road", "--out", "none/a.rdf"},
       1,
       "No such file or directory"},
  };
  const fs::path folder = folder_with_model();
  for (const usage_case& row : cases) {
    SCOPED_TRACE(row.why);
    const CommandResult result = run_command(row.arguments, folder);
    EXPECT_EQ(result.code, row.code);
    EXPECT_THAT(result.err, HasSubstr(row.text));
    EXPECT_THAT(names_in(folder), ElementsAre("press.toml"));
  }
}

}  // namespace
