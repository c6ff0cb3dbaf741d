#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/physics/water_model.h"

namespace {

using qvtest::k_gravity;
using qvtest::k_water_density;

constexpr double k_height = 1.0, k_period = 4.0, k_amplitude = k_height / 2;  // [m] [s] [m]
constexpr double k_omega = 2 * M_PI / k_period;
constexpr double k_step = 0.01;  // of a period or a wave length: steps of the tables below

/// Wave number of linear theory: omega^2 = g k tanh(k h), by bisection. Depth 0: deep water.
double wave_number(double depth) {
  if (depth == 0) return k_omega * k_omega / k_gravity;
  double low = 0, high = 100;
  for (int i = 0; i < 200; ++i) {
    const double k = 0.5 * (low + high);
    (k_gravity * k * std::tanh(k * depth) < k_omega * k_omega ? low : high) = k;
  }
  return low;
}

struct wave_case {
  const char* name;
  const char* lines;  // of the [[wave]]
  double depth, sign;
};
const wave_case k_waves[] = {
    {"deep, towards +x", "", 0, 1},
    {"deep, towards -x", "direction = \"-x\"\n", 0, -1},
    {"4 m deep", "depth = 4\n", 4, 1},
    {"2 m deep, towards -x", "depth = 2\ndirection = \"-x\"\n", 2, -1},
};

std::string wave_table(const char* lines) {
  return "[[wave]]\nname = \"sea\"\nfile = \"sea.wave\"\nkind = \"regular\"\nheight = \"wave_height\"\nperiod = 4\n"
         "time_step = \"time_step\"\nx_step = \"x_step\"\nextent = 60\n" +
         std::string(lines);
}

/// Straight lines between the table's points are off by (step * wave number)^2 / 8 of the amplitude, once in time and
/// once in place; twice that for safety with the probe's own width of a thousandth of a wave.
constexpr double k_table_error = 2 * 2 * (2 * M_PI * k_step) * (2 * M_PI * k_step) / 8;

// An upright post, 4 m long and 2 cm wide, is drawn through the sea. Only its bottom and its head face up or down, so
// its volume under water over its cross section is the surface's height over its bottom; and the bottom's drag is
// rho/2 w^2 of the water's rise w, where that is upwards.
TEST(WaveTable, ShowsAMovingPointTheLinearWaveThatItWasWrittenFrom) {
  constexpr double k_width = 0.02, k_bottom = -2, k_from = 10, k_speed = 1.7;  // [m] [m] [m] [m/s]
  const std::string post = qvtest::water_head(qvtest::steady_steps()) + R"toml(
[[body]]
name = "boat"
mass = 1
inertia = [1, 1, 1]
[[joint]]
name = "way"
type = "slider"
body = "boat"
position = [-490, 0, 0]
axis = "x"
motion = "1.7*t"
)toml" + qvtest::hull_element(R"({ shape = "box", size = [0.02, 0.02, 4], divisions = [1, 1, 1] })", "", "sea");
  for (const wave_case& wave : k_waves) {
    const double k = wave.sign * wave_number(wave.depth);
    const ResultTable table =
        qvtest::run_afloat(post + wave_table(wave.lines), {{"wave_height", k_height},
                                                           {"time_step", k_step * k_period},
                                                           {"x_step", k_step * 2 * M_PI / std::fabs(k)},
                                                           {"longest", 0.05},
                                                           {"end", 20},
                                                           {"row", 0.137}});
    int rising = 0;
    for (size_t i = 1; i < table.rows(); ++i) {  // the surface of the set-up call is level
      const double t = table["time [s]"][i], phase = k * (k_from + k_speed * t) - k_omega * t;
      const double elevation = table["hull.submerged_volume [m^3]"][i] / (k_width * k_width) + k_bottom;
      EXPECT_NEAR(elevation, k_amplitude * std::cos(phase), k_table_error * k_amplitude) << wave.name << " at " << t;
      const double rise = std::max(0.0, k_omega * k_amplitude * std::sin(phase));
      const double pressure = table["hull.normal_drag_force_z [N]"][i] / (k_width * k_width);
      EXPECT_NEAR(std::sqrt(2 * pressure / k_water_density), rise, k_table_error * k_omega * k_amplitude)
          << wave.name << " at " << t;
      rising += rise > 0 ? 1 : 0;
    }
    EXPECT_GT(rising, 30) << wave.name;
  }
}

