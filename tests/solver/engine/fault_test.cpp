#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "qvbrisk/services.h"
#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

TestModel one_force() {
  TestModel built(1.0, 0.1);
  built.add_body("ball", 1, {1, 1, 1});
  built.add_element("soil", "scripted", ElementKind::force, {}, 6).marker = 1;
  return built;
}

char* message(const char* text) {
  char* copy = new char[std::strlen(text) + 1];
  std::strcpy(copy, text);
  return copy;
}

void expect_contains(const std::string& text, const std::string& part) {
  EXPECT_NE(text.find(part), std::string::npos) << "\"" << text << "\" lacks \"" << part << "\"";
}

nlohmann::json record_of(const TestRun& out) { return nlohmann::json::parse(read_text(out.folder + "/run.json")); }

TEST(Faults, ThrownMessagesEndTheRunWithElementAndTime) {
  const TestModel built = one_force();
  const Script script([&](const HookCall& call) {
    if (call.time < 0.45) return;
    char* slots[5] = {message("FIRST FAULT."), message("SECOND FAULT."), nullptr, nullptr, nullptr};
    THROW_ERROR(call.handle, "USUB ERROR", 2, slots);
  });
  const TestRun out = run(built);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "element soil at time 0.");
  expect_contains(out.summary.message, "USUB ERROR: FIRST FAULT.: SECOND FAULT.");
  ASSERT_EQ(out.rows.size(), 5u) << "rows 0 to 0.4 are kept";
  EXPECT_EQ(out.at("time", 4), 0.4);
  EXPECT_FALSE(record_of(out)["complete"].get<bool>());
  EXPECT_EQ(record_of(out)["outcome"], "failed");
  EXPECT_EQ(record_of(out)["message"], out.summary.message);
}

TEST(Faults, AWarningOfASubroutineIsToldAndTheRunGoesOn) {
  const Script script([&](const HookCall& call) {
    if (call.iflag != 1) return;
    char* slots[5] = {message("ANOTHER FILE."), nullptr, nullptr, nullptr, nullptr};
    THROW_ERROR(call.handle, "USUB WARNING", 1, slots);
  });
  const TestRun out = run(one_force());
  EXPECT_EQ(out.summary.outcome, RunOutcome::finished);
  ASSERT_EQ(out.told.size(), 1u);
  expect_contains(out.told[0], "element soil at time 0: USUB WARNING: ANOTHER FILE.");
}

TEST(Faults, AWarningOfASubroutineStandsInTheRecordAndEndsAStrictRun) {
  const Script script([&](const HookCall& call) {
    if (call.iflag != 1) return;
    char* slots[5] = {message("ANOTHER FILE."), nullptr, nullptr, nullptr, nullptr};
    THROW_ERROR(call.handle, "USUB WARNING", 1, slots);
  });
  EXPECT_EQ(record_of(run(one_force()))["warnings"][0]["id"], "subroutine");
  RunOptions options;
  options.strict = true;
  const TestRun out = run(one_force(), options);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "ANOTHER FILE.");
  EXPECT_EQ(out.summary.steps, 0);
  EXPECT_FALSE(record_of(out)["complete"]);
}

TEST(Faults, ASubroutineWithoutMemoryIsExplained) {
  const Script script([&](const HookCall& call) {
    char* slots[5] = {message("SOIL ERROR : std::bad_alloc"), nullptr, nullptr, nullptr, nullptr};
    THROW_ERROR(call.handle, "USUB ERROR", 1, slots);
  });
  const TestRun out = run(one_force());
  expect_contains(out.summary.message, "(there is not enough memory; make the grid, the road or the table coarser)");
}

TEST(Faults, ThrownWithoutAMessageSaysSo) {
  const Script script([&](const HookCall& call) { THROW_ERROR(call.handle, "USUB ERROR", 0, nullptr); });
  const TestRun out = run(one_force());
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "the subroutine gave no message");
  EXPECT_TRUE(out.rows.empty()) << "the set-up call failed already";
}

