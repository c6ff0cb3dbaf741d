#include <gmock/gmock.h>

#include <cmath>

#include "tests/cli/process.h"
#include "tests/solver/elements/afloat_model.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Runs a model of its own folder and returns its results.
ResultTable results_of(const std::string& name, const std::string& text, const fs::path& folder) {
  write_text(folder / (name + ".toml"), text);
  const CommandResult result = run_command({"run", name + ".toml", "--out", name, "--quiet"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  return ResultTable(folder / name / "results.csv");
}

TEST(AfloatRun, CheckTellsVolumeSurfaceAndCentreOfAHull) {
  const fs::path folder = fresh_folder();
  write_text(folder / "boat.toml", changed_afloat("divisions = [2, 1, 1]", "center = [0.5, 0, 0]"));
  const CommandResult result = run_command({"check", "boat.toml"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("hull hull: 192 nodes, 380 triangles, volume 8, area 28, centre of volume (0.5, 0, "
                                    "0)\n"));
  EXPECT_THAT(result.out, HasSubstr("  2 variables\n  3 equations\n  1 spline\n"));
}

TEST(AfloatRun, ExpandedModelRunsToTheSameNumbers) {
  const fs::path folder = fresh_folder();
  const ResultTable readable = results_of("readable", k_afloat_model, folder);
  const std::string plain = run_command({"expand", "readable.toml"}, folder).out;
  const ResultTable expanded =
      results_of("expanded", k_afloat_model.substr(0, k_afloat_model.find("[[string]]")) + plain, folder);
  ASSERT_EQ(readable.rows(), expanded.rows());
  // At the start reports have no values.
  const auto after_start = [](const std::vector<double>& all) {
    return std::vector<double>(all.begin() + 1, all.end());
  };
  for (const char* column : {"barge.x [m]", "barge.vz [m/s]", "hull.force_z [N]", "screw.force_x [N]", "error", "way",
                             "swing.rate", "speed", "hull_report.buoyancy [N]"})
    EXPECT_EQ(after_start(readable[column]), after_start(expanded[column])) << column;
}

TEST(AfloatRun, HullInPartsMovesLikeTheWhole) {
  const fs::path folder = fresh_folder();
  const std::string by_fixed_steps = changed_afloat(
      "end_time = 2.0", "end_time = 2.0\noutput_step = 0.1\nintegrator = \"semi-explicit\"\nstep = 0.01");
  const ResultTable whole = results_of("whole", by_fixed_steps, folder);
  std::string parts_text = by_fixed_steps;
  const std::string name = "name = \"hull\"\n";
  const ResultTable parts =
      results_of("parts", parts_text.replace(parts_text.find(name), name.size(), name + "parts = 3\n"), folder);
  ASSERT_EQ(whole.rows(), parts.rows());
  constexpr double k_rounding = 1e-9;  // sums in another order, over 200 steps
  for (size_t i = 0; i < whole.rows(); ++i) {
    EXPECT_NEAR(whole["barge.z [m]"][i], parts["barge.z [m]"][i], k_rounding);
    EXPECT_NEAR(whole["barge.qy"][i], parts["barge.qy"][i], k_rounding);
    double volume = 0;
    for (const char* part : {"hull_1", "hull_2", "hull_3"})
      volume += parts[part + std::string(".submerged_volume [m^3]")][i];
    EXPECT_NEAR(whole["hull.submerged_volume [m^3]"][i], volume, k_rounding);
    if (i > 0) {  // at the start reports have no values
      EXPECT_NEAR(whole["hull_report.buoyancy [N]"][i], parts["hull_report.buoyancy [N]"][i], 1e5 * k_rounding);
    }
  }
}

/// One boat, written with the number of model units in a metre, a kilogram and a second.
std::string boat_in(const std::string& units, const std::string& metre, const std::string& kilogram,
                    const std::string& second) {
  return "gravity = [0, 0, \"-9.81*L/T^2\"]\n[units]\n" + units + "\n[parameters]\nL = " + metre + "\nM = " + kilogram +
         "\nT = " + second + R"toml(
[simulation]
end_time = "2*T"
output_step = "0.1*T"
integrator = "semi-explicit"
step = "0.01*T"
[[wave]]
name = "sea"
file = "sea.wave"
kind = "regular"
height = "0.3*L"
period = "3*T"
extent = "60*L"
[[current]]
name = "stream"
file = "stream.current"
along_x = { profile = "uniform", speed = "1.5*L/T" }
[[body]]
name = "barge"
mass = "3000*M"
shape = { box = ["4*L", "2*L", "1*L"] }
position = ["30*L", 0, 0]
[[variable]]
name = "push"
value = "300*M*L/T^2"
[[element]]
name = "hull"
type = "hull"
body = "barge"
mesh = { shape = "wedge_barge", size = ["4*L", "2*L", "1*L"], bow = "0.5*L", divisions = [8, 4, 2] }
wave = "sea"
current = "stream"
density = "1000*M/L^3"
tangential = { coefficient = "40*M*L^-2.5*T^-0.5", exponent = 1.5 }
[[element]]
name = "screw"
type = "thruster"
marker = "barge"
mode = "variable"
variable = "push"
)toml";
}

struct unit_case {
  const char* name;
  const char* units;
  const char *metre, *kilogram, *second, *length_symbol, *speed_symbol;
  double length;
};

TEST(AfloatRun, BoatMovesAlikeInWhateverUnitsItIsWritten) {
  const ResultTable si = results_of("si", boat_in("", "1", "1", "1"), fresh_folder());
  const unit_case cases[] = {
      {"tonnes_and_millimetres", "length = \"mm\"\nmass = \"ton\"", "1000", "0.001", "1", "mm", "mm/s", 1000},
      {"tonnes_and_kilonewtons", "mass = \"ton\"\nforce = \"kN\"", "1", "0.001", "1", "m", "m/s", 1},
      {"milliseconds", "length = \"mm\"\ntime = \"msec\"\nforce = \"kN\"", "1000", "1", "1000", "mm", "mm/ms", 1000},
  };
  for (const unit_case& row : cases) {
    SCOPED_TRACE(row.name);
    const ResultTable other =
        results_of(row.name, boat_in(row.units, row.metre, row.kilogram, row.second), fresh_folder());
    ASSERT_EQ(si.rows(), other.rows());
    constexpr double k_table_digits = 1e-6;  // waves are written with nine digits; 200 steps
    for (size_t i = 0; i < si.rows(); ++i)
      for (const char* axis : {"x", "z"}) {
        const std::string column = std::string("barge.") + axis + " [";
        EXPECT_NEAR(other[column + row.length_symbol + "]"][i] / row.length, si[column + "m]"][i], k_table_digits);
      }
  }
  EXPECT_GT(si["barge.x [m]"].back(), 30.3);  // it was moved at all
}

}  // namespace
