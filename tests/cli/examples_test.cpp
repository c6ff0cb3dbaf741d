#include <gmock/gmock.h>

#include <cmath>
#include <numeric>

#include "tests/cli/process.h"

namespace {

namespace fs = std::filesystem;

/// Runs a copy of an example (it makes its road beside the model) and hands over its table.
ResultTable results_of(const std::string& example, const std::vector<std::string>& more = {}) {
  const fs::path folder = fresh_folder();
  fs::copy(fs::path(QVBRISK_EXAMPLES) / example / "model.toml", folder / "model.toml");
  std::vector<std::string> arguments = {"run", "model.toml", "--out", "results"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const CommandResult result = run_command(arguments, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  return ResultTable(folder / "results/results.csv");
}

double mean_from(const std::vector<double>& time, const std::vector<double>& values, double from) {
  double sum = 0;
  int count = 0;
  for (size_t i = 0; i < time.size(); ++i) {
    if (time[i] < from) continue;
    sum += values[i];
    ++count;
  }
  return sum / count;
}

TEST(Example, PlatesFollowBekkersLawToFiveDigits) {
  const ResultTable table = results_of("plate_sinkage");
  // Soil of the example, and its plates [SI]; the damping of a slow press is part of the law.
  constexpr double kc = 52530, kphi = 1.12797e6, n = 0.9, speed = 0.01, damp_ratio = 0.01, boundary_sinkage = 0.05;
  for (const auto& [name, width] : {std::pair<std::string, double>{"narrow", 0.05}, {"wide", 0.20}}) {
    for (size_t i = 1; i < table.rows(); ++i) {
      const double z = speed * table["time [s]"][i];
      const double pressure = (kc / width + kphi) * std::pow(z, n);
      const double damping = pressure * damp_ratio * speed / std::max(z, boundary_sinkage);
      const double force = (pressure + damping) * 0.4 * width;
      EXPECT_NEAR(table[name + "_soil.force_z [N]"][i], force, 1e-5 * force) << name << " plate at " << z << " m";
    }
  }
}

TEST(Example, WheelCarriesItsLoadPullsItsTrailerAndDrivesOn) {
  const ResultTable table = results_of("wheel_on_soil");
  const std::vector<double>& time = table["time [s]"];
  const std::vector<double>& x = table["wheel.x [m]"];
  const std::vector<double>& speed = table["wheel.vx [m/s]"];
  const std::vector<double>& lift = table["tyre.force_z [N]"];
  const std::vector<double>& push = table["tyre.force_x [N]"];
  constexpr double k_load = 5000, k_pull = 1000, k_settled = 5, k_start_of_drive = 2;  // [N] [N] [s] [s]
  EXPECT_GT(x.back(), 10.0);
  // Momentum: the mean force over the settled drive is the load, up to what the body's speed changed by.
  const double duration = time.back() - k_settled, mass = k_load / 9.81;
  const std::vector<double>& climb = table["wheel.vz [m/s]"];
  const size_t first = static_cast<size_t>(
      std::find_if(time.begin(), time.end(), [&](double t) { return t >= k_settled; }) - time.begin());
  const double lift_expected = k_load + mass * (climb.back() - climb[first]) / duration;
  const double push_expected = k_pull + mass * (speed.back() - speed[first]) / duration;
  EXPECT_NEAR(mean_from(time, lift, k_settled), lift_expected, 0.01 * k_load);
  EXPECT_NEAR(mean_from(time, push, k_settled), push_expected, 0.05 * k_pull);
  // It slips under the pull: slower than its rim, but not by much.
  for (size_t i = 0; i < time.size(); ++i) {
    if (time[i] < k_start_of_drive) continue;
    EXPECT_GT(speed[i], 1.6) << "at " << time[i];
    EXPECT_LT(speed[i], 2.05) << "at " << time[i];
    EXPECT_GT(lift[i], 0.0) << "at " << time[i];
  }
}

TEST(Example, BallsFallAndSpinWithTheEnergiesOfRigidSpheres) {
  const ResultTable table = results_of("ball_drop");
  constexpr double k_density = 7850, k_g = 9.81, k_pi = 3.141592653589793;
  struct ball_case {
    const char* name;
    double radius, spin, along, up;  // [m] [rad/s] [m/s] [m/s] at the start
  };
  for (const ball_case& ball :
       {ball_case{"small", 0.05, 30, 0, 0}, {"middle", 0.10, 10, 3, 4}, {"large", 0.20, 0, 0, 0}}) {
    const double mass = k_density * 4.0 / 3.0 * k_pi * std::pow(ball.radius, 3);
    const double rotational = 0.5 * 0.4 * mass * ball.radius * ball.radius * ball.spin * ball.spin;
    const std::string head = std::string("balls.") + ball.name;
    for (size_t i = 0; i < table.rows(); ++i) {
      const double up = ball.up - k_g * table["time [s]"][i];
      const double translational = 0.5 * mass * (up * up + ball.along * ball.along);
      EXPECT_NEAR(table[head + ".diameter [m]"][i], 2 * ball.radius, 1e-12);
      EXPECT_NEAR(table[head + ".translational_energy [J]"][i], translational, 1e-6 * (1 + translational)) << ball.name;
      EXPECT_NEAR(table[head + ".rotational_energy [J]"][i], rotational, 1e-6 * (1 + rotational)) << ball.name;
    }
  }
}

}  // namespace
