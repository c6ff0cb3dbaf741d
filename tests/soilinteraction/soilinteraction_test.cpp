#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "qvbrisk/subroutines.h"
#include "tests/soilinteraction/soil_scene.h"

// The protocol of the exported subroutines: set-up, roads that are shared, results that are cleared, sums, files that
// cannot be read.

namespace qvtest {
namespace {

using testing::Each;

const qvref::body k_plate = {1, 0.5, 0.25, 3, 2};

soil_mesh level() { return flat_mesh(8, 8, 0.5); }

/// A scene whose plate is in the ground.
SoilScene sunken(const qvref::body& body = k_plate) {
  SoilScene scene(level(), loam(), body);
  scene.body().position = {2.0, 2.0, -0.05};
  scene.host.log = true;
  return scene;
}

long string_requests(const ScriptedHost& host) {
  return std::count(host.requests.begin(), host.requests.end(), "string " + std::to_string(k_file_string));
}

TEST(SetUp, FetchesTheFileAndThenTheStateOfBothMarkers) {
  SoilScene scene = sunken();
  scene.call(1);
  const std::vector<std::string> expected = {"string 4",      "AM 1 14",      "AM 5 14",     "TDISP 1 14 14",
                                             "TDISP 5 14 14", "TVEL 1 14 14", "RVEL 1 14 1", "TVEL 5 14 14",
                                             "RVEL 5 14 5",   "TDISP 1 5 5"};
  EXPECT_THAT(scene.host.requests, testing::UnorderedElementsAreArray(expected));
  EXPECT_EQ(scene.host.unanswered, 0);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_TRUE(scene.host.stops.empty());
}

TEST(SetUp, AlsoEvaluates) {
  SoilScene scene = sunken();
  const std::vector<double> at_set_up = scene.call(1);
  EXPECT_GT(at_set_up[2], 1e4);
  EXPECT_EQ(first_difference(at_set_up, scene.call(0)), -1);
}

TEST(SetUp, TwoElementsOnARoadReadItOnce) {
  SoilScene first = sunken();
  first.call(1);
  SoilScene second(first, 1, {2, 0.4, 0.3, 12, 2});
  std::filesystem::remove(first.file);  // there is nothing to read any more
  second.body().position = {2.0, 2.0, 0.3};
  second.call(1);
  EXPECT_EQ(string_requests(first.host), 1);
  EXPECT_EQ(string_requests(second.host), 0);
  EXPECT_EQ(second.take_report(), "");
  EXPECT_GT(second.total(2), 1e3);
}

TEST(SetUp, ASecondSetUpCallOfAnElementReadsNothing) {
  SoilScene scene = sunken();
  scene.call(1);
  scene.call(1);
  EXPECT_EQ(string_requests(scene.host), 1);
  EXPECT_EQ(scene.take_report(), "");
}

TEST(SetUp, EachRoadHasItsOwnFile) {
  qvref::soil soft = loam();
  soft.kphi = 2e5;
  SoilScene firm(level(), loam(), k_plate), yielding(level(), soft, k_plate);
  firm.body().position = yielding.body().position = {2.0, 2.0, -0.05};
  firm.call(1);
  yielding.call(1);
  const double ratio = (5270.0 / 0.25 + 1515040.0) / (5270.0 / 0.25 + 2e5);
  EXPECT_NEAR(firm.total(2) / yielding.total(2), ratio, 1e-13 * ratio);
  firm.call(0);
  EXPECT_NEAR(firm.total(2) / yielding.total(2), ratio, 1e-13 * ratio);
}

TEST(SetUp, ElementsOfARoadKeepTheirOwnHistory) {
  SoilScene still = sunken(), dragged(still, 1, k_plate);
  still.call(1);
  dragged.call(1);
  still.call(2);
  dragged.call(2);
  dragged.body().position[0] += 0.05;
  dragged.call(2);
  still.body().velocity = dragged.body().velocity = {1.0, 0.0, 0.0};
  still.call(0);
  dragged.call(0);
  EXPECT_EQ(still.total(0), 0.0);
  EXPECT_LT(dragged.total(0), -100.0);
}

TEST(SetUp, AGridSmallerThanTheOneSetUpIsEvaluatedInItsCorner) {
  SoilScene scene = sunken();
  scene.call(1);
  scene.parameters.body.nx = 2;
  scene.parameters.body.ny = 1;
  scene.call(0);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_EQ(scene.point(0, 0, 3), 1.75);
  EXPECT_EQ(scene.point(1, 0, 3), 2.0) << "where the set-up placed it";
}

TEST(SetUp, AGridWithoutPointsExertsNothing) {
  SoilScene scene = sunken({1, 0.5, 0.25, 0, 7});
  EXPECT_THAT(scene.call(1), Each(0.0));
  EXPECT_THAT(scene.call(2), Each(0.0));
  EXPECT_EQ(scene.take_report(), "");
}

TEST(Parameters, IdsIndicesAndCountsAreTruncatedTowardZero) {
  SoilScene scene = sunken();
  scene.call(1);
  const std::vector<double> expected = scene.result();
  std::vector<double> par = scene.parameters.list();
  for (const std::size_t integer : {0, 1, 3, 4, 5, 7, 8, 9, 12, 13, 14}) par[integer] += 0.96875;
  par[2] = par[6] = std::nan("");  // not read
  std::vector<double> result(expected.size(), k_poison);
  qvsoil_interaction(scene.host.handle(), 0.25, par.data(), -3, 77, 0, result.data());
  EXPECT_EQ(first_difference(result, expected), -1);
  EXPECT_EQ(scene.take_report(), "");
}

TEST(Results, AreClearedAtEveryCallAlsoWhenItFails) {
  SoilScene scene = sunken();
  scene.host.strings.clear();  // no file name: an empty one
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_THAT(scene.call(1), Each(0.0));
    EXPECT_NE(scene.take_report(), "");
  }
  EXPECT_THAT(scene.call(0), Each(0.0)) << "never set up";
  EXPECT_THAT(scene.call(2), Each(0.0));
  EXPECT_EQ(scene.take_report(), "");
}

TEST(Results, OfAnElementThatWasNotSetUpAreZeros) {
  SoilScene first = sunken();
  first.call(1);
  SoilScene second(first, 1, k_plate);
  EXPECT_THAT(second.call(0), Each(0.0));
  EXPECT_THAT(second.call(2), Each(0.0));
  EXPECT_EQ(second.take_report(), "");
}

TEST(Results, BeforeAnySetUpAreZeros) {
  if (module_is_in_use()) GTEST_SKIP() << "the module is set up in this process";
  SoilScene scene = sunken();
  EXPECT_THAT(scene.call(0), Each(0.0));
  EXPECT_THAT(scene.call(2), Each(0.0));
  EXPECT_THAT(call_sum(scene.host, 0.0, 2), Each(0.0));
  EXPECT_THAT(call_sum(scene.host, -5.0, 2), Each(0.0));
  EXPECT_EQ(scene.take_report(), "");
}

// --- sums --------------------------------------------------------------------------------------------------------

TEST(Sums, AreThoseOfAllElementsOnTheRoad) {
  SoilScene first = sunken();
  SoilScene second(first, 2, {2, 0.4, 0.3, 12, 2});
  second.body().position = {1.0, 2.5, 0.3};
  second.body().axes = rotation({1, 0, 0}, 0.1);
  first.call(1);
  second.call(1);
  const std::vector<double> sums = call_sum(first.host, first.parameters.road, 2);
  const std::size_t of_result[] = {0, 1, 2, 6};
  for (std::size_t c = 0; c < 4; ++c) EXPECT_EQ(sums[c], first.total(of_result[c]) + second.total(of_result[c]));
  EXPECT_GT(second.total(2), 1e2);
}

TEST(Sums, AreThoseOfEachElementsLatestCall) {
  SoilScene scene = sunken();
  scene.call(1);
  scene.body().position[2] = -0.07;
  scene.call(0);
  EXPECT_EQ(call_sum(scene.host, scene.parameters.road, 2)[2], scene.total(2));
  scene.body().position[2] = 1.0;
  scene.call(2);
  EXPECT_THAT(call_sum(scene.host, scene.parameters.road, 2), Each(0.0));
}

TEST(Sums, AreZerosOnAnyOtherCall) {
  SoilScene scene = sunken();
  scene.call(1);
  for (const int iflag : {0, 1, 3, -2}) EXPECT_THAT(call_sum(scene.host, scene.parameters.road, iflag), Each(0.0));
  EXPECT_GT(call_sum(scene.host, scene.parameters.road, 2)[2], 0.0);
}

TEST(Sums, OfARoadWithoutElementsAreZeros) {
  SoilScene scene = sunken();
  scene.call(1);
  EXPECT_THAT(call_sum(scene.host, k_roads - 1, 2), Each(0.0));
  EXPECT_EQ(scene.take_report(), "");
}

TEST(Sums, AskNothingOfTheHost) {
  SoilScene scene = sunken();
  scene.call(1);
  scene.host.requests.clear();
  call_sum(scene.host, scene.parameters.road, 2);
  EXPECT_TRUE(scene.host.requests.empty());
}

// --- files -------------------------------------------------------------------------------------------------------

TEST(RoadFile, ThatCannotBeOpenedIsOneMessageAndIsLookedForAgain) {
  SoilScene scene = sunken();
  std::filesystem::rename(scene.file, scene.file + ".away");
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_THAT(scene.call(1), Each(0.0));
    EXPECT_EQ(scene.take_report(), "READ RDF ERROR : FAILED TO OPEN RDF FILE. ");
    EXPECT_TRUE(scene.host.stops.empty());
  }
  std::filesystem::rename(scene.file + ".away", scene.file);
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_GT(scene.total(2), 1e4);
  EXPECT_EQ(string_requests(scene.host), 3);
}

