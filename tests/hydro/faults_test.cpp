#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "qvbrisk/layouts.h"
#include "qvbrisk/subroutines.h"
#include "tests/hydro/hydro_scene.h"
#include "tests/hydro/module_state.h"

// Every text that parameters, files and states can provoke, letter for letter, and what follows a fault. This program
// wraps three services of the host, so that they raise exceptions and answer with lengths that are impossible.

namespace {

const char* g_thrown = nullptr;
int g_string_length = 0, g_path_length = 0;  // said instead of the true one unless 0

}  // namespace

extern "C" {
void __real_sysary(void* handle, const char* name, const int* ids, int nids, double* values, int* count, int* err);
void __wrap_sysary(void* handle, const char* name, const int* ids, int nids, double* values, int* count, int* err) {
  if (g_thrown != nullptr) throw std::runtime_error(g_thrown);
  __real_sysary(handle, name, ids, nids, values, count, err);
}

void __real_get_string_s(void* handle, int id, int* length, wchar_t* text, int* err);
void __wrap_get_string_s(void* handle, int id, int* length, wchar_t* text, int* err) {
  __real_get_string_s(handle, id, length, text, err);
  if (g_string_length != 0) *length = g_string_length;
}

void __real_GET_QVSPATH_S(void* handle, int* length, wchar_t* path, int* err);
void __wrap_GET_QVSPATH_S(void* handle, int* length, wchar_t* path, int* err) {
  __real_GET_QVSPATH_S(handle, length, path, err);
  if (g_path_length != 0) *length = g_path_length;
}
}

