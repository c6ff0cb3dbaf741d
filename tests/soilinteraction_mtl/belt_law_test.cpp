#include <gtest/gtest.h>

#include "soilinteraction_mtl/recorded_fault.h"
#include "soilinteraction_mtl/soil_force.h"
#include "tests/soilinteraction/law_probe.h"

// The laws of one belt point against their formulas written out here, the split to the nodes, the records.

namespace qvtest {
namespace {

using namespace qvsoilinteractionmtl;

/// A belt point and its loads, on the span's start record and on the one at its end.
struct belt_point {
  Croad_contact_mtl rc;
  Csoil_contact_mtl sc, sc2;
};

/// Length, width and counts of a span.
struct span_size {
  double L = 2.0, b = 0.5;
  int n_long = 5, n_lat = 4;
};

said_fault load(const qvref::soil& soil, const span_size& span, belt_point& point) {
  const qvsoilrdf::CRoad road = soil_road(soil);
  const contact_patch patch = make_span_patch(span.L, span.b, span.n_long, span.n_lat);
  const soil_law law = make_span_law(road, patch);
  point.sc.soil_type = soil.type;
  qvsoilinteraction::Croad_contact* rc = &point.rc;
  qvsoilinteraction::Csoil_contact* sc = &point.sc;
  said_fault said;
  char* msg[5] = {};
  get_soil_force_mtl(law, patch, &rc, &sc, 1, {"", said.count, msg});
  return said;
}

belt_point sunken_point(double depth) {
  belt_point point;
  point.rc.sinkage = -depth;
  point.rc.area_ratio = 1.0;
  return point;
}

TEST(BeltArea, IsThePointsShareOfTheSpanTimesTheCosineToTheRoad) {
  struct area_case {
    span_size span;
    double factor, expected;
  };
  const area_case cases[] = {{{2.0, 0.5, 5, 4}, 1.0, 0.05}, {{2.0, 0.5, 5, 4}, 0.5, 0.025},
                             {{3.0, 0.4, 1, 1}, 0.5, 0.6},  {{3.0, 0.4, 1, 3}, 1.0, 0.4},
                             {{3.0, 0.4, 4, 1}, 1.0, 0.3},  {{0.0, 0.4, 4, 4}, 1.0, 0.0}};
  for (const area_case& c : cases) {
    Croad_contact_mtl rc;
    rc.area_ratio = c.factor;
    EXPECT_NEAR(get_effective_area_mtl(make_span_patch(c.span.L, c.span.b, c.span.n_long, c.span.n_lat), rc),
                c.expected, 1e-15);
  }
}

TEST(BeltPressure, TakesTheSmallerOfSpanLengthAndBeltWidthAndNeverTheFilesWidth) {
  const qvref::soil soil = loam();
  for (const auto& [L, b, width] : {std::array<double, 3>{2.0, 0.5, 0.5}, {0.3, 0.5, 0.3}, {0.4, 0.4, 0.4}}) {
    belt_point point = sunken_point(0.06);
    load(soil, {L, b, 5, 4}, point);
    const double expected = (soil.kc / width + soil.kphi) * std::pow(0.06, soil.n);
    EXPECT_NEAR(point.sc.pressure, expected, 1e-12 * expected);
    EXPECT_NEAR(point.sc.normal_force, expected * L * b / 20, 1e-12 * expected);
  }
}

TEST(BeltPressure, OfASpanWithoutLengthOrABeltWithoutWidthIsNoneAndNoFault) {
  for (const span_size& span : {span_size{0.0, 0.5, 5, 4}, span_size{2.0, 0.0, 5, 4}}) {
    belt_point point = sunken_point(0.06);
    const said_fault said = load(loam(), span, point);
    EXPECT_EQ(said.count, 0);
    EXPECT_EQ(point.sc.pressure, 0.0);
    EXPECT_EQ(point.sc.normal_force, 0.0);
  }
}

/// The damping force by the formula, scale factors and all.
double damping_force(const qvref::soil& s, double width, double area, double depth, double v) {
  const double f = s.scale_factor_1, g = s.scale_factor_2;
  const double K = s.kphi * std::pow(1.0 / f, s.n + 2.0) + s.kc * std::pow(1.0 / f, s.n + 1.0) / (width * f);
  double damping = K * s.damp_ratio * std::pow(depth * f, s.n - 1.0);
  if (depth < s.boundary_sinkage) damping *= depth / s.boundary_sinkage;
  return -qvref::sign(v) * std::fabs(v * f / g) * area * damping * f * f;
}

TEST(BeltDamping, FollowsItsFormulaWithBothScaleFactors) {
  for (const double f : {1.0, 0.5, 3.0}) {
    for (const double g : {1.0, 0.25}) {
      for (const double v : {-0.4, 0.0, 0.003}) {
        for (const double depth : {0.02, 0.049, 0.05, 0.11}) {
          qvref::soil soil = loam();
          soil.scale_factor_1 = f;
          soil.scale_factor_2 = g;
          belt_point point = sunken_point(depth);
          point.rc.normal_velocity = v;
          load(soil, {2.0, 0.5, 5, 4}, point);
          const double expected = damping_force(soil, 0.5, 0.05, depth, v);
          EXPECT_NEAR(point.sc.damping_force, expected, 1e-12 * std::fabs(expected));
          EXPECT_NEAR(point.sc.normal_force, std::fmax(0.0, expected + point.sc.pressure_force),
                      1e-12 * (std::fabs(expected) + point.sc.pressure_force));
        }
      }
    }
  }
}

TEST(BeltDamping, AtTheBoundarySinkageIsFull) {
  qvref::soil soil = loam();
  soil.n = 1.0;
  soil.boundary_sinkage = 0.0625;
  belt_point at = sunken_point(0.0625), below = sunken_point(0.125), above = sunken_point(0.03125);
  for (belt_point* point : {&at, &below, &above}) load(soil, {2.0, 0.5, 5, 4}, *point);
  EXPECT_EQ(at.rc.damping, below.rc.damping);
  EXPECT_NEAR(above.rc.damping, 0.5 * at.rc.damping, 1e-12 * at.rc.damping);
}

TEST(BeltNormalForce, IsNeverAPull) {
  belt_point point = sunken_point(0.05);
  point.rc.normal_velocity = 1e4;
  load(loam(), {}, point);
  EXPECT_LT(point.sc.damping_force + point.sc.pressure_force, 0.0);
  EXPECT_EQ(point.sc.normal_force, 0.0);
}

TEST(BeltStaleNormalForce, APointWhosePressureFellToZeroCarriesItsLastNormalForceOn) {
  belt_point point = sunken_point(0.05);
  point.rc.normal_velocity = -0.1;
  load(loam(), {}, point);
  const Csoil_contact_mtl before = point.sc;
  ASSERT_GT(before.normal_force, 1e3);
  point.rc.sinkage = 0.0;  // without pressure
  load(loam(), {}, point);
  EXPECT_EQ(point.sc.pressure, 0.0);
  EXPECT_EQ(point.rc.damping, 0.0);
  EXPECT_EQ(point.sc.pressure_force, before.pressure_force);
  EXPECT_EQ(point.sc.damping_force, before.damping_force);
  EXPECT_EQ(point.sc.normal_force, before.normal_force);
  genenralized_contact_force_mtl(point.rc, point.sc, point.sc2);
  EXPECT_EQ(point.sc.local_force[2], before.normal_force) << "and the nodes share it";
}

struct shear_case {
  const char* why;
  double j, v, pressure, expected;
};
constexpr double k_strength = 2e4 * 0.5543090514527689 + 1720.0;  // p tan(29 degrees) + c

const shear_case k_shear_cases[] = {
    {"at rest there is no shear", 0.025, 0.0, 2e4, 0.0},
    {"at j = K the Mohr-Coulomb strength", 0.025, 0.4, 2e4, -k_strength},
    {"only the size of j counts", -0.025, 0.4, 2e4, -k_strength},
    {"reversing the slip reverses it", 0.025, -0.4, 2e4, k_strength},
    {"long slip leaves strength over sensitivity", 1.5, -0.4, 2e4, k_strength / 1.5},
    {"without displacement there is none", 0.0, 0.4, 2e4, 0.0},
    {"without pressure cohesion alone is left", 1.5, -0.4, 0.0, 1720.0 / 1.5},
};

TEST(BeltShear, FollowsTheHumpedCurve) {
  const soil_law law(soil_road(loam()), 0.5);
  for (const shear_case& c : k_shear_cases) {
    EXPECT_NEAR(get_wong_shear_pressure_mtl(law, c.j, c.v, c.pressure), c.expected, 1e-9) << c.why;
  }
}

TEST(BeltShear, IsNoneForASensitivityOrAShearDisplacementKOfZero) {
  qvref::soil no_sensitivity = loam(), no_displacement = loam();
  no_sensitivity.sensitivity = 0.0;
  no_displacement.max_shear_disp = 0.0;
  for (const qvref::soil& soil : {no_sensitivity, no_displacement}) {
    EXPECT_EQ(get_wong_shear_pressure_mtl(soil_law(soil_road(soil), 0.5), 0.025, -0.4, 2e4), 0.0);
  }
}

TEST(BeltShear, OfTheSecondTangentTakesTheSecondSlip) {
  belt_point point = sunken_point(0.05);
  point.rc.slip_velocity[1] = -0.3;
  point.rc.shear_disp[1] = 0.025;
  load(loam(), {}, point);
  EXPECT_EQ(point.sc.shear_force_1, 0.0);
  const double strength = point.sc.pressure * std::tan(loam().friction_angle) + 1720.0;
  EXPECT_NEAR(point.sc.shear_force_2, strength * 0.05, 1e-9);
}

TEST(BeltOnConcrete, HasTwoShearForcesEqualToTheNormalForceWhateverTheSlip) {
  qvref::soil hard = loam();
  hard.type = "CONCRETE";
  for (const double slip : {0.0, 1.0, -1.0}) {
    belt_point point = sunken_point(0.01);
    point.rc.slip_velocity[0] = point.rc.slip_velocity[1] = slip;
    load(hard, {}, point);
    ASSERT_GT(point.sc.normal_force, 0.0);
    EXPECT_EQ(point.sc.shear_force_1, point.sc.normal_force);
    EXPECT_EQ(point.sc.shear_force_2, point.sc.normal_force);
  }
}

TEST(BeltOnConcrete, MustBeSpeltExactlySo) {
  for (const char* type : {" CONCRETE", "concrete", "CONCRETE ", ""}) {
    qvref::soil soil = loam();
    soil.type = type;
    belt_point point = sunken_point(0.01);
    load(soil, {}, point);
    EXPECT_EQ(point.sc.shear_force_1, 0.0) << "'" << type << "'";
  }
}

// --- the split to the nodes --------------------------------------------------------------------------------------

belt_point loaded_point() {
  belt_point point;
  const double frame[3][3] = {{0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}};
  std::copy_n(frame[0], 3, point.rc.tangent_1);
  std::copy_n(frame[1], 3, point.rc.tangent_2);
  std::copy_n(frame[2], 3, point.rc.normal);
  const double lever[3] = {2.0, 3.0, 5.0};
  std::copy_n(lever, 3, point.rc.lever_marker);
  point.sc.shear_force_1 = 8.0;
  point.sc.shear_force_2 = 16.0;
  point.sc.normal_force = 32.0;
  point.sc.node_weight = 0.25;
  point.sc2.node_weight = 0.75;
  return point;
}

TEST(NodeShares, AreTheFirstShearAloneAndTheNormalWithTheSecondShear) {
  belt_point point = loaded_point();
  std::fill_n(point.sc.shear_share, 6, 9.0);
  std::fill_n(point.sc2.shear_share, 6, 9.0);
  genenralized_contact_force_mtl(point.rc, point.sc, point.sc2);
  const double shear[6] = {0.0, 2.0, 0.0, 0.0, 0.0, 0.0}, shear2[6] = {0.0, 6.0, 0.0, 0.0, 0.0, 0.0};
  const double normal[6] = {8.0, 0.0, 4.0, 0.0, 0.0, 0.0}, normal2[6] = {24.0, 0.0, 12.0, 0.0, 0.0, 0.0};
  for (int c = 0; c < 6; ++c) {
    EXPECT_EQ(point.sc.shear_share[c], shear[c]);
    EXPECT_EQ(point.sc2.shear_share[c], shear2[c]);
    EXPECT_EQ(point.sc.normal_share[c], normal[c]);
    EXPECT_EQ(point.sc2.normal_share[c], normal2[c]);
  }
  for (int c = 0; c < 3; ++c) {
    EXPECT_EQ(point.sc.shear_work[c], shear[c]);
    EXPECT_EQ(point.sc2.shear_work[c], shear2[c]);
  }
}

TEST(BeltForce, IsTurnedIntoTheReferenceAxesAndHasItsMomentAboutTheVehicleMarker) {
  belt_point point = loaded_point();
  genenralized_contact_force_mtl(point.rc, point.sc, point.sc2);
  const double local[3] = {8.0, 16.0, 32.0}, force[3] = {32.0, 8.0, 16.0};
  const double moment[3] = {3.0 * 16.0 - 5.0 * 8.0, 5.0 * 32.0 - 2.0 * 16.0, 2.0 * 8.0 - 3.0 * 32.0};
  for (int c = 0; c < 3; ++c) {
    EXPECT_EQ(point.sc.local_force[c], local[c]);
    EXPECT_EQ(point.sc.force[c], force[c]);
    EXPECT_EQ(point.sc.moment[c], moment[c]);
  }
}

// --- records -----------------------------------------------------------------------------------------------------

TEST(TrackRecords, OfAPointAddLeversSharesAndAHardRoadFactorOfOne) {
  const Croad_contact_mtl rc;
  EXPECT_EQ(rc.concrete_friction, 1.0);
  EXPECT_EQ(qvsoilinteraction::Croad_contact().concrete_friction, 0.0) << "of a plate's point";
  EXPECT_EQ(rc.normal[2], 1.0);
  EXPECT_EQ(rc.update_time, 0.0);
  Csoil_contact_mtl sc;
  for (int c = 0; c < 3; ++c) {
    EXPECT_EQ(rc.lever_marker[c], 0.0);
    EXPECT_EQ(rc.lever_node[c], 0.0);
    EXPECT_EQ(sc.shear_work[c], 0.0);
  }
  for (int c = 0; c < 6; ++c) {
    EXPECT_EQ(sc.shear_share[c], 0.0);
    EXPECT_EQ(sc.normal_share[c], 0.0);
    sc.shear_share[c] = sc.normal_share[c] = 4.0;
  }
  sc.node_weight = 4.0;
  sc.Initialize();
  EXPECT_EQ(sc.node_weight, 0.0);
  EXPECT_EQ(sc.shear_share[5], 0.0);
  EXPECT_EQ(sc.normal_share[5], 0.0);
}

TEST(TrackRecords, OfASpanAreMarkedUnsetUntilTheSetUp) {
  const CSoilInteractionMTL record;
  EXPECT_EQ(record.nLong, -1);
  EXPECT_EQ(record.nLat, -1);
  EXPECT_EQ(record.track_id, -16394);
  EXPECT_EQ(record.side, 0);
  for (const double value : record.points) EXPECT_EQ(value, 0.0);
  EXPECT_TRUE(record.road_contacts.empty());
  EXPECT_TRUE(record.soil_contacts.empty());
}

// --- faults inside a step ----------------------------------------------------------------------------------------

TEST(RecordedFault, IsAMessageBehindTheBannerAndGoesNoFarther) {
  int ierr = 1;
  char* msg[5] = {};
  EXPECT_FALSE(run_recorded([] { throw std::runtime_error("abc"); }, {"", ierr, msg}));
  EXPECT_EQ(ierr, 2);
  EXPECT_EQ(msg[0], nullptr) << "the next slot, not the first";
  ASSERT_NE(msg[1], nullptr);
  EXPECT_STREQ(msg[1], "\n < QV_SOLVER:: BRISK ERROR> \n SOIL INTERACTION MTL ERROR : abc\n");
  delete[] msg[1];
}

TEST(RecordedFault, LetsTheIntegerOfAFaultThatIsStoredAlreadyPass) {
  int ierr = 0;
  char* msg[5] = {};
  EXPECT_THROW(run_recorded([] { throw 1; }, {"", ierr, msg}), int);
  EXPECT_EQ(ierr, 0);
}

TEST(RecordedFault, SaysNothingOfAStepThatCameToItsEnd) {
  int ierr = 0;
  char* msg[5] = {};
  EXPECT_TRUE(run_recorded([] {}, {"", ierr, msg}));
  EXPECT_EQ(ierr, 0);
}

}  // namespace
}  // namespace qvtest
