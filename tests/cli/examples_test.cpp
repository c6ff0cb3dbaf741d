#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/cli/process.h"

namespace {

namespace fs = std::filesystem;

// The examples. Each has a folder of its name and is run by a test below, or by several.
constexpr char k_ball_drop[] = "ball_drop";
constexpr char k_barge_in_waves[] = "barge_in_waves";
constexpr char k_boat_with_thruster[] = "boat_with_thruster";
constexpr char k_capsize_test[] = "capsize_test";
constexpr char k_plate_sinkage[] = "plate_sinkage";
constexpr char k_track_drawbar[] = "track_drawbar";
constexpr char k_tracked_vehicle[] = "tracked_vehicle";
constexpr char k_wheel_on_soil[] = "wheel_on_soil";

/// The examples that a test of this file runs, filled before the first test starts.
std::set<std::string>& examples_with_a_test() {
  static std::set<std::string> examples;
  return examples;
}

/// A call of results_of for an example enters it into examples_with_a_test, even if the call is in another test.
template <const char* example>
const bool is_entered = examples_with_a_test().insert(example).second;

/// Runs a copy of an example (it makes its roads and waves beside the model) and hands over its table.
template <const char* example>
ResultTable results_of(const std::vector<std::string>& more = {}) {
  EXPECT_TRUE(is_entered<example>);
  const fs::path folder = fresh_folder();
  fs::copy(fs::path(QVBRISK_EXAMPLES) / example / "model.toml", folder / "model.toml");
  std::vector<std::string> arguments = {"run", "model.toml", "--out", "results"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const CommandResult result = run_command(arguments, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.err, testing::Not(testing::HasSubstr("warning: "))) << "nothing looks wrong in an example";
  return ResultTable(folder / "results/results.csv");
}

TEST(Example, EveryFolderOfExamplesIsRunByATest) {
  for (const fs::directory_entry& entry : fs::directory_iterator(QVBRISK_EXAMPLES)) {
    if (!entry.is_directory()) continue;
    const std::string folder = entry.path().filename().string();
    EXPECT_EQ(examples_with_a_test().count(folder), 1u) << "no test runs examples/" << folder;
  }
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
  const ResultTable table = results_of<k_plate_sinkage>();
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
  const ResultTable table = results_of<k_wheel_on_soil>();
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
  const ResultTable table = results_of<k_ball_drop>();
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

/// Mean over the rows of a table from a time on, by trapezia.
double time_mean_from(const std::vector<double>& time, const std::vector<double>& values, double from) {
  double sum = 0, duration = 0;
  for (size_t i = 1; i < time.size(); ++i) {
    if (time[i - 1] < from) continue;
    sum += 0.5 * (values[i] + values[i - 1]) * (time[i] - time[i - 1]);
    duration += time[i] - time[i - 1];
  }
  return sum / duration;
}

size_t row_at(const std::vector<double>& time, double t) {
  return static_cast<size_t>(std::find_if(time.begin(), time.end(), [&](double at) { return at >= t - 1e-9; }) -
                             time.begin());
}

TEST(Example, BargeFloatsOnTheMeanAndItsLineHoldsTheDrag) {
  const ResultTable table = results_of<k_barge_in_waves>();
  const std::vector<double>&time = table["time [s]"], &line = table["line_force"];
  constexpr double k_mass = 234 * 1025.0, k_weight = k_mass * 9.81, k_grown = 15;  // [kg] [N] [s]
  const size_t first = row_at(time, k_grown);
  const auto gain = [&](const char* speed) {  // mean force that the change of speed stands for
    return k_mass * (table[speed].back() - table[speed][first]) / (time.back() - time[first]);
  };
  // Momentum over the whole time in the waves: lift carries the weight and the line's small pull downwards, drag and
  // line balance. The rows resolve waves of 5 s, and peaks of drag half a second wide, by steps of 0.1 s.
  EXPECT_NEAR(time_mean_from(time, table["hull.force_z [N]"], k_grown), k_weight + gain("barge.vz [m/s]"),
              1e-3 * k_weight);
  const double pull = time_mean_from(time, line, k_grown);
  EXPECT_NEAR(-time_mean_from(time, table["hull.force_x [N]"], k_grown), pull - gain("barge.vx [m/s]"), 0.05 * pull);
  // The line pulls with its stretch, from the fairlead to the buoy at x = 40, and never pushes. The report's first row
  // is empty.
  int slack = 0;
  for (size_t i = 1; i < time.size(); ++i) {
    const double x = 40 - table["hull_report.point_0_x [m]"][i], y = table["hull_report.point_0_y [m]"][i];
    const double stretch = std::sqrt(x * x + y * y + std::pow(table["hull_report.point_0_z [m]"][i], 2)) - 28;
    EXPECT_NEAR(line[i], 20e3 * std::max(0.0, stretch), 1e-3) << "at " << time[i];
    slack += line[i] == 0 ? 1 : 0;
    EXPECT_NEAR(table["hull_report.mass_centre_x [m]"][i], table["barge.x [m]"][i], 1e-9);
  }
  EXPECT_GT(slack, 10);
}

// Pressure on the raked bow, friction on bottom and sides: the example's page does the sum. The waterline runs through
// patches, whose upper corners have no drag: a few per cent.
TEST(Example, BargeInCalmWaterPullsAtItsLineWithTheDragOfTheCurrent) {
  const ResultTable table = results_of<k_barge_in_waves>({"--set", "wave.sea.Hs=0.001"});
  constexpr double k_rho = 1025, k_stream = 0.8, k_friction = 0.5 * k_rho * 0.004;
  const double along_normal = 0.6 * k_stream;
  const double drag =
      0.5 * k_rho * along_normal * along_normal * 20 * 0.6 + k_friction * k_stream * k_stream * (144 + 2 * 29.25);
  EXPECT_NEAR(time_mean_from(table["time [s]"], table["line_force"], 15), drag, 0.05 * drag);
  EXPECT_NEAR(table["hull.submerged_volume [m^3]"].back(), 234, 0.5);
}

TEST(Example, BoatKeepsItsSpeedAndLosesItsThrustOutOfTheWater) {
  const ResultTable table = results_of<k_boat_with_thruster>();
  const std::vector<double>&time = table["time [s]"], &thrust = table["thruster.force_x [N]"];
  // The wave once it has grown, linear theory in deep water, running towards -x; its table has 20 points to a length
  // and to a period, so it is off by 2.5 % at most.
  constexpr double k_amplitude = 0.375, k_pi = 3.141592653589793, k_omega = 2 * k_pi / 2.8;
  constexpr double k_wave_number = k_omega * k_omega / 9.81, k_limit = 1900 + 0.5 * (2300 - 1900) + 20;  // [N]
  int on = 0, off = 0;
  for (size_t i = row_at(time, 40); i < time.size(); ++i) {
    const double x = table["hull_report.point_0_x [m]"][i] + 20, z = table["hull_report.point_0_height [m]"][i];
    const double over = k_amplitude * std::cos(k_wave_number * x + k_omega * time[i]) - z;
    EXPECT_LT(thrust[i], k_limit);
    if (over < -0.03 * k_amplitude) {
      EXPECT_EQ(thrust[i], 0) << "over the water at " << time[i];
      ++off;
    } else if (over > 0.03 * k_amplitude) {
      EXPECT_GT(std::fabs(thrust[i]), 0) << "in the water at " << time[i];
      ++on;
    }
  }
  EXPECT_GT(off, 80);  // of 400
  EXPECT_GT(on, 200);
  // The integral makes up for what is lost: the error's mean is 0, up to what its integral changed by.
  const double duration = time.back() - 40;
  const std::vector<double>& integral = table["thruster_error"];
  EXPECT_NEAR(time_mean_from(time, table["thruster_error.rate"], 40),
              (integral.back() - integral[row_at(time, 40)]) / duration, 2e-3);
  EXPECT_NEAR(integral.back(), integral[row_at(time, 40)], 0.02 * duration);
}

TEST(Example, BoatInCalmWaterComesToTheSpeedOrderedWithTheThrustOfItsDrag) {
  const ResultTable table = results_of<k_boat_with_thruster>({"--set", "wave.sea.height=0.001"});
  EXPECT_NEAR(table["boat.vx [m/s]"].back(), 2.5, 1e-3);
  EXPECT_NEAR(table["thruster.force_x [N]"].back(), -table["hull.drag_force_x [N]"].back(), 10);
}

/// The box of the capsize test: a rectangle of beam b and depth h, its centre of mass `below` the middle, water cutting
/// the area b T off at any heel.
struct heeled_box {
  double b = 2, h = 1.2, T = 0.6, below = 0.1;  // [m]

  /// Area under water and its first moment over y, of the rectangle turned by `heel` with its middle at height `up`.
  std::pair<double, double> under_water(double heel, double up) const {
    const double c = std::cos(heel), s = std::sin(heel);
    const double corners[4][2] = {{-b / 2, -h / 2}, {b / 2, -h / 2}, {b / 2, h / 2}, {-b / 2, h / 2}};
    std::vector<std::pair<double, double>> cut;
    for (int i = 0; i < 4; ++i) {
      const auto turned = [&](const double* p) { return std::pair{p[0] * c - p[1] * s, p[0] * s + p[1] * c + up}; };
      const auto [y0, z0] = turned(corners[i]);
      const auto [y1, z1] = turned(corners[(i + 1) % 4]);
      if (z0 <= 0) cut.emplace_back(y0, z0);
      if ((z0 < 0) != (z1 < 0)) cut.emplace_back(y0 + (y1 - y0) * z0 / (z0 - z1), 0.0);
    }
    double area = 0, moment = 0;
    for (size_t i = 0; i < cut.size(); ++i) {
      const auto [y0, z0] = cut[i];
      const auto [y1, z1] = cut[(i + 1) % cut.size()];
      area += (y0 * z1 - y1 * z0) / 2;
      moment += (y0 * z1 - y1 * z0) * (y0 + y1) / 6;
    }
    return {area, moment};
  }

  /// Righting lever, positive where it turns the box back.
  double lever(double heel) const {
    double low = -2, high = 2;  // of the middle's height
    for (int i = 0; i < 100; ++i) (under_water(heel, (low + high) / 2).first > b * T ? low : high) = (low + high) / 2;
    const auto [area, moment] = under_water(heel, low);
    return below * std::sin(heel) - moment / area;
  }

  double wall_sided_lever(double heel) const {
    const double BM = b * b / (12 * T), GM = T / 2 + BM - (h / 2 - below), t = std::tan(heel);
    return std::sin(heel) * (GM + 0.5 * BM * t * t);
  }
};

// The turning box rises and sinks by its weight alone; what its displacement is off by meanwhile, the lever is too.
TEST(Example, TurnedBoxHasTheRightingLeversOfTheFormulaAndOfTheExactCut) {
  const ResultTable table = results_of<k_capsize_test>();
  const heeled_box box;
  constexpr double k_pi = 3.141592653589793, k_deck_edge = 0.5404;  // atan(0.6) [rad]
  for (size_t i = 1; i < table.rows(); ++i) {                       // the report's first row is empty
    const double heel = table["turn.angle [rad]"][i], lever = table["box_report.lever_y [m]"][i];
    EXPECT_NEAR(heel, table["time [s]"][i] * k_pi / 180, 1e-9);
    EXPECT_NEAR(lever, std::fabs(box.lever(heel)), 1e-4) << "heel " << heel;
    if (heel < k_deck_edge) {
      EXPECT_NEAR(lever, box.wall_sided_lever(heel), 1e-4) << "heel " << heel;
    }
    EXPECT_NEAR(table["box.submerged_volume [m^3]"][i], 4 * box.b * box.T, 2e-3) << "heel " << heel;
  }
}

TEST(Example, PushedBoxHeelsToTheLeverGivenAndCapsizesPastTheGreatest) {
  const ResultTable table = results_of<k_capsize_test>();
  const heeled_box box;
  const std::vector<double>&time = table["time [s]"], &heel = table["push.angle [rad]"];
  double greatest = 0;
  for (int degree = 0; degree < 90; ++degree)
    greatest = std::max(greatest, box.lever(degree * 3.141592653589793 / 180));
  for (size_t i = 0; i < time.size(); ++i) {
    const double given = table["heeling_lever"][i];
    if (time[i] > 1 && time[i] < 110) {
      EXPECT_NEAR(box.lever(heel[i]), given, 0.01 * greatest) << "at " << time[i];
    }
    if (given < 0.99 * greatest && time[i] < 120) {
      EXPECT_LT(heel[i], 0.8) << "at " << time[i];
    }
  }
  EXPECT_NEAR(heel.back(), 3.141592653589793, 0.02);  // upside down, where it is stable again
}

constexpr double k_gear_load = 30000, k_gear_area = 4 * 0.6 * 0.45;  // of the example [N] [m^2]
constexpr double k_sand_modulus = 0.025, k_e = 2.718281828459045;    // [m]
const double k_sand_strength = 1040 * k_gear_area + k_gear_load * std::tan(28 * 3.141592653589793 / 180);  // [N]

/// Shear curve of a road with a sensitivity of 1, as a share of the strength.
double sand_curve(double displacement) {
  const double r = displacement / k_sand_modulus;
  return (1 + std::exp(1 - r) / (k_e - 1)) * (1 - std::exp(-r));
}

// Each step adds the slip velocity times the time of the step before, the evaluation after it the slip velocity times
// its own. Of the settling a micrometre of depth is left after a second.
TEST(Example, TrackPullsWithTheDisplacementThatItsStepsAddUpTo) {
  const ResultTable table = results_of<k_track_drawbar>();
  const std::vector<double>&time = table["time [s]"], &pull = table["track_shear.force_x [N]"];
  constexpr double k_step = 0.005, k_sweep = 0.3 / 8;  // [s], slip velocity per time [m/s^2]
  double captured = 0;
  long step = 0;
  for (size_t i = 1; i < time.size(); ++i) {
    for (const long end = std::lround(time[i] / k_step); step < end;) {
      ++step;
      const double t = static_cast<double>(step) * k_step;
      captured += k_sweep * t * (t - k_step);
    }
    const double expected = k_sand_strength * sand_curve(captured + k_sweep * time[i] * time[i]);
    EXPECT_NEAR(pull[i], expected, (time[i] < 1 ? 1e-3 : 1e-5) * k_sand_strength) << "at " << time[i];
  }
  EXPECT_NEAR(table["track_sum.force_z [N]"].back(), k_gear_load, 1e-5 * k_gear_load);
  EXPECT_NEAR(table["track_sum.area [m^2]"].back(), k_gear_area, 1e-12);
}

// The average of the shear curve over the way is the pull of a footprint. By trapezia, whose error is h^2/12 times the
// change of the curve's slope: from (1 + e/(e - 1))/K at the start to 0; as much again for the settling.
TEST(Example, TrackDraggedWithALockedBeltAveragesToTheDrawbarCurve) {
  const ResultTable table = results_of<k_track_drawbar>({"--set", "parameters.belt=0", "--set", "parameters.ramp=0"});
  const std::vector<double>&way = table["way"], &pull = table["track_shear.force_x [N]"];
  const double steepest = k_sand_strength * (1 + k_e / (k_e - 1)) / k_sand_modulus;
  double work = 0;
  for (size_t i = 1; i < way.size(); ++i) {
    const double h = way[i] - way[i - 1];
    work += 0.5 * h * (pull[i] + pull[i - 1]);
    const double E = 1 - std::exp(-way[i] / k_sand_modulus);
    const double share = 1 - k_sand_modulus / way[i] * (E - 0.5 * E * E * k_e / (k_e - 1));
    EXPECT_NEAR(work / way[i], k_sand_strength * share, 2 * h * h / 12 * steepest / way[i]) << "at " << way[i];
    EXPECT_NEAR(table["footprint"][i], k_sand_strength * share, 1e-6 * k_sand_strength);
  }
  EXPECT_NEAR(table["wong"].back(), k_sand_strength * (1 - k_sand_modulus / 2.4), 1e-3 * k_sand_strength);
}

/// Vertical force of the soil on the wheels and hull of the vehicle.
std::vector<double> vehicle_lift(const ResultTable& table) {
  std::vector<double> lift(table.rows(), 0.0);
  const auto add = [&](const std::string& element) {
    const std::vector<double>& force = table[element + ".force_z [N]"];
    for (size_t i = 0; i < lift.size(); ++i) lift[i] += force[i];
  };
  for (const std::string side : {"left", "right"}) {
    for (int wheel = 1; wheel <= 6; ++wheel) add(side + "_wheel_" + std::to_string(wheel));
    add(side + "_shear");
  }
  return lift;
}

constexpr double k_vehicle_mass = 10000, k_vehicle_pull = 20000;                   // [kg] [N]
constexpr double k_sprocket_radius = 0.25, k_gear = 20, k_sprocket_inertia = 225;  // [m] [-] [kg m^2]

double gain(const ResultTable& table, const std::string& column, size_t from) {
  return table[column].back() - table[column][from];
}

// Momentum from 9 s on: torque less what speeds up the sprockets is pull and what speeds up the vehicle. The ground's
// slopes lift it by some 0.1 m within that time, 1 % of its weight over the way of 9 m: 5 % of the pull.
void expect_torque_becomes_pull(const ResultTable& table) {
  const std::vector<double>& time = table["time [s]"];
  const size_t first = row_at(time, 9);
  const double duration = time.back() - time[first];
  const double sprockets = (gain(table, "left_turn.rate", first) + gain(table, "right_turn.rate", first)) / duration;
  const double torque = k_gear * time_mean_from(time, table["engine_torque"], 9) - k_sprocket_inertia * sprockets;
  const double vehicle = k_vehicle_mass * gain(table, "hull.vx [m/s]", first) / duration;
  EXPECT_NEAR(torque / k_sprocket_radius, k_vehicle_pull + vehicle, 0.05 * k_vehicle_pull);
  EXPECT_NEAR(time_mean_from(time, table["thrust"], 9), k_vehicle_pull + vehicle, 0.05 * k_vehicle_pull);
}

// Nothing comes from nowhere, and from 2 s on little is lost: the sand springs back.
void expect_work_is_kept(const ResultTable& table) {
  const size_t start = row_at(table["time [s]"], 2);
  const double left = table["left_turn.rate"].back(), right = table["right_turn.rate"].back();
  const double used = gain(table, "pull_work", start) + gain(table, "kinetic_energy [J]", start) +
                      gain(table, "potential_energy [J]", start) +
                      0.5 * k_sprocket_inertia * (left * left + right * right);
  EXPECT_GT(gain(table, "engine_work", start), used);
  EXPECT_GT(used, 0.95 * gain(table, "engine_work", start));
}

TEST(Example, TrackedVehicleSettlesDrivesOffAndTurnsItsTorqueIntoPull) {
  const ResultTable table = results_of<k_tracked_vehicle>();
  const std::vector<double>&time = table["time [s]"], &height = table["hull.z [m]"];
  for (size_t i = row_at(time, 1); i < row_at(time, 2); ++i)
    EXPECT_NEAR(height[i], height[row_at(time, 2)], 0.02) << "not settled at " << time[i];
  // The wheels carry the weight, up to what the rows miss of the jolts between them.
  constexpr double k_weight = k_vehicle_mass * 9.81;
  EXPECT_NEAR(time_mean_from(time, vehicle_lift(table), 5), k_weight, 0.01 * k_weight);
  EXPECT_GT(gain(table, "hull.x [m]", 0), 20.0);
  EXPECT_NEAR(time_mean_from(time, table["hull.vx [m/s]"], 9), 3.0, 0.3);
  expect_torque_becomes_pull(table);
  expect_work_is_kept(table);
}

}  // namespace
