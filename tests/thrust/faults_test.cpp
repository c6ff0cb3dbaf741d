#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qvbrisk/subroutines.h"
#include "tests/support/failing_new.h"
#include "tests/thrust/thrust_scene.h"
#include "thrust/thrust_force.h"

// Every message of the thrust, letter for letter; what follows a fault; and memory.

namespace qvtest {
namespace {

using testing::Each;

constexpr double k_nan = std::numeric_limits<double>::quiet_NaN();
const std::string k_prefix = "THRUST FORCE ERROR : ";

/// While an object of this class lives, the thrust module is as before the first call of a process.
class empty_thrust_module {
public:
  empty_thrust_module() { m_kept.swap(qvthrust::gp_Wave); }
  ~empty_thrust_module() { m_kept.swap(qvthrust::gp_Wave); }
  empty_thrust_module(const empty_thrust_module&) = delete;
  empty_thrust_module& operator=(const empty_thrust_module&) = delete;

private:
  std::vector<qvthrust::CWave> m_kept;
};

std::vector<double> call_with(ThrustScene& scene, std::size_t parameter, double value, int iflag = 0) {
  std::vector<double> par = scene.parameters.list(), result(7, k_poison);
  par.at(parameter) = value;
  qvsoil_thrustforce(scene.host.handle(), 0.0, par.data(), 0, 0, iflag, result.data());
  EXPECT_EQ(result.back(), k_poison);
  result.pop_back();
  return result;
}

struct guard_case {
  std::size_t parameter;
  double value;
  const char* text;
};

#define QV_INT_RANGE "; it must be a number between -2147483648 and 2147483647."

const guard_case k_guards[] = {
    {0, k_nan, "The thrust element ID (parameter 0) is nan" QV_INT_RANGE},
    {0, -1, "The thrust element ID (parameter 0) is -1; it must lie between 0 and 2047."},
    {0, 2048, "The thrust element ID (parameter 0) is 2048; it must lie between 0 and 2047."},
    {6, k_nan, "The thrust mode (parameter 6) is nan" QV_INT_RANGE},
    {7, 1e300, "The spline (parameter 7) is 1e+300" QV_INT_RANGE},
    {8, k_nan, "The variable (parameter 8) is nan" QV_INT_RANGE},
    {9, -1e300, "The differential equation (parameter 9) is -1e+300" QV_INT_RANGE},
    {13, k_nan, "The wave switch (parameter 13) is nan" QV_INT_RANGE},
};

TEST(Guards, NameTheParameterItsValueAndItsRangeOnEveryCall) {
  ThrustScene scene;
  scene.parameters.mode = 3;
  scene.host.splines[k_spline] = [](double) { return 1.0; };
  scene.call();
  for (const guard_case& row : k_guards) {
    for (const int iflag : {0, 1, 2}) {
      EXPECT_THAT(call_with(scene, row.parameter, row.value, iflag), Each(0.0));
      EXPECT_EQ(scene.take_report(), k_prefix + row.text);
    }
  }
  scene.call();
  EXPECT_EQ(scene.take_report(), "") << "and the element works on";
}

std::string failed_before(const ThrustScene& scene) {
  return k_prefix + "The WAVE file was not read at the first call, there is no thrust. THRUST ELEMENT ID = " +
         std::to_string(scene.parameters.id) + ". Mend what the first message named and start again.";
}

const guard_case k_set_up_guards[] = {
    {2, k_nan, "The thrust marker (parameter 2) is nan" QV_INT_RANGE},
    {4, k_nan, "The second marker (parameter 4) is nan" QV_INT_RANGE},
    {5, k_nan, "The water marker (parameter 5) is nan" QV_INT_RANGE},
    {14, k_nan, "The string of the WAVE file (parameter 14) is nan" QV_INT_RANGE},
};

TEST(SetUpGuards, RefuseTheElementForGood) {
  for (const guard_case& row : k_set_up_guards) {
    ThrustScene scene;
    scene.parameters.switch_on_waves = 1;
    scene.set_variable(3.0);
    scene.point().position = {50, 0, -1};
    EXPECT_THAT(call_with(scene, row.parameter, row.value), Each(0.0));
    EXPECT_EQ(scene.take_report(), k_prefix + row.text);
    EXPECT_THAT(scene.call(), Each(0.0));
    EXPECT_EQ(scene.take_report(), failed_before(scene));
  }
}

TEST(SetUpGuards, DoNotLookAtWhatIsNotRead) {
  for (const std::size_t parameter : {2, 4, 5, 14}) {
    ThrustScene scene;
    scene.set_variable(3.0);
    EXPECT_EQ(call_with(scene, parameter, k_nan)[0], 3.0);
    EXPECT_EQ(scene.take_report(), "");
  }
}

TEST(NumberOfElements, MustNotBeNegativeAndIsOnlyReadWhileTheTableIsEmpty) {
  const empty_thrust_module module;
  ThrustScene scene;
  scene.parameters.id = 0;
  call_with(scene, 1, -1);
  EXPECT_EQ(scene.take_report(),
            k_prefix + "The number of thrust elements (parameter 1) is -1; it must not be negative.");
  call_with(scene, 1, k_nan);
  EXPECT_EQ(scene.take_report(), k_prefix + "The number of thrust elements (parameter 1) is nan" QV_INT_RANGE);
  call_with(scene, 1, 4.9);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_EQ(qvthrust::gp_Wave.size(), 5U);
  call_with(scene, 1, k_nan);
  EXPECT_EQ(scene.take_report(), "");
}

TEST(WaveFileThatIsNowhere, IsAMessageWithoutAnIdAndLaterCallsSaySo) {
  ThrustScene scene;
  scene.parameters.switch_on_waves = 1;
  scene.host.strings[k_thrust_string] = L"no such file";
  scene.set_variable(3.0);
  for (const std::wstring& path : {std::wstring(L"/nowhere/model.x")}) {
    scene.host.path = path;
    EXPECT_THAT(scene.call(), Each(0.0));
    EXPECT_EQ(scene.take_report(), "THRUST FORCE ERROR : Failded to open WAVE file.");
  }
  for (const int iflag : {0, 1, 2}) {
    EXPECT_THAT(scene.call(0.0, iflag), Each(0.0));
    EXPECT_EQ(scene.take_report(), failed_before(scene));
  }
  scene.parameters.switch_on_waves = 0;
  EXPECT_EQ(scene.thrust(), 3.0) << "without the switch it needs no file";
}

TEST(ModelPath, WithoutASlashOrEndingInOneAllowsNoSecondAttempt) {
  for (const wchar_t* path : {L"", L"model.x", L"/tmp/"}) {
    ThrustScene scene;
    scene.parameters.switch_on_waves = 1;
    scene.host.strings[k_thrust_string] = L"no such file";
    scene.host.path = path;
    scene.call();
    EXPECT_EQ(scene.take_report(), "THRUST FORCE ERROR : Failded to open WAVE file.");
  }
}

TEST(WaveFileThatDeclaresNothing, IsNamed) {
  ThrustScene scene;
  scene.parameters.switch_on_waves = 1;
  const std::string file = write_file("nothing.txt", "3,0\n");
  scene.host.strings[k_thrust_string] = wide(file);
  EXPECT_THAT(scene.call(), Each(0.0));
  EXPECT_EQ(scene.take_report(),
            k_prefix + "The WAVE file " + file + " declares 0 positions; it must declare 1 or more.");
  scene.call();
  EXPECT_EQ(scene.take_report(), failed_before(scene));
}

TEST(WaveSwitch, ThatIsTurnedOnAfterTheFirstCallFindsNoFile) {
  ThrustScene scene;
  scene.set_variable(3.0);
  EXPECT_EQ(scene.thrust(), 3.0);
  scene.parameters.switch_on_waves = 1;
  EXPECT_THAT(scene.call(), Each(0.0));
  EXPECT_EQ(scene.take_report(), failed_before(scene));
}

TEST(StatesThatAreNoNumbers, TravelIntoTheThrustAndNeverIntoAnIndex) {
  ThrustScene scene(calm_water(100.0, 0.5));
  scene.parameters.switch_on_waves = 1;
  scene.set_variable(3.0);
  for (const double value : {k_nan, std::numeric_limits<double>::infinity(), -1e300, 1e300}) {
    for (std::size_t k = 0; k < 3; ++k) {
      scene.point().position = {50, 0, -1};
      scene.point().position[k] = value;
      scene.thrust(1.0);
    }
  }
  scene.point().position = {50, 0, -1};
  EXPECT_EQ(scene.thrust(1.0), 3.0);
  scene.set_variable(k_nan);
  EXPECT_TRUE(std::isnan(scene.thrust(k_nan)) || scene.thrust(k_nan) == 0.0);
}

// --- memory ------------------------------------------------------------------------------------------------------

/// A host that allocates nothing itself while allocations are counted.
class FrugalHost : public ScriptedHost {
public:
  std::wstring name;
  int said = 0, texts = 0;

