#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"
#include "tests/thrust/thrust_scene.h"
#include "thrust/thrust_force.h"

// Thrust: its modes, the limit spline, the water, and what it keeps and asks for.

namespace qvtest {
namespace {

using testing::ElementsAre;

const qvthrust::CWave& record_of(const ThrustScene& scene) {
  return qvthrust::gp_Wave.at(static_cast<std::size_t>(scene.parameters.id));
}

TEST(ModeOne, ThrustsAsTheVariableSays) {
  ThrustScene scene;
  scene.set_equation(1, 2, 3);
  scene.parameters.gains[0] = scene.parameters.gains[1] = scene.parameters.gains[2] = 100;
  for (const double v : {-7.5, 0.0, 3.25}) {
    scene.set_variable(v);
    EXPECT_EQ(scene.thrust(), v);
  }
}

TEST(FeedbackLaw, WeighsRateSecondRateAndValueWithItsThreeGains) {
  for (const double mode : {0.0, 2.0, 3.0, 4.0, -1.0, 2.9}) {
    ThrustScene scene;
    scene.host.splines[k_spline] = [](double) { return 1e9; };
    scene.parameters.mode = mode;
    scene.set_variable(1.0);
    scene.set_equation(2.0, 3.0, 5.0);
    double* gains = scene.parameters.gains;
    gains[0] = 7.0, gains[1] = 11.0, gains[2] = 13.0;
    EXPECT_EQ(scene.thrust(), -(3.0 * 7.0) - 5.0 * 11.0 - 2.0 * 13.0) << mode;
  }
}

TEST(ModeTwo, IsZeroWhenTheVariableIs) {
  ThrustScene scene;
  scene.parameters.gains[2] = 1.0;
  scene.set_equation(-4.0, 0, 0);
  scene.parameters.mode = 2;
  EXPECT_EQ(scene.thrust(), 0.0);
  scene.set_variable(1e-300);
  EXPECT_EQ(scene.thrust(), 4.0);
  scene.parameters.mode = 4;
  scene.set_variable(0.0);
  EXPECT_EQ(scene.thrust(), 4.0) << "in other modes it does not matter";
}

struct limit_case {
  const char* why;
  double thrust, limit, expected;
};

const limit_case k_limit_cases[] = {
    {"below the limit", 4, 5, 4},
    {"at the limit", 5, 5, 5},
    {"above the limit", 6, 5, 5},
    {"below the limit, backwards", -4, 5, -4},
    {"above the limit, backwards", -6, 5, -5},
    {"nothing to thrust", 0, 5, 0},
    {"a limit of zero", 6, 0, 0},
    {"a negative limit turns the thrust round", 6, -2, -2},
    {"and of no thrust makes none", 0, -2, 0},
};

TEST(ModeThree, KeepsTheThrustWithinTheSplineOfTheVariable) {
  for (const limit_case& row : k_limit_cases) {
    ThrustScene scene;
    scene.parameters.mode = 3;
    scene.parameters.gains[2] = -1.0;
    scene.set_equation(row.thrust, 0, 0);
    scene.set_variable(2.0);
    double asked = 0.0;
    scene.host.splines[k_spline] = [&](double v) {
      asked = v;
      return row.limit;
    };
    EXPECT_EQ(scene.thrust(), row.expected) << row.why;
    EXPECT_EQ(asked, 2.0);
  }
}

TEST(WithoutTheWaveSwitch, NoFileIsReadAndTheWaterDoesNotMatter) {
  for (const double wave_switch : {0.0, 2.0, -1.0, 0.99}) {
    ThrustScene scene;
    scene.parameters.switch_on_waves = wave_switch;
    scene.host.strings.clear();
    scene.host.markers.clear();
    scene.host.log = true;
    scene.set_variable(3.0);
    EXPECT_EQ(scene.thrust(), 3.0);
    EXPECT_THAT(scene.host.requests, ElementsAre("VARVAL 52"));
    EXPECT_EQ(record_of(scene).initialized, 1);
    EXPECT_EQ(record_of(scene).thrust_marker, 0);
  }
}

/// A thruster of constant 3 in water that stands at 0.5 over a table from 0 to 100.
class WetScene : public ThrustScene {
public:
  explicit WetScene(const qvref::wave_file& wave = calm_water(100.0, 0.5)) : ThrustScene(wave) {
    parameters.switch_on_waves = 1;
    set_variable(3.0);
    point().position = {50, 0, -1};
  }
};

struct water_case {
  const char* why;
  vec3 point;
  bool in_water;
};

const water_case k_water_cases[] = {
    {"under water", {50, 0, -1}, true},
    {"at the surface", {50, 7, 0.5}, true},
    {"above it", {50, 0, 0.5000001}, false},
    {"at the first position", {0, 0, -1}, true},
    {"before it", {-1e-9, 0, -1}, false},
    {"at the last position", {100, 0, -1}, false},
    {"just before the last", {99.999, 0, -1}, true},
    {"far away", {1e9, 0, -1e9}, false},
};

TEST(InWaterTest, CutsTheThrustOutOfTheWaterAndBeyondTheTable) {
  for (const water_case& row : k_water_cases) {
    WetScene scene;
    scene.point().position = row.point;
    EXPECT_EQ(scene.thrust(), row.in_water ? 3.0 : 0.0) << row.why;
    EXPECT_EQ(scene.thrust(0.0, 2), row.in_water ? 3.0 : 0.0) << row.why;
    EXPECT_EQ(scene.thrust(0.0, 1), 3.0) << "never in a set-up call: " << row.why;
  }
}

TEST(InWaterTest, IsMadeInTheWatersFrame) {
  WetScene scene;
  scene.water().axes = {0, 1, 0, -1, 0, 0, 0, 0, 1};
  scene.water().position = {1000, 0, 20};
  scene.point().position = {1000, 50, 20.4};
  EXPECT_EQ(scene.thrust(), 3.0);
  scene.point().position = {1000, -50, 20.4};
  EXPECT_EQ(scene.thrust(), 0.0) << "that is before the table";
}

TEST(InWaterTest, OfThePointAtZeroOfTheWatersXIsWithinATableFromZero) {
  WetScene scene;
  scene.water().position = {1000, 0, 20};
  scene.point().position = {1000, 50, 20.4};
  EXPECT_EQ(scene.thrust(), 3.0);
}

TEST(InWaterTest, BeforeATableThatStartsBehindZeroSeesTheWaterAtZero) {
  qvref::wave_file wave = calm_water(100.0, 0.5);
  wave.x[0] = 40.0;
  WetScene scene(wave);
  scene.point().position = {20, 0, 0.25};
  EXPECT_EQ(scene.thrust(), 0.0);
  scene.point().position = {20, 0, -0.25};
  EXPECT_EQ(scene.thrust(), 3.0);
  scene.point().position = {40, 0, 0.25};
  EXPECT_EQ(scene.thrust(), 3.0);
}

TEST(InWaterTest, FollowsTheWaveInTimeAndPlaceAndNeverBackInTime) {
  qvref::wave_file wave = calm_water(100.0);
  wave.time = {0, 1, 1};
  wave.elevation = {{0, 0, 0}, {0, 10, 10}, {0, 10, 10}};
  WetScene scene(wave);
  const auto highest_wet = [&](double time, double x, int iflag) {
    double low = -20, high = 20;
    while (high - low > 1e-9) {
      scene.point().position = {x, 0, (low + high) / 2};
      (scene.thrust(time, iflag) != 0.0 ? low : high) = (low + high) / 2;
    }
    return low;
  };
  EXPECT_NEAR(highest_wet(0.5, 50, 0), 2.5, 1e-8);
  EXPECT_NEAR(highest_wet(0.5, 25, 0), 1.25, 1e-8);
  EXPECT_NEAR(highest_wet(2.0, 25, 0), 2.5, 1e-8);
  EXPECT_NEAR(highest_wet(0.5, 25, 0), 2.5, 1e-8) << "the row is kept";
  EXPECT_EQ(record_of(scene).time_index, 1);
}

TEST(Cavitation, OfTheFeedbackLawOutOfTheWaterDoesNotAskForItsEquation) {
  WetScene scene;
  scene.parameters.mode = 3;
  scene.point().position[2] = 5.0;
  scene.thrust();
  scene.host.log = true;
  scene.thrust();
  EXPECT_THAT(scene.host.requests, ElementsAre("VARVAL 52", "TDISP 31 33 33"));
}

TEST(FirstCall, KeepsWhatItReadsAndAsksForItsFileOnce) {
  WetScene scene;
  scene.host.log = true;
  scene.call(0.0, 2);
  EXPECT_THAT(scene.host.requests, ElementsAre("string 54", "VARVAL 52", "TDISP 31 33 33"));
  const qvthrust::CWave& wave = record_of(scene);
  EXPECT_EQ(wave.id, scene.parameters.id);
  EXPECT_EQ(wave.initialized, 1);
  EXPECT_EQ(wave.thrust_marker, k_thrust_marker);
  EXPECT_EQ(wave.marker2, k_second_marker);
  EXPECT_EQ(wave.water_marker, k_thrust_water);
  EXPECT_EQ(wave.wave_string_id, k_thrust_string);
  EXPECT_EQ(wave.wave_rows, 2);
  EXPECT_EQ(wave.wave_cols, 2);
  EXPECT_EQ(wave.wave_path, L"");
  EXPECT_EQ(wave.wave_velocity[0][0], 0.0);
  EXPECT_EQ(qvthrust::gp_Wave.size(), static_cast<std::size_t>(k_thrusters) + 1);
  scene.host.requests.clear();
  scene.parameters.mode = 2;
  scene.call();
  EXPECT_THAT(scene.host.requests, ElementsAre("VARVAL 52", "TDISP 31 33 33", "DIF20 53", "DIF21 53", "DIF22 53"));
}

TEST(WaveFile, BesideTheModelIsFoundThere) {
  const TemporaryFolder folder;
  folder.write("sea.wave", wave_text(calm_water(100.0, 0.5)));
  WetScene scene;
  scene.host.strings[k_thrust_string] = L"sea.wave";
  scene.host.path = folder.wide_path("model.x");
  EXPECT_EQ(scene.thrust(), 3.0);
  EXPECT_EQ(record_of(scene).wave_path, folder.wide_path("sea.wave"));
}

// --- feedback in closed loop -------------------------------------------------------------------------------------

/// Velocity and integral of its error of a boat of mass m that a thruster drives to a commanded velocity.
struct boat_state {
  double v = 0.0, y = 0.0;
};

TEST(SpeedControl, AnswersAStepOfTheCommandAsTheLinearSystemDoes) {
  const double m = 2.0, kp = 1.2, ki = 3.4, command = 1.5;
  ThrustScene scene;
  scene.parameters.mode = 2;
  scene.parameters.gains[0] = kp, scene.parameters.gains[2] = ki;
  scene.set_variable(command);
  scene.host.markers[7].axes = rotation({0, 0, 1}, 0.8);
  scene.host.markers[8] = {};
  const auto rates = [&](const boat_state& s) {
    scene.host.markers[7].velocity = times(scene.host.markers[7].axes, {s.v, 0, 0});
    const double error = call_velocity_error(scene.host, {0, 7, 8, k_variable});
    scene.set_equation(s.y, error, 0.0);
    return boat_state{scene.thrust() / m, error};
  };
  const auto ahead = [](const boat_state& s, const boat_state& r, double h) {
    return boat_state{s.v + h * r.v, s.y + h * r.y};
  };
  boat_state s;
  const double h = 1e-3, damping = kp / (2 * m), omega = std::sqrt(ki / m - damping * damping);
  for (int step = 1; step <= 4000; ++step) {  // Runge-Kutta of the fourth order: errors of h^4
    const boat_state a = rates(s), b = rates(ahead(s, a, h / 2)), c = rates(ahead(s, b, h / 2)),
                     d = rates(ahead(s, c, h));
    s.v += h / 6 * (a.v + 2 * b.v + 2 * c.v + d.v);
    s.y += h / 6 * (a.y + 2 * b.y + 2 * c.y + d.y);
    if (step % 500 != 0) continue;
    // The error e obeys m e'' + kp e' + ki e = 0 with e = -command and m e' = kp command at the start.
    const double t = step * h, e0 = -command, e1 = kp * command / m;
    const double error =
        std::exp(-damping * t) * (e0 * std::cos(omega * t) + (e1 + damping * e0) / omega * std::sin(omega * t));
    EXPECT_NEAR(s.v, command + error, 1e-10) << t;
  }
}

}  // namespace
}  // namespace qvtest
