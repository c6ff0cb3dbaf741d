#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/cli/plate_model.h"
#include "tests/cli/process.h"

// A results folder belongs to one run; what is not a run's is left alone; what cannot be written is told.

namespace {

namespace fs = std::filesystem;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

struct Results : testing::Test {
  fs::path folder = fresh_folder(), out = folder / "out";

  void SetUp() override { write_text(folder / "press.toml", k_plate_model); }

  static std::vector<std::string> arguments(std::vector<std::string> more = {}) {
    std::vector<std::string> all = {"run", "press.toml", "--out", "out"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }
  CommandResult run(const std::vector<std::string>& more = {}) { return run_command(arguments(more), folder); }
  nlohmann::json record() const { return nlohmann::json::parse(file_text(out / "run.json")); }

  /// A run that goes on until it is ended, once it has begun to write rows.
  RunningCommand start_long_run() {
    RunningCommand running(arguments({"--set", "simulation.end_time=1e5", "--set", "simulation.output_step=0.001",
                                      "--set", "simulation.frame_step=0.001"}),
                           folder);
    while (!running.ended() && (!fs::exists(out / "results.csv") || fs::file_size(out / "results.csv") < 5000))
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return running;
  }
};

TEST_F(Results, SecondRunIntoTheSameFolderIsRefusedWithTheProcessOfTheFirst) {
  RunningCommand first = start_long_run();
  const CommandResult second = run();
  EXPECT_EQ(second.code, 1);
  EXPECT_THAT(second.err, ContainsRegex("the folder out is being written by another run \\(process [0-9]+\\)"));
  EXPECT_THAT(second.err, HasSubstr("--force"));
  first.send(SIGINT);
  EXPECT_EQ(first.wait().code, 130);
  EXPECT_EQ(record()["outcome"], "interrupted");
  EXPECT_EQ(run().code, 0);
}

TEST_F(Results, ForceTakesTheFolderAndTheFirstRunEndsWithAFault) {
  RunningCommand first = start_long_run();
  EXPECT_EQ(run({"--force"}).code, 0);
  const CommandResult ended = first.wait();
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.err, HasSubstr("the results are lost: "));
  EXPECT_EQ(record()["outcome"], "finished");
  EXPECT_EQ(ResultTable(out / "results.csv").rows(), 6u);
}

TEST_F(Results, LockOfAKilledRunStandsInNobodysWayAndItsFilesGo) {
  RunningCommand first = start_long_run();
  first.send(SIGKILL);
  EXPECT_EQ(first.wait().code, 128 + SIGKILL);
  EXPECT_EQ(record()["outcome"], "running");
  EXPECT_FALSE(record()["complete"]);
  const size_t frames = static_cast<size_t>(std::distance(fs::directory_iterator(out / "frames"), {}));
  EXPECT_GT(frames, 13u);
  EXPECT_EQ(run().code, 0);
  EXPECT_EQ(std::distance(fs::directory_iterator(out / "frames"), {}), 13);  // terrain; bodies and points of 6 rows
}

TEST_F(Results, TerminationEndsInGoodOrderWithAReport) {
  RunningCommand running = start_long_run();
  running.send(SIGTERM);
  const CommandResult ended = running.wait();
  EXPECT_EQ(ended.code, 130);
  EXPECT_THAT(ended.err, HasSubstr("interrupted at time "));
  EXPECT_EQ(record()["outcome"], "interrupted");
  EXPECT_TRUE(fs::exists(out / "report.html"));
}

TEST_F(Results, FolderThatIsRemovedDuringTheRunEndsItWithAFault) {
  RunningCommand running = start_long_run();
  fs::rename(out, folder / "moved");
  const CommandResult ended = running.wait();
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.err, HasSubstr("the results are lost: the folder out was removed or emptied during the run"));
  EXPECT_FALSE(fs::exists(out));
}