TEST(Faults, AStopWithAMessageStopsTheRun) {
  const Script script([&](const HookCall& call) {
    int status = 0;
    if (call.time > 0.25) stop_solver(call.handle, 1, 0, 1, "enough", &status);
  });
  const TestRun out = run(one_force());
  EXPECT_EQ(out.summary.outcome, RunOutcome::stopped);
  expect_contains(out.summary.message, "element soil at time 0.");
  expect_contains(out.summary.message, ": enough");
  EXPECT_EQ(out.rows.size(), 3u);
}

TEST(Faults, AStopWithoutAMessageHintsAtTheRoad) {
  const Script script([&](const HookCall& call) {
    int status = 0;
    stop_solver(call.handle, 1, 0, 1, nullptr, &status);
  });
  const TestRun out = run(one_force());
  EXPECT_EQ(out.summary.outcome, RunOutcome::stopped);
  EXPECT_EQ(out.summary.message,
            "element soil at time 0: the subroutine asked to stop without a message (a road file that could not be "
            "processed ends so)");
}

TEST(Faults, TheFirstReportStandsAndNoFurtherElementIsCalled) {
  TestModel built = one_force();
  built.add_element("later", "scripted", ElementKind::report, {7}, 1);
  int later_calls = 0;
  const Script script([&](const HookCall& call) {
    int status = 0;
    if (call.npar == 1) ++later_calls;
    stop_solver(call.handle, 1, 0, 1, call.npar == 1 ? "second" : "first", &status);
  });
  const TestRun out = run(built);
  expect_contains(out.summary.message, ": first");
  EXPECT_EQ(later_calls, 0);
}

TEST(Faults, AForceThatIsNoNumberNamesItsEntry) {
  struct Case {
    int entry;
    double value;
    const char* told;
  };
  const Case cases[] = {{2, std::numeric_limits<double>::quiet_NaN(), "result 2 (force z)"},
                        {3, std::numeric_limits<double>::infinity(), "result 3 (torque x)"}};
  for (const Case& c : cases) {
    const Script script([&](const HookCall& call) {
      if (call.time > 0.15) call.result[c.entry] = c.value;
    });
    const TestRun out = run(one_force());
    EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
    expect_contains(out.summary.message, "element soil at time 0.");
    expect_contains(out.summary.message, c.told);
    EXPECT_EQ(out.rows.size(), 2u);
  }
}

TEST(Faults, AReportMayReturnAnything) {
  TestModel built(0.2, 0.1);
  built.add_body("ball", 1, {1, 1, 1});
  built.add_element("odd", "scripted", ElementKind::report, {}, 1);
  const Script script([&](const HookCall& call) { call.result[0] = std::numeric_limits<double>::quiet_NaN(); });
  const TestRun out = run_to_end(built);
  EXPECT_NE(out.last("odd.r0"), out.last("odd.r0"));
}

TEST(Faults, AnExceptionOfASubroutineIsReported) {
  const Script script([&](const HookCall&) { throw std::runtime_error("escaped"); });
  const TestRun out = run(one_force());
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "element soil at time 0: the subroutine scripted threw an exception");
}

TEST(Faults, AMissingLibraryIsNamedWithTheLoadersReason) {
  RunOptions options;
  options.plugin_path = "/nowhere/libmissing.so";
  const TestRun out = run(one_force(), options);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "cannot load the library /nowhere/libmissing.so: ");
  expect_contains(out.summary.message, std::strerror(ENOENT));  // in the words of the host's locale
  EXPECT_EQ(record_of(out)["outcome"], "failed");
}

TEST(Faults, AMissingSubroutineIsNamedWithItsElementAndLibrary) {
  TestModel built = one_force();
  built.model.elements[0].subroutine = "qvsoil_nonsense";
  const TestRun out = run(built);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "element soil: ");
  expect_contains(out.summary.message, "exports no subroutine qvsoil_nonsense");
  expect_contains(out.summary.message, "solver_test_plugin");
}

TEST(Faults, ANumberThatThePluginExportsIsNoSubroutine) {
  TestModel built = one_force();
  built.model.elements[0].subroutine = "plugin_version";
  const TestRun out = run(built);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "plugin_version is no function");
}

TEST(Faults, ABodyThatIsFreeWithoutMassIsNamed) {
  TestModel built(1.0, 0.1);
  built.add_body("ghost", 0, {0, 0, 0});
  const TestRun out = run(built);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "body ghost is free to move but nothing it moves has inertia");
}

