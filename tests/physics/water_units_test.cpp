#include <gtest/gtest.h>

#include <cmath>

#include "tests/cli/process.h"

namespace {

/// A boat under speed control in a wave and a current, written with `L` model lengths to a metre, `M` masses to a
/// kilogram; times are seconds. Fixed steps: all sets of units go through the same numbers but for rounding.
std::string boat_in(const std::string& units, const std::string& metre, const std::string& kilogram) {
  return "gravity = [0, 0, \"-9.81*L\"]\n[units]\n" + units + "\n[parameters]\nL = " + metre + "\nM = " + kilogram +
         R"toml(
[simulation]
end_time = 4
output_step = 0.1
frame_step = 4
integrator = "semi-explicit"
step = 0.005
[[wave]]
name = "sea"
file = "sea.wave"
kind = "regular"
height = "0.4*L"
period = 3
extent = "60*L"
[[current]]
name = "stream"
file = "stream.current"
along_x = { profile = "uniform", speed = "-0.6*L" }
[[marker]]
name = "water"
body = "ground"
position = ["-25*L", 0, 0]
[[body]]
name = "boat"
mass = "3000*M"
shape = { box = ["4*L", "2*L", "1*L"] }
[[marker]]
name = "shaft"
body = "boat"
position = ["-2*L", 0, "-0.3*L"]
[[variable]]
name = "order"
value = "1.5*L"
[[element]]
name = "hull"
type = "hull"
body = "boat"
mesh = { shape = "wedge_barge", size = ["4*L", "2*L", "1*L"], bow = "0.5*L", divisions = [8, 4, 2] }
water = "water"
wave = "sea"
current = "stream"
density = "1000*M/L^3"
tangential = { coefficient = "30*M*L^-2.5", exponent = 1.5 }
report = { points = ["shaft"] }
[[element]]
name = "screw"
type = "thruster"
marker = "shaft"
mode = "feedback"
speed_control = { command = "order" }
gains = { p = "2000*M", i = "500*M" }
wave = "sea"
water = "water"
)toml";
}

ResultTable run(const std::string& model) {
  const std::filesystem::path folder = fresh_folder();
  write_text(folder / "model.toml", model);
  const CommandResult result = run_command({"run", "model.toml", "--out", "results", "--quiet"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  return ResultTable(folder / "results/results.csv");
}

struct unit_case {
  const char* name;
  const char* units;
  const char *metre, *kilogram;
  const char* force_symbol;
  double newton;  // model forces to a newton
};

// WAVE files hold nine digits; what they differ by in the last one stays as small over 800 steps.
TEST(UnitsAfloat, MillimetreSetsGiveTheMotionAndTheForcesOfSi) {
  const ResultTable si = run(boat_in("", "1", "1"));
  const unit_case cases[] = {
      {"millimetre, tonne, second, newton", "length = \"mm\"\nmass = \"ton\"", "1000", "0.001", "N", 1},
      {"millimetre, kilogram, second, millinewton", "length = \"mm\"\nforce = \"MN\"", "1000", "1", "mN", 1000},
  };
  for (const unit_case& row : cases) {
    SCOPED_TRACE(row.name);
    const ResultTable other = run(boat_in(row.units, row.metre, row.kilogram));
    ASSERT_EQ(si.rows(), other.rows());
    for (size_t i = 1; i < si.rows(); ++i) {  // at the start the report has no values
      for (const char* column : {"boat.x", "boat.z", "hull_report.point_0_height", "hull_report.buoyancy_centre_x"})
        EXPECT_NEAR(other[column + std::string(" [mm]")][i] / 1000, si[column + std::string(" [m]")][i], 1e-6)
            << column;
      EXPECT_NEAR(other["boat.qy"][i], si["boat.qy"][i], 1e-6);
      for (const char* column : {"hull.force_x", "hull.force_z", "screw.force_x", "hull_report.buoyancy"}) {
        const std::string other_column = std::string(column) + " [" + row.force_symbol + "]";
        EXPECT_NEAR(other[other_column][i] / row.newton, si[column + std::string(" [N]")][i], 0.03) << column;
      }
    }
  }
  EXPECT_GT(std::fabs(si["boat.vx [m/s]"].back() - si["boat.vx [m/s]"].front()), 0.5);  // it was moved at all
}

}  // namespace