// A slender spar on an upright slider: its spring pulls it to the surface at its place, so it is the oscillator
// s'' = w0^2 (a cos(k x - w t) - s) with w0^2 = g/draught, whose whole course from rest is known. What the table loses
// of the wave's height it loses of the answer; the corners of its straight lines shake the spar a little besides.
TEST(SparInAWave, HeavesAsAnOscillatorDrivenByTheSurface) {
  const std::string spar = qvtest::water_head(qvtest::steady_steps()) + R"toml(
[[body]]
name = "boat"
mass = 10
inertia = [1, 1, 1]
[[joint]]
name = "heave"
type = "slider"
body = "boat"
position = [-470, 0, 0]
axis = "z"
)toml" +
                           qvtest::hull_element(R"({ shape = "box", size = [0.1, 0.1, 2], divisions = [1, 1, 1] })",
                                                "drag_scale = 0\n", "sea");
  constexpr double k_small = 0.2, k_draught = 1.0;  // wave amplitude [m], mass over rho times cross section [m]
  const double k = wave_number(0), at = k * 30, natural = std::sqrt(k_gravity / k_draught);
  const double forced = k_small * natural * natural / (natural * natural - k_omega * k_omega);
  const double b = -forced * std::cos(at), c = -forced * k_omega * std::sin(at) / natural;
  const ResultTable table = qvtest::run_afloat(spar + wave_table(""), {{"wave_height", 2 * k_small},
                                                                       {"time_step", k_step * k_period},
                                                                       {"x_step", k_step * 2 * M_PI / k},
                                                                       {"longest", 0.02},
                                                                       {"end", 20},
                                                                       {"row", 0.1}});
  for (size_t i = 0; i < table.rows(); ++i) {
    const double t = table["time [s]"][i];
    const double s = forced * std::cos(k_omega * t - at) + b * std::cos(natural * t) + c * std::sin(natural * t);
    EXPECT_NEAR(table["boat.z [m]"][i], s, 2 * k_table_error * forced) << "at " << t;
  }
}

// Water that was looked up does not run backwards when a step is tried again: the run tells, but not where the water is
// at rest anyway, and not of steps that are never tried again.
TEST(StepsTakenBack, AreToldInWavesAndOnlyThere) {
  const auto record_of = [](const std::string& control, const char* wave) {
    const std::string spar = qvtest::water_head(control) + R"toml(
[[body]]
name = "boat"
mass = 10
inertia = [1, 1, 1]
[[joint]]
name = "heave"
type = "slider"
body = "boat"
position = [-470, 0, 0]
axis = "z"
)toml" + qvtest::hull_element(R"({ shape = "box", size = [0.1, 0.1, 2], divisions = [1, 1, 1] })", "", wave);
    std::string record;
    qvtest::run_afloat(
        spar + wave_table(""),
        {{"wave_height", 0.4}, {"time_step", 0.2}, {"x_step", 1}, {"longest", 0.02}, {"end", 6}, {"row", 0.5}}, 0.0,
        &record);
    return record;
  };
  constexpr const char* k_told = "steps again with a smaller one";
  const std::string in_waves = record_of("accuracy = 1e-6\n", "sea");
  EXPECT_NE(in_waves.find(k_told), std::string::npos) << in_waves;
  EXPECT_EQ(record_of("accuracy = 1e-6\n", "calm.wave").find(k_told), std::string::npos);
  EXPECT_EQ(record_of(qvtest::steady_steps(), "sea").find(k_told), std::string::npos);
}

}  // namespace
