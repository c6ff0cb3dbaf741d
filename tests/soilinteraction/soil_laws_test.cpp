#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "tests/soilinteraction/law_probe.h"

namespace qvtest {
namespace {

using qvsoilinteraction::Croad_contact;
using qvsoilinteraction::Csoil_contact;

// --- Wong's shear curve ------------------------------------------------------------------------------------------

constexpr double k_pressure = 4e4;
constexpr double k_j = 0.025;  // K of the loam

double strength() { return 1720.0 + k_pressure * std::tan(29.0 * 3.141592653589793 / 180.0); }

struct shear_case {
  const char* why;
  double j, v, fraction;  // of the Mohr-Coulomb strength c + p tan(phi)
};

const shear_case k_shear_cases[] = {
    {"at rest the soil carries no shear", k_j, 0.0, 0.0},
    {"without displacement there is no stress yet", 0.0, 0.4, 0.0},
    {"at j = K exactly the strength", k_j, 0.4, -1.0},
    {"only the size of the displacement counts", -k_j, 0.4, -1.0},
    {"reversing the slip reverses the stress", k_j, -0.4, 1.0},
    {"the speed does not matter, its sign does", k_j, -4e-6, 1.0},
    {"long slip leaves the residual strength / S", 60 * k_j, 0.4, -1.0 / 1.5},
};

TEST(ShearStress, FollowsWongsCurve) {
  for (const shear_case& c : k_shear_cases) {
    // 1 - 1/e is given to 16 digits and the stress is some ten roundings away from it.
    EXPECT_NEAR(shear_stress_of(loam(), c.j, c.v, k_pressure), c.fraction * strength(), 1e-14 * strength()) << c.why;
  }
}

TEST(ShearStress, HasItsHumpAtTheShearDisplacementK) {
  double last = 0.0;
  for (int i = 1; i <= 400; ++i) {
    const double j = k_j * i / 100.0;
    const double stress = -shear_stress_of(loam(), j, 1.0, k_pressure);
    if (j > 1.25 * k_j) {
      EXPECT_LT(stress, last) << "falls behind the hump, j " << j;
    } else if (j < 0.75 * k_j) {
      EXPECT_GT(stress, last) << "rises before the hump, j " << j;
    }
    last = stress;
  }
}

TEST(ShearStress, IsNoneForASensitivityOfZero) {
  qvref::soil soil = loam();
  soil.sensitivity = 0.0;
  EXPECT_EQ(shear_stress_of(soil, k_j, 1.0, k_pressure), 0.0);
}

TEST(ShearStress, IsNoneForAShearDisplacementKOfZero) {
  qvref::soil soil = loam();
  soil.max_shear_disp = 0.0;
  EXPECT_EQ(shear_stress_of(soil, k_j, 1.0, k_pressure), 0.0) << "r is 0, so 1 - exp(-r) is";
}

TEST(ShearStress, ComesFromCohesionAloneWithoutPressure) {
  EXPECT_NEAR(shear_stress_of(loam(), k_j, 1.0, 0.0), -1720.0, 1e-11);
  qvref::soil dry = loam();
  dry.cohesion = 0.0;
  EXPECT_EQ(shear_stress_of(dry, k_j, 1.0, 0.0), 0.0);
}

// --- pressure, sinkages, damping ---------------------------------------------------------------------------------

const qvref::body k_plate = {1, 0.4, 0.25, 1, 1};

loaded_point at_depth(double depth) {
  loaded_point point;
  point.rc.sinkage = -depth;
  point.rc.area_ratio = 1.0;
  return point;
}

TEST(Pressure, FollowsBekkersLawOfTheNarrowerSide) {
  for (const double depth : {1e-6, 0.003, 0.05, 0.4}) {
    loaded_point point = at_depth(depth);
    ASSERT_EQ(load(loam(), k_plate, point).count, 0);
    const double expected = (5270.0 / 0.25 + 1515040.0) * std::pow(depth, 0.7);
    EXPECT_NEAR(point.sc.pressure, expected, 4e-16 * 4 * expected) << "a few roundings";
    EXPECT_EQ(point.rc.pressure, -point.sc.pressure);
    EXPECT_NEAR(point.rc.secant_stiffness, expected / depth, 1e-14 * expected / depth);
    EXPECT_NEAR(point.sc.pressure_force, expected * 0.1, 1e-14 * expected);
  }
}

TEST(Pressure, OfAWheelGoesByItsWidthHoweverSmallItsRadius) {
  loaded_point point = at_depth(0.05);
  ASSERT_EQ(load(loam(), {2, 0.1, 0.25, 1, 1}, point).count, 0);
  EXPECT_NEAR(point.sc.pressure, (5270.0 / 0.25 + 1515040.0) * std::pow(0.05, 0.7), 1e-9);
}

TEST(Pressure, IsNoneOnTheSurface) {
  loaded_point point = at_depth(0.0);
  point.rc.secant_stiffness = 7.0;
  ASSERT_EQ(load(loam(), k_plate, point).count, 0);
  EXPECT_EQ(point.sc.pressure, 0.0);
  EXPECT_EQ(point.rc.pressure, 0.0);
  EXPECT_EQ(point.rc.secant_stiffness, 7.0) << "kept as it was";
  EXPECT_EQ(point.sc.normal_force, 0.0);
}

TEST(Pressure, AWidthOfZeroIsOneMessageWhateverWasSaidBefore) {
  loaded_point point = at_depth(0.05);
  point.rc.damping = 3.0;
  const said_fault said = load(loam(), {1, 0.4, 0.0, 1, 1}, point);
  EXPECT_EQ(said.count, 1);
  EXPECT_EQ(said.message, "SOILINTERACTION ERROR : THE WIDTH OF BODY SHOULD BE GREATER THAN ZERO.");
  EXPECT_EQ(point.rc.damping, 0.0) << "reset before the width is looked at";
}

TEST(Pressure, ANegativeWidthIsNoFault) {
  loaded_point point = at_depth(0.05);
  EXPECT_EQ(load(loam(), {1, 0.4, -0.25, 1, 1}, point).count, 0);
}

struct area_case {
  const char* why;
  qvref::body body;
  double whole;
};

TEST(EffectiveArea, OfAllPointsIsTheWholeBodys) {
  const area_case cases[] = {
      {"plate of one point", {1, 0.4, 0.25, 1, 1}, 0.1},
      {"plate of a row along", {1, 0.4, 0.25, 7, 1}, 0.1},
      {"plate of a row across", {1, 0.4, 0.25, 1, 7}, 0.1},
      {"plate", {1, 0.4, 0.25, 7, 3}, 0.1},
      {"wheel of one point", {2, 0.4, 0.25, 1, 1}, 2 * 3.141592653589793 * 0.4 * 0.25},
      {"wheel of one ring", {0, 0.4, 0.25, 36, 1}, 2 * 3.141592653589793 * 0.4 * 0.25},
      {"wheel", {2, 0.4, 0.25, 36, 5}, 2 * 3.141592653589793 * 0.4 * 0.25},
  };
  for (const area_case& c : cases) {
    double sum = 0.0;
    for (int k = 0; k < c.body.nx * c.body.ny; ++k) {
      loaded_point point = at_depth(0.01);
      ASSERT_EQ(load(loam(), c.body, point).count, 0);
      sum += point.sc.effective_area;
    }
    EXPECT_NEAR(sum, c.whole, 1e-13 * c.whole) << c.why;
    loaded_point tilted = at_depth(0.01);
    tilted.rc.area_ratio = 0.3;
    ASSERT_EQ(load(loam(), c.body, tilted).count, 0);
    EXPECT_NEAR(tilted.sc.effective_area * c.body.nx * c.body.ny, 0.3 * c.whole, 1e-14) << c.why;
  }
}

qvref::soil slipping_loam() {
  qvref::soil soil = loam();
  soil.coefficient_ds = 0.3;
  soil.critical_pressure = 2e4;
  soil.exponent_pr = 1.25;
  soil.exponent_sd = 0.5;
  return soil;
}

TEST(DynamicSinkage, GrowsWithTheLastPressureAndTheWayOfTheSlip) {
  loaded_point point = at_depth(0.05);
  point.rc.last_pressure = 3e4;
  point.rc.shear_disp[0] = 0.03;
  point.rc.shear_disp[1] = -0.04;
  ASSERT_EQ(load(slipping_loam(), k_plate, point).count, 0);
  const double expected = -0.3 * std::pow(1.5, 1.25) * 0.05;
  EXPECT_NEAR(point.sc.dynamic_sinkage, expected, 1e-16);
  EXPECT_NEAR(point.sc.static_sinkage, -0.05 - expected, 1e-16);
}

TEST(DynamicSinkage, IsNoneWithoutACriticalPressureSlipOrLastPressure) {
  for (int missing = 0; missing < 3; ++missing) {
    qvref::soil soil = slipping_loam();
    loaded_point point = at_depth(0.05);
    point.rc.last_pressure = missing == 0 ? 0.0 : 3e4;
    point.rc.shear_disp[0] = missing == 1 ? 0.0 : 0.03;
    if (missing == 2) soil.critical_pressure = 0.0;
    ASSERT_EQ(load(soil, k_plate, point).count, 0);
    EXPECT_EQ(point.sc.dynamic_sinkage, 0.0) << missing;
    EXPECT_EQ(point.sc.static_sinkage, -0.05) << missing;
  }
}

TEST(DynamicSinkage, IsNoneWithoutSlipWhateverTheExponentOfTheSlip) {
  for (const double exponent : {0.0, -0.5}) {  // a power of 0 would be 1, or infinite
    qvref::soil soil = slipping_loam();
    soil.exponent_sd = exponent;
    loaded_point point = at_depth(0.05);
    point.rc.last_pressure = 3e4;
    load(soil, k_plate, point);
    EXPECT_EQ(point.sc.dynamic_sinkage, 0.0) << exponent;
  }
}

TEST(DynamicSinkage, OfANegativeRatioUnderAFractionalExponentIsNotANumberAndPressesOnNothing) {
  loaded_point point = at_depth(0.05);
  point.rc.last_pressure = -3e4;
  point.rc.shear_disp[0] = 0.03;
  ASSERT_EQ(load(slipping_loam(), k_plate, point).count, 0);
  EXPECT_TRUE(std::isnan(point.sc.dynamic_sinkage));
  EXPECT_TRUE(std::isnan(point.sc.static_sinkage));
  EXPECT_TRUE(std::isnan(point.rc.pressure));
  EXPECT_EQ(point.sc.pressure, 0.0) << "not greater than 0";
}

TEST(StaticSinkage, IsNeverAboveTheSurface) {
  loaded_point point = at_depth(0.05);
  point.rc.last_pressure = 3e4;
  point.rc.shear_disp[0] = 1.0;  // takes 0.5 off a sinkage of 0.05
  ASSERT_EQ(load(slipping_loam(), k_plate, point).count, 0);
  EXPECT_EQ(point.sc.static_sinkage, 0.0);
  EXPECT_EQ(point.sc.pressure, 0.0);
}

TEST(Damping, RampsInUpToTheBoundarySinkageAndOpposesTheMotion) {
  const double stiffness = 5270.0 / 0.25 + 1515040.0;
  for (const double depth : {0.01, 0.0499999, 0.05, 0.2}) {  // boundary sinkage 0.05
    for (const double v : {-0.02, 0.0, 0.02}) {
      loaded_point point = at_depth(depth);
      point.rc.normal_velocity = v;
      ASSERT_EQ(load(loam(), k_plate, point).count, 0);
      const double full = stiffness * 0.02 * std::pow(depth, -0.3);
      const double damping = depth < 0.05 ? full * depth / 0.05 : full;
      EXPECT_NEAR(point.rc.damping, damping, 1e-14 * damping) << depth;
      EXPECT_NEAR(point.sc.damping_force, -v * damping * 0.1, 1e-14 * damping) << depth << ", " << v;
      EXPECT_EQ(point.sc.normal_force, std::fmax(0.0, point.sc.pressure_force + point.sc.damping_force));
    }
  }
}

// Not through the ramp, whose product and quotient would round.
TEST(Damping, IsFullToTheBitExactlyAtTheBoundarySinkage) {
  for (int i = 1; i <= 200; ++i) {
    const double depth = 0.0013 * i;
    loaded_point at_boundary = at_depth(depth), beyond_it = at_depth(depth);
    qvref::soil soil = loam();
    soil.boundary_sinkage = depth;
    load(soil, k_plate, at_boundary);
    soil.boundary_sinkage = 0.5 * depth;
    load(soil, k_plate, beyond_it);
    EXPECT_EQ(at_boundary.rc.damping, beyond_it.rc.damping) << depth;
  }
}

TEST(Damping, NeverPullsTheBodyDown) {
  loaded_point point = at_depth(0.05);
  point.rc.normal_velocity = 50.0;
  ASSERT_EQ(load(loam(), k_plate, point).count, 0);
  EXPECT_LT(point.sc.pressure_force + point.sc.damping_force, 0.0);
  EXPECT_EQ(point.sc.normal_force, 0.0);
}

// The scale factors stand in the road record and no file sets them.
TEST(ScaleFactors, EnterTheDampingAsTheyAreWrittenInTheLaw) {
  qvref::soil soil = loam();
  soil.scale_factor_1 = 1.7;
  soil.scale_factor_2 = 0.6;
  soil.boundary_sinkage = 0.02;
  loaded_point point = at_depth(0.05);
  point.rc.normal_velocity = -0.03;
  ASSERT_EQ(load(soil, k_plate, point).count, 0);
  const double s = 1.7, t = 0.6;
  // (kphi s^-(n+2) + kc s^-(n+1) / (b s)) zeta (z s)^(n-1): the powers of s leave s^-3.
  const double damping = (1515040.0 + 5270.0 / 0.25) * 0.02 * std::pow(0.05, -0.3) / (s * s * s);
  EXPECT_NEAR(point.rc.damping, damping, 1e-13 * damping);
  EXPECT_NEAR(point.sc.damping_force, 0.03 * s / t * 0.1 * damping * s * s, 1e-13 * damping);
  const double pressure = (1515040.0 + 5270.0 / 0.25) * std::pow(0.05, 0.7);
  EXPECT_NEAR(point.sc.pressure, pressure, 1e-13 * pressure) << "untouched by the factors";
}

// --- loads -------------------------------------------------------------------------------------------------------

TEST(StaleNormalForce, APointWhosePressureFellToZeroCarriesItsLastNormalForceOn) {
  loaded_point point = at_depth(0.05);
  ASSERT_EQ(load(slipping_loam(), k_plate, point).count, 0);
  const double before = point.sc.normal_force;
  ASSERT_GT(before, 1e3);
  point.rc.last_pressure = 3e4;
  point.rc.shear_disp[0] = 1.0;
  ASSERT_EQ(load(slipping_loam(), k_plate, point).count, 0);
  EXPECT_EQ(point.sc.pressure, 0.0);
  EXPECT_EQ(point.sc.normal_force, before);
  EXPECT_EQ(point.rc.damping, 0.0);
}

TEST(ShearForce, IsStressTimesAreaAlongBothTangents) {
  loaded_point point = at_depth(0.05);
  point.rc.shear_disp[0] = k_j;
  point.rc.shear_disp[1] = -2 * k_j;
  point.rc.slip_velocity[0] = 0.3;
  point.rc.slip_velocity[1] = -0.1;
  ASSERT_EQ(load(loam(), k_plate, point).count, 0);
  EXPECT_EQ(point.sc.shear_stress_1, shear_stress_of(loam(), k_j, 0.3, point.sc.pressure));
  EXPECT_EQ(point.sc.shear_stress_2, shear_stress_of(loam(), 2 * k_j, -0.1, point.sc.pressure));
  EXPECT_EQ(point.sc.shear_force_1, point.sc.shear_stress_1 * point.sc.effective_area);
  EXPECT_EQ(point.sc.shear_force_2, point.sc.shear_stress_2 * point.sc.effective_area);
}

TEST(ShearForce, OnConcreteIsTheNormalForceTimesTheFrictionWhateverTheSlip) {
  qvref::soil hard = loam();
  hard.type = "CONCRETE";
  for (const double v : {-0.3, 0.0, 0.3}) {
    loaded_point point = at_depth(0.05);
    point.rc.slip_velocity[0] = v;
    point.rc.shear_disp[0] = k_j;
    ASSERT_EQ(load(hard, k_plate, point).count, 0);
    EXPECT_EQ(point.sc.shear_force_1, 0.0) << "the friction is 0 unless a record that extends this one sets it";
    point.rc.concrete_friction = 0.6;
    ASSERT_EQ(load(hard, k_plate, point).count, 0);
    EXPECT_GT(point.sc.normal_force, 1e3);
    EXPECT_EQ(point.sc.shear_force_1, point.sc.normal_force * 0.6);
    EXPECT_EQ(point.sc.shear_force_2, point.sc.normal_force * 0.6);
  }
}

TEST(ShearForce, OnlyConcreteSpeltExactlySoIsHard) {
  for (const char* type : {"concrete", " CONCRETE", "CONCRETE ", ""}) {
    qvref::soil soil = loam();
    soil.type = type;
    loaded_point point = at_depth(0.05);
    point.rc.slip_velocity[0] = 0.3;
    point.rc.shear_disp[0] = k_j;
    ASSERT_EQ(load(soil, k_plate, point).count, 0);
    EXPECT_LT(point.sc.shear_force_1, 0.0) << '"' << type << '"';
  }
}

// --- blocks ------------------------------------------------------------------------------------------------------

/// Points of all kinds: deep, shallow, on the surface, not sheared, pressed before or not, without a number.
std::vector<loaded_point> points_of_all_kinds(int count) {
  std::vector<loaded_point> points(static_cast<std::size_t>(count));
  std::mt19937 random(3);
  std::uniform_real_distribution<double> share(0.0, 1.0);
  for (loaded_point& point : points) {
    Croad_contact& rc = point.rc;
    rc.sinkage = -0.1 * share(random);
    rc.area_ratio = share(random);
    rc.last_pressure = random() % 4 == 0 ? 0.0 : 1e5 * share(random);
    rc.normal_velocity = share(random) - 0.5;
    for (int along = 0; along < 2; ++along) {
      rc.slip_velocity[along] = share(random) - 0.5;
      rc.shear_disp[along] = random() % 3 == 0 ? 0.0 : 0.2 * share(random) - 0.1;
    }
    point.sc.normal_force = 1e3 * share(random);  // of an evaluation before
    if (random() % 7 == 0) rc.sinkage = 0.0;
    if (random() % 11 == 0) rc.last_pressure = -1.0;
    if (random() % 13 == 0) rc.shear_disp[0] = 40.0;  // e^-r vanishes
  }
  return points;
}

/// What the laws set, NaN by its bits.
std::vector<std::uint64_t> loads_of(const loaded_point& point) {
  const Croad_contact& rc = point.rc;
  const Csoil_contact& sc = point.sc;
  const double values[] = {
      rc.damping,        rc.pressure,       rc.secant_stiffness, sc.shear_force_1,  sc.shear_force_2,
      sc.pressure_force, sc.damping_force,  sc.normal_force,     sc.pressure,       sc.shear_stress_1,
      sc.shear_stress_2, sc.effective_area, sc.dynamic_sinkage,  sc.static_sinkage, rc.last_pressure_power.value()};
  std::vector<std::uint64_t> bits(std::size(values));
  std::memcpy(bits.data(), values, sizeof values);
  return bits;
}

TEST(BlockOfPoints, GetsTheLoadsThatEachOfThemGetsAlone) {
  qvref::soil scaled = slipping_loam();
  scaled.scale_factor_1 = 1.7;
  qvref::soil hard = slipping_loam();
  hard.type = "CONCRETE";
  for (const qvref::soil& soil : {loam(), slipping_loam(), scaled, hard}) {
    for (const int count : {1, 7, 8, 63, 64, 65, 200}) {
      std::vector<loaded_point> together = points_of_all_kinds(count), alone = together;
      const qvsoilrdf::CRoad road = soil_road(soil);
      const qvsoilinteraction::soil_law law(road, law_width(k_plate));
      const qvsoilinteraction::contact_patch patch{k_plate.shape, k_plate.a, k_plate.w, k_plate.nx, k_plate.ny};
      std::vector<Croad_contact*> road_contacts;
      std::vector<Csoil_contact*> soil_contacts;
      for (loaded_point& point : together) {
        road_contacts.push_back(&point.rc);
        soil_contacts.push_back(&point.sc);
      }
      for (int call = 0; call < 2; ++call) {  // the second one remembers powers
        qvsoilinteraction::set_loads(law, patch, road_contacts.data(), soil_contacts.data(), count);
        for (std::size_t i = 0; i < alone.size(); ++i) {
          load(soil, k_plate, alone[i]);
          ASSERT_EQ(loads_of(together[i]), loads_of(alone[i])) << "point " << i << " of " << count;
        }
      }
    }
  }
}

}  // namespace
}  // namespace qvtest
