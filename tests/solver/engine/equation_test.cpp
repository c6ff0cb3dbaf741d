#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "qvbrisk/services.h"
#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

constexpr double k_tolerance = 1e-7;  // integration at accuracy 1e-9, motions of order one

Equation& add_equation(TestModel& built, const std::string& name, int order, const std::string& right_side,
                       double value = 0, double rate = 0) {
  Equation equation;
  equation.id = static_cast<int>(built.model.equations.size()) + 1;
  equation.name = name;
  equation.order = order;
  equation.right_side = expression(right_side);
  equation.value = value;
  equation.rate = rate;
  equation.at = {"test", 1, 1};
  built.model.equations.push_back(equation);
  return built.model.equations.back();
}

void add_variable(TestModel& built, const std::string& name, const std::string& text) {
  const int id = static_cast<int>(built.model.variables.size()) + 1;
  built.model.variables.push_back({id, name, expression(text), {"test", 1, 1}});
}

/// A body of mass 2 that slides along the ground's x axis.
TestModel sled_model(double end_time, double output_step) {
  TestModel built(end_time, output_step);
  const int sled = built.add_body("sled", 2, {1, 1, 1});
  built.add_joint(JointType::slider, 0, built.add_marker(sled, {0, 0, 0}));
  return built;
}

void take_fixed_steps(TestModel& built, double step) {
  built.model.simulation.integrator = Integrator::semi_explicit_euler;
  built.model.simulation.step = step;
}

double ask(const HookCall& call, const char* name, int id) {
  double value = -77;
  int err = 0;
  sysfnc(call.handle, name, &id, 1, &value, &err);
  EXPECT_EQ(err, 0) << name << " " << id;
  return value;
}

TEST(Equation, OfFirstOrderDecaysAsItsClosedForm) {
  TestModel built = sled_model(2.0, 0.1);
  add_equation(built, "level", 1, "-2*level", 3.0);
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double expected = 3 * std::exp(-2 * out.at("time", row));
    EXPECT_NEAR(out.at("level", row), expected, k_tolerance);
    EXPECT_NEAR(out.at("level.rate", row), -2 * expected, 2 * k_tolerance);
  }
}

TEST(Equation, OfSecondOrderSwingsAsADampedOscillator) {
  constexpr double omega2 = 9, damping = 0.8, start = 0.5, rate = -1;
  TestModel built = sled_model(3.0, 0.1);
  add_equation(built, "swing", 2, "-9*swing - 0.8*dif1(swing)", start, rate);
  const TestRun out = run_to_end(built);
  const double delta = damping / 2, omega = std::sqrt(omega2 - delta * delta);
  const double b = (rate + delta * start) / omega;
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row), c = std::cos(omega * t), s = std::sin(omega * t), e = std::exp(-delta * t);
    EXPECT_NEAR(out.at("swing", row), e * (start * c + b * s), k_tolerance);
    EXPECT_NEAR(out.at("swing.rate", row), e * ((b * omega - delta * start) * c - (start * omega + delta * b) * s),
                3 * k_tolerance);
  }
}

TEST(Equation, OfABodysVelocityIsItsWay) {
  TestModel built = sled_model(2.0, 0.1);
  built.add_force(1, {"3*cos(2*t)", "0", "0"});
  add_equation(built, "way", 1, "vx(sled)");
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double expected = 1.5 / 4 * (1 - std::cos(2 * out.at("time", row)));
    EXPECT_NEAR(out.at("way", row), expected, k_tolerance);
    EXPECT_NEAR(out.at("way", row), out.at("sled.x", row), k_tolerance);
  }
}

TEST(Equation, DrivesABodyThroughAForceThatReadsIt) {
  TestModel built = sled_model(3.0, 0.1);
  add_equation(built, "push", 2, "-push", 4.0);
  built.add_force(1, {"push", "0", "0"});
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    EXPECT_NEAR(out.at("sled.vx", row), 2 * std::sin(out.at("time", row)), k_tolerance);
  }
}

