#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "tests/physics/soil_model.h"

namespace {

using qvtest::soil;

constexpr double k_radius = 0.5, k_width = 0.3;  // [m]
constexpr double k_weight = 6000;                // [N]

/// Weight that a wheel at this sinkage carries: w (kc/w + kphi) int z(x)^n dx over the chord, with
/// z = z0 - (a - sqrt(a^2 - x^2)). Midpoint rule in the angle that maps the chord's ends, where z^n has a root, to
/// smooth ones.
double carried_by_rim(const soil& ground, double z0) {
  const double half_chord = std::sqrt(2 * k_radius * z0 - z0 * z0);
  constexpr int k_steps = 20000;
  double sum = 0;
  for (int i = 0; i < k_steps; ++i) {
    const double u = (i + 0.5) / k_steps * M_PI;
    const double x = half_chord * std::cos(u);
    const double z = z0 - (k_radius - std::sqrt(k_radius * k_radius - x * x));
    sum += std::pow(z, ground.n) * half_chord * std::sin(u) * M_PI / k_steps;
  }
  return k_width * ground.stiffness(k_width) * sum;
}

double equilibrium_sinkage(const soil& ground) {
  double low = 0, high = k_radius;
  for (int i = 0; i < 200; ++i) {
    const double middle = 0.5 * (low + high);
    (carried_by_rim(ground, middle) < k_weight ? low : high) = middle;
  }
  return low;
}

/// Sinkage at which the wheel comes to rest in the stand-alone solver, with `around` points on its rim.
double settled_sinkage(const soil& ground, int around) {
  const std::string model =
      "gravity = [0, 0, -10]\n[simulation]\nend_time = 12\noutput_step = 1\naccuracy = 1e-6\n"
      "[[body]]\nname = \"wheel\"\nmass = 600\ninertia = [1, 1, 1]\n"
      "[[joint]]\nname = \"guide\"\ntype = \"slider\"\nbody = \"wheel\"\naxis = \"z\"\nstart = { travel = 0.5 }\n"
      "[[element]]\nname = \"soil\"\ntype = \"soil_contact\"\nshape = \"wheel\"\nmarker = \"wheel\"\n"
      "road = \"level.rdf\"\nradius = 0.5\nwidth = 0.3\ngrid = [" +
      std::to_string(around) + ", 3]\n";
  const ResultTable table = qvtest::run_on_level_road(model, ground, /*damp_ratio=*/0.1, /*boundary_sinkage=*/0.01);
  return k_radius - table["wheel.z [m]"].back();
}

// The rim's points are a rectangle rule of the quadrature: at a spacing h along the rim its error is of the order of
// the pressure that a point takes up or gives away at the ends of the contact, h^(n + 1) in the load.
TEST(WheelAtRest, SinksAsTheQuadratureOfBekkersLawOverItsRimSays) {
  for (const soil& ground : qvtest::k_soils) {
    const double exact = equilibrium_sinkage(ground);
    const double h = 2 * M_PI * k_radius / 720;
    const double slope =
        (carried_by_rim(ground, 1.001 * exact) - carried_by_rim(ground, 0.999 * exact)) / (0.002 * exact);
    const double end_slope = std::sqrt(2 * exact / k_radius);  // of the rim where it enters the soil
    const double load_error = 2 * k_width * ground.stiffness(k_width) * h * std::pow(end_slope * h, ground.n);
    EXPECT_NEAR(settled_sinkage(ground, 720), exact, load_error / slope) << ground.name;
  }
}

TEST(WheelAtRest, ComesNearerToTheQuadratureAsItsGridIsRefined) {
  for (const soil& ground : qvtest::k_soils) {
    const double exact = equilibrium_sinkage(ground);
    const double coarse = std::fabs(settled_sinkage(ground, 90) - exact);
    const double fine = std::fabs(settled_sinkage(ground, 1440) - exact);
    // h falls by 16; with n >= 0.5 the error falls by 16^1.5 = 64 at least on the whole, with swings as points
    // pass the ends of the contact: an eighth of that is asked for.
    EXPECT_LT(fine, coarse / 8) << ground.name;
  }
}

// Bekker's closed formula for the load of a rigid wheel replaces the rim by a parabola and (1 - u^2)^n under the
// integral by 1 - n u^2. It is for a rolling wheel, which touches the soil ahead of its lowest point alone; at rest the
// wheel stands in its own hole with both halves. docs/wheel-load.md.
double closed_formula(const soil& ground, double z0) {
  return 2 * k_width * ground.stiffness(k_width) * std::sqrt(2 * k_radius * z0) * std::pow(z0, ground.n) *
         (3 - ground.n) / 3;
}

TEST(WheelAtRest, DiffersFromBekkersClosedFormulaAsThatDiffersFromItsIntegral) {
  for (const soil& ground : qvtest::k_soils) {
    const double z0 = settled_sinkage(ground, 720);
    const double ratio = closed_formula(ground, z0) / carried_by_rim(ground, z0);
    std::printf("%-28s n %.2f  sinkage %.4f m  closed formula / integral %.4f\n", ground.name, ground.n, z0, ratio);
    EXPECT_NEAR(closed_formula(ground, z0) / k_weight, ratio, 0.02 * ratio) << ground.name;
    EXPECT_GT(ratio, 0.93) << ground.name;
    EXPECT_LT(ratio, 1.07) << ground.name;
  }
}

}  // namespace