namespace qvtest {
namespace {

using testing::Each;

constexpr double k_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double k_inf = std::numeric_limits<double>::infinity();
const std::string k_hydro = "HYDRO FORCE ERROR : ";
const std::string k_report = "HYDRO FORCE REPORT ERROR : ";

std::vector<double> call_with(HydroScene& scene, std::vector<double> par, int iflag = 0) {
  std::vector<double> result(QV_HULL_RESULT_LENGTH + 1, k_poison);
  qvhydro_force(scene.host.handle(), 0.0, par.data(), 0, 0, iflag, result.data());
  EXPECT_EQ(result.back(), k_poison);
  result.pop_back();
  return result;
}

std::vector<double> changed(const HydroScene& scene, std::size_t parameter, double value) {
  std::vector<double> par = scene.parameters.list();
  par.at(parameter) = value;
  return par;
}

struct guard_case {
  std::size_t parameter;
  double value;
  const char* text;
};

#define QV_INT_RANGE "; it must be a number between -2147483648 and 2147483647."

// Guards of a plate. It has 4 nodes, so its number of patches is parameter 33 and the first patch's nodes are 34 to 36.
const guard_case k_selecting_guards[] = {
    {0, k_nan, "The sub-element index (parameter 0) is nan" QV_INT_RANGE},
    {0, -1, "The sub-element index (parameter 0) is -1; it must lie between 0 and 1."},
    {0, 2, "The sub-element index (parameter 0) is 2; it must lie between 0 and 1."},
    {0, 1e300, "The sub-element index (parameter 0) is 1e+300" QV_INT_RANGE},
    {2, -1, "The hydro force ID (parameter 2) is -1; it must lie between 0 and 2047."},
    {2, 2048, "The hydro force ID (parameter 2) is 2048; it must lie between 0 and 2047."},
    {2, k_nan, "The hydro force ID (parameter 2) is nan" QV_INT_RANGE},
    {2, -k_inf, "The hydro force ID (parameter 2) is -inf" QV_INT_RANGE},
};

TEST(SelectingGuards, NameTheParameterItsValueAndItsRangeOnEveryCall) {
  for (const bool set_up : {false, true}) {
    for (const guard_case& row : k_selecting_guards) {
      HydroScene scene(plate_hull(2, 2));
      if (set_up || row.parameter == 0) scene.call();
      for (const int iflag : {0, 1, 2}) {
        EXPECT_THAT(call_with(scene, changed(scene, row.parameter, row.value), iflag), Each(0.0)) << row.text;
        EXPECT_EQ(scene.take_report(), k_hydro + row.text);
      }
      scene.call();
      EXPECT_EQ(scene.take_report(), "") << "and the element works on";
    }
  }
}

const guard_case k_element_guards[] = {
    {1, -1, "The number of sub-elements (parameter 1) is -1; it must not be negative."},
    {1, k_nan, "The number of sub-elements (parameter 1) is nan" QV_INT_RANGE},
    {1, 3e9, "The number of sub-elements (parameter 1) is 3e+09" QV_INT_RANGE},
    {7, k_inf, "The string of the WAVE file (parameter 7) is inf" QV_INT_RANGE},
    {8, k_nan, "The string of the CURRENT file (parameter 8) is nan" QV_INT_RANGE},
};

const guard_case k_sub_element_guards[] = {
    {4, k_nan, "The force marker (parameter 4) is nan" QV_INT_RANGE},
    {5, 2147483648.0, "The water marker (parameter 5) is 2147483648" QV_INT_RANGE},
    {6, -2147483649.0, "The body marker (parameter 6) is -2147483649" QV_INT_RANGE},
    {10, k_inf, "The option (parameter 10) is inf" QV_INT_RANGE},
    {20, -1, "The number of nodes (parameter 20) is -1; it must not be negative."},
    {20, k_nan, "The number of nodes (parameter 20) is nan" QV_INT_RANGE},
    {33, -2, "The number of patches is -2; it must not be negative."},
    {33, k_nan, "The number of patches is nan" QV_INT_RANGE},
    {34, -1, "The node of patch 1 is -1; it must lie between 0 and 4."},
    {36, 5, "The node of patch 1 is 5; it must lie between 0 and 4."},
    {35, k_nan, "The node of patch 1 is nan" QV_INT_RANGE},
    {39, 1e300, "The node of patch 2 is 1e+300" QV_INT_RANGE},
};

std::string failed_before(const HydroScene& scene) {
  return k_hydro +
         "The set-up failed before, there are no forces. HYDRO FORCE ID = " + std::to_string(scene.parameters.id) +
         ". Mend what the first message named (parameters, WAVE or CURRENT file) and start again.";
}

TEST(ElementGuards, RefuseTheElementForGood) {
  for (const guard_case& row : k_element_guards) {
    HydroScene scene(plate_hull(2, 2));
    EXPECT_THAT(call_with(scene, changed(scene, row.parameter, row.value)), Each(0.0));
    EXPECT_EQ(scene.take_report(), k_hydro + row.text);
    EXPECT_THAT(scene.call(), Each(0.0));
    EXPECT_EQ(scene.take_report(), failed_before(scene)) << row.text;
  }
}

TEST(SubElementGuards, AreSaidOnceAndTheSubElementIsEvaluatedAsItStands) {
  for (const guard_case& row : k_sub_element_guards) {
    HydroScene scene(plate_hull(2, 2));
    scene.parameters.subs = 2;
    scene.place({0, 0, -1}, rotation({0, 0, 1}, 0.0));
    for (const int marker : {0, k_body_marker, k_force_marker, k_water_marker}) scene.host.markers[marker];
    EXPECT_THAT(call_with(scene, changed(scene, row.parameter, row.value)), Each(0.0));
    EXPECT_EQ(scene.take_report(), k_hydro + row.text);
    const double volume = scene.call()[33];
    EXPECT_EQ(scene.take_report(), "") << row.text;
    EXPECT_DOUBLE_EQ(volume, row.parameter == 39 ? -2.0 : 0.0) << "patches set up before count: " << row.text;
    scene.parameters.sub = 1;
    EXPECT_DOUBLE_EQ(scene.forces().volume, -4.0) << "another sub-element is not touched";
  }
}

TEST(NumberOfElements, MustNotBeNegativeAndIsOnlyReadWhileTheTableIsEmpty) {
  const empty_module module;
  HydroScene scene(plate_hull(2, 2));
  std::vector<double> par = scene.parameters.list();
  par[QV_HULL_FORCE_ID] = 0;
  for (const auto& [count, text] :
       {std::make_pair(-1.0, "is -1; it must not be negative."), std::make_pair(k_nan, "is nan" QV_INT_RANGE)}) {
    par[QV_HULL_FORCE_COUNT] = count;
    call_with(scene, par);
    EXPECT_EQ(scene.take_report(), k_hydro + "The number of hydro force elements (parameter 3) " + text);
    EXPECT_TRUE(qvhydro::gp_hydro_force.empty());
  }
  par[QV_HULL_FORCE_COUNT] = 0;
  call_with(scene, par);
  EXPECT_EQ(scene.take_report(), "") << "one entry more than elements";
  par[QV_HULL_FORCE_COUNT] = k_nan;
  call_with(scene, par);
  EXPECT_EQ(scene.take_report(), "");
}

TEST(StoredNumbers, ThatAreNoneTravelIntoTheForces) {
  for (const std::size_t parameter : {9, 11, 12, 13, 14, 15, 16, 17, 18, 19, 21, 22, 23}) {
    for (const double value : {k_nan, k_inf, -k_inf, 1e300, -1e300}) {
      HydroScene scene(plate_hull(2, 2));
      scene.place({0, 0, -1}, rotation({1, 1, 0}, 0.2));
      scene.move({1, 2, 3});
      call_with(scene, changed(scene, parameter, value), 2);
      const std::string said = scene.take_report();
      if (parameter < 21) {
        EXPECT_EQ(said, "") << parameter << " of " << value;
      }
    }
  }
}

TEST(StatesThatAreNoNumbers, TravelIntoTheForcesAndNeverIntoAnIndex) {
  for (const double value : {k_nan, k_inf, -k_inf, 1e300, -1e300}) {
    for (int state = 0; state < 6; ++state) {
      qvref::wave_file wave = calm_water();
      HydroScene scene(box_hull(2, 2, 2), wave, {{2, 1, {0, 50, 50}, {0, 1, 1}}, {2, 0, {-3, 3, 3}, {0, 1, 1}}});
      scene.call();
      marker_state& marker = state % 2 == 0 ? scene.body() : scene.water();
      (state < 2 ? marker.position[0] : state < 4 ? marker.axes[4] : marker.velocity[1]) = value;
      for (const int iflag : {0, 1, 2}) {
        const std::vector<double> result = scene.call(1.0, iflag);
        EXPECT_EQ(scene.take_report(), "");
        if (std::isnan(value) && state == 4) {
          EXPECT_TRUE(std::isnan(result[13])) << "drag of a velocity that is none";
          EXPECT_DOUBLE_EQ(result[33], 4.0);
        }
      }
      marker = marker_state();
      if (state % 2 == 1) scene.water().position = {-100, 0, 0};
      EXPECT_DOUBLE_EQ(scene.forces(1.0).volume, 4.0) << "and the element works on";
    }
  }
}

TEST(DegeneratePatch, IsNamedWithItsGeometryAndTheThirdNodeIsLabelledNode2Too) {
  HydroScene scene(plate_hull(2, 2));
  scene.parameters.shape.nodes = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1.5, -2.25, 3}, {3, -4.5, 6}, {0, 0, 0}};
  scene.parameters.shape.patches = {{0, 2, 1}, {5, 3, 4}, {0, 1, 2}};
  scene.place({0, 0, -3}, rotation({0, 0, 1}, 0.0));
  EXPECT_THAT(scene.call(), Each(0.0));
  EXPECT_EQ(scene.take_report(),
            "HYDRO FORCE ERROR : Failded to calculate the normal direction of the patch. HYDRO FORCE ID = " +
                std::to_string(scene.parameters.id) +
                " , Patch ID = 2\n Area = 0.000000, Determinant = 0.000000, Normal Direction = 0.000000, 0.000000, "
                "0.000000\n Node1 ID = 5, Point = 0.000000, 0.000000, 0.000000\n Node2 ID = 3, Point = 1.500000, "
                "-2.250000, 3.000000\n Node2 ID = 4, Point = 3.000000, -4.500000, 6.000000");
  EXPECT_DOUBLE_EQ(scene.forces().volume, 1.5) << "later calls: the patch before it only, without a second message";
}

