#include <gtest/gtest.h>

#include "qvbrisk/layouts.h"
#include "qvbrisk/subroutines.h"
#include "tests/hydro/hydro_scene.h"
#include "tests/hydro/module_state.h"
#include "tests/support/failing_new.h"

// Memory: an evaluation and a report allocate nothing, and a set-up whose allocation fails says so and does no harm.

namespace qvtest {
namespace {

/// A host that allocates nothing itself while allocations are counted: file names are handed out, messages go to a
/// fixed record.
class FrugalHost : public ScriptedHost {
public:
  std::wstring names[2];  ///< of the WAVE and the CURRENT file, given once
  int said = 0, last_count = -1;
  char message[300] = {};

  bool string_entity(int id, std::wstring& text) override {
    text.swap(names[id == k_wave_string ? 0 : 1]);
    return true;
  }
  bool model_path(std::wstring&) override { return false; }
  void throw_error(const char*, int count, char** messages) override {
    ++said;
    last_count = count;
    if (count > 0) std::snprintf(message, sizeof message, "%s", messages[0]);
    for (int i = 0; i < count; ++i) delete[] messages[i];
  }
};

struct frugal_scene {
  FrugalHost host;
  std::vector<double> par, report_par;
  std::vector<double> result = std::vector<double>(QV_HULL_RESULT_LENGTH);
  std::vector<double> report = std::vector<double>(QV_HULL_REPORT_RESULT_LENGTH + QV_HULL_REPORT_POINT_LENGTH);

  explicit frugal_scene(const hull& shape) {
    HydroScene scene(shape);
    scene.parameters.mass = 2.0;
    scene.parameters.tangential_coef = 0.5;
    scene.points = {k_body_marker};
    scene.move({1, 2, 3}, {0.1, 0.2, 0.3});
    static_cast<ScriptedHost&>(host) = scene.host;
    host.names[0] = scene.host.strings[k_wave_string];
    host.names[1] = scene.host.strings[k_current_string];
    par = scene.parameters.list();
    report_par = scene.report_list();
  }
  void call(double time, int iflag) { qvhydro_force(host.handle(), time, par.data(), 0, 0, iflag, result.data()); }
  void call_report(int iflag) { qvhydro_report(host.handle(), 0.0, report_par.data(), 0, 0, iflag, report.data()); }
};

TEST(Evaluation, AndReportAllocateNothing) {
  frugal_scene scene(sphere_hull(1.5, 2));
  scene.call(0.0, 1);
  ASSERT_EQ(scene.host.said, 0);
  const double depths[] = {0.0, -0.7, -10.0, 5.0};
  for (const double depth : depths) {
    scene.host.markers[k_body_marker].position[2] = depth;
    for (const int iflag : {0, 1, 2, 0, 2}) {
      long count;
      {
        const failing_new watch(0);
        scene.call(iflag * 300.0, iflag);
        scene.call_report(iflag == 2 ? 0 : 1);
        count = failing_new::allocations();
      }
      EXPECT_EQ(count, 0) << "depth " << depth << ", iflag " << iflag;
      EXPECT_EQ(scene.host.said, 0);
    }
  }
}

/// Allocation n of a first call fails, and every later one of it too when `later` says so; then come calls with enough
/// memory. Returns whether there was an allocation n.
bool first_call_with_failure(long n, failing_new::later later) {
  frugal_scene scene(box_hull(2, 2, 2));
  bool refused;
  {
    const failing_new watch(n, later);
    scene.call(0.0, 0);
    refused = failing_new::allocations() >= n;
  }
  SCOPED_TRACE(testing::Message() << "allocation " << n);
  EXPECT_EQ(scene.host.said, refused ? 1 : 0);
  if (scene.host.last_count > 0) {
    EXPECT_STREQ(scene.host.message, "HYDRO FORCE ERROR : std::bad_alloc");
  } else if (refused) {
    EXPECT_EQ(later, failing_new::fail_too) << "a report without a text";
  }
  for (const double value : scene.result) EXPECT_EQ(refused ? value : 0.0, 0.0);
  for (const int iflag : {0, 2}) {
    scene.host.said = 0;
    scene.call(0.0, iflag);
    const bool floats = std::fabs(scene.result[33] - 4.0) < 1e-12,
               nothing = scene.result[33] == 0.0 && scene.result[0] == 0.0;
    EXPECT_TRUE(scene.host.said == 0 ? floats || nothing : nothing);
    if (scene.host.said > 0) {
      EXPECT_EQ(std::string(scene.host.message).find("HYDRO FORCE ERROR : The set-up failed before"), 0U);
    }
  }
  return refused;
}

TEST(FirstCallWithoutMemory, IsReportedWhicheverAllocationFailsAndLaterCallsAreHarmless) {
  for (const auto later : {failing_new::pass_again, failing_new::fail_too}) {
    const frugal_scene sized(box_hull(2, 2, 2));  // the host's part of the tables stands
    long n = 1;
    while (first_call_with_failure(n, later)) ASSERT_LT(++n, 1000);
    EXPECT_GT(n, 8);
  }
}

TEST(FirstCallOfAProcessWithoutMemory, LeavesTablesThatALaterCallSizes) {
  for (long n = 1; n < 6; ++n) {
    const empty_module module;
    first_call_with_failure(n, failing_new::pass_again);
    frugal_scene scene(box_hull(2, 2, 2));
    scene.call(0.0, 0);
    EXPECT_EQ(scene.host.said, 0) << n;
    EXPECT_DOUBLE_EQ(scene.result[33], 4.0);
    EXPECT_EQ(qvhydro::s_HydroForce_Report.size(), qvhydro::gp_hydro_force.size());
  }
}

TEST(FaultWithoutMemory, IsReportedWithoutAText) {
  frugal_scene scene(box_hull(2, 2, 2));
  scene.call(0.0, 0);
  scene.par[QV_HULL_PART] = 9.0;
  {
    const failing_new watch(1);
    scene.call(0.0, 0);
  }
  EXPECT_EQ(scene.host.said, 1);
  EXPECT_EQ(scene.host.last_count, 0);
}

}  // namespace
}  // namespace qvtest
