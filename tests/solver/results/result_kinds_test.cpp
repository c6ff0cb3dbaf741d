#include <gtest/gtest.h>

#include <charconv>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"

// Which results a run writes, and how many frames.

namespace {

using namespace qvslv;
namespace fs = std::filesystem;

/// A ball that flies evenly; nothing calls for small steps.
TestModel flying_ball(double end_time, double output_step) {
  TestModel built(end_time, output_step);
  const int ball = built.add_body("ball", 1, {1, 1, 1});
  built.body(ball).shape = {ShapeKind::box, {1, 1, 1}, 0, 0, 1};
  built.body(ball).velocity = {1, 0, 0};
  return built;
}

std::set<std::string> names_in(const std::string& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
  return names;
}

nlohmann::json record_of(const TestRun& out) { return nlohmann::json::parse(read_text(out.folder + "/run.json")); }

struct KindsCase {
  const char* why;
  ResultKinds kinds;
  std::set<std::string> files;
  std::vector<std::string> told;
};

const KindsCase k_kinds_cases[] = {
    {"the table alone", {true, false, false}, {"results.csv", "run.json"}, {"table"}},
    {"frames alone", {false, true, false}, {"frames", "frames.pvd", "run.json"}, {"frames"}},
    {"the page alone", {false, false, true}, {"report.html", "run.json"}, {"page"}},
    {"no page", {true, true, false}, {"frames", "frames.pvd", "results.csv", "run.json"}, {"table", "frames"}},
    {"all", {}, {"frames", "frames.pvd", "report.html", "results.csv", "run.json"}, {"table", "frames", "page"}},
};

TEST(ResultKinds, ARunWritesWhatItIsAskedForAndLeavesNothingOfAnEarlierRun) {
  RunOptions options;
  options.out_folder = test_folder();
  run(flying_ball(0.2, 0.1), options);
  for (const KindsCase& c : k_kinds_cases) {
    SCOPED_TRACE(c.why);
    TestModel built = flying_ball(0.2, 0.1);
    built.model.simulation.results = c.kinds;
    const TestRun out = run(built, options);
    ASSERT_EQ(out.summary.outcome, RunOutcome::finished) << out.summary.message;
    EXPECT_EQ(names_in(out.folder), c.files);
    const nlohmann::json record = record_of(out);
    EXPECT_EQ(record["settings"]["results"], c.told);
    EXPECT_TRUE(record["complete"].get<bool>());
    for (const std::string file : record["files"]) EXPECT_TRUE(fs::exists(out.folder + "/" + file)) << file;
  }
}

TEST(ResultKinds, WhatIsWrittenIsTheSameWhateverElseIs) {
  const std::string folder = test_folder();
  RunOptions all;
  all.out_folder = folder + "/all";
  run(flying_ball(0.2, 0.1), all);
  for (const ResultKinds kinds : {ResultKinds{true, false, false}, ResultKinds{false, true, false}}) {
    TestModel built = flying_ball(0.2, 0.1);
    built.model.simulation.results = kinds;
    RunOptions options;
    options.out_folder = folder + "/one";
    run(built, options);
    for (const char* file : {"results.csv", "frames.pvd", "frames/bodies_000002.vtp"}) {
      if (!fs::exists(options.out_folder + "/" + file)) continue;
      EXPECT_EQ(read_text(options.out_folder + "/" + file), read_text(all.out_folder + "/" + file)) << file;
    }
  }
}

TEST(ResultKinds, NoPictureOfTheRoadIsMissedWhereNoneIsAskedFor) {
  TestModel built = flying_ball(0.1, 0.1);
  built.model.strings.push_back({9, "road", "nowhere.rdf"});
  built.add_element("soil", "scripted", ElementKind::report, {}, 1).road_string = 9;
  built.model.simulation.results = {true, false, false};
  const Script script([](const HookCall&) {});
  EXPECT_TRUE(run(built).told.empty());
}

/// Times of the frames that the index lists.
std::vector<double> frame_times(const TestRun& out) {
  const std::string index = read_text(out.folder + "/frames.pvd"), key = "timestep=\"";
  std::vector<double> times;
  for (size_t at = index.find(key); at != std::string::npos; at = index.find(key, at + 1)) {
    const char* number = index.data() + at + key.size();
    std::from_chars(number, index.data() + index.size(), times.emplace_back());
  }
  return times;
}

TEST(FrameStep, KeepsARunWithinFiveHundredFramesUnlessTheModelAsksForAnother) {
  struct Case {
    const char* why;
    double outputs, frame_step;
    size_t frames;
    double first_step;  ///< from the first frame to the second, in outputs
    bool thinned;
  };
  const Case cases[] = {
      {"as many outputs as frames may be", 499, 0, 500, 1, false},
      {"one more: every second output", 500, 0, 251, 2, true},
      {"an odd number: the end is a frame too", 501, 0, 252, 2, true},
      {"the last number for every second output", 998, 0, 500, 2, true},
      {"every third", 999, 0, 334, 3, true},
      {"a model that asks for all gets all", 600, 1, 601, 1, false},
      {"a model that asks for few gets few, and the end", 600, 250, 4, 250, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    constexpr double k_step = 0.01;
    TestModel built = flying_ball(c.outputs * k_step, k_step);
    built.model.simulation.frame_step = c.frame_step * k_step;
    built.model.simulation.results = {false, true, false};
    const TestRun out = run(built);
    const std::vector<double> times = frame_times(out);
    ASSERT_EQ(times.size(), c.frames);
    EXPECT_NEAR(times[1], c.first_step * k_step, 1e-12);
    EXPECT_EQ(times.back(), c.outputs * k_step);
    const nlohmann::json settings = record_of(out)["settings"];
    EXPECT_EQ(settings["frames_thinned"], c.thinned);
    EXPECT_NEAR(settings["frame_step"].get<double>(), c.first_step * k_step, 1e-12);
    EXPECT_EQ(out.summary.files.size(), c.frames + 2) << "a file per frame, the index and the record";
  }
}

TEST(FrameStep, ThePageSaysThatFramesWereLeftOut) {
  TestModel built = flying_ball(10, 0.01);
  built.model.simulation.results = {false, false, true};
  const std::string page = read_text(run(built).folder + "/report.html");
  EXPECT_NE(
      page.find("Frames are 0.03 s apart, so that there are 500 at most; a frame_step in the model asks for others."),
      std::string::npos);
  built.model.simulation.frame_step = 0.03;
  EXPECT_EQ(read_text(run(built).folder + "/report.html").find("a frame_step in the model"), std::string::npos);
}

}  // namespace
