#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "qvbrisk/services.h"
#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

struct Answer {
  double value = -77;
  int err = 0;
};

Answer ask(const HookCall& call, const char* name, const std::vector<int>& ids) {
  Answer answer;
  sysfnc(call.handle, name, ids.data(), static_cast<int>(ids.size()), &answer.value, &answer.err);
  return answer;
}

double value_of(const HookCall& call, const char* name, const std::vector<int>& ids) {
  const Answer answer = ask(call, name, ids);
  EXPECT_EQ(answer.err, 0) << name;
  return answer.value;
}

Vec3 force_of(const HookCall& call, const std::vector<int>& ids) {
  double values[3] = {0, 0, 0};
  int count = 3, err = 0;
  sysary(call.handle, "TFORCE", ids.data(), static_cast<int>(ids.size()), values, &count, &err);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(count, 3);
  return {values[0], values[1], values[2]};
}

/// Two bodies, a pull between them in the turned axes of marker `askew` (element 201 with result 1 2 3, applied force
/// 202 of 10 20 30 in ground axes on the first alone), and a report that asks.
struct Pulled {
  TestModel built;
  int on_ball, on_other, askew;
  const Rotation axes = product(turn(0, 0.4), turn(2, -1.1));

  Pulled() : built(0.2, 0.1) {
    const int ball = built.add_body("ball", 1, {1, 1, 1}), other = built.add_body("other", 1, {1, 1, 1});
    on_ball = built.add_marker(ball, {0, 0, 0});
    on_other = built.add_marker(other, {0, 0, 0});
    askew = built.add_marker(k_ground, {0, 0, 0}, axes);
    Element& pull = built.add_element("pull", "scripted", ElementKind::force, {1}, 6);
    pull.id = 201;
    pull.marker = on_ball;
    pull.reaction = on_other;
    pull.axes = askew;
    built.add_force(on_ball, {"10", "20", "30"}).id = 202;
    built.add_element("asks", "scripted", ElementKind::report, {}, 6).id = 203;
  }
  int id(int marker) const { return built.marker_id(marker); }

  /// Runs; `asks` is told of the report's calls after steps.
  TestRun run_asking(const std::function<void(const HookCall&)>& asks) {
    long asked = 0;
    const Script script([&](const HookCall& call) {
      if (call.npar == 1) {
        for (int k = 0; k < 3; ++k) call.result[k] = k + 1;
      } else if (call.iflag == 2) {
        asks(call);
        ++asked;
      }
    });
    TestRun out = run_to_end(built);
    EXPECT_GT(asked, 0);
    return out;
  }
};

constexpr double k_roundings = 1e-13;

TEST(ForceServices, TheIdOfAForceAsksForItAloneInAnyAxes) {
  Pulled scene;
  const Vec3 pull = rotate(scene.axes, {1, 2, 3});
  const TestRun out = scene.run_asking([&](const HookCall& call) {
    expect_near(pull, force_of(call, {201}), k_roundings, "in ground axes");
    expect_near({1, 2, 3}, force_of(call, {201, scene.id(scene.askew), scene.id(scene.askew)}), k_roundings,
                "in its own");
    expect_near({10, 20, 30}, force_of(call, {202}), k_roundings, "applied");
    expect_near(rotate(transposed(scene.axes), {10, 20, 30}), force_of(call, {202, k_ground_id, scene.id(scene.askew)}),
                k_roundings, "applied, in askew axes");
    expect_near(pull + Vec3{10, 20, 30}, force_of(call, {scene.id(scene.on_ball)}), k_roundings, "all at the marker");
    EXPECT_NEAR(value_of(call, "FM", {201}), std::sqrt(14.0), k_roundings);
    EXPECT_NEAR(value_of(call, "FM", {202, 77}), std::sqrt(1400.0), k_roundings) << "a second id has no meaning here";
  });
  EXPECT_TRUE(out.told.empty());
}

