#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "qvbrisk/services.h"
#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

struct LoggedCall {
  int element;  // par[0]
  int iflag;
  double time;
};

/// Elements 0 report, 1 force, 2 report, 3 force on one sliding body; par is the element's number.
TestModel four_elements(double end_time, double output_step) {
  TestModel built(end_time, output_step);
  const int sled = built.add_body("sled", 1, {1, 1, 1});
  built.add_joint(JointType::slider, 0, built.add_marker(sled, {0, 0, 0}));
  for (int k = 0; k < 4; ++k) {
    const bool force = k % 2 == 1;
    Element& element = built.add_element("element" + std::to_string(k), "scripted",
                                         force ? ElementKind::force : ElementKind::report, {static_cast<double>(k)}, 6);
    element.marker = force ? 1 : k_none;
  }
  return built;
}

std::vector<LoggedCall> log_of(const TestModel& built, TestRun& out) {
  std::vector<LoggedCall> log;
  const Script script([&](const HookCall& call) {
    EXPECT_EQ(call.npar, 1);
    EXPECT_EQ(call.difflag, 0);
    for (int k = 0; k < 6; ++k) EXPECT_EQ(call.result[k], 0) << "result arrays come cleared";
    call.result[0] = std::sin(40 * call.time);
    log.push_back({static_cast<int>(call.par[0]), call.iflag, call.time});
  });
  out = run_to_end(built);
  return log;
}

TEST(CallProtocol, SetUpComesFirstForEachElementInFileOrder) {
  TestRun out;
  const auto log = log_of(four_elements(0.1, 0.1), out);
  ASSERT_GT(log.size(), 4u);
  for (size_t k = 0; k < log.size(); ++k) {
    if (k < 4) {
      EXPECT_EQ(log[k].iflag, 1);
      EXPECT_EQ(log[k].element, static_cast<int>(k));
      EXPECT_EQ(log[k].time, 0);
    } else {
      EXPECT_NE(log[k].iflag, 1);
    }
  }
}

TEST(CallProtocol, EveryAcceptedStepIsToldForcesFirstThenReports) {
  TestRun out;
  const auto log = log_of(four_elements(1.0, 0.1), out);
  std::vector<LoggedCall> after_steps;
  std::copy_if(log.begin(), log.end(), std::back_inserter(after_steps),
               [](const auto& call) { return call.iflag == 2; });
  ASSERT_EQ(after_steps.size(), 4 * static_cast<size_t>(out.summary.steps));
  const int order[4] = {1, 3, 0, 2};
  double before = 0;
  for (size_t k = 0; k < after_steps.size(); ++k) {
    EXPECT_EQ(after_steps[k].element, order[k % 4]);
    if (k % 4 == 0) {
      EXPECT_GT(after_steps[k].time, before) << "time goes on from step to step";
      before = after_steps[k].time;
    }
    EXPECT_EQ(after_steps[k].time, before) << "one state for all elements of a step";
  }
  EXPECT_EQ(before, 1.0);
}

TEST(CallProtocol, ReportsAreNotCalledDuringIntegration) {
  TestRun out;
  const auto log = log_of(four_elements(0.5, 0.1), out);
  long evaluations = 0;
  for (const LoggedCall& call : log) {
    if (call.iflag != 0) continue;
    EXPECT_EQ(call.element % 2, 1) << "a report was evaluated";
    evaluations += call.element == 1 ? 1 : 0;
  }
  EXPECT_EQ(evaluations, out.summary.evaluations);
  EXPECT_GT(evaluations, 4 * out.summary.steps) << "a Merson step takes five evaluations, one of them shared";
}

TEST(CallProtocol, ForcesAreEvaluatedAnewRightAfterEveryStep) {
  TestRun out;
  const auto log = log_of(four_elements(0.5, 0.1), out);
  for (size_t k = 0; k + 1 < log.size(); ++k) {
    if (log[k].iflag != 2 || log[k + 1].iflag != 0) continue;
    EXPECT_EQ(log[k + 1].time, log[k].time);
  }
}

TEST(CallProtocol, RejectedStepsAreNeverTold) {
  TestModel built = four_elements(1.0, 0.5);
  std::vector<LoggedCall> log;
  const Script script([&](const HookCall& call) {
    // A force that jumps at 0.4: steps across it fail and are tried again, shorter.
    call.result[0] = call.time > 0.4 ? 1e4 : 0;
    if (call.par[0] == 1) log.push_back({1, call.iflag, call.time});
  });
  const TestRun out = run_to_end(built);
  double told = 0, farthest = 0;
  long went_back = 0;
  for (const LoggedCall& call : log) {
    if (call.iflag == 2) {
      EXPECT_GT(call.time, told);
      told = call.time;
      if (farthest > call.time) ++went_back;
      farthest = call.time;
    } else {
      farthest = std::max(farthest, call.time);
    }
  }
  EXPECT_GT(went_back, 0) << "no step was rejected, so nothing was shown";
}

