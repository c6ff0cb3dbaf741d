#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/physics/track_soil.h"
#include "tests/support/exact_text.h"

namespace {

using qvtest::belt;
using qvtest::track_soil;

constexpr double k_weight = 10000;  // of the models' hull [N]

const std::string k_upright = "type = \"slider\"\naxis = \"z\"\n";

std::string held_at(double height) {
  return k_upright + "motion = { coordinate = \"travel\", position = \"" + qvtest::exact_text(height) + "\" }\n";
}

double wheel_force(const ResultTable& table, int wheel) {
  return table["belt_wheel_" + std::to_string(wheel + 1) + ".force_z [N]"].back();
}

const std::string k_settling = "end_time = 20\noutput_step = 1\naccuracy = 1e-8\n";

double level_depth(const belt& gear, const track_soil& soil) {
  return std::pow(k_weight / gear.area() / (soil.kc / gear.shorter_side() + soil.kphi), 1 / soil.n);
}

// W = A (kc/b + kphi) z^n at rest. The way to rest dies out with the damping of the soil, whose ratio keeps it from
// swinging; the integrator's share is its accuracy.
void expect_settling(const belt& gear, const track_soil& soil) {
  SCOPED_TRACE(std::string(soil.preset) + ", wheels: " + std::to_string(gear.wheels));
  const double depth = level_depth(gear, soil), touching = gear.radius + gear.thickness;
  const std::string start = "start = { travel = " + qvtest::exact_text(touching) + " }\n";
  const ResultTable table = qvtest::run_belt(qvtest::belt_model(
      gear, soil, k_settling, "damp_ratio = 0.2\nboundary_sinkage = " + qvtest::exact_text(0.5 * depth) + "\n",
      k_upright + start, "belt_speed = 0"));
  EXPECT_NEAR(touching - table["hull.z [m]"].back(), depth, 1e-6 * depth);
  EXPECT_NEAR(table["belt_sum.force_z [N]"].back(), k_weight, 1e-5 * k_weight);
  EXPECT_NEAR(table["belt_sum.area [m^2]"].back(), gear.area(), 1e-12);
}

TEST(TrackUnderDeadWeight, SettlesOnEverySoilWhereItsContactAreaTimesThePressureCarriesIt) {
  for (const track_soil& soil : qvtest::k_track_soils) expect_settling(belt(), soil);
}

TEST(TrackUnderDeadWeight, SettlesByItsContactAreaHoweverManyWheelsItRunsUnder) {
  expect_settling({2, 1.4, 0.3}, qvtest::k_track_soils[1]);
  expect_settling({7, 0.2, 0.5, 0.0, 0.15, 0.0, 3, 8}, qvtest::k_track_soils[1]);
}

// A level belt: each wheel with a span before it carries that span, the last wheel half of the last one, and the first
// one half of its own.
TEST(TrackHeldLevel, CarriesAreaTimesPressureAndItsWheelsTheirShares) {
  constexpr double k_depth = 0.04;
  for (const track_soil& soil : qvtest::k_track_soils) {
    const belt gear;
    const ResultTable table = qvtest::run_belt(
        qvtest::belt_model(gear, soil, "end_time = 0.1\n", "", held_at(0.32 - k_depth), "belt_speed = 0"));
    const double span = gear.span() * gear.width * soil.pressure(k_depth, gear.shorter_side());
    EXPECT_NEAR(table["belt_sum.force_z [N]"].back(), 3 * span, 1e-9 * span) << soil.preset;
    for (int wheel = 0; wheel < 4; ++wheel)
      EXPECT_NEAR(wheel_force(table, wheel), wheel == 0 || wheel == 3 ? span / 2 : span, 1e-9 * span) << soil.preset;
  }
}

// Radii that grow evenly make one straight belt that leans, and a pressure that changes along it, so that no two shares
// are alike. The last span carries about twice as much as the first.
TEST(TrackHeldAtALean, CarriesTheIntegralOfThePressureAndItsWheelsTheirLevers) {
  belt gear;
  gear.growth = 0.012;
  gear.along = 15;
  constexpr double k_height = 0.28;
  for (const track_soil& soil : qvtest::k_track_soils) {
    SCOPED_TRACE(soil.preset);
    const ResultTable table =
        qvtest::run_belt(qvtest::belt_model(gear, soil, "end_time = 0.1\n", "", held_at(k_height), "belt_speed = 0"));
    const qvtest::span_loads spans[3] = {qvtest::normal_loads(gear, soil, k_height, 0),
                                         qvtest::normal_loads(gear, soil, k_height, 1),
                                         qvtest::normal_loads(gear, soil, k_height, 2)};
    EXPECT_NEAR(wheel_force(table, 0), spans[0].total - spans[0].end, 2 * spans[0].tolerance);
    EXPECT_NEAR(wheel_force(table, 1), spans[1].total, spans[1].tolerance);
    EXPECT_NEAR(wheel_force(table, 2), spans[2].total, spans[2].tolerance);
    EXPECT_NEAR(wheel_force(table, 3), spans[2].end, spans[2].tolerance);
    double total = 0, tolerance = 0, wheels = 0;
    for (const qvtest::span_loads& span : spans) {
      total += span.total;
      tolerance += span.tolerance;
    }
    EXPECT_NEAR(table["belt_sum.force_z [N]"].back(), total, tolerance);
    EXPECT_NEAR(table["belt_sum.area [m^2]"].back(), gear.area() * gear.cosine(), 1e-12);
    // What the wheels get is all but the share of the first span that is left out, and that of the last one twice.
    for (int wheel = 0; wheel < 4; ++wheel) wheels += wheel_force(table, wheel);
    EXPECT_NEAR(wheels - table["belt_sum.force_z [N]"].back(), spans[2].end - spans[0].end,
                spans[0].tolerance + spans[2].tolerance);
    EXPECT_GT(wheels - total, 100 * tolerance);
  }
}

// What carries the hull is what the wheels get, not the sum of the points. The radii grow so that the front end is in
// the ground about twice as deep as the rear end.
TEST(TrackAtALeanUnderDeadWeight, SettlesWhereItsWheelsForcesCarryIt) {
  for (const track_soil& soil : qvtest::k_track_soils) {
    SCOPED_TRACE(soil.preset);
    belt gear;
    const double depth = level_depth(gear, soil);
    gear.growth = 0.2 * depth;
    gear.along = 15;
    const auto carried = [&](double height) {
      const qvtest::span_loads first = qvtest::normal_loads(gear, soil, height, 0),
                               last = qvtest::normal_loads(gear, soil, height, 2);
      return first.total - first.end + qvtest::normal_loads(gear, soil, height, 1).total + last.total + last.end;
    };
    double low = 0.32 - depth, high = 0.32;
    for (int i = 0; i < 50; ++i) {
      const double middle = 0.5 * (low + high);
      (carried(middle) > k_weight ? low : high) = middle;
    }
    const ResultTable table = qvtest::run_belt(qvtest::belt_model(
        gear, soil, k_settling, "damp_ratio = 0.2\nboundary_sinkage = " + qvtest::exact_text(0.5 * depth) + "\n",
        k_upright + "start = { travel = 0.32 }\n", "belt_speed = 0"));
    double wheels = 0, tolerance = 0;
    for (int wheel = 0; wheel < 4; ++wheel) wheels += wheel_force(table, wheel);
    for (int span = 0; span < 3; ++span) tolerance += 2 * qvtest::normal_loads(gear, soil, low, span).tolerance;
    EXPECT_NEAR(wheels, k_weight, 1e-5 * k_weight);
    const double stiffness = (carried(low) - carried(low + 1e-3 * depth)) / (1e-3 * depth);
    EXPECT_NEAR(table["hull.z [m]"].back(), low, 1e-6 * depth + tolerance / stiffness);
  }
}

}  // namespace
