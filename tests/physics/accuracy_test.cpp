#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/physics/standard_problems.h"

namespace {

using qvtest::k_si;
using qvtest::problem_run;
using qvtest::standard_problem;

problem_run run_at(const standard_problem& problem, double output_step, const std::string& settings = "",
                   const qvtest::unit_choice& units = k_si) {
  return qvtest::run_problem(problem, settings, output_step, units, fresh_folder());
}

/// What a model file has without the key.
double default_accuracy(const standard_problem& problem) {
  return problem.model.find("[[element]]") == std::string::npos ? 1e-5 : 1e-4;
}

// A step may be wrong by the accuracy, as a share of what moves. What one step leaves behind grows at most linearly in
// these problems, to a few times of itself at their ends; so all steps together stay below some times their number.
TEST(StandardProblems, AreSolvedAtTheDefaultToTheAccuracyTimesTheNumberOfSteps) {
  for (const standard_problem& problem : qvtest::standard_problems()) {
    const problem_run run = run_at(problem, problem.output_step);
    EXPECT_LT(run.error, default_accuracy(problem) * static_cast<double>(run.steps)) << problem.name;
    EXPECT_LT(run.error, 0.02) << problem.name;
  }
}

TEST(StandardProblems, AreSolvedBetterTheMoreAccuracyIsAskedOfThem) {
  for (const standard_problem& problem : qvtest::standard_problems()) {
    const problem_run coarse = run_at(problem, problem.output_step, "accuracy = 1e-4\n"),
                      fine = run_at(problem, problem.output_step, "accuracy = 1e-8\n");
    EXPECT_LT(fine.error, coarse.error / 100) << problem.name;
    EXPECT_LT(fine.error, 1e-8 * static_cast<double>(fine.steps)) << problem.name;
  }
}

// Sparse outputs let steps grow as far as their errors allow, dense ones cut them short.
TEST(StandardProblems, AreAsGoodWithSparseOutputsAsWithDenseOnes) {
  for (const standard_problem& problem : qvtest::standard_problems()) {
    const problem_run dense = run_at(problem, problem.end_time / 100), half = run_at(problem, problem.end_time / 50),
                      sparse = run_at(problem, problem.end_time / 2);
    const double bound =
        default_accuracy(problem) * static_cast<double>(std::max({dense.steps, half.steps, sparse.steps}));
    for (const problem_run& run : {dense, half, sparse}) EXPECT_LT(run.error, bound) << problem.name;
  }
}

// The units change the rounding of every number, and nothing else.
TEST(StandardProblems, GiveTheSameAnswerInMetresAndSecondsAsInMillimetresAndMilliseconds) {
  for (const standard_problem& problem : qvtest::standard_problems()) {
    if (problem.name == "wheel on soil") continue;  // its road is in metres
    const problem_run si = run_at(problem, problem.output_step),
                      small = run_at(problem, problem.output_step, "", qvtest::k_millimetres_and_milliseconds);
    ASSERT_EQ(si.values.size(), small.values.size());
    EXPECT_EQ(si.steps, small.steps) << problem.name;
    for (size_t i = 0; i < si.values.size(); ++i)
      EXPECT_NEAR(si.values[i], small.values[i], 1e-9 * std::max(1e-3, std::abs(si.values[i]))) << problem.name;
  }
}

TEST(StandardProblems, HoldAWayBelowTheSmallestMotionToNothing) {
  const auto& problems = qvtest::standard_problems();
  const auto oscillator = std::find_if(problems.begin(), problems.end(),
                                       [](const standard_problem& p) { return p.name == "1 mm oscillator"; });
  const problem_run fine = run_at(*oscillator, oscillator->output_step),
                    coarse = run_at(*oscillator, oscillator->output_step, "smallest_motion = 0.1\n");
  EXPECT_LT(coarse.steps, fine.steps);
}

}  // namespace
