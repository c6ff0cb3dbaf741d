#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qvbrisk/subroutines.h"
#include "tests/soilinteraction_mtl/belt_scene.h"

// What the three outputs hand on, the node sums behind them, and the two state equations.

namespace qvtest {
namespace {

using testing::DoubleNear;
using testing::Each;
using testing::ElementsAre;

constexpr double k_depth = 0.05;

soil_mesh level() { return flat_mesh(16, 8, 0.5, -2.0, -2.0); }

/// Slipping and pressing, evaluated once behind an accepted step.
BeltScene driving(int nodes = 3) {
  BeltScene scene(level(), loam(), level_circles(nodes, 1.0, 0.25, -k_depth));
  scene.belt_speed() = 1.0;
  scene.call(1);
  scene.call(2, 0.01);
  scene.call(0);
  return scene;
}

// --- node sums ---------------------------------------------------------------------------------------------------

/// A chain whose nodes are 1 apart over a road that holds nothing but the three inner rows of one span.
BeltScene over_one_span(int nodes, int span) {
  BeltScene scene(flat_mesh(2, 8, 0.3, span + 0.2, -1.2), loam(), level_circles(nodes, 1.0, 0.25, -k_depth));
  scene.call(1);
  return scene;
}

TEST(NodeSums, OfTheOnlySpanGoToBothItsNodes) {
  BeltScene scene = over_one_span(2, 0);
  const double half = 4.5 * loam_pressure(0.5, k_depth) * 0.5 / 15;
  EXPECT_NEAR(scene.normal_sum(0)[2], half, 1e-9);
  EXPECT_NEAR(scene.normal_sum(1)[2], half, 1e-9);
}

class NodeSumsOfAChain : public testing::TestWithParam<int> {};

TEST_P(NodeSumsOfAChain, DropTheFirstSpansShareForItsSecondNode) {
  BeltScene scene = over_one_span(GetParam(), 0);
  const double half = 4.5 * loam_pressure(0.5, k_depth) * 0.5 / 15;
  EXPECT_NEAR(scene.normal_sum(0)[2], half, 1e-9);
  for (int node = 1; node < GetParam(); ++node) EXPECT_EQ(scene.normal_sum(node)[2], 0.0) << "node " << node;
  EXPECT_NEAR(scene.contact_sum()[2], 2.0 * half, 1e-9) << "the total has it";
}

TEST_P(NodeSumsOfAChain, GiveAnInnerNodeBothSharesOfTheSpanThatStartsThereAndNoneOfTheSpanThatEndsThere) {
  for (int span = 1; span + 2 < GetParam(); ++span) {
    BeltScene scene = over_one_span(GetParam(), span);
    const double both = 9.0 * loam_pressure(0.5, k_depth) * 0.5 / 15;
    for (int node = 0; node < GetParam(); ++node) {
      EXPECT_NEAR(scene.normal_sum(node)[2], node == span ? both : 0.0, 1e-9) << "span " << span << ", node " << node;
    }
  }
}

TEST_P(NodeSumsOfAChain, CountTheLastNodesShareAtTheNodeBeforeToo) {
  const int last = GetParam() - 1;
  BeltScene scene = over_one_span(GetParam(), last - 1);
  const double both = 9.0 * loam_pressure(0.5, k_depth) * 0.5 / 15;
  EXPECT_NEAR(scene.normal_sum(last)[2], 0.5 * both, 1e-9);
  EXPECT_NEAR(scene.normal_sum(last - 1)[2], both, 1e-9);
  EXPECT_NEAR(scene.contact_sum()[2], both, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Nodes, NodeSumsOfAChain, testing::Values(3, 4, 7));

TEST(NodeSums, WithTheDroppedShareAndWithoutTheDoubledOneAddUpToTheTotal) {
  random_source random(5);
  soil_mesh mesh = level();
  make_rolling(mesh, 0.03, random);
  for (const int nodes : {3, 4, 7}) {
    const std::vector<circle> chain = level_circles(nodes, 0.75, 0.25, -k_depth);
    BeltScene whole_chain(mesh, loam(), chain);
    BeltScene first_span(mesh, loam(), {chain[0], chain[1]});
    BeltScene last_span(mesh, loam(), {chain.end()[-2], chain.end()[-1]});
    for (BeltScene* scene : {&whole_chain, &first_span, &last_span}) scene->call(1);
    const std::vector<double> dropped = first_span.normal_sum(1), doubled = last_span.normal_sum(1);
    std::vector<double> sum(3, 0.0);
    for (int node = 0; node < nodes; ++node)
      for (std::size_t c = 0; c < 3; ++c) sum[c] += whole_chain.normal_sum(node)[c];
    const std::vector<double> total = whole_chain.contact_sum();
    ASSERT_GT(std::fabs(dropped[2] - doubled[2]), 100.0) << "they do not cancel";
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_NEAR(sum[c] + dropped[c] - doubled[c], total[c], 1e-8) << nodes << " nodes, component " << c;
    }
  }
}

TEST(NodeSums, CarryTheSecondShearForceWithTheNormalAndTheFirstByItself) {
  BeltScene scene(level(), loam(), level_circles(2, 1.0, 0.25, -k_depth));
  scene.move({0.0, -1.0, 0.0});  // sideways
  scene.belt_speed() = 2.0;
  scene.call(1);
  scene.call(2, 0.01);
  scene.call(0);
  const std::vector<double> total = scene.contact_sum(), shear = scene.shear_sum();
  ASSERT_GT(total[0], 1.0);
  ASSERT_GT(total[1], 1.0);
  EXPECT_THAT(shear, ElementsAre(DoubleNear(total[0], 1e-9), 0.0, 0.0, 0.0, 0.0, 0.0));
  for (const int node : {0, 1}) {
    EXPECT_THAT(scene.normal_sum(node),
                ElementsAre(0.0, DoubleNear(0.5 * total[1], 1e-9), DoubleNear(0.5 * total[2], 1e-9), 0.0, 0.0, 0.0));
  }
}

TEST(NodeSums, AreThoseOfTheLatestCallWhateverItsFlag) {
  BeltScene scene = driving();
  const std::vector<double> shear = scene.shear_sum(), normal = scene.normal_sum(1);
  scene.call(0);
  EXPECT_EQ(scene.shear_sum(), shear) << "rebuilt, not added to";
  EXPECT_EQ(scene.normal_sum(1), normal);
  scene.put(level_circles(3, 1.0, 0.25, 0.01));
  for (const int iflag : {0, 1, 2}) {
    scene.call(iflag);
    EXPECT_THAT(scene.shear_sum(), Each(0.0));
    EXPECT_THAT(scene.normal_sum(1), Each(0.0));
    EXPECT_THAT(scene.contact_sum(), Each(0.0));
  }
}

// --- outputs -----------------------------------------------------------------------------------------------------

TEST(TrackOutputs, AreZerosAtSetUp) {
  BeltScene scene = driving();
  EXPECT_THAT(scene.shear_sum(1), Each(0.0));
  EXPECT_THAT(scene.normal_sum(1, 1), Each(0.0));
  EXPECT_THAT(scene.contact_sum(1), Each(0.0));
}

TEST(TrackOutputs, OfShearAndNormalForceAreHandedOutOnEveryOtherCallAndStay) {
  BeltScene scene = driving();
  for (const int iflag : {0, 2, 3, -1, 0}) {
    EXPECT_GT(scene.shear_sum(iflag)[0], 1.0) << "iflag " << iflag;
    EXPECT_GT(scene.normal_sum(1, iflag)[2], 1.0) << "iflag " << iflag;
  }
}

TEST(TrackOutputs, OfTheSumAreHandedOutOnceAndOnlyAfterAnAcceptedStep) {
  BeltScene scene = driving();
  for (const int iflag : {0, 3, -1}) EXPECT_THAT(scene.contact_sum(iflag), Each(0.0)) << "iflag " << iflag;
  const std::vector<double> sum = scene.contact_sum(2);
  EXPECT_NEAR(sum[2], 2.0 * loam_pressure(0.5, k_depth) * 0.5, 1e-8) << "still there";
  EXPECT_NEAR(sum[3], 1.0, 1e-14);
  EXPECT_THAT(scene.contact_sum(2), Each(0.0)) << "handed out";
  EXPECT_GT(scene.shear_sum()[0], 1.0) << "which the others do not feel";
  scene.call(0);
  EXPECT_EQ(scene.contact_sum(2), sum) << "the next evaluation sums again";
}

TEST(TrackOutputs, TakeTrackAndRoadInTheirOwnOrders) {
  BeltScene scene = driving();
  const double road = scene.parameters.road;
  ASSERT_GE(road, 1.0);
  const auto swapped = [&](subroutine_to_call output, const std::vector<double>& par, std::size_t size) {
    EXPECT_THAT(call_with(output, scene.host, par, 2, size), Each(0.0));
    return scene.take_report();
  };
  const std::string text = "SOILINTERACTION MTL ERROR : The track index (parameter ";
  const std::string range = ") is " + std::to_string(scene.parameters.road) + "; it must lie between 0 and 0.";
  EXPECT_EQ(swapped(qvsoil_shearforce_mtl, {road, 0}, 6), text + "0" + range);
  EXPECT_EQ(swapped(qvsoil_normalforce_mtl, {road, 1, 0}, 6), text + "0" + range);
  EXPECT_EQ(swapped(qvsoil_interaction_mtl_sum, {0, road}, 4), text + "1" + range);
}

TEST(TrackOutputs, BeforeAnySetUpAreZeros) {
  if (module_may_be_sized()) GTEST_SKIP() << "the containers stand already in this process";
  ScriptedHost host;
  for (const int iflag : {0, 1, 2}) {
    EXPECT_THAT(call_with(qvsoil_shearforce_mtl, host, {3, 4}, iflag, 6), Each(0.0));
    EXPECT_THAT(call_with(qvsoil_normalforce_mtl, host, {3, 4, 5}, iflag, 6), Each(0.0));
    EXPECT_THAT(call_with(qvsoil_interaction_mtl_sum, host, {3, 4}, iflag, 4), Each(0.0));
  }
  EXPECT_EQ(report_of(host), "");
}

TEST(TrackOutputs, NameAnIndexOutsideTheContainers) {
  BeltScene scene = driving();
  const double road = scene.parameters.road;
  struct guard_case {
    subroutine_to_call output;
    std::vector<double> par;
    const char* text;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const guard_case cases[] = {
      {qvsoil_shearforce_mtl, {0, -1}, "The road index (parameter 1) is -1; it must lie between 0 and 1023."},
      {qvsoil_shearforce_mtl, {0, 1024}, "The road index (parameter 1) is 1024; it must lie between 0 and 1023."},
      {qvsoil_shearforce_mtl, {1, road}, "The track index (parameter 0) is 1; it must lie between 0 and 0."},
      {qvsoil_shearforce_mtl,
       {0, nan},
       "The road index (parameter 1) is nan; it must be a number between -2147483648 and 2147483647."},
      {qvsoil_normalforce_mtl, {0, 9, road}, "The node (parameter 1) is 9; it must lie between 0 and 8."},
      {qvsoil_normalforce_mtl, {0, -1, road}, "The node (parameter 1) is -1; it must lie between 0 and 8."},
      {qvsoil_normalforce_mtl, {0, 0, 5e3}, "The road index (parameter 2) is 5000; it must lie between 0 and 1023."},
      {qvsoil_interaction_mtl_sum, {1e5, 0}, "The road index (parameter 0) is 100000; it must lie between 0 and 1023."},
      {qvsoil_interaction_mtl_sum, {road, -7}, "The track index (parameter 1) is -7; it must lie between 0 and 0."},
  };
  for (const guard_case& c : cases) {
    EXPECT_THAT(call_with(c.output, scene.host, c.par, 2, 6 - 2 * (c.output == qvsoil_interaction_mtl_sum)), Each(0.0));
    EXPECT_EQ(scene.take_report(), std::string("SOILINTERACTION MTL ERROR : ") + c.text);
  }
}

// --- state equations ---------------------------------------------------------------------------------------------

/// Force magnitudes are asked for with two ids.
class ForceHost : public ScriptedHost {
public:
  std::map<std::pair<int, int>, double> magnitudes;
  std::vector<std::string> asked;

  bool scalar_quantity(const char* name, const int* ids, int nids, double& value) override {
    asked.push_back(std::string(name) + " " + std::to_string(ids[0]));
    if (std::string(name) != "FM") return ScriptedHost::scalar_quantity(name, ids, nids, value);
    if (nids != 2) return false;
    value = magnitudes.at({ids[0], ids[1]});
    return true;
  }
};

ForceHost drive_host() {
  ForceHost host;
  host.scalars[{"VARVAL", 31}] = 800.0;
  host.scalars[{"DIF21", 31}] = 2.5;
  host.magnitudes = {{{41, 42}, 30.0}, {{43, 44}, 50.0}};
  return host;
}

/// Entries 1, 12, 13 and 14 are not looked at.
std::vector<double> eom_parameters(double road) {
  return {0, k_poison, 31, 4.0, 0.5, road, 41, 42, 43, 44, 0.25, 0.125, k_poison, k_poison, k_poison};
}

TEST(TrackEquationOfMotion, IsDriveLessSoilLessResistanceOverTheInertia) {
  BeltScene scene = driving();
  const double shear = scene.shear_sum()[0];
  ASSERT_GT(shear, 1.0);
  ForceHost host = drive_host();
  for (const int iflag : {1, 0, 2}) {
    const std::vector<double> r = call_with(qvsoil_mtl_eom, host, eom_parameters(scene.parameters.road), iflag, 6);
    EXPECT_EQ(r[1], 80.0);
    EXPECT_EQ(r[2], 800.0);
    EXPECT_EQ(r[3], 0.25 * shear);
    EXPECT_EQ(r[4], 10.0);
    EXPECT_EQ(r[5], 2.5);
    EXPECT_EQ(r[0], (1600.0 - 0.25 * shear - 10.0) / 4.0);
  }
  EXPECT_EQ(report_of(host), "");
}

TEST(TrackEquationOfMotion, AsksForTheDriveItsDerivativeAndTheTwoForcesInThisOrder) {
  ForceHost host = drive_host();
  call_with(qvsoil_mtl_eom, host, eom_parameters(0), 0, 6);
  EXPECT_THAT(host.asked, ElementsAre("VARVAL 31", "DIF21 31", "FM 41", "FM 43"));
}

TEST(TrackEquationOfMotion, BeforeAnySetUpFeelsNoSoil) {
  if (module_may_be_sized()) GTEST_SKIP() << "the containers stand already in this process";
  ForceHost host = drive_host();
  const std::vector<double> r = call_with(qvsoil_mtl_eom, host, eom_parameters(7), 0, 6);
  EXPECT_THAT(r, ElementsAre((1600.0 - 10.0) / 4.0, 80.0, 800.0, 0.0, 10.0, 2.5));
  EXPECT_EQ(report_of(host), "");
}

TEST(TrackEquationOfMotion, DividesByZeroAsItStands) {
  ForceHost host = drive_host();
  std::vector<double> par = eom_parameters(0);
  par[3] = 0.0;
  EXPECT_EQ(call_with(qvsoil_mtl_eom, host, par, 0, 6)[0], std::numeric_limits<double>::infinity());
  par[4] = 0.0;
  host.scalars[{"VARVAL", 31}] = 0.0;
  EXPECT_TRUE(std::isnan(call_with(qvsoil_mtl_eom, host, par, 0, 6)[0]));
  EXPECT_EQ(report_of(host), "");
}

TEST(TrackEquationOfMotion, NamesAnIndexOutsideTheContainers) {
  BeltScene scene = driving();
  const auto report = [&](std::size_t parameter, double value) {
    std::vector<double> par = eom_parameters(scene.parameters.road);
    par[parameter] = value;
    ForceHost host = drive_host();
    EXPECT_THAT(call_with(qvsoil_mtl_eom, host, par, 0, 6), Each(0.0));
    return report_of(host);
  };
  const std::string prefix = "SOILINTERACTION MTL(EOM) ERROR : The ";
  EXPECT_EQ(report(0, 1), prefix + "track index (parameter 0) is 1; it must lie between 0 and 0.");
  EXPECT_EQ(report(5, -1), prefix + "road index (parameter 5) is -1; it must lie between 0 and 1023.");
  EXPECT_EQ(report(2, 3e9),
            prefix + "variable id (parameter 2) is 3e+09; it must be a number between -2147483648 and 2147483647.");
}

TEST(TrackVelocity, IsTheVariableInModeOneAndTheDerivativeInAnyOther) {
  ForceHost host = drive_host();
  EXPECT_EQ(call_with(qvsoil_mtl_velocity, host, {1, 0.5, 31}, 0, 1)[0], 400.0);
  EXPECT_EQ(call_with(qvsoil_mtl_velocity, host, {1.9, 0.5, 31}, 2, 1)[0], 400.0) << "truncated";
  for (const double mode : {0.0, 2.0, -1.0, 0.9}) {
    EXPECT_EQ(call_with(qvsoil_mtl_velocity, host, {mode, 2.0, 31}, 1, 1)[0], 5.0) << "mode " << mode;
  }
}

TEST(TrackVelocity, NamesAParameterThatIsNoNumber) {
  ForceHost host = drive_host();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(call_with(qvsoil_mtl_velocity, host, {nan, 2.0, 31}, 0, 1)[0], 0.0);
  EXPECT_EQ(report_of(host),
            "SOILINTERACTION MTL(VELOCITY) ERROR : The mode (parameter 0) is nan; it must be a number between "
            "-2147483648 and 2147483647.");
}

}  // namespace
}  // namespace qvtest
