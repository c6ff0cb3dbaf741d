#include "soilinteraction/contact_records.h"

#include <gtest/gtest.h>

namespace qvsoilinteraction {
namespace {

struct place_case {
  const char* why;
  int i, j, shape;
  double a, w;
  int nx, ny;
  double x, y, z;
};

const place_case k_places[] = {
    {"a single point sits at the rear edge and the right side", 0, 0, 1, 2.0, 1.0, 1, 1, -1.0, -0.5, 0.0},
    {"a row along starts at the rear edge", 0, 0, 1, 2.0, 1.0, 5, 1, -1.0, -0.5, 0.0},
    {"and ends at the front edge", 4, 0, 1, 2.0, 1.0, 5, 1, 1.0, -0.5, 0.0},
    {"its middle is the marker's", 2, 0, 1, 2.0, 1.0, 5, 1, 0.0, -0.5, 0.0},
    {"a row across spans the width", 0, 2, 1, 2.0, 1.0, 1, 3, -1.0, 0.5, 0.0},
    {"the far corner of a plate", 4, 2, 1, 2.0, 1.0, 5, 3, 1.0, 0.5, 0.0},
    {"a wheel's first point is on its x axis", 0, 0, 2, 0.5, 0.2, 8, 2, 0.5, -0.1, 0.0},
    {"a quarter around is on top", 2, 1, 2, 0.5, 0.2, 8, 2, 0.0, 0.1, 0.5},
    {"three quarters around is at the bottom", 6, 0, 0, 0.5, 0.2, 8, 1, 0.0, -0.1, -0.5},
    {"shape 3 is a wheel too", 4, 0, 3, 0.5, 0.2, 8, 2, -0.5, -0.1, 0.0},
};

TEST(GridPoint, LiesWhereTheBodyHasIt) {
  for (const place_case& c : k_places) {
    Croad_contact rc;
    rc.Calculation_Si_prime(c.i, c.j, c.shape, c.a, c.w, c.nx, c.ny);
    EXPECT_NEAR(rc.Si_prime[0], c.x, 1e-15) << c.why;
    EXPECT_NEAR(rc.Si_prime[1], c.y, 1e-15) << c.why;
    EXPECT_NEAR(rc.Si_prime[2], c.z, 1e-15) << c.why;
  }
}

TEST(GridPoint, TheTildeMatrixBesideItTurnsAVectorIntoTheCrossProduct) {
  Croad_contact rc;
  rc.Calculation_Si_prime(3, 1, 2, 0.7, 0.4, 10, 3);
  const double* s = rc.Si_prime;
  const double* M = rc.Si_prime_tilde;
  const double b[3] = {2.0, -3.0, 5.0};
  const double expected[3] = {s[1] * b[2] - s[2] * b[1], s[2] * b[0] - s[0] * b[2], s[0] * b[1] - s[1] * b[0]};
  for (int r = 0; r < 3; ++r) EXPECT_NEAR(M[r] * b[0] + M[r + 3] * b[1] + M[r + 6] * b[2], expected[r], 1e-15);
}

TEST(GridPoint, WheelPointsLieEvenlyAroundTheRim) {
  constexpr int k_around = 7;
  double x = 0.0, z = 0.0;
  for (int i = 0; i < k_around; ++i) {
    Croad_contact rc;
    rc.Calculation_Si_prime(i, 0, 2, 0.5, 0.2, k_around, 1);
    EXPECT_NEAR(std::hypot(rc.Si_prime[0], rc.Si_prime[2]), 0.5, 1e-15);
    x += rc.Si_prime[0];
    z += rc.Si_prime[2];
  }
  EXPECT_NEAR(x, 0.0, 1e-15);
  EXPECT_NEAR(z, 0.0, 1e-15);
}

TEST(ContactRecords, StartWithAnUprightFrameAndNothingElse) {
  Croad_contact rc;
  for (int c = 0; c < 3; ++c) {
    EXPECT_EQ(rc.normal[c], c == 2 ? 1.0 : 0.0);
    EXPECT_EQ(rc.tangent_1[c], c == 0 ? 1.0 : 0.0);
    EXPECT_EQ(rc.tangent_2[c], c == 1 ? 1.0 : 0.0);
    EXPECT_EQ(rc.first_contact_position[c], 0.0);
    EXPECT_EQ(rc.facet_point[c], 0.0);
  }
  EXPECT_EQ(rc.sinkage, 0.0);
  EXPECT_EQ(rc.contact_state, 0.0);
  EXPECT_EQ(rc.concrete_friction, 0.0) << "nothing of this module ever sets it";
  EXPECT_EQ(rc.spare, 0.001);
}

TEST(ContactRecords, LoadsStartAtZero) {
  const Csoil_contact sc;
  EXPECT_EQ(sc.normal_force, 0.0);
  EXPECT_EQ(sc.pressure, 0.0);
  EXPECT_EQ(sc.effective_area, 0.0);
  EXPECT_EQ(sc.spare, 1.0);
  EXPECT_EQ(sc.soil_type, "");
}

TEST(ContactRecords, InitializeTakesEverythingBackToTheStart) {
  Croad_contact rc;
  rc.Calculation_Si_prime(3, 1, 2, 0.7, 0.4, 10, 3);
  rc.normal[0] = rc.sinkage = rc.contact_state = rc.max_sinkage = rc.last_shear_disp[1] = 3.0;
  rc.Initialize();
  EXPECT_EQ(rc.Si_prime[0], 0.0);
  EXPECT_EQ(rc.Si_prime_tilde[1], 0.0);
  EXPECT_EQ(rc.normal[0], 0.0);
  EXPECT_EQ(rc.sinkage, 0.0);
  EXPECT_EQ(rc.contact_state, 0.0);
  EXPECT_EQ(rc.max_sinkage, 0.0);
  EXPECT_EQ(rc.last_shear_disp[1], 0.0);
}

TEST(ContactRecords, AnElementIsMarkedUnsetUntilItsSetUp) {
  const CSoilInteraction element;
  EXPECT_EQ(element.nx, -1);
  EXPECT_EQ(element.ny, -1);
  EXPECT_EQ(element.element_id, -16394);
  EXPECT_TRUE(element.road_contacts.empty());
  EXPECT_TRUE(element.soil_contacts.empty());
}

TEST(ContactRecords, ACopyOfAnElementIsIndependent) {
  CSoilInteraction element;
  element.road_contacts.assign(2, std::vector<Croad_contact>(3));
  CSoilInteraction copy = element;
  copy.road_contacts[1][2].sinkage = -1.0;
  EXPECT_EQ(element.road_contacts[1][2].sinkage, 0.0);
}

}  // namespace
}  // namespace qvsoilinteraction