TEST(Equation, TakesResultZeroOfItsElement) {
  TestModel built = sled_model(2.0, 0.1);
  built.add_element("rate", "scripted", ElementKind::evaluated, {}, 2);
  add_equation(built, "sum", 1, "0").element = 0;
  const Script script([](const HookCall& call) {
    call.result[0] = std::sin(call.time);
    call.result[1] = 1e6;
  });
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    EXPECT_NEAR(out.at("sum", row), 1 - std::cos(out.at("time", row)), k_tolerance);
  }
}

TEST(Equation, IsTakenAlongByTheFixedStepIntegratorExplicitly) {
  constexpr double h = 0.01;
  TestModel built = sled_model(1.0, 0.5);
  take_fixed_steps(built, h);
  add_equation(built, "decay", 1, "-decay", 1.0);
  add_equation(built, "clock", 1, "1");
  const TestRun out = run_to_end(built);
  EXPECT_NEAR(out.at("decay", 1), std::pow(1 - h, 50), 1e-13);
  EXPECT_NEAR(out.at("decay", 2), std::pow(1 - h, 100), 1e-13);
  EXPECT_NEAR(out.last("clock"), 1, 1e-13);
}

TEST(Equation, TakesPartInTheErrorControl) {
  TestModel still = sled_model(1.0, 1.0), busy = sled_model(1.0, 1.0);
  add_equation(busy, "fast", 2, "-400*fast", 1.0);
  const TestRun slow = run_to_end(still), out = run_to_end(busy);
  EXPECT_GT(out.summary.steps, 10 * slow.summary.steps);
  EXPECT_NEAR(out.last("fast"), std::cos(20.0), 20 * k_tolerance);
}

TEST(EvaluatedElement, IsCalledAmongTheForcesAndAfterStepsBeforeReports) {
  TestModel built = sled_model(0.3, 0.1);
  const ElementKind kinds[4] = {ElementKind::report, ElementKind::evaluated, ElementKind::force,
                                ElementKind::evaluated};
  for (int k = 0; k < 4; ++k) {
    built.add_element("e" + std::to_string(k), "scripted", kinds[k], {static_cast<double>(k)}, 6).marker = 1;
  }
  add_equation(built, "y", 1, "0").element = 3;
  std::vector<std::pair<int, int>> log;  // iflag, element
  const Script script([&](const HookCall& call) { log.emplace_back(call.iflag, static_cast<int>(call.par[0])); });
  run_to_end(built);
  ASSERT_GT(log.size(), 20u);
  const int set_up[4] = {0, 1, 2, 3}, evaluation[3] = {1, 2, 3}, after_step[4] = {1, 2, 3, 0};
  size_t at = 0;
  for (; at < 4; ++at) EXPECT_EQ(log[at], std::make_pair(1, set_up[at]));
  while (at < log.size()) {
    const int iflag = log[at].first;
    ASSERT_NE(iflag, 1);
    const size_t length = iflag == 0 ? 3 : 4;
    ASSERT_LE(at + length, log.size());
    for (size_t k = 0; k < length; ++k, ++at) {
      EXPECT_EQ(log[at], std::make_pair(iflag, iflag == 0 ? evaluation[k] : after_step[k]));
    }
  }
}

TEST(EvaluatedElement, MovesNothing) {
  TestModel built = sled_model(1.0, 0.5);
  built.add_element("shy", "scripted", ElementKind::evaluated, {}, 6).marker = 1;
  const Script script([](const HookCall& call) { call.result[0] = 1e3; });
  EXPECT_EQ(run_to_end(built).last("sled.vx"), 0);
}

