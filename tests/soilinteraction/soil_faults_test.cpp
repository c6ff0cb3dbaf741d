#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qvbrisk/subroutines.h"
#include "tests/soilinteraction/soil_scene.h"

// Every text that parameters and states can provoke, letter for letter. This program's allocator refuses requests of
// a gigabyte and more (allocation_control), so that a model with two thousand million roads needs no such machine.

namespace qvtest {
namespace {

using testing::Each;

const qvref::body k_plate = {1, 0.5, 0.25, 3, 2};
constexpr double k_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double k_inf = std::numeric_limits<double>::infinity();

SoilScene sunken() {
  SoilScene scene(flat_mesh(8, 8, 0.5), loam(), k_plate);
  scene.body().position = {2.0, 2.0, -0.05};
  return scene;
}

/// A call with one parameter replaced.
std::string report_with(SoilScene& scene, std::size_t parameter, double value, int iflag) {
  std::vector<double> par = scene.parameters.list();
  par[parameter] = value;
  std::vector<double> result(7 + 8 * 6, k_poison);
  qvsoil_interaction(scene.host.handle(), 0.0, par.data(), 15, 0, iflag, result.data());
  return scene.take_report();
}

struct guard_case {
  std::size_t parameter;
  double value;
  const char* text;
};

#define QV_INT_RANGE "; it must be a number between -2147483648 and 2147483647."

const guard_case k_guards[] = {
    {0, k_nan, "The element index (parameter 0) is nan" QV_INT_RANGE},
    {0, 3e9, "The element index (parameter 0) is 3e+09" QV_INT_RANGE},
    {0, -1, "The element index (parameter 0) is -1; it must lie between 0 and 3."},
    {0, 4, "The element index (parameter 0) is 4; it must lie between 0 and 3."},
    {1, k_inf, "The body marker id (parameter 1) is inf" QV_INT_RANGE},
    {3, -k_inf, "The road index (parameter 3) is -inf" QV_INT_RANGE},
    {3, -1, "The road index (parameter 3) is -1; it must lie between 0 and 8191."},
    {3, k_roads, "The road index (parameter 3) is 8192; it must lie between 0 and 8191."},
    {4, 2147483648.0, "The string id of the RDF file (parameter 4) is 2147483648" QV_INT_RANGE},
    {5, -2147483649.0, "The road base marker id (parameter 5) is -2147483649" QV_INT_RANGE},
    {7, -1, "The number of soil elements (parameter 7) is -1; it must not be negative."},
    {7, 1e300, "The number of soil elements (parameter 7) is 1e+300" QV_INT_RANGE},
    {8, -2, "The number of roads (parameter 8) is -2; it must not be negative."},
    {8, k_nan, "The number of roads (parameter 8) is nan" QV_INT_RANGE},
    {9, 1e10, "The body shape (parameter 9) is 1e+10" QV_INT_RANGE},
    {12, -3, "The grid count along or around (parameter 12) is -3; it must not be negative."},
    {12, k_nan, "The grid count along or around (parameter 12) is nan" QV_INT_RANGE},
    {12, 4, "The grid count along or around (parameter 12) is 4; the element was set up with 3."},
    {13, -3.5, "The grid count across (parameter 13) is -3; it must not be negative."},
    {13, 3, "The grid count across (parameter 13) is 3; the element was set up with 2."},
    {13, 268435455.0,
     "The number of grid points (parameter 12 times parameter 13) is 805306365; it must not exceed 268435455."},
    {14, -k_inf, "The ground reference marker id (parameter 14) is -inf" QV_INT_RANGE},
};

TEST(Guards, NameTheParameterItsValueAndItsRange) {
  SoilScene scene = sunken();
  scene.call(1);
  for (const guard_case& c : k_guards) {
    for (const int iflag : {0, 1, 2}) {
      EXPECT_EQ(report_with(scene, c.parameter, c.value, iflag), std::string("SOILINTERACTION ERROR : ") + c.text)
          << "iflag " << iflag;
    }
  }
  EXPECT_GT(scene.call(0)[2], 1e4) << "and the element works on";
  EXPECT_EQ(scene.take_report(), "");
}

TEST(Guards, LetCountsThatNoCallLooksAtPassAndNegativeFractionsAreZero) {
  SoilScene scene = sunken();
  scene.call(1);
  EXPECT_EQ(report_with(scene, 7, -0.75, 0), "");
  EXPECT_EQ(report_with(scene, 8, 0.0, 0), "");
  EXPECT_EQ(report_with(scene, 0, -0.75, 0), "");
}

TEST(Guards, OfTheSumsNameTheRoad) {
  SoilScene scene = sunken();
  scene.call(1);
  const auto report = [&](double road) {
    EXPECT_THAT(call_sum(scene.host, road, 2), Each(0.0));
    return scene.take_report();
  };
  EXPECT_EQ(report(-1), "SOILINTERACTION ERROR : The road index (parameter 0) is -1; it must lie between 0 and 8191.");
  EXPECT_EQ(report(8192),
            "SOILINTERACTION ERROR : The road index (parameter 0) is 8192; it must lie between 0 and 8191.");
  EXPECT_EQ(report(k_nan), "SOILINTERACTION ERROR : The road index (parameter 0) is nan" QV_INT_RANGE);
  EXPECT_THAT(call_sum(scene.host, k_nan, 0), Each(0.0));
  EXPECT_EQ(scene.take_report(), "") << "only looked at when sums are asked for";
}

TEST(Width, OfZeroIsOneMessageOnceAPointIsInContact) {
  for (const int iflag : {1, 0, 2}) {
    SoilScene scene = sunken();
    if (iflag != 1) scene.call(1);
    scene.parameters.body.w = 0.0;
    scene.call(iflag);
    ASSERT_EQ(scene.host.reports.size(), 1U);
    EXPECT_EQ(scene.take_report(), "SOILINTERACTION ERROR : THE WIDTH OF BODY SHOULD BE GREATER THAN ZERO.");
    for (std::size_t entry = 0; entry < 7; ++entry) EXPECT_EQ(scene.total(entry), 0.0);
  }
}

TEST(Width, OfZeroIsNoFaultWhileNoPointIsInContact) {
  SoilScene scene = sunken();
  scene.parameters.body.w = 0.0;
  scene.body().position[2] = 0.1;
  for (const int iflag : {1, 0, 2}) {
    scene.call(iflag);
    EXPECT_EQ(scene.take_report(), "");
  }
}

TEST(Width, OfAPlateIsItsNarrowerSide) {
  SoilScene scene = sunken();
  scene.parameters.body.a = 0.0;
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "SOILINTERACTION ERROR : THE WIDTH OF BODY SHOULD BE GREATER THAN ZERO.");
  scene.parameters.body.shape = 2;
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "") << "a wheel without radius has a width";
}

