#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <limits>

#include "common/kernels/kernels_kept.h"
#include "qvbrisk/services.h"

namespace {

constexpr double k_eps = std::numeric_limits<double>::epsilon();

struct contact {
  double k = 1000, e = 1.5, c = 20, dmax = 0.1, mu_d = 0.3, mu_s = 0.5, vd = 0.2, vs = 0.1;
};

struct forces {
  double normal;
  double friction;
};

forces evaluate(const contact& p, double d, double slide, double penetrate) {
  const double par[8] = {p.k, p.e, p.c, p.dmax, p.mu_d, p.mu_s, p.vd, p.vs};
  const double v[2] = {slide, penetrate};
  forces f = {77, 77};
  qv::get_contact_force(par, d, v, f.normal, f.friction);
  return f;
}

/// Odd cubic through (-1, -1) and (1, 1) with flat ends: the step that is symmetric about zero.
double symmetric_step(double x) { return x >= 1 ? 1 : x <= -1 ? -1 : 1.5 * x - 0.5 * x * x * x; }

double step(double x, double x0, double h0, double x1, double h1) {
  double value = 0;
  int flag = 0;
  STEP(nullptr, &value, &flag, x, x0, h0, x1, h1);
  return value;
}

TEST(ContactForce, ElasticPartIsAPowerOfTheDepthWhateverItsSign) {
  contact p;
  p.c = 0;
  EXPECT_NEAR(evaluate(p, 0.04, 0, 9).normal, 1000 * 0.008, 8 * 2 * k_eps);  // 0.04^1.5 = 0.008
  EXPECT_EQ(evaluate(p, -0.04, 0, 9).normal, evaluate(p, 0.04, 0, 9).normal);
}

TEST(ContactForce, WithoutStiffnessOnlyTheDampingIsLeft) {
  contact p;
  p.k = 0;
  EXPECT_EQ(evaluate(p, 0.5, 0, 3).normal, -60);
  p.e = 0;  // a power of 0 would give 1
  EXPECT_EQ(evaluate(p, 0.5, 0, 3).normal, -60);
  EXPECT_EQ(evaluate(p, 0.0, 0, 3).normal, 0);
}

TEST(ContactForce, NegativeStiffnessIsTakenAsItIs) {
  contact p;
  p.k = -10, p.e = 1, p.c = 0;
  EXPECT_EQ(evaluate(p, 0.5, 0, 0).normal, -5);
}

TEST(ContactForce, DampingRisesAlongTheUpperHalfOfASymmetricStep) {
  EXPECT_TRUE(rc::check([] {
    contact p;
    p.k = 0;
    const double d = *rc::gen::inRange(-1500, 1501) / 10000.0;
    const double rate = *rc::gen::inRange(-100, 101) / 10.0;
    RC_PRE(d != 0.0);
    const double expected = -p.c * symmetric_step(std::fabs(d) / p.dmax) * rate;
    RC_ASSERT(std::fabs(evaluate(p, d, 0, rate).normal - expected) <= 16 * k_eps * p.c * std::fabs(rate));
  }));
}

TEST(ContactForce, DampingIsFullFromItsDepthOn) {
  contact p;
  p.k = 0;
  EXPECT_EQ(evaluate(p, 0.1, 0, 2).normal, -40);
  EXPECT_EQ(evaluate(p, 7, 0, 2).normal, -40);
  EXPECT_NEAR(evaluate(p, 0.05, 0, 2).normal, -40 * 0.6875, 40 * 4 * k_eps);  // not the 0.5 of a step from 0
}

TEST(ContactForce, NegativeDampingIsNone) {
  contact p;
  p.k = 0, p.c = -5;
  EXPECT_EQ(evaluate(p, 0.05, 0, 2).normal, 0);
}

TEST(ContactForce, WithoutPenetrationThereIsNoForce) {
  const forces f = evaluate(contact(), 0, 0.15, 4);
  EXPECT_EQ(f.normal, 0);
  EXPECT_EQ(f.friction, 0);
}

TEST(ContactForce, AtRestTheFrictionIsANegativeZero) {
  for (double slide : {0.0, -0.0}) {
    const forces f = evaluate(contact(), 0.05, slide, 0);
    EXPECT_GT(f.normal, 0);
    EXPECT_EQ(f.friction, 0);
    EXPECT_TRUE(std::signbit(f.friction));
  }
}

TEST(ContactForce, WithoutDynamicFrictionThereIsNoneAtAll) {
  contact p;
  p.mu_d = 0;
  for (double slide : {0.05, 0.15, 5.0, -5.0}) {
    const forces f = evaluate(p, 0.05, slide, 0);
    EXPECT_EQ(f.friction, 0) << slide;
    EXPECT_TRUE(std::signbit(f.friction)) << slide;
  }
}

struct friction_case {
  const char* why;
  double slide, coefficient;
};

const friction_case k_friction_cases[] = {
    {"sticking, half way: 1.5/2 - 0.5/8 of the static coefficient", 0.05, 0.5 * 0.6875},
    {"sticking to the other side", -0.05, -0.5 * 0.6875},
    {"at the stiction velocity the static coefficient", 0.1, 0.5},
    {"at the stiction velocity, other side", -0.1, -0.5},
    {"half way between static and dynamic", 0.15, 0.4},
    {"half way between static and dynamic, other side", -0.15, -0.4},
    {"at the friction velocity the dynamic coefficient", 0.2, 0.3},
    {"faster", 40.0, 0.3},
    {"faster, other side", -40.0, -0.3},
};

TEST(ContactForce, FrictionOpposesTheSlip) {
  contact p;
  p.c = 0;
  for (const friction_case& row : k_friction_cases) {
    const forces f = evaluate(p, 0.04, row.slide, 0);
    EXPECT_NEAR(f.friction, -row.coefficient * f.normal, 8 * 16 * k_eps) << row.why;
  }
}

TEST(ContactForce, FrictionTakesTheMagnitudeOfAPullingNormalForce) {
  contact p;
  p.k = 0;
  const forces f = evaluate(p, 0.2, 5, 3);
  EXPECT_EQ(f.normal, -60);
  EXPECT_EQ(f.friction, -0.3 * 60);
}

TEST(ContactForce, StictionBeyondTheFrictionVelocityNeverComesIntoPlay) {
  contact p;
  p.c = 0, p.vs = 0.4;  // above vd
  const double normal = evaluate(p, 0.04, 0.3, 0).normal;
  EXPECT_EQ(evaluate(p, 0.04, 0.3, 0).friction, -p.mu_d * normal);
  EXPECT_NEAR(evaluate(p, 0.04, 0.1, 0).friction, -p.mu_s * symmetric_step(0.25) * normal, 16 * k_eps * normal);
}

TEST(ContactForce, FrictionFollowsTheHostsStepInEveryBranch) {
  EXPECT_TRUE(rc::check([] {
    contact p;
    p.vd = *rc::gen::inRange(1, 40) / 100.0;
    p.vs = *rc::gen::inRange(1, 40) / 100.0;
    const double slide = *rc::gen::inRange(-50, 51) / 100.0;
    const forces f = evaluate(p, 0.03, slide, 0.01);
    const double u = std::fabs(slide), sign = slide < 0 ? -1 : 1;
    double mu = 0;
    if (slide != 0) {
      if (u >= p.vd)
        mu = sign * p.mu_d;
      else if (u > p.vs)
        mu = sign * step(u, p.vs, p.mu_s, p.vd, p.mu_d);
      else
        mu = step(slide, -p.vs, -p.mu_s, p.vs, p.mu_s);
    }
    RC_ASSERT(f.friction == -mu * std::fabs(f.normal));
  }));
}

TEST(ContactForce, NotANumberComesOutAsNotANumber) {
  EXPECT_TRUE(std::isnan(evaluate(contact(), std::nan(""), 1, 1).normal));
  EXPECT_TRUE(std::isnan(evaluate(contact(), 0.05, 1, std::nan("")).normal));
}

}  // namespace
