#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>

#include "tests/physics/water_model.h"

namespace {

constexpr double k_mass = 800;  // [kg]

/// A boat on a slider along x with a thruster that holds the speed `order`, and drag in proportion to the speed.
const std::string k_controlled_boat = R"toml(gravity = [0, 0, -9.81]
[simulation]
end_time = "end"
output_step = "row"
frame_step = "end"
accuracy = 1e-6
max_step = "sample"
[[body]]
name = "boat"
mass = 800
inertia = [1, 1, 1]
[[joint]]
name = "way"
type = "slider"
body = "boat"
axis = "x"
start_velocity = { travel = "start" }
[[force]]
name = "drag"
marker = "boat"
force = ["-c*vx(boat)", 0, 0]
[[variable]]
name = "order"
value = "ordered"
[[spline]]
name = "engine"
x = [0, 4]
y = [100, 500]
[[element]]
name = "screw"
type = "thruster"
marker = "boat"
speed_control = { command = "order" }
gains = { p = "p", i = "i", d = "d" }
)toml";

struct controller {
  const char* name;
  double p, i, d, c;  // [N s/m] [N/m] [kg] [N s/m]
};

/// Solution of (m + d) y'' + (p + c) y' + i y = -c v0, y(0) = 0, y'(0) = -v0, where y is the integral of v - v0.
double closed_speed(const controller& k, double v0, double t) {
  using complex = std::complex<double>;
  const double M = k_mass + k.d, s = (k.p + k.c) / (2 * M);
  const complex root = std::sqrt(complex(s * s - k.i / M));
  const complex r1 = -s + root, r2 = -s - root;
  const double rest = -k.c * v0 / k.i;
  const complex b = (-v0 + rest * r1) / (r2 - r1), a = -rest - b;
  return v0 + (a * r1 * std::exp(r1 * t) + b * r2 * std::exp(r2 * t)).real();
}

qvtest::Parameters settings(const controller& k, double ordered, double start, double step, double end) {
  return {{"p", k.p},       {"i", k.i},       {"d", k.d},   {"c", k.c},       {"ordered", ordered},
          {"start", start}, {"sample", step}, {"end", end}, {"row", end / 50}};
}

/// Speeds of a step response, sampled with this step.
std::vector<double> step_response(const controller& k, double v0, double step) {
  const ResultTable table =
      qvtest::run_afloat(k_controlled_boat + "mode = \"feedback\"\n", settings(k, v0, 0, step, 10));
  return table["boat.vx [m/s]"];
}

// The controller reads the error, and its rate, as of the last accepted step: it samples once per step, and so is off
// by an amount in proportion to the step. Half the step must halve the difference; and what is left when that part is
// taken out (twice the finer minus the coarser) must be of the next order.
TEST(SpeedControl, StepResponseTendsToTheLinearSystemsClosedSolutionWithTheStep) {
  constexpr double v0 = 2, coarse_step = 0.01;
  const controller controllers[] = {
      {"aperiodic", 1600, 400, 0, 0},
      {"with drag", 1200, 600, 0, 300},
      {"swinging", 300, 1500, 0, 100},
      {"with a gain on the acceleration", 1200, 600, 200, 100},
  };
  for (const controller& k : controllers) {
    const std::vector<double> coarse = step_response(k, v0, coarse_step), fine = step_response(k, v0, coarse_step / 2);
    ASSERT_EQ(coarse.size(), 51U);
    double of_coarse = 0, of_fine = 0, of_both = 0;
    for (size_t n = 0; n < coarse.size(); ++n) {
      const double v = closed_speed(k, v0, 0.2 * static_cast<double>(n));
      of_coarse = std::max(of_coarse, std::fabs(coarse[n] - v));
      of_fine = std::max(of_fine, std::fabs(fine[n] - v));
      of_both = std::max(of_both, std::fabs(2 * fine[n] - coarse[n] - v));
    }
    EXPECT_LT(of_coarse, 0.03 * v0) << k.name;
    EXPECT_NEAR(of_fine / of_coarse, 0.5, 0.05) << k.name;
    EXPECT_LT(of_both, 0.1 * of_fine) << k.name;
  }
}