TEST(ForceServices, MagnitudeBetweenMarkersSumsWhatActsBetweenThem) {
  Pulled scene;
  const double all = norm(rotate(scene.axes, {1, 2, 3}) + Vec3{10, 20, 30});
  scene.run_asking([&](const HookCall& call) {
    const int ball = scene.id(scene.on_ball), other = scene.id(scene.on_other);
    EXPECT_NEAR(value_of(call, "FM", {ball}), all, k_roundings);
    EXPECT_NEAR(value_of(call, "FM", {ball, k_ground_id}), all, k_roundings) << "the ground leaves none out";
    EXPECT_NEAR(value_of(call, "FM", {ball, other}), std::sqrt(14.0), k_roundings);
    EXPECT_NEAR(value_of(call, "FM", {other, ball}), std::sqrt(14.0), k_roundings) << "action and reaction";
    EXPECT_NEAR(value_of(call, "FM", {other}), std::sqrt(14.0), k_roundings);
    EXPECT_EQ(value_of(call, "FM", {scene.id(scene.askew)}), 0);
  });
}

TEST(ForceServices, AppliedForcesAreKnownToTheElementsOfTheSameEvaluation) {
  TestModel built(0.5, 0.1);
  const int ball = built.add_body("ball", 1, {1, 1, 1});
  built.add_force(1 + ball, {"100*t", "0", "0"}).id = 50;
  built.add_element("asks", "scripted", ElementKind::force, {}, 6);
  long evaluations = 0;
  const Script script([&](const HookCall& call) {
    if (call.iflag == 0) {
      EXPECT_DOUBLE_EQ(value_of(call, "FM", {50}), 100 * call.time);
      ++evaluations;
    }
  });
  run_to_end(built);
  EXPECT_GT(evaluations, 10);
}

TEST(ForceServices, OfAReportThereIsNoForce) {
  Pulled scene;
  const TestRun out = scene.run_asking([](const HookCall& call) { EXPECT_NE(ask(call, "FM", {203}).err, 0); });
  ASSERT_EQ(out.told.size(), 1u);
  EXPECT_NE(out.told[0].find("FM: no force, marker or body has the id 203"), std::string::npos) << out.told[0];
}

/// A ball and a report; `asks` is told of all its calls.
TestRun run_report(const std::function<void(TestModel&)>& add, const std::function<void(const HookCall&)>& asks) {
  TestModel built(0.2, 0.1);
  built.add_body("ball", 1, {1, 1, 1});
  add(built);
  built.add_element("asks", "scripted", ElementKind::report, {}, 6);
  const Script script(asks);
  return run_to_end(built);
}

TEST(ValueServices, AVariableComesFirstAndAnEquationStandsInForIt) {
  const TestRun out = run_report(
      [](TestModel& built) {
        built.model.variables.push_back({1, "v", expression("7 + y"), {}});
        built.model.variables.push_back({3, "w", expression("8 + 3*t"), {}});
        for (const int id : {1, 2}) {
          built.model.equations.emplace_back();
          built.model.equations.back().id = id;
          built.model.equations.back().name = id == 1 ? "y" : "z";
          built.model.equations.back().value = 10 * id;
        }
      },
      [](const HookCall& call) {
        EXPECT_DOUBLE_EQ(value_of(call, "VARVAL", {1}), 17);
        EXPECT_DOUBLE_EQ(value_of(call, "VARVAL", {3}), 8 + 3 * call.time);
        EXPECT_DOUBLE_EQ(value_of(call, "VARVAL", {2}), 20) << "no variable has this id, an equation has";
        EXPECT_DOUBLE_EQ(value_of(call, "DIF20", {1}), 10);
      });
  EXPECT_TRUE(out.told.empty());
}

TEST(ValueServices, UnknownIdsSetTheFlagKeepTheOutputAndAreToldOnce) {
  const TestRun out = run_report([](TestModel&) {},
                                 [](const HookCall& call) {
                                   for (const char* name : {"VARVAL", "DIF20", "DIF21", "DIF22", "FM"}) {
                                     const Answer answer = ask(call, name, {4711});
                                     EXPECT_NE(answer.err, 0) << name;
                                     EXPECT_EQ(answer.value, -77) << name;
                                   }
                                   double values[3] = {5, 5, 5};
                                   const int id = 4711;
                                   int count = 3, err = 0;
                                   sysary(call.handle, "TFORCE", &id, 1, values, &count, &err);
                                   EXPECT_NE(err, 0);
                                   EXPECT_EQ(values[0], 5);
                                   AKISPL(call.handle, 0, 0, 4711, 0, values, &err);
                                   EXPECT_NE(err, 0);
                                   EXPECT_EQ(values[0], 5);
                                 });
  const char* const expected[] = {"VARVAL: no variable or equation has the id 4711",
                                  "DIF20: no equation has the id 4711",
                                  "DIF21: no equation has the id 4711",
                                  "DIF22: no equation has the id 4711",
                                  "FM: no force, marker or body has the id 4711",
                                  "TFORCE: no force, marker or body has the id 4711",
                                  "AKISPL: no spline has the id 4711"};
  ASSERT_EQ(out.told.size(), std::size(expected));
  for (size_t k = 0; k < out.told.size(); ++k) {
    EXPECT_EQ(out.told[k], "warning: test_model.toml: element asks at time 0: " + std::string(expected[k]));
  }
}