TEST(RoadFile, WithAFaultIsOneMessageAndIsReadAgainWhenItIsMended) {
  SoilScene scene = sunken();
  const std::string good = rdf_text(level(), loam());
  write_text(scene.file, good + "LENGTH = 'cubit'\n");
  EXPECT_THAT(scene.call(1), Each(0.0));
  EXPECT_EQ(scene.take_report(), " READ RDF ERROR : CUBIT is an unsupported LENGTH UNIT. \n");
  EXPECT_TRUE(scene.host.stops.empty());
  write_text(scene.file, good);
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "");
  SoilScene untroubled = sunken();
  untroubled.call(1);
  EXPECT_EQ(first_difference(scene.result(), untroubled.result()), -1) << "nothing is left of the first attempt";
}

TEST(RoadFile, IsFoundBesideTheModelFile) {
  SoilScene scene = sunken();
  const std::filesystem::path file(scene.file);
  scene.host.strings[k_file_string] = file.filename().wstring();
  scene.host.path = (file.parent_path() / "model.x").wstring();
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_GT(scene.total(2), 1e4);
}

TEST(RoadFile, WithANameThatHasNoNarrowFormIsAReportWithoutAText) {
  SoilScene scene = sunken();
  scene.host.strings[k_file_string] = L"road\xd800.rdf";
  EXPECT_THAT(scene.call(1), Each(0.0));
  ASSERT_EQ(scene.host.reports.size(), 1U);
  EXPECT_EQ(scene.host.reports[0].title, "USUB ERROR");
  EXPECT_TRUE(scene.host.reports[0].messages.empty());
}