// With p alone: the thrust stands at the limit L until the error is L/p, v growing by L/m; then the error dies out as
// e^(-p t/m). The limit is the spline's at the order, 100 + 100 * 2.5 = 350 N. Samples are one step old.
TEST(ThrustLimit, HoldsTheThrustAtTheSplinesValueUntilTheErrorIsSmallEnough) {
  constexpr double v0 = 2.5, limit = 350, step = 1e-3;
  const controller k{"", 500, 0, 0, 0};
  for (const double start : {0.0, 6.0}) {  // speeding up, slowing down
    const ResultTable table = qvtest::run_afloat(k_controlled_boat + "mode = \"limited\"\nlimit = \"engine\"\n",
                                                 settings(k, v0, start, step, 10));
    const double way = v0 - start, sign = way > 0 ? 1 : -1;
    const double leaves = (std::fabs(way) - limit / k.p) * k_mass / limit;  // time at which the limit no longer binds
    ASSERT_GT(leaves, 2);
    for (size_t n = 1; n < table.rows(); ++n) {
      const double t = table["time [s]"][n], thrust = table["screw.force_x [N]"][n];
      const double v = t < leaves ? start + sign * limit / k_mass * t
                                  : v0 - sign * limit / k.p * std::exp(-k.p / k_mass * (t - leaves));
      EXPECT_NEAR(table["boat.vx [m/s]"][n], v, 2 * limit / k_mass * step) << "at " << t;
      EXPECT_LE(std::fabs(thrust), limit * (1 + 1e-12)) << "at " << t;
      if (t < leaves - 2 * step) {
        EXPECT_NEAR(thrust, sign * limit, 1e-9 * limit) << "at " << t;
      }
    }
  }
}

constexpr double k_amplitude = 0.5, k_period = 4, k_extent = 60;  // of the wave [m] [s], of its table [m]
constexpr double k_omega = 2 * M_PI / k_period, k_wave_number = k_omega * k_omega / qvtest::k_gravity;

/// A thruster of 100 N in a regular wave, at the height `up` over still water; the water's x = 0 is at -500.
const std::string k_thruster_in_waves = qvtest::water_head(qvtest::steady_steps()) + R"toml(
[[wave]]
name = "sea"
file = "sea.wave"
kind = "regular"
height = 1
period = 4
time_step = 0.02
x_step = 0.1
extent = 60
[[body]]
name = "boat"
mass = "mass"
inertia = [1, 1, 1]
[[variable]]
name = "pull"
value = 100
[[element]]
name = "screw"
type = "thruster"
marker = "boat"
mode = "variable"
variable = "pull"
wave = "sea"
water = "water"
)toml";

// The surface between the table's points is off by less than 1e-3 of the amplitude; moments nearer to a passage than
// that decide nothing.
TEST(ThrustInWaves, ActsWhereTheSurfaceIsOverTheThrusterAndNowhereElse) {
  const std::string model = k_thruster_in_waves + R"toml(
[[joint]]
name = "way"
type = "slider"
body = "boat"
position = [-435, 0, "up"]
axis = "x"
motion = "-7*t"
)toml";
  for (const double up : {0.3, 0.0, -0.4}) {
    const ResultTable table =
        qvtest::run_afloat(model, {{"up", up}, {"mass", 1}, {"longest", 0.02}, {"end", 10}, {"row", 0.0317}});
    int on = 0, off = 0, beyond = 0;
    for (size_t n = 1; n < table.rows(); ++n) {
      const double t = table["time [s]"][n], x = 65 - 7 * t, thrust = table["screw.force_x [N]"][n];
      const double over = k_amplitude * std::cos(k_wave_number * x - k_omega * t) - up;
      if (x < 0 || x >= k_extent) {
        EXPECT_EQ(thrust, 0) << "outside of the table, at " << t;
        ++beyond;
      } else if (over > 2e-3 * k_amplitude) {
        EXPECT_EQ(thrust, 100) << "in the water, at " << t;
        ++on;
      } else if (over < -2e-3 * k_amplitude) {
        EXPECT_EQ(thrust, 0) << "over the water, at " << t;
        ++off;
      }
    }
    EXPECT_GT(on, 20);
    EXPECT_GT(off, 20);
    EXPECT_GT(beyond, 20);
  }
}

// A boat too heavy to move gains F/m times the time that the surface is over its thruster: acos(up/a)/pi of a period.
// Each passage is met within a step, four of them in two periods.
TEST(ThrustInWaves, GivesTheMomentumOfTheTimeUnderWater) {
  const std::string model = k_thruster_in_waves + R"toml(
[[joint]]
name = "way"
type = "slider"
body = "boat"
position = [-480, 0, "up"]
axis = "x"
)toml";
  constexpr double k_heavy = 1e6, k_periods = 2, k_step = 0.01;  // [kg] [-] [s]
  for (const double up : {0.3, 0.0, -0.4}) {
    const ResultTable table = qvtest::run_afloat(
        model, {{"up", up}, {"mass", k_heavy}, {"longest", k_step}, {"end", k_periods * k_period}, {"row", k_step}});
    const double under = std::acos(up / k_amplitude) / M_PI * k_periods * k_period;
    EXPECT_NEAR(table["boat.vx [m/s]"].back() * k_heavy / 100, under, 2 * k_periods * k_step);
  }
}

}  // namespace