  bool string_entity(int, std::wstring& text) override {
    text.swap(name);
    return true;
  }
  bool model_path(std::wstring&) override { return false; }
  void throw_error(const char*, int count, char** messages) override {
    ++said;
    texts += count;
    for (int i = 0; i < count; ++i) delete[] messages[i];
  }
};

struct frugal_scene {
  FrugalHost host;
  std::vector<double> par, result = std::vector<double>(6);

  frugal_scene() {
    ThrustScene scene(calm_water(100.0, 0.5));
    scene.parameters.switch_on_waves = 1;
    scene.parameters.mode = 3;
    scene.parameters.gains[2] = -1.0;
    scene.set_equation(4.0, 0.0, 0.0);
    scene.point().position = {50, 0, -1};
    scene.host.splines[k_spline] = [](double) { return 3.0; };
    static_cast<ScriptedHost&>(host) = scene.host;
    host.name = scene.host.strings[k_thrust_string];
    par = scene.parameters.list();
  }
  void call(int iflag) { qvsoil_thrustforce(host.handle(), 1.0, par.data(), 0, 0, iflag, result.data()); }
};

TEST(Evaluation, AllocatesNothing) {
  frugal_scene scene;
  scene.call(1);
  for (const int iflag : {0, 1, 2}) {
    long count;
    {
      const failing_new watch(0);
      scene.call(iflag);
      count = failing_new::allocations();
    }
    EXPECT_EQ(count, 0);
    EXPECT_EQ(scene.result[0], 3.0);
  }
  EXPECT_EQ(scene.host.said, 0);
}

TEST(FirstCallWithoutMemory, IsReportedWhicheverAllocationFailsAndLaterCallsSaySo) {
  { frugal_scene().call(0); }  // the table of elements stands
  long n = 1;
  for (bool refused = true; refused; ++n) {
    ASSERT_LT(n, 1000);
    frugal_scene scene;
    {
      const failing_new watch(n, failing_new::pass_again);
      scene.call(0);
      refused = failing_new::allocations() >= n;
    }
    EXPECT_EQ(scene.host.said, refused ? 1 : 0) << n;
    EXPECT_EQ(scene.host.texts, 0) << "a standard exception has no text here";
    EXPECT_EQ(scene.result[0], refused ? 0.0 : 3.0);
    scene.call(0);
    EXPECT_EQ(scene.host.texts, refused ? 1 : 0);
    EXPECT_EQ(scene.result[0], refused ? 0.0 : 3.0);
  }
  EXPECT_GT(n, 4);
}

TEST(FirstCallOfAProcessWithoutMemory, LeavesATableThatALaterCallSizes) {
  const empty_thrust_module module;
  frugal_scene scene;
  {
    const failing_new watch(1, failing_new::pass_again);
    scene.call(0);
  }
  EXPECT_EQ(scene.host.said, 1);
  EXPECT_TRUE(qvthrust::gp_Wave.empty());
  scene.call(0);
  EXPECT_EQ(scene.host.said, 1);
  EXPECT_EQ(scene.result[0], 3.0);
}

}  // namespace
}  // namespace qvtest
