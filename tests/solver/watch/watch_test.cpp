#include <gmock/gmock.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"
#include "tests/support/exact_text.h"

namespace {

using namespace qvslv;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Ids of the warnings in run.json.
std::vector<std::string> warnings_of(const TestRun& out) {
  const auto record = nlohmann::json::parse(read_text(out.folder + "/run.json"));
  std::vector<std::string> ids;
  for (const auto& warning : record["warnings"]) ids.push_back(warning["id"]);
  return ids;
}

/// A ball of mass 1 and unit moments in weightless space.
TestModel ball(double end_time = 1, double output_step = 0.1) {
  TestModel built(end_time, output_step);
  built.add_body("ball", 1, {1, 1, 1});
  return built;
}

/// A rod of length 1 that swings down from the level.
TestModel pendulum(double step) {
  TestModel built(2, 0.1);
  built.model.gravity = {0, 0, -9.81};
  built.add_body("rod", 1, {1e-3, 1e-3, 1e-3});
  const int hinge = built.add_marker(k_ground, {0, 0, 0}, turn(0, k_pi / 2));
  const int end = built.add_marker(0, {-1, 0, 0}, turn(0, k_pi / 2));
  built.add_joint(JointType::revolute, hinge, end);
  built.model.simulation.integrator = Integrator::semi_explicit_euler;
  built.model.simulation.step = step;
  return built;
}

TEST(EnergyWatch, TellsOfACoarseIntegrationOfAModelThatNothingDrives) {
  const TestRun out = run_to_end(pendulum(0.02));
  ASSERT_THAT(warnings_of(out), ElementsAre("energy-drift"));
  ASSERT_EQ(out.told.size(), 1u);
  EXPECT_THAT(out.told[0],
              AllOf(HasSubstr("warning: test_model.toml: at the time "), HasSubstr("the energy has changed"),
                    HasSubstr("(limit 1 %)"), HasSubstr("take a smaller accuracy number")));
}

TEST(EnergyWatch, IsQuietWhereTheDriftStaysBelowOnePercent) {
  const TestRun out = run_to_end(pendulum(0.0005));
  const std::vector<double> kinetic = out.column("kinetic_energy"), potential = out.column("potential_energy");
  double drift = 0, largest = 0;
  for (size_t i = 0; i < kinetic.size(); ++i) {
    drift = std::max(drift, std::abs(kinetic[i] + potential[i] - kinetic[0] - potential[0]));
    largest = std::max(largest, kinetic[i]);
  }
  EXPECT_GT(drift, 0.0005 * largest) << "something must drift";
  EXPECT_LT(drift, 0.01 * largest);
  EXPECT_THAT(warnings_of(out), IsEmpty());
}

TEST(EnergyWatch, IsQuietWhenAForceDrives) {
  TestModel built = pendulum(0.02);
  built.add_force(1, {"0", "0", "0.5"});
  EXPECT_THAT(warnings_of(run_to_end(built)), IsEmpty());
}

TEST(EnergyWatch, IsQuietAboutAFreeFallFromFarAway) {
  TestModel built = ball();
  built.model.gravity = {0, 0, -9.81};
  built.body(0).position = {0, 0, 1e6};
  EXPECT_THAT(warnings_of(run_to_end(built)), IsEmpty());
}

TEST(LostDigits, TellsOfASpeedBeyondATenthOfLights) {
  TestModel built = ball();
  built.body(0).velocity = {2.9e7, 0, 0};
  EXPECT_THAT(warnings_of(run_to_end(built)), IsEmpty());
  built.body(0).velocity = {3.1e7, 0, 0};
  const TestRun out = run_to_end(built);
  EXPECT_THAT(warnings_of(out), ElementsAre("speed-beyond-sense")) << "once";
  EXPECT_THAT(out.told[0], AllOf(HasSubstr("body 'ball': at the time"), HasSubstr("it moves at 3.1e+07"),
                                 HasSubstr("a tenth of the speed of light (3e+07)")));
}

TEST(LostDigits, CountsSpeedsInTheModelsUnits) {
  TestModel built = ball();
  built.model.units.length_factor = 1e-3;  // millimetres
  built.body(0).inertia = {1e6, 1e6, 1e6, 0, 0, 0};
  built.body(0).velocity = {3.1e7, 0, 0};
  EXPECT_THAT(warnings_of(run_to_end(built)), IsEmpty());
}

TEST(LostDigits, TellsOfABodyAThousandMillionSizesAway) {
  TestModel built = ball();
  built.body(0).shape = {ShapeKind::sphere, {0, 0, 0}, 0.1, 0, 1};
  built.body(0).position = {0.9e8, 0, 0};
  EXPECT_THAT(warnings_of(run_to_end(built)), IsEmpty());
  built.body(0).position = {1.1e8, 0, 0};
  const TestRun out = run_to_end(built);
  EXPECT_THAT(warnings_of(out), ElementsAre("place-beyond-digits"));
  EXPECT_THAT(out.told[0], AllOf(HasSubstr("it is 1.1e+08 away from the origin"), HasSubstr("its own size (0.1)")));
}

TEST(LostDigits, TellsOfAForceWhoseRoundingMovesTheModel) {
  TestModel built = ball(1e-6, 1e-7);
  built.add_element("spring", "scripted", ElementKind::force, {}, 6).marker = 1;
  double force = 9e12;  // the weight on earth is 9.81
  const Script script([&](const HookCall& call) { call.result[0] = force; });
  EXPECT_THAT(warnings_of(run_to_end(built)), IsEmpty());
  force = 1e13;
  const TestRun out = run_to_end(built);
  EXPECT_THAT(warnings_of(out), ElementsAre("force-beyond-digits"));
  EXPECT_THAT(out.told[0], AllOf(HasSubstr("element 'spring': at the time"), HasSubstr("its force is 1e+13"),
                                 HasSubstr("the weight of all bodies (9.81)")));
}

/// A ball that a soft spring holds, and that meets a wall at x = 1 which is stiffer by `times`.
TestModel wall(double times) {
  TestModel built = ball(1.2, 0.3);
  built.model.simulation.accuracy = 1e-3;
  built.body(0).velocity = {1, 0, 0};
  built.add_force(1, {"0", "-0.1*dy(ball)", "0"});
  built.add_force(1, {"-" + qvtest::exact_text(times) + "*step(dx(ball), 1, 0, 1.0001, 1)*vx(ball)", "0", "0"});
  return built;
}

TEST(ProgressWatch, NamesTheForceThatMakesStepsAMillionTimesShorter) {
  RunOptions options;
  options.strict = true;  // else the run would creep on
  const TestRun out = run(wall(1e12), options);
  ASSERT_THAT(warnings_of(out), ElementsAre("tiny-steps"));
  EXPECT_THAT(out.told[0], AllOf(HasSubstr("less than a millionth of the longest, "),
                                 HasSubstr("the force of 'force1' changes fastest")));
}

TEST(ProgressWatch, IsQuietAboutStepsThatAStiffForceShortensLess) {
  EXPECT_THAT(warnings_of(run_to_end(wall(1e4))), IsEmpty());
}

/// Seconds that pass at every look at the clock.
RunOptions with_clock(double seconds_per_look) {
  RunOptions options;
  options.seconds = [now = 0.0, seconds_per_look]() mutable { return now += seconds_per_look; };
  return options;
}

/// A ball on a spring, with `per_row` steps of fixed length for a row.
TestModel spring(int per_row) {
  TestModel built = ball(1, 0.1);
  built.add_force(1, {"-100*dx(ball)", "0", "0"});
  built.body(0).velocity = {1, 0, 0};
  built.model.simulation.integrator = Integrator::runge_kutta_fixed;
  built.model.simulation.step = 0.1 / per_row;
  return built;
}

TEST(ProgressWatch, TellsOfARowThatTakesMoreThanTenSeconds) {
  const TestRun out = run(spring(10), with_clock(1.2));
  EXPECT_EQ(out.summary.outcome, RunOutcome::finished);
  ASSERT_THAT(warnings_of(out), ElementsAre("slow-row")) << "once";
  EXPECT_THAT(out.told[0], AllOf(HasSubstr("one row of results has taken"), HasSubstr("s of computing and"),
                                 HasSubstr("the force of 'force0' changes fastest")));
}

TEST(ProgressWatch, IsQuietAboutRowsOfLessThanTenSeconds) {
  EXPECT_THAT(warnings_of(run(spring(10), with_clock(0.7))), IsEmpty());
}

TEST(ProgressWatch, CallsNoSubroutineAndLeavesAllBits) {
  const TestRun slow = run(spring(10), with_clock(1.2)), quick = run(spring(10), with_clock(0));
  ASSERT_THAT(warnings_of(quick), IsEmpty());
  EXPECT_EQ(slow.rows, quick.rows);
  EXPECT_EQ(slow.summary.evaluations, quick.summary.evaluations);
}

TEST(Watch, UnderStrictAWarningEndsTheRunAtOnceAsFailed) {
  TestModel built = ball();
  built.body(0).velocity = {3.1e7, 0, 0};
  RunOptions options;
  options.strict = true;
  const TestRun out = run(built, options);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  EXPECT_EQ(out.summary.steps, 1);
  EXPECT_THAT(out.summary.message, HasSubstr("it moves at 3.1e+07"));
  EXPECT_EQ(out.rows.size(), 1u) << "the start is kept";
  EXPECT_THAT(warnings_of(out), ElementsAre("speed-beyond-sense"));
}

TEST(Watch, DoesNotTellAgainWhatWasToldBeforeTheRun) {
  TestModel built = ball();
  built.body(0).velocity = {3.1e7, 0, 0};
  built.body(0).at = {"test_model.toml", 7, 1};
  RunOptions options;
  options.warnings.push_back({Level::warning, "speed-beyond-sense", built.body(0).at, "told"});
  const TestRun out = run(built, options);
  EXPECT_THAT(out.told, IsEmpty());
  EXPECT_THAT(warnings_of(out), ElementsAre("speed-beyond-sense"));
}

TEST(Watch, TakesElementsFromOnePlaceOfTheModelForOne) {
  TestModel built = ball(1e-6, 1e-7);
  const Script script([&](const HookCall& call) { call.result[0] = 1e13; });
  for (const int line : {7, 7, 8}) {
    Element& part = built.add_element("part", "scripted", ElementKind::force, {}, 6);
    part.marker = 1;
    part.at = {"test_model.toml", line, 1};
  }
  EXPECT_THAT(warnings_of(run_to_end(built)), ElementsAre("force-beyond-digits", "force-beyond-digits"));
}

}  // namespace
