#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/thrust/thrust_scene.h"

// The difference between a vehicle's forward velocity and the commanded one.

namespace qvtest {
namespace {

using testing::ElementsAre;

struct VelocityError : testing::Test {
  ScriptedHost host;
  std::vector<double> par = {k_poison, 11, 12, 13};

  VelocityError() {
    host.markers[11] = {};
    host.markers[12] = {};
  }
  void command(double c) { host.scalars[{"VARVAL", 13}] = c; }
};

TEST_F(VelocityError, IsForwardVelocityLessCommand) {
  command(2.0);
  host.markers[11].velocity = {5, 7, 9};
  for (const int iflag : {0, 1, 2}) EXPECT_EQ(call_velocity_error(host, par, iflag), 3.0);
  EXPECT_TRUE(host.reports.empty());
  EXPECT_EQ(host.unanswered, 0);
}

TEST_F(VelocityError, TakesForwardFromTheVehiclesOwnFirstAxis) {
  command(2.0);
  host.markers[11].axes = rotation({0, 0, 1}, 3.141592653589793 / 2);
  host.markers[11].velocity = {5, 7, 9};
  EXPECT_NEAR(call_velocity_error(host, par), 7.0 - 2.0, 1e-14);
  host.markers[11].axes = rotation({1, 2, 3}, 0.7);
  host.markers[11].velocity = times(host.markers[11].axes, {4, -1, 6});
  EXPECT_NEAR(call_velocity_error(host, par), 4.0 - 2.0, 1e-14);
}

TEST_F(VelocityError, IsRelativeToTheReferenceMarker) {
  command(-2.0);
  host.markers[11].velocity = {5, 0, 0};
  host.markers[12].velocity = {1, 0, 0};
  host.markers[12].axes = rotation({0, 0, 1}, 0.7);
  EXPECT_EQ(call_velocity_error(host, par), 4.0 + 2.0) << "seen from the ground, whatever the reference's axes";
}

TEST_F(VelocityError, OfACommandOfExactlyZeroIsZeroWhateverTheMotion) {
  host.markers[11].velocity = {5, 7, 9};
  command(0.0);
  EXPECT_EQ(call_velocity_error(host, par), 0.0);
  command(-0.0);
  EXPECT_EQ(call_velocity_error(host, par), 0.0);
  command(1e-300);
  EXPECT_EQ(call_velocity_error(host, par), 5.0);
}

TEST_F(VelocityError, AsksForOrientationVelocityAndCommand) {
  command(1.0);
  host.log = true;
  call_velocity_error(host, par);
  EXPECT_THAT(host.requests, ElementsAre("AM 11", "TVEL 11 12", "VARVAL 13"));
}

TEST_F(VelocityError, TruncatesItsIdsTowardZero) {
  command(1.0);
  host.markers[11].velocity = {5, 7, 9};
  par = {0, 11.9, 12.5, 13.999};
  EXPECT_EQ(call_velocity_error(host, par), 4.0);
}

TEST_F(VelocityError, OfAnIdThatNoIntHoldsIsAMessage) {
  command(1.0);
  const std::pair<std::size_t, const char*> names[] = {{1, "vehicle marker (parameter 1)"},
                                                       {2, "reference marker (parameter 2)"},
                                                       {3, "commanded velocity (parameter 3)"}};
  for (const auto& [parameter, name] : names) {
    std::vector<double> bad = par;
    bad[parameter] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(call_velocity_error(host, bad), 0.0);
    ASSERT_EQ(host.reports.size(), 1U);
    EXPECT_THAT(host.reports[0].messages,
                ElementsAre(std::string("THRUST FORCE ERROR : The ") + name +
                            " is nan; it must be a number between -2147483648 and 2147483647."));
    host.reports.clear();
  }
}

}  // namespace
}  // namespace qvtest
