#include <gmock/gmock.h>

#include <cmath>

#include "tests/cli/process.h"
#include "tests/solver/elements/track_model.h"
#include "tests/support/vtp_arrays.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Runs a model of its own folder and returns its results. `messages` of its record must be empty.
ResultTable results_of(const std::string& name, const std::string& text, const fs::path& folder) {
  write_text(folder / (name + ".toml"), text);
  const CommandResult result = run_command({"run", name + ".toml", "--out", name, "--quiet"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(file_text(folder / name / "run.json"), HasSubstr("\"messages\": []"));
  return ResultTable(folder / name / "results.csv");
}

constexpr double k_mass = 2000, k_gravity = 9.81, k_belt_width = 0.4;
constexpr double k_n = 1.10, k_kc = 990, k_kphi = 1.52843e6;  // dry sand

/// A block that can only go in one direction; what is under it follows.
std::string block(const std::string& axis, const std::string& position, const std::string& times) {
  return "gravity = [0, 0, -9.81]\n[simulation]\n" + times + R"toml(
[[road]]
name = "field"
file = "field.rdf"
kind = "flat"
size = [12, 6]
spacing = 0.25
soil = "dry_sand"
[[body]]
name = "vehicle"
mass = 2000
shape = { box = [3, 1, 0.5] }
[[joint]]
name = "guide"
type = "slider"
body = "vehicle"
position = )toml" +
         position + "\naxis = \"" + axis + "\"\n";
}

/// Markers in a row along x, and the list of wheels on them.
std::string gear(const std::string& track, int wheels, double spacing, double y, const std::string& keys) {
  std::ostringstream markers, list;
  markers.imbue(std::locale::classic());
  for (int i = 0; i < wheels; ++i) {
    const std::string name = track + "_axle_" + std::to_string(i);
    markers << "[[marker]]\nname = \"" << name << "\"\nbody = \"vehicle\"\nposition = ["
            << spacing * (i - 0.5 * (wheels - 1)) << ", " << y << ", 0]\n";
    list << "{ marker = \"" << name << "\", radius = 0.3 },";
  }
  return markers.str() + "[[element]]\nname = \"" + track + "\"\ntype = \"track\"\nhull = \"vehicle\"\nwheels = [" +
         list.str() + "]\nroad = \"field\"\nwidth = 0.4\nthickness = 0.02\ngrid = [6, 3]\n" + keys + "\n";
}

const std::string k_damper =
    "[[force]]\nname = \"damper\"\nmarker = \"vehicle\"\nforce = [0, 0, \"-60000*vz(vehicle)\"]\n";
const std::string k_lane =
    "[[marker]]\nname = \"lane\"\nbody = \"ground\"\nposition = [1, 2, 0.5]\nangles_deg = [0, 0, 90]\n";

/// Depth at which an area carries the block, after Bekker: (kc/b + kphi) z^n, b the shorter side of a span.
double carrying_depth(double area, double shorter_side) {
  return std::pow(k_mass * k_gravity / area / (k_kc / shorter_side + k_kphi), 1 / k_n);
}

TEST(TrackRun, TwoWheelGearSettlesWhereTheSoilCarriesIt) {
  const ResultTable run = results_of("two",
                                     block("z", "[0, 0, 0.32]", "end_time = 2\naccuracy = 1e-6") + k_damper +
                                         gear("belt", 2, 2.0, 0, "belt_speed = 0"),
                                     fresh_folder());
  const double weight = k_mass * k_gravity, depth = carrying_depth(2.0 * k_belt_width, k_belt_width);
  EXPECT_NEAR(run["guide.travel [m]"].back(), -depth, 1e-6);
  EXPECT_NEAR(run["belt_sum.force_z [N]"].back(), weight, 1e-5 * weight);
  EXPECT_NEAR(run["belt_sum.area [m^2]"].back(), 2.0 * k_belt_width, 1e-12);
  for (const char* wheel : {"belt_wheel_1.force_z [N]", "belt_wheel_2.force_z [N]"})
    EXPECT_NEAR(run[wheel].back(), 0.5 * weight, 1e-5 * weight) << wheel;
  EXPECT_EQ(run["belt_shear.force_x [N]"].back(), 0);
}

TEST(TrackRun, TwoTracksOfFiveWheelsOnOneRoadFileShareTheWeight) {
  const ResultTable run = results_of("five",
                                     block("z", "[0, 0, 0.32]", "end_time = 2\naccuracy = 1e-6") + k_damper + k_lane +
                                         gear("left", 5, 0.5, 1, "belt_speed = 0\nreference = \"lane\"") +
                                         gear("right", 5, 0.5, -1, "belt_speed = 0"),
                                     fresh_folder());
  const double weight = k_mass * k_gravity, depth = carrying_depth(2 * 2.0 * k_belt_width, k_belt_width);
  EXPECT_NEAR(run["guide.travel [m]"].back(), -depth, 1e-6);
  for (const std::string track : {"left", "right"}) {
    EXPECT_NEAR(run[track + "_sum.force_z [N]"].back(), 0.5 * weight, 1e-5 * weight);
    for (int wheel = 1; wheel <= 5; ++wheel) {  // four spans: an inner wheel carries one, an outer one half of one
      const double share = wheel == 1 || wheel == 5 ? 0.5 : 1.0;
      EXPECT_NEAR(run[track + "_wheel_" + std::to_string(wheel) + ".force_z [N]"].back(), share * weight / 8,
                  1e-5 * weight);
    }
  }
}

TEST(TrackRun, PicturesShowTheBeltWhereItIsHoweverItsReferenceIsTurned) {
  const fs::path folder = fresh_folder();
  const std::string text = block("z", "[0, 0, 0.32]", "end_time = 2\naccuracy = 1e-6\nframe_step = 2") + k_damper +
                           k_lane + gear("belt", 3, 1.0, 0, "belt_speed = 0.5\nreference = \"lane\"");
  const ResultTable run = results_of("seen", text, folder);
  const std::string frame = file_text(folder / "seen" / "frames" / "points_000001.vtp");
  const std::vector<double> place = qvtest::vtp_array(frame, "Points"), sinkage = qvtest::vtp_array(frame, "sinkage"),
                            local = qvtest::vtp_array(frame, "local_force");
  ASSERT_EQ(sinkage.size(), 11u * 3u);
  constexpr double k_single = 1.0 / (1 << 24);  // a rounding of a place within 1 m; numbers in frames are single
  double shear_1 = 0, shear_2 = 0, normal = 0;
  for (size_t k = 0; k < sinkage.size(); ++k) {
    const size_t row = k / 3, column = k % 3;
    EXPECT_NEAR(place[3 * k], -1 + 0.2 * static_cast<double>(row), k_single);
    EXPECT_NEAR(place[3 * k + 1], -0.2 + 0.2 * static_cast<double>(column), k_single);
    EXPECT_NEAR(place[3 * k + 2], run["guide.travel [m]"].back(), k_single);
    EXPECT_NEAR(sinkage[k], place[3 * k + 2], k_single);
    shear_1 += local[3 * k];
    shear_2 += local[3 * k + 1];
    normal += local[3 * k + 2];
  }
  const double weight = k_mass * k_gravity;
  EXPECT_NEAR(normal, weight, 1e-5 * weight);
  EXPECT_NEAR(shear_2, 0, 1e-6 * weight);
  // Seen from the lane, whose x axis is the ground's y, what drives along x goes to minus y.
  EXPECT_NEAR(shear_1, -run["belt_shear.force_y [N]"].back(), 1e-6 * weight);
  EXPECT_GT(shear_1, 0.2 * weight);
}

TEST(TrackRun, TorqueTurnsIntoTheMomentumOfVehicleAndSprocket) {
  // At a fixed depth, fixed steps: what soil takes from the sprocket it gives to the vehicle, whatever its law.
  constexpr double k_torque = 3000, k_inertia = 50, k_radius = 0.25, k_start_speed = 0.5;
  const std::string keys =
      "drive = { torque = 3000, inertia = 50, radius = 0.25, speed = 0.5, resistance = 0.001, forces = "
      "[\"belt_wheel_1\"] }";
  const ResultTable run =
      results_of("drive",
                 block("x", "[-3, 0, 0.3]", "end_time = 1\nintegrator = \"semi-explicit\"\nstep = 0.001") +
                     gear("belt", 3, 1.0, 0, keys),
                 fresh_folder());
  const double start = k_inertia * k_start_speed / k_radius;
  const double resistance = 0.001 * run["belt_wheel_1.force_z [N]"].back();
  EXPECT_GT(resistance, 1);
  for (size_t i = 0; i < run.rows(); ++i) {
    const double speed = run["vehicle.vx [m/s]"][i], rate = run["belt_turn.rate"][i];
    const double expected = start + (k_torque - resistance) * run["time [s]"][i];
    EXPECT_NEAR(k_radius * k_mass * speed + k_inertia * rate, expected, 1e-9 * k_torque);
    EXPECT_NEAR(run["belt_belt_speed"][i], k_radius * rate, 1e-12);
    EXPECT_NEAR(run["belt_belt.speed [m/s]"][i], k_radius * rate, 1e-12);
    EXPECT_EQ(run["belt_turn.derivative"][i], rate) << "the rate answers under the id of the torque";
    EXPECT_EQ(run["belt_turn.variable"][i], k_torque);
  }
  // Without slip both would go on together: all of the torque accelerates the vehicle and what turns with the belt.
  const double together = (start + k_torque - resistance) / (k_radius * k_mass + k_inertia / k_radius);
  EXPECT_NEAR(run["vehicle.vx [m/s]"].back(), together, 0.05 * together);
}

TEST(TrackRun, ExpandedModelRunsToTheSameNumbers) {
  const fs::path folder = fresh_folder();
  const ResultTable readable = results_of("readable", k_track_model, folder);
  const std::string plain = run_command({"expand", "readable.toml"}, folder).out;
  const ResultTable expanded =
      results_of("expanded", k_track_model.substr(0, k_track_model.find("[[variable]]")) + plain, folder);
  ASSERT_EQ(readable.rows(), expanded.rows());
  // At the start reports have no values.
  const auto after_start = [](const std::vector<double>& all) {
    return std::vector<double>(all.begin() + 1, all.end());
  };
  for (const char* column :
       {"vehicle.x [m]", "vehicle.z [m]", "vehicle.qz", "left_wheel_2.force_z [N]", "right_shear.force_x [N]",
        "left_sum.area [m^2]", "left_belt.speed [m/s]", "left_turn.rate", "left_drive", "left_belt_speed"})
    EXPECT_EQ(after_start(readable[column]), after_start(expanded[column])) << column;
  EXPECT_NE(readable["vehicle.qz"].back(), 0);  // one belt drives, the other crawls: it turns
}

TEST(TrackRun, CheckTellsWhatATrackBecomes) {
  const fs::path folder = fresh_folder();
  write_text(folder / "tracks.toml", k_track_model);
  const CommandResult result = run_command({"check", "tracks.toml"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("element left: qvsoil_interaction_mtl, 20 parameters, 268 results\n"));
  EXPECT_THAT(result.out, HasSubstr("element right_sum: qvsoil_interaction_mtl_sum, 2 parameters, 4 results\n"));
}

}  // namespace