TEST(Variable, IsEvaluatedAtTheStateOfTheCallThatAsks) {
  TestModel built = sled_model(1.0, 0.1);
  built.add_force(1, {"6", "0", "0"});
  add_variable(built, "clock", "2*t");
  add_variable(built, "double_speed", "vx(sled) + clock/2 * 3");
  built.add_element("asks", "scripted", ElementKind::force, {}, 6);
  const Script script([](const HookCall& call) {
    EXPECT_DOUBLE_EQ(ask(call, "VARVAL", 1), 2 * call.time);
    const int sled = 1;
    double speed = 0;
    int err = 0;
    sysfnc(call.handle, "VM", &sled, 1, &speed, &err);
    EXPECT_NEAR(ask(call, "VARVAL", 2), speed + 3 * call.time, 1e-13);
  });
  const TestRun out = run_to_end(built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    EXPECT_DOUBLE_EQ(out.at("clock", row), 2 * out.at("time", row));
    EXPECT_NEAR(out.at("double_speed", row), 6 * out.at("time", row), k_tolerance);
  }
}

/// What the services say in a run of y' = 1 + t^2 (equation 1) and y'' = 1 + t^2 (equation 2).
struct Asked {
  int iflag;
  double time, value1, rate1, second1, value2, rate2, second2;
};

std::vector<Asked> derivatives_asked() {
  TestModel built = sled_model(1.0, 0.25);
  built.model.simulation.max_step = 0.1;
  add_equation(built, "first", 1, "1 + t^2");
  add_equation(built, "second", 2, "1 + t^2");
  built.add_element("asks", "scripted", ElementKind::force, {}, 6);
  std::vector<Asked> log;
  const Script script([&](const HookCall& call) {
    log.push_back({call.iflag, call.time, ask(call, "DIF20", 1), ask(call, "DIF21", 1), ask(call, "DIF22", 1),
                   ask(call, "DIF20", 2), ask(call, "DIF21", 2), ask(call, "DIF22", 2)});
  });
  run_to_end(built);
  return log;
}

TEST(Derivatives, ThatAreNoStatesAreThoseOfTheLastAcceptedStep) {
  double accepted = 0, highest = 0;
  long within = 0;
  for (const Asked& asked : derivatives_asked()) {
    if (asked.iflag == 2) {
      accepted = asked.time;
      highest = 1 + accepted * accepted;
    } else if (asked.iflag == 0 && asked.time > 0) {
      highest = 1 + accepted * accepted;
      within += asked.time > accepted ? 1 : 0;
    } else if (asked.iflag == 0 && asked.rate1 != 0) {
      highest = 1;  // at time 0 the first evaluation finds nothing yet, the next ones what it has left
    }
    EXPECT_DOUBLE_EQ(asked.rate1, highest) << "at " << asked.time;
    EXPECT_DOUBLE_EQ(asked.second2, highest) << "at " << asked.time;
  }
  EXPECT_GT(within, 10) << "nothing was asked between steps";
}

TEST(Derivatives, ThatAreStatesAreThoseOfTheEvaluation) {
  for (const Asked& asked : derivatives_asked()) {
    const double t = asked.time;
    // Stages of a step of at most 0.1 are off by less than h^2 of the second derivative; accepted states are exact.
    const double tolerance = asked.iflag == 0 ? 0.02 : 1e-9;
    EXPECT_NEAR(asked.value1, t + t * t * t / 3, tolerance);
    EXPECT_NEAR(asked.rate2, t + t * t * t / 3, tolerance);
    EXPECT_NEAR(asked.value2, t * t / 2 + t * t * t * t / 12, tolerance);
  }
}

TEST(Derivatives, TheSecondOfAFirstOrderEquationIsTheQuotientOverTheLastStep) {
  double before = 0;
  long steps = 0;
  for (const Asked& asked : derivatives_asked()) {
    if (asked.iflag == 1) {
      EXPECT_EQ(asked.second1, 0);
    }
    if (asked.iflag != 2) continue;
    EXPECT_NEAR(asked.second1, before + asked.time, 1e-11) << "(t2^2 - t1^2) / (t2 - t1)";
    before = asked.time;
    ++steps;
  }
  EXPECT_GE(steps, 10);
}