TEST(DegeneratePatch, MayAlsoHaveNodesInOnePlace) {
  for (const std::array<int, 3>& nodes : {std::array<int, 3>{0, 0, 1}, {0, 1, 0}, {1, 0, 0}, {2, 2, 2}, {4, 4, 4}}) {
    HydroScene scene(plate_hull(2, 2));
    scene.parameters.shape.patches = {nodes};
    scene.call();
    EXPECT_EQ(scene.take_report().find("HYDRO FORCE ERROR : Failded to calculate the normal direction of the patch."),
              0U);
    EXPECT_EQ(scene.forces().volume, 0.0);
  }
}

TEST(DegeneratePatch, TooSmallForItsSquareCountsAsOneButNotASmallOne) {
  HydroScene tiny(one_patch({0, 0, 0}, {1e-82, 0, 0}, {0, 1e-82, 0}));
  tiny.call();
  EXPECT_NE(tiny.take_report(), "") << "the squared length of its normal is exactly 0";
  HydroScene small(one_patch({0, 0, 0}, {1e-70, 0, 0}, {0, 1e-70, 0}));
  small.call();
  EXPECT_EQ(small.take_report(), "");
}

TEST(FilesThatFailed, AreSaidOnEveryLaterCallWithForcesOfZero) {
  const char* const bad_waves[] = {"", "0,0", "2147483647,2147483647"};
  for (const char* text : bad_waves) {
    HydroScene scene(box_hull(2, 2, 2));
    scene.parameters.mass = 1.0;
    scene.host.strings[k_wave_string] = wide(write_file("bad" + std::to_string(scene.parameters.id), text));
    EXPECT_THAT(scene.call(0.0, 2), Each(0.0));
    EXPECT_NE(scene.take_report(), failed_before(scene));
    for (const int iflag : {0, 1, 2}) {
      EXPECT_THAT(scene.call(0.0, iflag), Each(0.0));
      EXPECT_EQ(scene.take_report(), failed_before(scene));
    }
    scene.call_report();
    EXPECT_EQ(scene.take_report(), k_report + "THE MASS EQUALS ZERO");
  }
  HydroScene scene(box_hull(2, 2, 2));
  scene.host.strings.erase(k_current_string);
  scene.host.path = L"/nowhere/model.x";
  std::vector<double> result = call_with(scene, scene.parameters.list());
  EXPECT_THAT(result, Each(0.0));
  EXPECT_EQ(scene.take_report(),
            k_hydro + "Failded to open CURREWNT file. HYDRO FORCE ID = " + std::to_string(scene.parameters.id));
  EXPECT_THAT(call_with(scene, scene.parameters.list()), Each(0.0));
  EXPECT_EQ(scene.take_report(), failed_before(scene));
}

