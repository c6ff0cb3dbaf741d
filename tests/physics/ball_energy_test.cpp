#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/cli/process.h"
#include "tests/support/exact_text.h"

namespace {

// The engine sums 1/2 m v^2 + 1/2 w . I w over the bodies' inertia tensors; the report knows masses, diameters and
// two magnitudes. Both round a handful of sums.
TEST(BallReport, AddsUpToTheEnginesOwnKineticEnergy) {
  std::string model = "gravity = [0, 0, -9.81]\n[simulation]\nend_time = 1\noutput_step = 0.1\n";
  std::string names;
  constexpr int k_balls = 12;
  for (int i = 0; i < k_balls; ++i) {
    const std::string name = "ball" + std::to_string(i);
    model += "[[body]]\nname = \"" + name + "\"\nmass = " + qvtest::exact_text(0.5 + 0.37 * i) +
             "\nshape = { sphere = { radius = " + qvtest::exact_text(0.02 + 0.013 * i) + " } }\nposition = [" +
             std::to_string(i) + ", 0, 3]\nvelocity = [" + qvtest::exact_text(0.3 * i) + ", -1, " +
             qvtest::exact_text(2 - 0.5 * i) + "]\nangular_velocity = [" + std::to_string(7 - i) + ", " +
             std::to_string(3 * i) + ", 11]\n";
    names += (i == 0 ? "\"" : ", \"") + name + "\"";
  }
  model += "[[element]]\nname = \"energies\"\ntype = \"balls\"\nbodies = [" + names + "]\n";
  const std::filesystem::path folder = fresh_folder();
  write_text(folder / "model.toml", model);
  const CommandResult result = run_command({"run", "model.toml", "--out", "results", "--quiet"}, folder);
  ASSERT_EQ(result.code, 0) << result.err;
  const ResultTable table(folder / "results/results.csv");
  ASSERT_EQ(table.rows(), 11U);
  for (std::size_t row = 0; row < table.rows(); ++row) {
    double sum = 0;
    for (int i = 0; i < k_balls; ++i) {
      const std::string ball = "energies.ball" + std::to_string(i);
      sum += table[ball + ".translational_energy [J]"][row] + table[ball + ".rotational_energy [J]"][row];
    }
    EXPECT_NEAR(sum, table["kinetic_energy [J]"][row], 1e-13 * sum) << "row " << row;
  }
}

}  // namespace
