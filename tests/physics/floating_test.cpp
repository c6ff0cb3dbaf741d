#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/physics/water_model.h"

namespace {

using qvtest::k_gravity;
using qvtest::k_water_density;
using qvtest::Parameters;

const std::string k_box = R"({ shape = "box", size = ["length", "beam", "depth"], divisions = [3, 2, 2] })";

/// A homogeneous box that nothing holds, or whose centre of mass is moved by `aside`, `below`.
const std::string k_free_box = qvtest::water_head("accuracy = 1e-8") + R"toml(
[[body]]
name = "boat"
mass = "mass"
center = [0, "aside", "-below"]
inertia = ["mass/12*(beam^2+depth^2)", "mass/12*(length^2+depth^2)", "mass/12*(length^2+beam^2)"]
position = [0, 0, "height"]
angles = ["heel", "trim", 0]
)toml";

struct box {
  const char* name;
  double length, beam, depth, mass;  // [m] [kg]

  double waterplane() const { return length * beam; }
  double draught() const { return mass / (k_water_density * waterplane()); }
};

const box k_boxes[] = {
    {"half a cube", 1, 1, 1, 500},
    {"a barge deep in the water", 20, 6, 2, 0.9 * 20 * 6 * 2 * 1000},
    {"a raft", 4, 3, 0.5, 0.1 * 4 * 3 * 0.5 * 1000},
};

Parameters parameters_of(const box& b) {
  return {{"length", b.length}, {"beam", b.beam}, {"depth", b.depth}, {"mass", b.mass}};
}

Parameters with(Parameters all, const Parameters& more) {
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

/// The box on an upright slider.
const std::string k_heaving_box = qvtest::water_head("accuracy = 1e-9") + R"toml(
[[body]]
name = "boat"
mass = "mass"
inertia = [1, 1, 1]
[[joint]]
name = "heave"
type = "slider"
body = "boat"
axis = "z"
start = { travel = "height" }
)toml";

// Friction in proportion to the speed on the sides, up to 1000 N s/m per square metre, takes the swing away: for the
// deepest box at the rate c/(2m) of about 0.05/s, e^-10 in 200 s; drag of the bottom does more at first.
TEST(FloatingBox, ComesToRestAtTheDraughtOfItsWeightOverWaterDensityTimesArea) {
  for (const box& b : k_boxes) {
    const std::string model =
        k_heaving_box + qvtest::hull_element(k_box, "tangential = { coefficient = 1000, exponent = 1 }\n");
    const double fall = 0.3 * std::min(b.depth - b.draught(), b.draught());
    const ResultTable table = qvtest::run_afloat(
        model, with(parameters_of(b), {{"height", b.depth / 2 - b.draught() + fall}, {"end", 400}, {"row", 10}}));
    EXPECT_NEAR(b.depth / 2 - table["boat.z [m]"].back(), b.draught(), 1e-6 * b.draught()) << b.name;
    EXPECT_NEAR(table["hull.submerged_volume [m^3]"].back(), b.mass / k_water_density, 1e-6 * b.mass / k_water_density)
        << b.name;
    EXPECT_NEAR(table["hull.buoyancy_centre_z [m]"].back(), -b.draught() / 2, 1e-6 * b.draught()) << b.name;
  }
}

// Upright sides make the spring rho g A exactly linear as long as deck and bottom stay out of the surface, so not only
// the period but the whole course is known. Error control of 1e-9 per step, less than a thousand steps.
TEST(FloatingBox, HeavesAsAnUndampedOscillatorOfItsWaterplanesStiffness) {
  for (const box& b : k_boxes) {
    const double omega = std::sqrt(k_water_density * k_gravity * b.waterplane() / b.mass);
    const double amplitude = 0.5 * std::min(b.depth - b.draught(), b.draught());
    const double rest = b.depth / 2 - b.draught();
    const ResultTable table =
        qvtest::run_afloat(k_heaving_box + qvtest::hull_element(k_box, "drag_scale = 0\n"),
                           with(parameters_of(b), {{"height", rest + amplitude}, {"end", 20}, {"row", 0.05}}));
    std::vector<double> swing;
    for (size_t i = 0; i < table.rows(); ++i) {
      const double z = table["boat.z [m]"][i], t = table["time [s]"][i];
      EXPECT_NEAR(z, rest + amplitude * std::cos(omega * t), 1e-6) << b.name << " at " << t;
      swing.push_back(z - rest);
    }
    const double period = 2 * M_PI * std::sqrt(b.mass / (k_water_density * k_gravity * b.waterplane()));
    EXPECT_NEAR(qvtest::period_of(table["time [s]"], swing), period, 1e-3 * period) << b.name;
  }
}

