/// Prints the table of docs/engine.md, "Accuracy": the error of six standard problems against `accuracy`.
#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/physics/standard_problems.h"
#include "tests/support/temporary_folder.h"

int main() {
  const qvtest::TemporaryFolder folder;
  const char* accuracies[] = {"1e-2", "1e-3", "1e-4", "1e-5", "1e-6", "1e-7", "1e-8"};
  std::printf("| `accuracy` |");
  for (const auto& problem : qvtest::standard_problems()) std::printf(" %s |", problem.name.c_str());
  std::printf("\n|---|");
  for (size_t k = 0; k < qvtest::standard_problems().size(); ++k) std::printf("---|");
  for (const std::string accuracy : accuracies) {
    std::printf("\n| %s |", accuracy.c_str());
    for (const auto& problem : qvtest::standard_problems()) {
      const qvtest::problem_run run = qvtest::run_problem(problem, "accuracy = " + accuracy + "\n", problem.output_step,
                                                          qvtest::k_si, folder.path(""));
      std::printf(" %.0e (%ld) |", run.error, run.steps);
      std::fflush(stdout);
    }
  }
  std::printf("\n");
}