TEST(CallProtocol, HistoryThatStepsAdvanceActsFromTheNextStepOn) {
  constexpr double h = 0.01;
  TestModel built(1.0, 0.5);
  built.model.simulation.integrator = Integrator::semi_explicit_euler;
  built.model.simulation.step = h;
  const int sled = built.add_body("sled", 1, {1, 1, 1});
  built.add_joint(JointType::slider, 0, built.add_marker(sled, {0, 0, 0}));
  built.add_element("ratchet", "scripted", ElementKind::force, {}, 6).marker = 1;
  int steps = 0;
  const Script script([&](const HookCall& call) {
    call.result[0] = steps;
    if (call.iflag == 2) ++steps;
  });
  const TestRun out = run_to_end(built);
  // Velocity after n steps: h (0 + 1 + ... + n-1); the forces of the very first step are those of no step done.
  EXPECT_NEAR(out.at("sled.vx", 1), h * 50 * 49 / 2, 1e-9);
  EXPECT_NEAR(out.at("sled.vx", 2), h * 100 * 99 / 2, 1e-9);
}

TEST(SemiExplicitEuler, TakesTheStepsItWasGiven) {
  TestModel built(1.0, 0.1);
  built.model.simulation.integrator = Integrator::semi_explicit_euler;
  built.model.simulation.step = 0.001;
  built.add_body("ball", 1, {1, 1, 1});
  built.model.gravity = {0, 0, -10};
  const TestRun out = run_to_end(built);
  EXPECT_EQ(out.summary.steps, 1000);
  // v exact, z after n steps: -g h^2 n (n + 1) / 2
  EXPECT_NEAR(out.last("ball.vz"), -10, 1e-11);
  EXPECT_NEAR(out.last("ball.z"), -10 * 1e-6 * 1000 * 1001 / 2, 1e-11);
}

TEST(SemiExplicitEuler, ShortensAStepToReachAnOutputTime) {
  TestModel built(1.0, 0.25);
  built.model.simulation.integrator = Integrator::semi_explicit_euler;
  built.model.simulation.step = 0.1;
  built.add_body("ball", 1, {1, 1, 1});
  const TestRun out = run_to_end(built);
  EXPECT_EQ(out.summary.steps, 12) << "0.1 0.1 0.05 four times";
}

TEST(FixedRungeKutta, TakesTheStepsItWasGivenWhateverTheForceAndNeverGoesBack) {
  TestModel built(1.0, 0.25);
  built.model.simulation.integrator = Integrator::runge_kutta_fixed;
  built.model.simulation.step = 0.1;
  built.add_body("ball", 1, {1, 1, 1});
  built.add_element("kick", "scripted", ElementKind::force, {}, 6).marker = 1;
  double farthest = 0;
  const Script script([&](const HookCall& call) {
    EXPECT_GE(call.time, farthest);
    farthest = std::max(farthest, call.time);
    call.result[0] = call.time < 0.33 ? 0 : 1e4;  // what error control would reject
  });
  const TestRun out = run_to_end(built);
  EXPECT_EQ(out.summary.steps, 12) << "0.1 0.1 0.05 four times";
}

TEST(FixedRungeKutta, ConvergesWithTheFourthPowerOfItsStep) {
  const auto error_of = [](double step) {
    TestModel built(2.0, 2.0);
    built.model.simulation.integrator = Integrator::runge_kutta_fixed;
    built.model.simulation.step = step;
    built.add_body("ball", 1, {1, 1, 1});
    AppliedForce spring;
    spring.marker = 1;
    spring.force[0].text = "cos(3*t)";
    built.model.forces.push_back(spring);
    return std::abs(run_to_end(built).last("ball.x") - (1 - std::cos(6.0)) / 9);
  };
  const double coarse = error_of(0.2), fine = error_of(0.1);
  EXPECT_GT(coarse / fine, 12);
  EXPECT_LT(coarse / fine, 20);
}

TEST(MaximumStep, BoundsEveryStep) {
  TestModel built(1.0, 1.0);
  built.model.simulation.max_step = 0.05;
  built.add_body("ball", 1, {1, 1, 1});
  double largest = 0;
  RunOptions options;
  options.on_progress = [&](const Progress& progress) { largest = std::max(largest, progress.step); };
  const TestRun out = run(built, options);
  EXPECT_EQ(out.summary.outcome, RunOutcome::finished);
  EXPECT_LE(largest, 0.05 * (1 + 1e-9));
  EXPECT_GE(out.summary.steps, 20);
}

TEST(Runs, AreReproducibleToTheLastBit) {
  TestModel built = four_elements(1.0, 0.1);
  TestRun first, second;
  log_of(built, first);
  log_of(built, second);
  for (TestRun* run : {&first, &second}) run->rows.erase(run->rows.begin());  // reports have no value at the start
  EXPECT_EQ(first.rows, second.rows);
}

}  // namespace