// The waterplane of a prism of n sides is n/2 R^2 sin(2 pi/n), which is what its mesh has.
TEST(FloatingCylinder, HeavesWithTheStiffnessOfItsPolygonalWaterplane) {
  constexpr double k_radius = 0.8, k_mass = 1000;
  constexpr int k_sides = 24;
  const double area = 0.5 * k_sides * k_radius * k_radius * std::sin(2 * M_PI / k_sides);
  const double omega = std::sqrt(k_water_density * k_gravity * area / k_mass);
  const double rest = -k_mass / (k_water_density * area) + 1;  // half its length over the draught
  const std::string mesh = R"({ shape = "cylinder", radius = 0.8, length = 2, axis = "z", divisions = [24, 3] })";
  const ResultTable table = qvtest::run_afloat(k_heaving_box + qvtest::hull_element(mesh, "drag_scale = 0\n"),
                                               {{"mass", k_mass}, {"height", rest + 0.2}, {"end", 10}, {"row", 0.05}});
  for (size_t i = 0; i < table.rows(); ++i)
    EXPECT_NEAR(table["boat.z [m]"][i], rest + 0.2 * std::cos(omega * table["time [s]"][i]), 1e-6);
}

struct swing_case {
  const char* name;
  bool roll;     // else pitch
  double below;  // centre of mass under the middle [m]
};

// No horizontal force acts, so the box turns about its centre of mass. With GZ = sin(phi) (GM + BM/2 tan^2(phi)) the
// period differs from that of small angles by about 3/16 BM/GM phi0^2: less than 1e-4 for the angle below.
TEST(FloatingBox, RollsAndPitchesWithThePeriodOfItsMetacentricHeight) {
  const box b{"barge", 12, 4, 2, 12 * 4 * 1.0 * 1000};
  constexpr double k_angle = 0.005;  // rad
  for (const swing_case& c : {swing_case{"homogeneous, roll", true, 0},
                              {"with ballast, roll", true, 0.4},
                              {"top-heavy, roll", true, -0.5},
                              {"homogeneous, pitch", false, 0}}) {
    const double across = c.roll ? b.beam : b.length;
    const double BM = across * across / (12 * b.draught());
    const double GM = b.draught() / 2 + BM - (b.depth / 2 - c.below);
    const double inertia = b.mass / 12 * (across * across + b.depth * b.depth);
    const double period = 2 * M_PI * std::sqrt(inertia / (b.mass * k_gravity * GM));
    const ResultTable table = qvtest::run_afloat(k_free_box + qvtest::hull_element(k_box, "drag_scale = 0\n"),
                                                 with(parameters_of(b), {{"below", c.below},
                                                                         {"aside", 0},
                                                                         {"height", b.depth / 2 - b.draught()},
                                                                         {"heel", c.roll ? k_angle : 0},
                                                                         {"trim", c.roll ? 0 : k_angle},
                                                                         {"end", 5 * period},
                                                                         {"row", period / 100}}));
    const std::vector<double>& q = table[c.roll ? "boat.qx" : "boat.qy"];  // sin of half the angle
    EXPECT_NEAR(qvtest::period_of(table["time [s]"], q), period, 1e-3 * period) << c.name;
    const auto [least, greatest] = std::minmax_element(q.begin(), q.end());
    EXPECT_NEAR(*greatest, k_angle / 2, 1e-3 * k_angle) << c.name;
    EXPECT_NEAR(*least, -k_angle / 2, 1e-3 * k_angle) << c.name;
  }
}

// The lever GZ at rest is what the weight's line is aside of the middle: tan(phi) (GM + BM/2 tan^2(phi)) = aside.
TEST(FloatingBox, LeansWhereTheWallSidedFormulaBalancesAWeightAside) {
  const box b{"barge", 6, 4, 2, 6 * 4 * 1.0 * 1000};
  const double BM = b.beam * b.beam / (12 * b.draught()), GM = b.draught() / 2 + BM - b.depth / 2;
  for (const double aside : {0.05, 0.2, 0.4}) {
    double low = 0, high = 1;  // of tan(phi)
    for (int i = 0; i < 100; ++i) {
      const double t = 0.5 * (low + high);
      (t * (GM + 0.5 * BM * t * t) < aside ? low : high) = t;
    }
    const ResultTable table = qvtest::run_afloat(
        k_free_box + qvtest::hull_element(k_box, "tangential = { coefficient = 800, exponent = 1 }\nreport = true\n"),
        with(parameters_of(b), {{"below", 0},
                                {"aside", -aside},
                                {"height", b.depth / 2 - b.draught()},
                                {"heel", 0},
                                {"trim", 0},
                                {"end", 200},
                                {"row", 10}}));
    const double heel = std::atan(low);
    EXPECT_NEAR(table["hull_report.roll [deg]"].back(), heel * 180 / M_PI, 1e-3 * heel * 180 / M_PI);
    EXPECT_NEAR(table["hull_report.lever_y [m]"].back(), 0, 1e-4 * aside);
    EXPECT_NEAR(table["hull.submerged_volume [m^3]"].back(), 24, 1e-4);
  }
}

}  // namespace
