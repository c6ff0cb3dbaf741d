#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/physics/track_soil.h"
#include "tests/support/exact_text.h"

namespace {

using qvtest::belt;
using qvtest::track_soil;

constexpr double k_height = 0.28;    // of the axles: 4 cm of depth at the first wheel [m]
constexpr double k_sensitivity = 2;  // a shear curve with a hump, and half the strength after long slip
const std::string k_steps = "end_time = 0.6\noutput_step = 0.01\nintegrator = \"semi-explicit\"\nstep = 0.01\n";

/// A hull that keeps its height and its axes and moves over the ground with these velocities.
std::string carried(double along, double across) {
  return "type = \"planar\"\naxis = \"z\"\nposition = [0, 0, " + qvtest::exact_text(k_height) +
         "]\nmotions = [{ coordinate = \"angle\", position = \"0\" }, { coordinate = \"x\", velocity = \"" +
         qvtest::exact_text(along) + "\" }, { coordinate = \"y\", velocity = \"" + qvtest::exact_text(across) +
         "\" }]\n";
}

ResultTable run_carried(const belt& gear, const track_soil& soil, double along, double across, double belt_speed) {
  return qvtest::run_belt(qvtest::belt_model(gear, soil, k_steps,
                                             "sensitivity = " + qvtest::exact_text(k_sensitivity) + "\n",
                                             carried(along, across), "belt_speed = " + qvtest::exact_text(belt_speed)));
}

// A locked belt that is dragged has a shear displacement that is a way: slip velocity times time.
TEST(LockedTrackDragged, FollowsTheShearCurveOverTheWayItWasDragged) {
  constexpr double k_drag = -0.15;  // m/s, backwards: the ground holds it back, forwards
  for (const track_soil& soil : qvtest::k_track_soils) {
    const belt gear;
    const ResultTable table = run_carried(gear, soil, k_drag, 0, 0);
    const double strength = gear.area() * soil.strength(soil.pressure(0.04, gear.shorter_side()));
    for (size_t row = 1; row < table.rows(); ++row) {
      const double r = -k_drag * table["time [s]"][row] / soil.shear_displacement;
      EXPECT_NEAR(table["belt_shear.force_x [N]"][row], strength * qvtest::shear_curve(r, k_sensitivity),
                  1e-6 * strength)
          << soil.preset << ", row " << row;
    }
  }
}

// While the belt moves each step adds the slip times the time of the step before, and the evaluation after a step the
// slip times its own time: a steady slip s makes s (t1 + t2 + ... + tk), whichever way it goes.
TEST(TrackSlippingEvenly, FollowsTheShearCurveOverTheDisplacementThatItsStepsAddUpTo) {
  struct slip_case {
    const char* why;
    double hull, belt;  // speeds [m/s]
  };
  for (const slip_case& c : {slip_case{"the belt drives", 0.95, 1.0},
                             {"the belt brakes", 1.05, 1.0},
                             {"the belt drives backwards", -0.95, -1.0},
                             {"the belt spins in place", 0.0, 0.02}})
    for (const track_soil& soil : qvtest::k_track_soils) {
      const belt gear;
      const ResultTable table = run_carried(gear, soil, c.hull, 0, c.belt);
      const double strength = gear.area() * soil.strength(soil.pressure(0.04, gear.shorter_side()));
      double displacement = 0;
      for (size_t row = 1; row < table.rows(); ++row) {
        displacement += (c.belt - c.hull) * table["time [s]"][row];
        const double share = qvtest::shear_curve(std::fabs(displacement) / soil.shear_displacement, k_sensitivity);
        EXPECT_NEAR(table["belt_shear.force_x [N]"][row], std::copysign(strength * share, displacement),
                    1e-6 * strength)
            << c.why << ", " << soil.preset << ", row " << row;
      }
    }
}

// The law's integral along a belt that presses unevenly: the displacement is the same everywhere, the strength is not.
TEST(LeaningTrackSlippingEvenly, HasTheThrustOfTheStrengthIntegratedAlongIt) {
  belt gear;
  gear.growth = 0.012;
  gear.along = 15;
  for (const track_soil& soil : qvtest::k_track_soils) {
    const ResultTable table = run_carried(gear, soil, 0.95, 0, 1);
    double normal = 0, tolerance = 0;
    for (int span = 0; span < 3; ++span) {
      const qvtest::span_loads loads = qvtest::normal_loads(gear, soil, k_height, span);
      normal += loads.total;
      tolerance += loads.tolerance;
    }
    const double plan = gear.area() * gear.cosine(), slope = std::tan(soil.friction_angle);
    double displacement = 0;
    for (size_t row = 1; row < table.rows(); ++row) {
      displacement += 0.05 * table["time [s]"][row];
      const double share = qvtest::shear_curve(displacement / soil.shear_displacement, k_sensitivity);
      EXPECT_NEAR(table["belt_shear.force_x [N]"][row], share * (soil.cohesion * plan + normal * slope),
                  1.1 * slope * tolerance)
          << soil.preset << ", row " << row;
    }
  }
}

// Sideways the belt drags like a plate, against its motion, and the wheels take what that gives, in their shares.
TEST(TrackDraggedSideways, IsHeldBackAtItsWheels) {
  constexpr double k_drift = 0.15;
  for (const track_soil& soil : qvtest::k_track_soils) {
    const belt gear;
    const ResultTable table = run_carried(gear, soil, 0, k_drift, 0);
    const double strength = gear.area() * soil.strength(soil.pressure(0.04, gear.shorter_side()));
    for (size_t row = 1; row < table.rows(); ++row) {
      const double r = k_drift * table["time [s]"][row] / soil.shear_displacement;
      const double force = -strength * qvtest::shear_curve(r, k_sensitivity);
      for (int wheel = 0; wheel < 4; ++wheel) {
        const std::string column = "belt_wheel_" + std::to_string(wheel + 1) + ".force_y [N]";
        EXPECT_NEAR(table[column][row], force / (wheel == 0 || wheel == 3 ? 6 : 3), 1e-6 * strength) << soil.preset;
      }
      EXPECT_EQ(table["belt_shear.force_x [N]"][row], 0);
    }
  }
}

}  // namespace
