#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/physics/water_model.h"

namespace {

using qvtest::k_gravity;
using qvtest::k_water_density;

/// A thin plate deep under water, on a slider along x, pulled by the force `pull`. The plate is `thick` along x, or
/// along z when it is towed edgewise.
const std::string k_towed_plate = qvtest::water_head("accuracy = 1e-9") + R"toml(
[[body]]
name = "boat"
mass = "mass"
inertia = [1, 1, 1]
[[joint]]
name = "way"
type = "slider"
body = "boat"
position = [0, 0, -10]
axis = "x"
[[force]]
name = "tow"
marker = "boat"
force = ["pull", 0, 0]
)toml";

const std::string k_broad_plate = R"({ shape = "box", size = ["thick", 2, 3], divisions = [1, 4, 5] })";
const std::string k_edgewise_plate = R"({ shape = "box", size = [2, 3, "thick"], divisions = [4, 5, 1] })";
constexpr double k_area = 6, k_mass = 400, k_pull = 3000;  // [m^2] [kg] [N]

// m v' = F - rho/2 A v^2 has the solution v = V tanh(F t/(m V)), V = sqrt(2 F/(rho A)). Only the face that runs into
// the water has drag.
TEST(TowedPlate, GainsSpeedAsTheQuadraticDragLawSays) {
  const double terminal = std::sqrt(2 * k_pull / (k_water_density * k_area));
  for (const double direction : {1.0, -1.0}) {
    const ResultTable table =
        qvtest::run_afloat(k_towed_plate + qvtest::hull_element(k_broad_plate),
                           {{"thick", 0.01}, {"mass", k_mass}, {"pull", direction * k_pull}, {"end", 3}, {"row", 0.1}});
    for (size_t i = 0; i < table.rows(); ++i) {
      const double v = terminal * std::tanh(k_pull * table["time [s]"][i] / (k_mass * terminal));
      EXPECT_NEAR(table["boat.vx [m/s]"][i], direction * v, 1e-6 * terminal);
    }
    EXPECT_NEAR(table["boat.vx [m/s]"].back(), direction * terminal, 1e-6 * terminal);
    EXPECT_NEAR(table["hull.normal_drag_force_x [N]"].back(), -direction * k_pull, 1e-5 * k_pull);
  }
}

TEST(TowedPlate, KeepsItsTerminalSpeedThroughWaterThatFlows) {
  const double terminal = std::sqrt(2 * k_pull / (k_water_density * k_area));
  for (const double stream : {-0.7, 0.4}) {
    const ResultTable table =
        qvtest::run_afloat(k_towed_plate + qvtest::hull_element(k_broad_plate),
                           {{"thick", 0.01}, {"mass", k_mass}, {"pull", k_pull}, {"end", 6}, {"row", 1}}, stream);
    EXPECT_NEAR(table["boat.vx [m/s]"].back(), stream + terminal, 1e-6);
  }
}

// Towed edgewise both broad faces rub: F = 2 c A V^e. The thin front adds rho/2 thick b V^2, a millionth of the pull.
TEST(PlateTowedEdgewise, ReachesTheSpeedAtWhichSkinFrictionHoldsThePull) {
  constexpr double k_thick = 1e-6, k_terminal = 1.3;  // [m] [m/s]
  for (const double exponent : {1.0, 1.5, 2.0, 3.0}) {
    const double coefficient = k_pull / (2 * k_area * std::pow(k_terminal, exponent));
    const ResultTable table = qvtest::run_afloat(
        k_towed_plate +
            qvtest::hull_element(k_edgewise_plate, "tangential = { coefficient = \"c\", exponent = \"e\" }\n"),
        {{"thick", k_thick},
         {"mass", k_mass},
         {"pull", k_pull},
         {"c", coefficient},
         {"e", exponent},
         {"end", 6},
         {"row", 1}});
    EXPECT_NEAR(table["boat.vx [m/s]"].back(), k_terminal, 1e-5) << "exponent " << exponent;
    EXPECT_NEAR(table["hull.tangential_drag_force_x [N]"].back(), -k_pull, 1e-5 * k_pull) << "exponent " << exponent;
  }
}

// Kinetic energy and that of the wall-sided spring; both zero at rest.
double energy_of_heave(double mass, double stiffness, double z, double vz) {
  return 0.5 * mass * vz * vz + 0.5 * stiffness * z * z;
}

// The power of the drag force is summed by trapezia between rows: with s rows per period the sum is wrong by about
// (2 pi/s)^2/12 of what is lost, 1e-4 for s = 200.
TEST(DampedHeave, LosesTheEnergyThatTheDragTakes) {
  constexpr double length = 3, beam = 2, depth = 1, mass = 3000;
  const double stiffness = k_water_density * k_gravity * length * beam;
  const double period = 2 * M_PI * std::sqrt(mass / stiffness);
  const std::string model = qvtest::water_head("accuracy = 1e-7") + R"toml(
[[body]]
name = "boat"
mass = "mass"
inertia = [1, 1, 1]
[[joint]]
name = "heave"
type = "slider"
body = "boat"
axis = "z"
start = { travel = 0.4 }
)toml";
  const ResultTable table =
      qvtest::run_afloat(model + qvtest::hull_element(R"({ shape = "box", size = [3, 2, 1], divisions = [3, 2, 4] })",
                                                      "tangential = { coefficient = 60, exponent = 1.5 }\n"),
                         {{"mass", mass}, {"end", 6 * period}, {"row", period / 200}});
  const double rest = depth / 2 - mass / (k_water_density * length * beam);
  const std::vector<double>&time = table["time [s]"], &z = table["boat.z [m]"], &v = table["boat.vz [m/s]"],
        &drag = table["hull.drag_force_z [N]"];
  const double first = energy_of_heave(mass, stiffness, z[0] - rest, v[0]);
  double work = 0, before = first;
  for (size_t i = 1; i < table.rows(); ++i) {
    work += 0.5 * (drag[i] * v[i] + drag[i - 1] * v[i - 1]) * (time[i] - time[i - 1]);
    const double energy = energy_of_heave(mass, stiffness, z[i] - rest, v[i]);
    EXPECT_NEAR(energy - first, work, 5e-4 * first) << "at " << time[i];
    EXPECT_LE(energy, before + 1e-6 * first) << "gained at " << time[i];
    before = energy;
  }
  EXPECT_LT(work, -0.5 * first);  // most of it is gone
}

}  // namespace
