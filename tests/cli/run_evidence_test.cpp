#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/cli/plate_model.h"
#include "tests/cli/process.h"

// A results folder tells what went in, what was odd, what came out, and gives the same again.

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;
using Json = nlohmann::json;

struct Evidence : testing::Test {
  fs::path folder = fresh_folder();

  void SetUp() override { write_text(folder / "press.toml", k_plate_model); }

  Json record(const std::string& out) const { return Json::parse(file_text(folder / out / "run.json")); }

  /// Digest by a program of the system.
  std::string sha256(const fs::path& path) const {
    return run_program("/usr/bin/sha256sum", {"-b", path.string()}, folder).out.substr(0, 64);
  }
};

Json input(const Json& record, const std::string& role) {
  for (const Json& entry : record["inputs"])
    if (entry["role"] == role) return entry;
  ADD_FAILURE() << "no input of the role " << role;
  return {};
}

TEST_F(Evidence, RecordHoldsEveryInputWithPathSizeAndDigest) {
  ASSERT_EQ(run_command({"run", "press.toml", "--out", "out"}, folder).code, 0);
  const Json json = record("out");
  for (const char* role : {"model", "road", "library", "solver", "command"}) {
    SCOPED_TRACE(role);
    const Json entry = input(json, role);
    const fs::path path = entry["path"].get<std::string>();
    ASSERT_TRUE(path.is_absolute());
    EXPECT_EQ(entry["bytes"].get<std::uintmax_t>(), fs::file_size(path));
    EXPECT_EQ(entry["sha256"], sha256(path));
  }
  EXPECT_EQ(input(json, "model")["path"], fs::canonical(folder / "press.toml").string());
  EXPECT_EQ(input(json, "command")["path"], fs::canonical(QVBRISK_COMMAND_PATH).string());
}

TEST_F(Evidence, LibraryThatTheLoaderFindsStandsInTheRecordWithItsPath) {
  const fs::path command = QVBRISK_COMMAND_PATH, libraries = command.parent_path().parent_path() / "lib";
  fs::create_directories(folder / "bin");
  fs::copy(command, folder / "bin");
  const CommandResult result =
      RunningCommand({"run", "press.toml", "--out", "out", "-q"}, folder, {{"LD_LIBRARY_PATH", libraries.string()}},
                     (folder / "bin" / command.filename()).string())
          .wait();
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(input(record("out"), "library")["path"], fs::canonical(libraries / "libqvbrisk.so").string());
}

TEST_F(Evidence, RecordHoldsTheModelAsItIsWrittenAndAsItWasRun) {
  ASSERT_EQ(run_command({"run", "press.toml", "--out", "out", "--set", "body.plate.mass=0.1"}, folder).code, 0);
  const Json json = record("out");
  EXPECT_EQ(json["model_text"], k_plate_model);
  EXPECT_EQ(json["resolved_model"]["body"][0]["mass"], 0.1);
  EXPECT_EQ(json["resolved_model"]["gravity"], Json({0.0, 0.0, -9.81}));
}

TEST_F(Evidence, RerunGivesTheSameBitsEvenWithoutTheModelsFile) {
  ASSERT_EQ(run_command({"run", "press.toml", "--out", "out", "--set", "body.plate.mass=90"}, folder).code, 0);
  fs::remove(folder / "press.toml");
  const CommandResult again = run_command({"rerun", "out"}, folder);
  EXPECT_EQ(again.code, 0) << again.err;
  EXPECT_EQ(again.err, "");
  EXPECT_THAT(again.out, HasSubstr("columns came out with the same bits\n"));
  EXPECT_EQ(file_text(folder / "out-rerun/results.csv"), file_text(folder / "out/results.csv"));
  EXPECT_EQ(run_command({"rerun", "out-rerun", "-q"}, folder).code, 0);
}

TEST_F(Evidence, RerunNamesTheColumnThatCameOutDifferent) {
  ASSERT_EQ(run_command({"run", "press.toml", "--out", "out"}, folder).code, 0);
  std::string table = file_text(folder / "out/results.csv");
  const size_t last_row = table.rfind('\n', table.size() - 2) + 1;
  write_text(folder / "out/results.csv", table.insert(table.find(',', last_row) + 1, "1"));
  const CommandResult again = run_command({"rerun", "out", "--out", "again"}, folder);
  EXPECT_EQ(again.code, 1);
  EXPECT_THAT(again.out, HasSubstr("differs from row 6 on\n1 of "));
}

TEST_F(Evidence, RerunAsksForTheResultsThatTheRunWasAskedFor) {
  ASSERT_EQ(run_command({"run", "press.toml", "--out", "out", "--results", "table"}, folder).code, 0);
  EXPECT_FALSE(fs::exists(folder / "out/report.html"));
  EXPECT_EQ(record("out")["overrides"], Json({"simulation.results=table"}));
  EXPECT_EQ(run_command({"rerun", "out"}, folder).code, 0);
  EXPECT_TRUE(fs::exists(folder / "out-rerun/results.csv"));
  EXPECT_FALSE(fs::exists(folder / "out-rerun/report.html"));
  EXPECT_FALSE(fs::exists(folder / "out-rerun/frames.pvd"));
}

TEST_F(Evidence, RerunOfARunWithoutATableSaysThatThereIsNothingToCompare) {
  ASSERT_EQ(run_command({"run", "press.toml", "--out", "out", "--results", "page, frames"}, folder).code, 0);
  const CommandResult again = run_command({"rerun", "out"}, folder);
  EXPECT_EQ(again.code, 2);
  EXPECT_THAT(again.err, HasSubstr("out holds no table to compare with: its run was asked for other results only"));
  EXPECT_FALSE(fs::exists(folder / "out-rerun"));
}

