#include <gtest/gtest.h>

#include <cmath>

#include "tests/physics/soil_model.h"

namespace {

using qvtest::soil;

constexpr double k_length = 0.5, k_width = 0.2;  // of the plate [m]
constexpr double k_area = k_length * k_width;

/// A plate whose contact points lie in its marker's plane, on a vertical slider that starts at the ground.
std::string plate_model(const std::string& simulation, const std::string& more) {
  return "gravity = [0, 0, -10]\n[simulation]\n" + simulation +
         "[[body]]\nname = \"plate\"\nmass = 1000\ninertia = [1, 1, 1]\n"
         "[[joint]]\nname = \"press\"\ntype = \"slider\"\nbody = \"plate\"\naxis = \"-z\"\n" +
         more +
         "[[element]]\nname = \"soil\"\ntype = \"soil_contact\"\nshape = \"plate\"\nmarker = \"plate\"\n"
         "road = \"level.rdf\"\nlength = 0.5\nwidth = 0.2\ngrid = [4, 3]\n";
}

// W = A (kc/b + kphi) z^n at rest. What remains of the way to rest dies out with the damping (the ratio is chosen so
// that the plate creeps in without a swing), the integrator's share is its accuracy.
TEST(PlateUnderDeadWeight, SettlesWherePressureTimesAreaCarriesIt) {
  for (const soil& ground : qvtest::k_soils) {
    const double weight = 10000;
    const double depth = std::pow(weight / (k_area * ground.stiffness(k_width)), 1 / ground.n);
    const ResultTable table =
        qvtest::run_on_level_road(plate_model("end_time = 20\noutput_step = 1\naccuracy = 1e-8\n", ""), ground,
                                  /*damp_ratio=*/0.2, /*boundary_sinkage=*/0.5 * depth);
    EXPECT_NEAR(-table["plate.z [m]"].back(), depth, 1e-6 * depth) << ground.name;
    EXPECT_NEAR(table["soil.force_z [N]"].back(), weight, 1e-5 * weight) << ground.name;
  }
}

TEST(PlatePressedSlowly, ReproducesThePressureSinkageLawOfEverySoil) {
  for (const soil& ground : qvtest::k_soils) {
    const ResultTable table = qvtest::run_on_level_road(
        plate_model("end_time = 10\noutput_step = 0.5\n", "motion = \"0.01*t\"\n"), ground, /*damp_ratio=*/0.0, 1.0);
    ASSERT_EQ(table.rows(), 21U);
    for (std::size_t i = 1; i < table.rows(); ++i) {
      const double z = 0.01 * table["time [s]"][i];
      const double pressure = ground.stiffness(k_width) * std::pow(z, ground.n);
      EXPECT_NEAR(table["soil.force_z [N]"][i] / k_area, pressure, 1e-6 * pressure) << ground.name << " at " << z;
    }
  }
}

}  // namespace
