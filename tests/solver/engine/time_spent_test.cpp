#include "solver/engine/time_spent.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

nlohmann::json time_spent(const TestRun& out) {
  return nlohmann::json::parse(read_text(out.folder + "/run.json"))["time_spent"];
}

/// A ball that falls, with an element of every kind.
TestModel falling_ball() {
  TestModel built(0.5, 0.1);
  built.model.gravity = {0, 0, -9.81};
  built.add_body("ball", 2.0, {0.1, 0.1, 0.1});
  built.add_element("push", "scripted", ElementKind::force, {}, 6).marker = 1;
  built.add_element("state", "scripted", ElementKind::evaluated, {}, 1);
  built.add_element("report", "scripted", ElementKind::report, {}, 1);
  return built;
}

TEST(TimeSpent, PartsOfARunSumUpToItsWallTime) {
  const Script script([](const HookCall&) {});
  RunOptions options;
  options.seconds = [] { return 40.0; };  // whatever the clock says, it is divided without a rest
  const TestRun out = run(falling_ball(), options);
  double seconds = 0, share = 0;
  std::vector<std::string> parts;
  for (const auto& entry : time_spent(out)) {
    EXPECT_GE(entry["share"].get<double>(), 0);
    seconds += entry["seconds"].get<double>();
    share += entry["share"].get<double>();
    parts.push_back(entry.contains("element") ? entry["element"] : entry["part"]);
  }
  EXPECT_NEAR(seconds, 40.0, 1e-10) << "twelve roundings of at most 40";
  EXPECT_NEAR(share, 1.0, 1e-12);
  EXPECT_EQ(parts, (std::vector<std::string>{"start-up", "engine", "expressions", "push", "state", "report", "services",
                                             "results", "watch"}));
}

TEST(TimeSpent, ARunThatFailsInItsSetUpSpentAllOfItThereAndOnResults) {
  const Script script([](const HookCall& call) { call.result[0] = 1.0 / 0.0; });
  const TestRun out = run(falling_ball());
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  for (const auto& entry : time_spent(out)) {
    const std::string part = entry["part"];
    const bool reached = part == "start-up" || part == "results";
    EXPECT_EQ(entry["share"].get<double>() > 0, reached) << part;
  }
}

TEST(TimeSpent, WorkWithinWorkCountsForTheInnerOneAndThenForTheOuterOneAgain) {
  TimeSpent time;
  const auto share_of = [&time](const std::string& part) {
    for (const TimeShare& entry : time.shares(Model{}, 1.0))
      if (entry.part == part) return entry.share;
    return -1.0;
  };
  {
    const TimeSpent::During outer(time, Work::engine);
    { const TimeSpent::During inner(time, Work::watch); }
    EXPECT_GT(share_of("watch"), 0);
    const double watch = share_of("watch");
    EXPECT_LT(share_of("watch"), watch) << "of a whole that grows by what is done meanwhile";
  }
  EXPECT_GT(share_of("engine"), 0);
  EXPECT_GT(share_of("start-up"), 0);
  EXPECT_EQ(share_of("expressions"), 0);
  EXPECT_EQ(share_of("results"), 0);
}

}  // namespace