TEST_F(Evidence, TheOptionBeatsTheModelsKey) {
  const std::vector<std::string> key = {"run", "press.toml", "--out", "out", "--set", "simulation.results=page"};
  std::vector<std::string> option = key;
  option.insert(option.end(), {"--results", "table"});
  ASSERT_EQ(run_command(key, folder).code, 0);
  EXPECT_TRUE(fs::exists(folder / "out/report.html"));
  EXPECT_FALSE(fs::exists(folder / "out/results.csv"));
  ASSERT_EQ(run_command(option, folder).code, 0);
  EXPECT_FALSE(fs::exists(folder / "out/report.html"));
  EXPECT_TRUE(fs::exists(folder / "out/results.csv"));
}

TEST_F(Evidence, RerunTellsWhichInputIsNotWhatItWas) {
  run_command({"make", "road", "--out", "own.rdf", "--size", "2", "2", "--spacing", "1"}, folder);
  ASSERT_EQ(run_command({"run", "press.toml", "--out", "out", "--set", "element.soil.road=own.rdf"}, folder).code, 0);
  const std::string before = sha256(folder / "own.rdf");
  run_command({"make", "road", "--out", "own.rdf", "--size", "2", "2", "--spacing", "1", "--height", "-0.01"}, folder);
  const CommandResult again = run_command({"rerun", "out"}, folder);
  EXPECT_EQ(again.code, 1);
  EXPECT_THAT(again.err, HasSubstr("own.rdf is not what it was: sha256 " + before + ", now "));
}

TEST_F(Evidence, RerunOfAFolderWithoutARecordSaysSo) {
  const CommandResult nothing = run_command({"rerun", "nowhere"}, folder);
  EXPECT_EQ(nothing.code, 2);
  EXPECT_THAT(nothing.err, HasSubstr("cannot read nowhere/run.json: is this the folder of a run?"));
  write_text(folder / "run.json", "{}");
  EXPECT_THAT(
      run_command({"rerun", "."}, folder).err,
      HasSubstr("run.json is no record of a whole run: the model, its overrides and its inputs are expected in it\n"));
}

TEST_F(Evidence, WarningsStandInTheRecordOnStderrAndOnThePage) {
  run_command({"make", "road", "--out", "bad.rdf", "--size", "2", "2", "--spacing", "1"}, folder);
  std::string road = file_text(folder / "bad.rdf");
  write_text(folder / "bad.rdf", road.replace(road.find("SENSITIVITY="), 12, "SENSE="));
  const CommandResult result =
      run_command({"run", "press.toml", "--out", "out", "--set", "element.soil.road=bad.rdf", "-q"}, folder);
  EXPECT_EQ(result.code, 0);
  const std::string text = "SENSITIVITY is missing or 0: the soil carries no shear";
  EXPECT_THAT(result.err, HasSubstr(text));
  const Json warnings = record("out")["warnings"];
  bool found = false;
  for (const Json& warning : warnings)
    if (warning["id"] == "road-no-shear") found = warning["text"] == text;
  EXPECT_TRUE(found);
  EXPECT_THAT(file_text(folder / "out/report.html"), HasSubstr(text));
}

TEST_F(Evidence, InputThatIsChangedDuringTheRunIsToldOf) {
  run_command({"make", "road", "--out", "own.rdf", "--size", "2", "2", "--spacing", "1"}, folder);
  RunningCommand running({"run", "press.toml", "--out", "out", "--set", "element.soil.road=own.rdf", "--set",
                          "simulation.end_time=1e5", "--set", "simulation.output_step=0.001"},
                         folder);
  while (!running.ended() &&
         (!fs::exists(folder / "out/results.csv") || fs::file_size(folder / "out/results.csv") == 0)) {
  }
  write_text(folder / "own.rdf", "another road");
  running.send(SIGTERM);
  EXPECT_THAT(running.wait().err, HasSubstr("own.rdf was changed while the run went on"));
}

TEST_F(Evidence, NamesAreMeantFromTheModelsFolderNotFromTheCurrentOne) {
  fs::create_directories(folder / "model");
  fs::rename(folder / "press.toml", folder / "model/press.toml");
  const auto make_road = [&](const char* height) {
    return std::vector<std::string>{"make", "road",      "--out", "own.rdf",  "--size", "2",
                                    "2",    "--spacing", "1",     "--height", height};
  };
  run_command(make_road("-0.05"), folder / "model");
  run_command(make_road("-0.02"), folder);
  const std::string use = "element.soil.road=own.rdf";
  ASSERT_EQ(run_command({"run", "model/press.toml", "--set", use, "--out", "a"}, folder).code, 0);
  ASSERT_EQ(run_command({"run", "press.toml", "--set", use, "--out", "b"}, folder / "model").code, 0);
  EXPECT_EQ(file_text(folder / "a/results.csv"), file_text(folder / "model/b/results.csv"));
  fs::remove(folder / "model/own.rdf");
  const CommandResult lost = run_command({"run", "model/press.toml", "--set", use, "--out", "c"}, folder);
  EXPECT_EQ(lost.code, 2);
  EXPECT_THAT(lost.err,
              HasSubstr("the one in the current folder is not taken: names are meant from the model's folder"));
}

}  // namespace