TEST(Faults, AJointThatTurnsABodyWithoutInertiaIsNamed) {
  TestModel built(1.0, 0.1);
  const int point = built.add_body("point", 1, {0, 0, 0});
  built.add_joint(JointType::cylindrical, 0, built.add_marker(point, {0, 0, 0.5}));
  const TestRun out = run(built);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "coordinate angle of joint joint0 is free to move");
}

/// A rod with inertia that hangs on a massless link by a second revolute joint, turned against the first one.
TestModel rod_on_a_massless_link(const Rotation& second_axis) {
  TestModel built(0.1, 0.1);
  const int link = built.add_body("link", 0, {0, 0, 0}), rod = built.add_body("rod", 1, {1, 1, 1});
  const int on_link = built.add_marker(link, {0, 0, 0}), link_end = built.add_marker(link, {0, 0, 0}, second_axis);
  const int on_rod = built.add_marker(rod, {0, 0, 0}, second_axis);
  built.add_joint(JointType::revolute, 0, on_link);
  built.add_joint(JointType::revolute, link_end, on_rod);
  return built;
}

TEST(Faults, ALinkBetweenTwoJointsOfOneAxisIsNamed) {
  const TestRun out = run(rod_on_a_massless_link(k_identity));
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "coordinate angle of joint joint0 is free to move");
}

TEST(Faults, AMasslessLinkBetweenJointsOfTwoAxesMoves) {
  const TestRun out = run(rod_on_a_massless_link(turn(0, k_pi / 2)));
  EXPECT_EQ(out.summary.outcome, RunOutcome::finished) << out.summary.message;
}

TEST(Faults, AChainOfManyJointsStartsAndItsMasslessLastLinkIsFound) {
  constexpr int k_links = 200;
  for (const double last_mass : {1.0, 0.0}) {
    TestModel built(1e-3, 1e-3);
    for (int i = 0; i < k_links; ++i) {
      const double mass = i + 1 < k_links ? 1.0 : last_mass;
      built.add_body("link" + std::to_string(i), mass, {mass, mass, mass});
    }
    int above = 0;
    for (int i = 0; i < k_links; ++i) {
      built.add_joint(JointType::revolute, above, built.add_marker(i, {0, 0, 0.5}, turn(0, 0.1 * i)));
      above = built.add_marker(i, {0, 0, -0.5}, turn(0, 0.1 * (i + 1)));
    }
    const TestRun out = run(built);
    EXPECT_EQ(out.summary.outcome, last_mass > 0 ? RunOutcome::finished : RunOutcome::failed) << out.summary.message;
    if (last_mass == 0) expect_contains(out.summary.message, "coordinate angle of joint joint199 is free to move");
  }
}

TEST(Faults, NumbersThatOverflowOnTheWayNameTheirBody) {
  TestModel built(1.0, 0.1);
  built.add_body("still", 1, {1, 1, 1});
  built.add_body("fast", 1e-80, {1e-80, 1e-80, 1e-80});
  built.add_force(built.add_marker(1, {0, 0, 0}), {"1e300*t*t", "0", "0"});
  const TestRun out = run(built);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "the motion leaves what numbers can hold; body fast ");
}

TEST(Faults, WhatNoEngineCanRunIsNamed) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  struct Case {
    std::function<void(Model&)> spoil;
    const char* told;
  };
  const Case cases[] = {
      {[](Model& m) { m.bodies[0].inertia.zz = 5; }, "body ball: no rigid body has the inertia xx 1 yy 1 zz 5"},
      {[](Model& m) { m.bodies[0].inertia.xy = 0.9; }, "body ball: no rigid body has the inertia"},
      {[](Model& m) { m.bodies[0].mass = -1; }, "body ball: the mass -1 is negative"},
      {[](Model& m) { m.bodies[0].mass = 0; }, "body ball: a body with inertia needs a mass"},
      {[](Model& m) { m.bodies[0].velocity[1] = nan; }, "body ball, velocity: nan is no finite number"},
      {[](Model& m) { m.bodies[0].orientation = Rotation{}; }, "body ball: its axes are no right-handed axes"},
      {[](Model& m) { m.markers[0].orientation[0] = -1; }, "marker ground: its axes are no right-handed axes"},
      {[](Model& m) { m.gravity[2] = nan; }, "gravity: nan is no finite number"},
      {[](Model& m) { m.simulation.accuracy = 1; }, "simulation: the accuracy 1 must lie between 0 and 1"},
      {[](Model& m) { m.simulation.integrator = Integrator::semi_explicit_euler; },
       "simulation: the fixed step 0 must be above 0"},
  };
  for (const Case& c : cases) {
    TestModel built = one_force();
    c.spoil(built.model);
    const TestRun out = run(built);
    EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
    expect_contains(out.summary.message, c.told);
  }
}