TEST(Parameters, TheirNumberAndTheDifferencingFlagAreNotConsulted) {
  SoilScene scene = sunken();
  scene.call(1);
  const std::vector<double> expected = scene.call(0);
  std::vector<double> par = scene.parameters.list();
  std::vector<double> result(expected.size(), k_poison);
  for (const int npar : {0, -7, 3, 2000000000}) {
    for (const int difflag : {-1, 0, 1, 99}) {
      qvsoil_interaction(scene.host.handle(), 0.0, par.data(), npar, difflag, 0, result.data());
      EXPECT_EQ(first_difference(result, expected), -1) << npar << " " << difflag;
    }
  }
}

TEST(Parameters, AGuardThatSpeaksLeavesNoTotalsOfAnEarlierCall) {
  SoilScene scene = sunken();
  scene.call(1);
  for (const std::size_t spoilt : {0U, 3U, 12U, 13U}) {
    std::vector<double> par = scene.parameters.list();
    std::vector<double> result = scene.call(0);
    par[spoilt] = -2.0;
    qvsoil_interaction(scene.host.handle(), 0.0, par.data(), 15, 0, 0, result.data());
    EXPECT_NE(scene.take_report(), "") << spoilt;
    result.resize(7);
    EXPECT_THAT(result, Each(0.0)) << spoilt;
  }
}

}  // namespace
}  // namespace qvtest