TEST(Derivatives, AStepTooShortForADifferenceLeavesTheQuotientAlone) {
  TestModel built = sled_model(1.0, 0.5);
  add_equation(built, "sum", 1, "1/3 + 0.7*t");
  built.add_element("jump", "scripted", ElementKind::force, {}, 6).marker = 1;
  double last = 0, shortest = 1;
  const Script script([&](const HookCall& call) {
    // Only the shortest steps pass a jump like this one.
    call.result[0] = call.time > 0.4 ? 1e4 : 0;
    if (call.iflag != 2) return;
    shortest = std::min(shortest, call.time - last);
    last = call.time;
    EXPECT_NEAR(ask(call, "DIF22", 1), 0.7, 1e-6) << "a rounding of 1e-16 over 1e-9";
  });
  run_to_end(built);
  EXPECT_LT(shortest, 1e-10) << "no step was short, so nothing was shown";
}

TEST(Derivatives, OfALoopComeFromTheStepBefore) {
  TestModel built = sled_model(1.0, 0.1);
  take_fixed_steps(built, 0.1);
  add_equation(built, "loop", 1, "1 - dif1(loop)/2");
  const TestRun out = run_to_end(built);
  double rate = 1, value = 0;  // the evaluation at the start reads 0
  for (size_t row = 0; row < out.rows.size(); ++row) {
    EXPECT_NEAR(out.at("loop.rate", row), rate, 1e-9) << row;
    EXPECT_NEAR(out.at("loop", row), value, 1e-9) << row;
    rate = 1 - rate / 2;
    value += 0.1 * rate;
  }
}

/// Speed of a sled of mass 2 whose thrust is set by the services as a feedback on e = v - 1, y' = e, with gains p, i
/// and d, against the closed form of (m + d) y'' + p y' + i y = 0, y(0) = 0, y'(0) = -1. Largest difference.
double feedback_error(double step) {
  constexpr double mass = 2, p = 4, i = 6, d = 1;
  TestModel built = sled_model(3.0, 0.1);
  built.model.simulation.max_step = step;
  add_variable(built, "command", "1");
  add_equation(built, "error", 1, "vx(sled) - command");
  built.add_element("thrust", "scripted", ElementKind::force, {}, 6).marker = 1;
  const Script script([](const HookCall& call) {
    call.result[0] = -p * ask(call, "DIF21", 1) - d * ask(call, "DIF22", 1) - i * ask(call, "DIF20", 1);
  });
  const TestRun out = run_to_end(built);
  const double delta = p / (2 * (mass + d)), omega = std::sqrt(i / (mass + d) - delta * delta);
  double largest = 0;
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    // y = -exp(-delta t) sin(omega t) / omega
    const double rate = -std::exp(-delta * t) * (std::cos(omega * t) - delta / omega * std::sin(omega * t));
    largest = std::max(largest, std::abs(out.at("sled.vx", row) - 1 - rate));
  }
  return largest;
}

TEST(Feedback, ThroughTheServicesMeetsTheClosedFormInProportionToTheStep) {
  const double coarse = feedback_error(0.01), fine = feedback_error(0.005);
  EXPECT_LT(coarse, 5 * 0.01) << "a few steps' worth of a motion of order one";
  EXPECT_LT(fine, 0.6 * coarse) << "half the step, half the error";
}

/// Speed after 1 of a sled of mass 2 that is pushed by 3 and held back by d times its acceleration, through the
/// services.
double speed_under_acceleration_feedback(double d) {
  TestModel built = sled_model(1.0, 1.0);
  take_fixed_steps(built, 0.01);
  add_equation(built, "speed", 1, "vx(sled)");
  built.add_element("thrust", "scripted", ElementKind::force, {}, 6).marker = 1;
  const Script script([d](const HookCall& call) { call.result[0] = 3 - d * ask(call, "DIF22", 1); });
  return run_to_end(built).last("sled.vx");
}