TEST_F(Results, FileOfTheUserIsNeverOverwrittenNorRemoved) {
  fs::create_directories(out / "frames");
  write_text(out / "notes.txt", "mine");
  write_text(out / "frames/cover.png", "mine");
  EXPECT_EQ(run().code, 0);
  EXPECT_EQ(run().code, 0);
  EXPECT_EQ(file_text(out / "notes.txt"), "mine");
  EXPECT_EQ(file_text(out / "frames/cover.png"), "mine");
  fs::remove_all(out);
  fs::create_directories(out);
  write_text(out / "results.csv", "measured");
  const CommandResult refused = run();
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.err, HasSubstr("the folder out holds 'results.csv', which no run wrote"));
  EXPECT_EQ(file_text(out / "results.csv"), "measured");
  EXPECT_FALSE(fs::exists(out / "run.json"));
}

TEST_F(Results, LinksAreNotFollowedOutOfTheFolder) {
  const fs::path outside = folder / "outside";
  fs::create_directories(outside);
  write_text(outside / "bodies_000000.vtp", "mine");
  write_text(outside / "table.csv", "mine");
  ASSERT_EQ(run().code, 0);
  fs::remove_all(out / "frames");
  fs::create_directory_symlink(outside, out / "frames");
  fs::remove(out / "results.csv");
  fs::create_symlink(outside / "table.csv", out / "results.csv");
  const CommandResult result = run();
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("holds 'frames', which no run wrote"));
  EXPECT_EQ(file_text(outside / "bodies_000000.vtp"), "mine");
  EXPECT_EQ(file_text(outside / "table.csv"), "mine");
}

TEST_F(Results, RecordThatListsFilesElsewhereIsNotBelieved) {
  fs::create_directories(out / "frames");
  write_text(folder / "thesis.txt", "mine");
  write_text(out / "thesis.txt", "mine");
  write_text(out / "run.json",
             R"({"files": ["../thesis.txt", "thesis.txt", "frames/../../thesis.txt", "/etc/none", 7]})");
  EXPECT_EQ(run().code, 0);
  EXPECT_EQ(file_text(folder / "thesis.txt"), "mine");
  EXPECT_EQ(file_text(out / "thesis.txt"), "mine");
}

TEST_F(Results, FailedStartLeavesNoOlderResults) {
  for (const char* mistake : {"body.plate.mass=-1", "road.1.soil=moon", "element.soil.road=none.rdf"}) {
    SCOPED_TRACE(mistake);
    ASSERT_EQ(run().code, 0);
    EXPECT_EQ(run({"--set", mistake}).code, 2);
    EXPECT_FALSE(fs::exists(out / "results.csv"));
    EXPECT_FALSE(fs::exists(out / "run.json"));
  }
  ASSERT_EQ(run().code, 0);
  write_text(folder / "none.so", "no library");
  EXPECT_EQ(run({"--library", "none.so"}).code, 1);
  EXPECT_FALSE(fs::exists(out / "results.csv"));
  EXPECT_EQ(record()["outcome"], "failed");
}

// A limit on the size of files stands for a full disk: a write fails in the middle.
TEST_F(Results, DiskThatIsFullEndsTheRunWithTheSystemsReason) {
  const std::string limited = "ulimit -f 16; exec \"$0\" \"$@\"";
  const CommandResult result =
      run_program("/bin/bash", {"-c", limited, QVBRISK_COMMAND_PATH, "run", "press.toml", "--out", "out"}, folder);
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, ContainsRegex("cannot write out/.*: File too large"));
  EXPECT_THAT(result.out, Not(HasSubstr("finished")));
}

TEST_F(Results, StandardOutputThatIsFullOrClosedIsAFault) {
  const std::string full = "exec \"$0\" \"$@\" > /dev/full", closed = "exec \"$0\" \"$@\" >&-";
  for (const std::string& script : {full, closed}) {
    SCOPED_TRACE(script);
    const CommandResult version = run_program("/bin/bash", {"-c", script, QVBRISK_COMMAND_PATH, "version"}, folder);
    EXPECT_EQ(version.code, 1);
    EXPECT_THAT(version.err, HasSubstr("cannot write to standard output: No space left on device"));
    EXPECT_EQ(run_program("/bin/bash", {"-c", script, QVBRISK_COMMAND_PATH, "run", "press.toml"}, folder).code, 1);
    EXPECT_EQ(file_text(folder / "results/press/results.csv").rfind("time", 0), 0u);  // not into this file instead
  }
}

}  // namespace
