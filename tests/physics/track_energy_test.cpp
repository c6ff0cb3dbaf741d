#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/physics/track_soil.h"
#include "tests/support/exact_text.h"

namespace {

using qvtest::belt;
using qvtest::track_soil;

constexpr double k_mass = 1000, k_inertia = 40, k_radius = 0.3, k_step = 0.0005;  // SI
constexpr double k_duration = 1, k_load = 10000;                                  // [s] [N]

/// Depth at which the belt has the same load on every soil.
double depth_on(const track_soil& soil) {
  const belt gear;
  return std::pow(k_load / gear.area() / (soil.kc / gear.shorter_side() + soil.kphi), 1 / soil.n);
}

double thrust_strength(const track_soil& soil) { return belt{}.area() * soil.strength(k_load / belt{}.area()); }

/// A hull at a fixed height that its belt drives against a pull, both from the start.
ResultTable run_pulling(const track_soil& soil, double torque, double pull) {
  const std::string more = "[[force]]\nname = \"load\"\nmarker = \"hull\"\nforce = [" + qvtest::exact_text(-pull) +
                           ", 0, 0]\n[[equation]]\nname = \"engine_work\"\nvalue = \"" + qvtest::exact_text(torque) +
                           "*dif1(belt_turn)\"\n[[equation]]\nname = \"pull_work\"\nvalue = \"" +
                           qvtest::exact_text(pull) + "*vx(hull)\"\n";
  return qvtest::run_belt(qvtest::belt_model(
      belt{}, soil,
      "end_time = " + qvtest::exact_text(k_duration) +
          "\noutput_step = 0.02\nintegrator = \"semi-explicit\"\nstep = " + qvtest::exact_text(k_step) + "\n",
      "", "type = \"slider\"\naxis = \"x\"\nposition = [-2, 0, " + qvtest::exact_text(0.32 - depth_on(soil)) + "]\n",
      "drive = { torque = " + qvtest::exact_text(torque) + ", inertia = 40 }", more));
}

/// Engine work less work of the pull and what hull and sprocket hold: what has become heat in the soil.
double lost_work(const ResultTable& table, size_t row) {
  return table["engine_work"][row] - table["pull_work"][row] - 0.5 * k_mass * std::pow(table["hull.vx [m/s]"][row], 2) -
         0.5 * k_inertia * std::pow(table["belt_turn.rate"][row], 2);
}

struct pull_case {
  const char* why;
  double torque, pull;  // as shares of what the soil's strength could take: radius times strength, strength
};

// Works are sums over the steps with the speeds at one end of each: off by half a step's change of speed. Where the
// slip turns round within a step, force and slip go the same way for a part of it: by at most the speed that the whole
// strength makes in a step.
TEST(TrackPulling, NeverGivesMoreWorkThanItsEngine) {
  for (const pull_case& c : {pull_case{"hardly a pull", 0.5, 0.1},
                             {"a steady pull", 0.5, 0.5},
                             {"pulled backwards", 0.2, 0.6},
                             {"the belt spins", 1.5, 0.8},
                             {"braked by a pull from ahead", 0.0, -0.4}})
    for (const track_soil& soil : qvtest::k_track_soils) {
      const double strength = thrust_strength(soil), torque = c.torque * k_radius * strength, pull = c.pull * strength;
      const ResultTable table = run_pulling(soil, torque, pull);
      SCOPED_TRACE(std::string(c.why) + ", " + soil.preset);
      const double hull_gain = 2 * strength / k_mass * k_step,
                   belt_gain = 2 * (1 + c.torque) * strength * k_radius * k_radius / k_inertia * k_step;
      const double in_a_step = strength * (hull_gain + belt_gain) * k_step;
      const double works = k_step * (std::fabs(torque * table["belt_turn.rate"].back()) +
                                     std::fabs(pull * table["hull.vx [m/s]"].back()));
      for (size_t row = 1; row < table.rows(); ++row)
        EXPECT_GE(lost_work(table, row), -works - static_cast<double>(row) * in_a_step) << "row " << row;
      EXPECT_GT(table["belt_sum.area [m^2]"].back(), 0);  // it is still on the road
    }
}

// Past the hump of the curve a spinning belt has the soil's whole strength, so hull and sprocket gain speed evenly, and
// what is lost is that strength times the way that the belt ran more than the hull.
TEST(TrackSpinning, LosesTheStrengthTimesTheWayOfItsSlip) {
  for (const track_soil& soil : qvtest::k_track_soils) {
    SCOPED_TRACE(soil.preset);
    const double strength = thrust_strength(soil), torque = 2 * k_radius * strength, pull = 0.9 * strength;
    const ResultTable table = run_pulling(soil, torque, pull);
    constexpr size_t k_first = 20;  // the shear displacement is some metres by then
    const size_t last = table.rows() - 1;
    const double duration = table["time [s]"][last] - table["time [s]"][k_first];
    const double hull = table["hull.vx [m/s]"][last] - table["hull.vx [m/s]"][k_first];
    const double sprocket = table["belt_turn.rate"][last] - table["belt_turn.rate"][k_first];
    EXPECT_NEAR(hull, (strength - pull) / k_mass * duration, 1e-6 * strength / k_mass);
    EXPECT_NEAR(sprocket, (torque - k_radius * strength) / k_inertia * duration, 1e-6 * torque / k_inertia);
    const double slid = k_radius * (table["belt_turn"][last] - table["belt_turn"][k_first]) -
                        (table["hull.x [m]"][last] - table["hull.x [m]"][k_first]);
    const double lost = lost_work(table, last) - lost_work(table, k_first);
    EXPECT_GT(slid, 0.1);
    EXPECT_NEAR(lost, strength * slid, k_step * (torque * sprocket + pull * hull + strength * k_radius * sprocket));
  }
}

// At rest on the whole, all of the torque is pull: what the soil takes from the sprocket it gives to the hull.
TEST(TrackPulling, TurnsItsTorqueOverTheRadiusIntoPull) {
  for (const track_soil& soil : qvtest::k_track_soils) {
    const double strength = thrust_strength(soil), torque = 0.6 * k_radius * strength, pull = 0.6 * strength;
    const ResultTable table = run_pulling(soil, torque, pull);
    // The slip swings about 0 by what the strength does in a step, so hull and belt go no faster than that.
    const double swing = 4 * strength * (1 / k_mass + k_radius * k_radius / k_inertia) * k_step;
    // At first the ground has to be sheared.
    for (size_t row = 5; row < table.rows(); ++row) {
      EXPECT_NEAR(table["hull.vx [m/s]"][row], 0, swing) << soil.preset << ", row " << row;
      EXPECT_NEAR(table["belt_belt.speed [m/s]"][row], 0, swing) << soil.preset << ", row " << row;
    }
  }
}

}  // namespace