TEST(Feedback, OfAnAccelerationActsAsAnAddedMassWhileItIsBelowTheMass) {
  // The acceleration of step n is (3 - d a_(n-1)) / m: a geometric series towards 3 / (m + d), its first terms apart.
  EXPECT_NEAR(speed_under_acceleration_feedback(1.5), 3 / 3.5, 0.02);
  EXPECT_NEAR(speed_under_acceleration_feedback(-0.5), 3 / 1.5, 0.02);
  EXPECT_GT(std::abs(speed_under_acceleration_feedback(3.0)), 1e9) << "beyond it every step overshoots the one before";
}

TEST(Feedback, OnStatesAloneMeetsTheClosedFormToTheIntegratorsAccuracy) {
  constexpr double mass = 2, p = 4, i = 6;
  TestModel built = sled_model(3.0, 0.1);
  add_variable(built, "off", "vx(sled) - 1");
  add_equation(built, "error", 1, "off");
  built.add_force(1, {"-4*off - 6*error", "0", "0"});
  const TestRun out = run_to_end(built);
  const double delta = p / (2 * mass), omega = std::sqrt(i / mass - delta * delta);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    EXPECT_NEAR(out.at("off", row), -std::exp(-delta * t) * (std::cos(omega * t) - delta / omega * std::sin(omega * t)),
                k_tolerance);
  }
}

TEST(MarkerQuantities, OfExpressionsAreThoseOfRigidBodyGeometry) {
  TestModel built(0, 1);
  const int a = built.add_body("a", 1, {1, 1, 1}), b = built.add_body("b", 1, {1, 1, 1});
  const Rotation axes_a = product(turn(2, 0.7), turn(0, -0.4)), axes_b = product(turn(1, 1.1), turn(2, 0.3));
  const Vec3 place_a = {1, -2, 0.5}, place_b = {-0.3, 0.4, 2}, spin_a = {0.3, -1, 2}, spin_b = {1, 0.2, -0.6};
  const Vec3 velocity_a = {4, 0.1, -1}, velocity_b = {0.2, -0.5, 0.3}, arm = {0.2, 0.3, -0.7};
  built.body(a).position = place_a;
  built.body(a).orientation = axes_a;
  built.body(a).velocity = velocity_a;
  built.body(a).angular_velocity = spin_a;
  built.body(b).position = place_b;
  built.body(b).orientation = axes_b;
  built.body(b).velocity = velocity_b;
  built.body(b).angular_velocity = spin_b;
  built.add_marker(a, arm, turn(0, 0.9));
  built.model.markers.back().name = "tip";
  const Vec3 lever = rotate(axes_a, arm), way = place_a + lever - place_b;
  const Vec3 speed = velocity_a + cross(spin_a, lever) - velocity_b, spin = spin_a - spin_b;
  struct Case {
    const char* letters;
    Vec3 in_ground;
  };
  const Case cases[] = {{"d", way}, {"v", speed}, {"w", spin}};
  for (const Case& row : cases) {
    for (const char* c : {"x", "y", "z", "m"}) {
      const std::string f = std::string(row.letters) + c;
      add_variable(built, f + "_ground", f + "(tip, b)");
      add_variable(built, f + "_b", f + "(tip, b, b)");
    }
  }
  add_variable(built, "dx_one", "dx(tip)");
  const TestRun out = run_to_end(built);
  for (const Case& row : cases) {
    const Vec3 in_b = rotate(transposed(axes_b), row.in_ground);
    const char* const names[3] = {"x", "y", "z"};
    for (size_t k = 0; k < 3; ++k) {
      EXPECT_NEAR(out.last(std::string(row.letters) + names[k] + "_ground"), row.in_ground[k], 1e-13);
      EXPECT_NEAR(out.last(std::string(row.letters) + names[k] + "_b"), in_b[k], 1e-13);
    }
    EXPECT_NEAR(out.last(std::string(row.letters) + "m_ground"), norm(row.in_ground), 1e-13);
    EXPECT_NEAR(out.last(std::string(row.letters) + "m_b"), norm(row.in_ground), 1e-13);
  }
  EXPECT_NEAR(out.last("dx_one"), place_a[0] + lever[0], 1e-13);
}

