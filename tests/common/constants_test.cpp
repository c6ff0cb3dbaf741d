#include "qvbrisk/constants.h"

#include <gtest/gtest.h>

#include <limits>

#include "qvbrisk/codes.h"

namespace {

constexpr double k_eps = std::numeric_limits<double>::epsilon();

TEST(Constants, AgreeWithPi) {
  const double pi = 3.14159265358979323846;
  EXPECT_EQ(PI, pi);
  EXPECT_EQ(TPI, 2 * pi);
  EXPECT_EQ(HPI, pi / 2);
  EXPECT_NEAR(INVPI * pi, 1, k_eps);
  EXPECT_NEAR(INVTPI * 2 * pi, 1, k_eps);
  EXPECT_NEAR(PIINV18 * 18, pi, 4 * k_eps);
  EXPECT_NEAR(RTOD * DTOR, 1, k_eps);
  EXPECT_NEAR(DTOR * 180, pi, 2 * k_eps);
  EXPECT_NEAR(WTORPM * RPMTOW, 1, k_eps);
  EXPECT_NEAR(RPMTOW * 30, pi, 2 * k_eps);
}

TEST(Constants, AreTheStatedDoubles) {
  EXPECT_EQ(INVPI, 0.3183098861837907);
  EXPECT_EQ(INVTPI, 0.15915494309189535);
  EXPECT_EQ(PIINV18, 0.17453292519943295);
  EXPECT_EQ(RTOD, 57.29577951308232);
  EXPECT_EQ(DTOR, 0.017453292519943295);
  EXPECT_EQ(WTORPM, 9.549296585513721);
  EXPECT_EQ(RPMTOW, 0.10471975511965977);
}

TEST(Codes, HaveTheHostsValues) {
  EXPECT_EQ(MOTTP_ROT, 0);
  EXPECT_EQ(MOTTP_TRA, 1);
  EXPECT_EQ(KPAXTP_GEO, 1);
  EXPECT_EQ(KPAXTP_INS, 2);
  EXPECT_EQ(AVG_RES, 0);
  EXPECT_EQ(MAX_RES, 3);
  EXPECT_EQ(STATUS_FRICTION_UNKNOWN, 0);
  EXPECT_EQ(STATUS_FRICTION_DYNAMIC, 4);
}

}  // namespace