TEST(Width, SlightlyBelowZeroIsNoFault) {
  SoilScene scene = sunken();
  scene.parameters.body.w = -1e-300;
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "");
}

TEST(StandardExceptions, AreReportedBehindTheModulesPrefix) {
  if (module_is_in_use()) GTEST_SKIP() << "the tables stand already in this process";
  SoilScene scene = sunken();
  EXPECT_EQ(report_with(scene, 8, 2147483647.0, 1), "SOILINTERACTION ERROR : std::bad_alloc");
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "") << "with a sensible number of roads it works";
  EXPECT_GT(scene.total(2), 1e4);
}

TEST(StandardExceptions, OfAnElementLeaveItToBeSetUpLater) {
  SoilScene scene = sunken();
  EXPECT_EQ(report_with(scene, 7, 2147483647.0, 1), "SOILINTERACTION ERROR : std::bad_alloc");
  EXPECT_THAT(scene.call(0), Each(0.0));
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_GT(scene.total(2), 1e4);
}

// --- states that are no numbers ----------------------------------------------------------------------------------

TEST(StateThatIsNotANumber, InThePlanOfTheRoadIsAMessageThatNamesTheAxis) {
  SoilScene scene = sunken();
  scene.call(1);
  const auto text = [](const char* axis) {
    return std::string("SOIL INTERACTION ERROR : The ") + axis +
           "-axis value of a contact point on the road is nan; it must be a number, on the road between 0 and 4.";
  };
  for (const int iflag : {0, 2}) {
    scene.body().position = {2.0, k_nan, -0.05};
    scene.call(iflag);
    EXPECT_EQ(scene.take_report(), text("x")) << "turned into the road's axes, 0 times nan is in both";
    scene.body().position = {2.0, 2.0, -0.05};
    scene.road().axes = {1, 0, 0, 0, k_nan, 0, 0, 0, 1};
    scene.call(iflag);
    EXPECT_EQ(scene.take_report(), text("y"));
    scene.road().axes = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  }
  EXPECT_GT(scene.call(0)[2], 1e4) << "and the element works on";
}

TEST(StateThatIsNotANumber, InAVelocityTravelsThroughTheLaws) {
  SoilScene scene = sunken();
  scene.call(1);
  scene.call(2);
  scene.body().position[0] += 0.01;
  scene.body().velocity = {k_nan, 0.0, 0.0};
  scene.call(0);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_NEAR(scene.area(), 0.125, 1e-15);
}

TEST(StateThatIsInfinite, IsBeyondTheRoad) {
  SoilScene scene = sunken();
  scene.call(1);
  for (const double far : {k_inf, -k_inf, 1e300}) {
    scene.body().position = {far, 2.0, -0.05};
    scene.road().axes = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    scene.call(0);
    // Against an infinite place the other axes may come out as NaN: 0 times infinity.
    const std::string report = scene.take_report();
    EXPECT_TRUE(report.empty() || !std::isfinite(far)) << report;
    EXPECT_EQ(scene.area(), 0.0);
  }
}

}  // namespace
}  // namespace qvtest