TEST(TextsOfTheHost, MustHaveALengthThatTheirBufferHolds) {
  for (const int length : {-1, 1025}) {
    HydroScene scene(box_hull(2, 2, 2));
    g_string_length = length;
    EXPECT_THAT(scene.call(), Each(0.0));
    g_string_length = 0;
    EXPECT_EQ(scene.take_report(),
              k_hydro + "The length of string 21 is " + std::to_string(length) + "; it must lie between 0 and 1024.");
    HydroScene elsewhere(box_hull(2, 2, 2));
    elsewhere.host.strings[k_wave_string] = L"no such file";
    g_path_length = length;
    EXPECT_THAT(elsewhere.call(), Each(0.0));
    g_path_length = 0;
    EXPECT_EQ(elsewhere.take_report(), k_hydro + "The length of the model file's path is " + std::to_string(length) +
                                           "; it must lie between 0 and 1024.");
  }
}

TEST(StandardExceptions, AreReportedBehindThePrefixOfTheForceAndOfTheReport) {
  HydroScene scene(box_hull(2, 2, 2));
  scene.parameters.mass = 1.0;
  scene.call(0.0, 2);
  g_thrown = "abc";
  scene.call();
  EXPECT_EQ(scene.take_report(), "HYDRO FORCE ERROR : abc");
  scene.call_report();
  EXPECT_EQ(scene.take_report(), "HYDRO FORCE REPORT ERROR : abc");
  g_thrown = nullptr;
  EXPECT_DOUBLE_EQ(scene.forces().volume, 4.0);
}