TEST(Faults, ThinRodsAndPlatesAreRealBodies) {
  for (const Vec3& moments : {Vec3{1, 1, 0}, Vec3{1, 1, 2}, Vec3{0.1, 0.2, 0.3}}) {
    TestModel built(0.1, 0.1);
    built.add_body("thin", 1, moments);
    built.add_joint(JointType::revolute, 0, built.add_marker(0, {0, 0.5, 0}));
    EXPECT_EQ(run(built).summary.outcome, RunOutcome::finished) << moments[2];
  }
}

TEST(Faults, ABodyOnTwoJointsIsRefused) {
  TestModel built(1.0, 0.1);
  const int block = built.add_body("block", 1, {1, 1, 1});
  const int marker = built.add_marker(block, {0, 0, 0});
  built.add_joint(JointType::revolute, 0, marker);
  built.add_joint(JointType::slider, 0, marker);
  const TestRun out = run(built);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "joint joint1: body block hangs on another joint already");
}

TEST(Faults, AMotionWithoutAValueEndsTheRun) {
  TestModel built(1.0, 0.1);
  const int sled = built.add_body("sled", 1, {1, 1, 1});
  Joint& joint = built.add_joint(JointType::slider, 0, built.add_marker(sled, {0, 0, 0}));
  joint.motions.push_back({0, MotionLevel::velocity, expression("t < 0.5 ? 2*t : sqrt(-1)")});
  const TestRun out = run(built);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "motion of joint joint0, coordinate travel");
  expect_contains(out.summary.message, "t < 0.5 ? 2*t : sqrt(-1)");
  EXPECT_EQ(out.rows.size(), 5u);
}

TEST(Faults, AForceThatNoStepCanFollowMakesTheIntegratorGiveUp) {
  const TestModel built = one_force();
  long calls = 0;
  const Script script([&](const HookCall& call) {
    // Another force at every evaluation: no step, however short, gives two equal estimates.
    call.result[0] = (++calls % 2 == 0 ? 1.0 : -1.0) * 1e30;
  });
  const TestRun out = run(built);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message, "the integrator gave up at time ");
  expect_contains(out.summary.message, "semi-explicit");
}

TEST(Faults, AFolderThatCannotBeMadeIsReported) {
  RunOptions options;
  options.out_folder = "/proc/no/folder";
  const TestRun out = run(one_force(), options);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  expect_contains(out.summary.message,
                  std::string("cannot write into the folder /proc/no/folder: ") + std::strerror(ENOENT));
}

TEST(Interruption, KeepsTheRowsSoFarAndSaysIncomplete) {
  const Script script([](const HookCall&) {});
  volatile std::sig_atomic_t flag = 0;
  RunOptions options;
  options.interrupted = &flag;
  options.on_progress = [&](const Progress& progress) {
    if (progress.time >= 0.3) flag = 1;
  };
  const TestRun out = run(one_force(), options);
  EXPECT_EQ(out.summary.outcome, RunOutcome::interrupted);
  EXPECT_GE(out.summary.time, 0.3);
  EXPECT_LT(out.summary.time, 1.0);
  ASSERT_FALSE(out.rows.empty());
  for (const auto& row : out.rows) EXPECT_EQ(row.size(), out.columns.size());
  EXPECT_FALSE(record_of(out)["complete"].get<bool>());
  EXPECT_EQ(record_of(out)["outcome"], "interrupted");
}

}  // namespace