TEST(ValueServices, TakeOneId) {
  const TestRun out = run_report([](TestModel&) {},
                                 [](const HookCall& call) {
                                   EXPECT_NE(ask(call, "VARVAL", {1, 2}).err, 0);
                                   EXPECT_NE(ask(call, "DIF20", {}).err, 0);
                                 });
  ASSERT_EQ(out.told.size(), 2u);
  EXPECT_NE(out.told[0].find("VARVAL: takes one id, not 2"), std::string::npos) << out.told[0];
}

TEST(SplineService, GivesValueAndTwoDerivatives) {
  const TestRun out = run_report(
      [](TestModel& built) {
        built.model.splines.push_back({1, "line", {0, 1}, {0, 1}, {}});
        built.model.splines.push_back({2, "parabola", {-2, -1, 0, 1, 2}, {4, 1, 0, 1, 4}, {}});
      },
      [](const HookCall& call) {
        const double expected[3] = {0.36, -1.2, 2};
        for (int order = 0; order < 3; ++order) {
          double value = 0;
          int err = 0;
          AKISPL(call.handle, -0.6, 0, 2, order, &value, &err);
          EXPECT_EQ(err, 0);
          EXPECT_NEAR(value, expected[order], k_roundings);
        }
        double value = -77;
        int err = 0;
        AKISPL(call.handle, 0, 0, 2, 3, &value, &err);
        EXPECT_NE(err, 0) << "there is no third derivative";
        AKISPL(call.handle, 0, 1, 2, 0, &value, &err);
        EXPECT_NE(err, 0) << "nor a second abscissa";
        EXPECT_EQ(value, -77);
      });
  ASSERT_EQ(out.told.size(), 1u);
  EXPECT_NE(out.told[0].find("AKISPL: the order is 0, 1 or 2, not 3"), std::string::npos) << out.told[0];
}

TEST(UnitService, GivesWhatTheModelsUnitsAreInSiAndLeavesTheNames) {
  run_report(
      [](TestModel& built) {
        Units& units = built.model.units;
        units.length_factor = 0.0254;
        units.mass_factor = 175.126;
        units.time_factor = 60;
        units.force_factor = 4.4482;
        units.angle_factor = 0.017453292519943295;
      },
      [](const HookCall& call) {
        double scale[5] = {0, 0, 0, 0, 0};
        int mark = 0;
        void* names[5] = {&mark, &mark, nullptr, &mark, nullptr};
        int err = 1;
        GTUNTS(call.handle, scale, names, &err);
        EXPECT_EQ(err, 0);
        const double expected[5] = {0.0254, 175.126, 60, 4.4482, 0.017453292519943295};
        for (int k = 0; k < 5; ++k) {
          EXPECT_EQ(scale[k], expected[k]);
          EXPECT_EQ(names[k], k == 2 || k == 4 ? nullptr : &mark);
        }
      });
}

TEST(ResultFiles, HoldAColumnForEachVariableAndTwoForEachEquation) {
  const TestRun out = run_report(
      [](TestModel& built) {
        built.model.variables.push_back({1, "command", expression("3*t"), {}});
        built.model.equations.emplace_back();
        built.model.equations.back().name = "error";
        built.model.equations.back().right_side = expression("2");
      },
      [](const HookCall&) {});
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    EXPECT_DOUBLE_EQ(out.at("command", row), 3 * t);
    EXPECT_NEAR(out.at("error", row), 2 * t, 1e-14);
    EXPECT_DOUBLE_EQ(out.at("error.rate", row), 2);
  }
}

}  // namespace