TEST(MarkerQuantities, AnglesAreYawThenPitchThenRoll) {
  constexpr double yaw = 2.1, pitch = -0.8, roll = 0.6;
  TestModel built(0, 1);
  const int base = built.add_body("base", 1, {1, 1, 1}), boat = built.add_body("boat", 1, {1, 1, 1});
  const Rotation tilted = product(turn(0, 0.5), turn(1, 0.9));
  built.body(base).orientation = tilted;
  built.body(boat).orientation = product(tilted, product(turn(2, yaw), product(turn(1, pitch), turn(0, roll))));
  for (const char* name : {"roll", "pitch", "yaw"}) {
    add_variable(built, std::string(name) + "_angle", std::string(name) + "(boat, base)");
  }
  const TestRun out = run_to_end(built);
  EXPECT_NEAR(out.last("roll_angle"), roll, 1e-13);
  EXPECT_NEAR(out.last("pitch_angle"), pitch, 1e-13);
  EXPECT_NEAR(out.last("yaw_angle"), yaw, 1e-13);
}

std::string fault_of(const TestModel& built) {
  const Script script([](const HookCall& call) { call.result[0] = std::nan(""); });
  const TestRun out = run(built);
  EXPECT_EQ(out.summary.outcome, RunOutcome::failed);
  return out.summary.message;
}

TEST(Faults, OfVariablesAndEquationsNameThemAndTheTime) {
  TestModel variable = sled_model(1, 0.1);
  add_variable(variable, "depth", "ln(dx(sled))");
  EXPECT_EQ(fault_of(variable), "variable depth at time 0: the expression \"ln(dx(sled))\" has no finite value");
  TestModel equation = sled_model(1, 0.1);
  add_equation(equation, "level", 1, "1/level");
  EXPECT_EQ(fault_of(equation), "equation level at time 0: the expression \"1/level\" has no finite value");
  TestModel element = sled_model(1, 0.1);
  element.add_element("rate", "scripted", ElementKind::evaluated, {}, 1);
  add_equation(element, "level", 1, "0").element = 0;
  EXPECT_EQ(fault_of(element), "equation level at time 0: result 0 of element rate is nan, no finite number");
}

TEST(Faults, OfEquationsAndSplinesThatCannotBeBuiltNameThem) {
  TestModel order = sled_model(1, 0.1);
  add_equation(order, "level", 3, "0");
  EXPECT_NE(fault_of(order).find("equation level: the order 3"), std::string::npos) << fault_of(order);
  TestModel element = sled_model(1, 0.1);
  element.add_element("rate", "scripted", ElementKind::report, {}, 1);
  add_equation(element, "level", 1, "0").element = 0;
  EXPECT_EQ(fault_of(element),
            "test:1:1: equation 'level': its right-hand side must come from an element of kind \"evaluated\"");
  TestModel start = sled_model(1, 0.1);
  add_equation(start, "level", 1, "0", std::nan(""));
  EXPECT_NE(fault_of(start).find("equation level, start: nan"), std::string::npos) << fault_of(start);
  TestModel spline = sled_model(1, 0.1);
  spline.model.splines.push_back({1, "pull", {0}, {0}, {"test", 8, 2}});
  EXPECT_EQ(fault_of(spline), "test:8:2: spline 'pull': 1 point(s); a curve needs two or more");
}

}  // namespace