const guard_case k_report_guards[] = {
    {1, -1, "The hydro force ID (parameter 1) is -1; it must lie between 0 and 2047."},
    {1, 2048, "The hydro force ID (parameter 1) is 2048; it must lie between 0 and 2047."},
    {1, k_nan, "The hydro force ID (parameter 1) is nan" QV_INT_RANGE},
    {2, k_inf, "The body marker (parameter 2) is inf" QV_INT_RANGE},
    {3, 3e9, "The water marker (parameter 3) is 3e+09" QV_INT_RANGE},
    {5, -3e9, "The reported force (parameter 5) is -3e+09" QV_INT_RANGE},
    {6, k_nan, "The marker of the reported force (parameter 6) is nan" QV_INT_RANGE},
    {11, -1, "The number of check points (parameter 11) is -1; it must not be negative."},
    {11, k_nan, "The number of check points (parameter 11) is nan" QV_INT_RANGE},
    {12, k_nan, "The marker of a check point is nan" QV_INT_RANGE},
};

TEST(ReportGuards, NameTheParameterItsValueAndItsRange) {
  for (const guard_case& row : k_report_guards) {
    HydroScene scene(box_hull(2, 2, 2));
    scene.parameters.mass = 1.0;
    scene.points = {k_body_marker};
    scene.call(0.0, 2);
    std::vector<double> par = scene.report_list(), result(23, k_poison);
    par.at(row.parameter) = row.value;
    qvhydro_report(scene.host.handle(), 0.0, par.data(), 0, 0, 2, result.data());
    EXPECT_EQ(scene.take_report(), k_report + row.text);
    EXPECT_EQ(result.back(), k_poison);
    if (row.parameter < 12) {
      for (std::size_t slot = 0; slot < 18; ++slot) EXPECT_EQ(result[slot], 0.0) << row.text;
    }
  }
}

TEST(ReportOfAModelWithoutHydroForces, IsRefusedUnlessItIsASetUpCall) {
  const empty_module module;
  HydroScene scene(box_hull(2, 2, 2));
  scene.parameters.id = 3;
  EXPECT_THAT(scene.call_report(1), Each(0.0));
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_THAT(scene.call_report(2), Each(0.0));
  EXPECT_EQ(scene.take_report(),
            k_report + "The hydro force ID (parameter 1) is 3; no hydro force was evaluated before this report.");
}

TEST(ReportOfAnElementThatWasNeverCalled, HasNoMass) {
  HydroScene first(box_hull(2, 2, 2)), second(box_hull(2, 2, 2));
  first.call();
  second.call_report();
  EXPECT_EQ(second.take_report(), k_report + "THE MASS EQUALS ZERO");
}

}  // namespace
}  // namespace qvtest
