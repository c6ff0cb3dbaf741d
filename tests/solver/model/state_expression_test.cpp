#include "solver/model/state_expression.h"

#include <gtest/gtest.h>

#include <cmath>

#include "solver/model/check_expressions.h"
#include "tests/solver/test_model.h"

namespace qvslv {
namespace {

/// Numbers that tell what was asked for.
class NumberedReader : public StateReader {
public:
  double time() const override { return 0.5; }
  double variable(int index) const override { return 100 + index; }
  double equation(int index, int derivative) const override { return 200 + 10 * index + derivative; }
  double quantity(const MarkerQuantity& wanted) const override {
    return 1e6 * static_cast<double>(wanted.kind) + 1e5 * wanted.component + 1e4 * (wanted.measured + 1) +
           1e3 * (wanted.reference + 1) + 1e2 * (wanted.axes + 1);
  }
};

/// Variables speed, gain and front-gap, equations slip and tilt, splines pull and v, bodies wheel and left-arm, marker
/// hook. Markers: 0 ground, 1 wheel, 2 left-arm, 3 hook.
Model named_model() {
  TestModel built(1, 1);
  built.add_body("wheel", 1, {1, 1, 1});
  built.add_body("left-arm", 1, {1, 1, 1});
  built.add_marker(0, {0, 0, 0});
  built.model.markers.back().name = "hook";
  int id = 0;
  for (const char* name : {"speed", "gain", "front-gap"}) built.model.variables.push_back({++id, name, {}, {}});
  for (const char* name : {"slip", "tilt"}) {
    built.model.equations.emplace_back();
    built.model.equations.back().name = name;
  }
  built.model.splines.push_back({1, "pull", {0, 1}, {0, 10}, {}});
  built.model.splines.push_back({2, "v", {0, 1}, {7, 8}, {}});
  return built.model;
}

struct Scene {
  Model model = named_model();
  std::vector<AkimaSpline> splines = make_splines(model);
  ExpressionScope scope(size_t variables = 3) const { return {model, splines, variables}; }

  double value(const std::string& text) const { return StateExpression(expression(text), scope())(NumberedReader()); }
  std::string complaint(const Expression& faulty, size_t variables = 3) const {
    try {
      const StateExpression compiled(faulty, scope(variables));
    } catch (const ModelError& error) {
      return error.what();
    }
    return "accepted";
  }
};

TEST(StateExpression, ReadsVariablesEquationsAndTheirDerivativesByName) {
  const Scene scene;
  struct Case {
    const char* text;
    double expected;
  };
  for (const Case& row :
       {Case{"speed", 100}, Case{"gain", 101}, Case{"slip", 200}, Case{"tilt", 210}, Case{"dif1(slip)", 201},
        Case{"dif2( tilt )", 212}, Case{"2*speed + t - slip", 0.5}, Case{"max(speed, gain)", 101},
        Case{"t < 1 ? gain : speed", 101}, Case{"1e2 + 1.5E+1*speed", 1600}, Case{"speed == 100", 1}}) {
    EXPECT_DOUBLE_EQ(scene.value(row.text), row.expected) << row.text;
  }
}

TEST(StateExpression, AsksForTheQuantityThatACallNames) {
  const Scene scene;
  struct Case {
    const char* text;
    double expected;  // kind, component, measured, reference, axes as NumberedReader puts them together
  };
  for (const Case& row :
       {Case{"dx(wheel)", 20000}, Case{"dy(hook, wheel)", 142000}, Case{"dz(hook,wheel,ground)", 242100},
        Case{"dm(hook)", 340000}, Case{"vx(wheel)", 1020000}, Case{"vm ( wheel , ground )", 1321000},
        Case{"wz(wheel, hook, hook)", 2224400}, Case{"roll(wheel)", 3020000}, Case{"pitch(hook, wheel)", 3142000},
        Case{"yaw(wheel)", 3220000}, Case{"dx(wheel) - dx(wheel)", 0}, Case{"-vx(wheel) + 1", -1019999}}) {
    EXPECT_DOUBLE_EQ(scene.value(row.text), row.expected) << row.text;
  }
}

TEST(StateExpression, AsksSplinesAtAnyExpression) {
  const Scene scene;
  EXPECT_DOUBLE_EQ(scene.value("spline(pull, 0.25)"), 2.5);
  EXPECT_DOUBLE_EQ(scene.value("spline(pull, t + (speed - 100))"), 5);
  EXPECT_DOUBLE_EQ(scene.value("spline( v , spline(pull, 0.1)) + spline(v, 0)"), 8 + 7) << "one inside another";
}

TEST(StateExpression, AParameterMayHaveTheNameOfAFunction) {
  const Scene scene;
  Expression e = expression("dx + dx(wheel)");
  e.parameters = std::make_shared<std::map<std::string, double>>(std::map<std::string, double>{{"dx", 2.5}});
  EXPECT_DOUBLE_EQ(StateExpression(e, scene.scope())(NumberedReader()), 20002.5);
}

TEST(StateExpression, TellsWhetherItDependsOnAnything) {
  const Scene scene;
  EXPECT_TRUE(StateExpression(expression("3*pi"), scene.scope()).constant());
  for (const char* text : {"t", "speed", "dif1(slip)", "dx(wheel)"}) {
    EXPECT_FALSE(StateExpression(expression(text), scene.scope()).constant()) << text;
  }
}

TEST(StateExpression, NamesWhatItDoesNotKnowAndWhatIsNear) {
  const Scene scene;
  struct Case {
    const char* text;
    const char* said;
  };
  const Case cases[] = {
      {"2*sped", "'sped' is no variable, equation, parameter or constant; did you mean 'speed'?"},
      {"wheel", "it is a marker or body, of which dx(wheel), vx(wheel) and the like are numbers"},
      {"dx(whel)", "dx needs the name of a marker or body; 'whel' is none, did you mean 'wheel'?"},
      {"dif1(speed)", "dif1 needs the name of an equation; 'speed' is none"},
      {"spline(pul, t)", "'pul' is none, did you mean 'pull'?"},
      {"ptch(wheel)", "there is no function 'ptch'; did you mean 'pitch'?"},
      {"dx()", "dx takes one to three names"},
      {"roll(wheel, hook, hook)", "roll takes one to two names"},
      {"dif2(slip, tilt)", "dif2 takes one name"},
      {"dx(wheel", "the bracket of dx is not closed"},
      {"spline(pull)", "spline takes two arguments"},
      {"front-gap", "the name 'front-gap' cannot stand in an expression"},
      {"dx(left-arm)", "the name 'left-arm' cannot stand in an expression"},
      {"#0", "the character '#' has no meaning"},
      {"speed = 3", "nothing can be assigned to"},
      {"1, 2", "one value is needed, not 2"},
      {"", "Expression is empty"},
  };
  for (const Case& row : cases) {
    const std::string said = scene.complaint({row.text, {"boat.toml", 12, 9}, nullptr});
    EXPECT_EQ(said.rfind("boat.toml:12:9: in the expression \"" + std::string(row.text) + "\": ", 0), 0u) << said;
    EXPECT_NE(said.find(row.said), std::string::npos) << said;
  }
}

TEST(StateExpression, ComplaintsOfTheParserCountAndNameInTheAuthorsText) {
  const Scene scene;
  const std::string said = scene.complaint(expression("dx(wheel) + 2 speed"));
  EXPECT_NE(said.find("\"speed\""), std::string::npos) << said;
  EXPECT_NE(said.find("position 14"), std::string::npos) << said;
  EXPECT_EQ(said.find('#'), std::string::npos) << said;
}

TEST(StateExpression, AVariableReadsOnlyThoseBeforeIt) {
  const Scene scene;
  EXPECT_EQ(scene.complaint(expression("speed"), 1), "accepted");
  EXPECT_NE(scene.complaint(expression("speed + gain"), 1).find("reads only those that stand before it"),
            std::string::npos);
}

TEST(StateExpression, ANameThatMeansTwoThingsIsRefused) {
  Scene scene;
  Expression e = expression("speed");
  e.parameters = std::make_shared<std::map<std::string, double>>(std::map<std::string, double>{{"speed", 2.5}});
  EXPECT_NE(scene.complaint(e).find("'speed' means several things"), std::string::npos) << scene.complaint(e);
}

TEST(CheckExpressions, FindsAMistakeWhereverItStands) {
  const Expression faulty = {"nonsense", {"boat.toml", 3, 4}, nullptr};
  const auto found = [&](auto&& spoil) {
    TestModel built(1, 1);
    const int body = built.add_body("boat", 1, {1, 1, 1});
    built.add_joint(JointType::slider, 0, built.add_marker(body, {0, 0, 0}));
    built.add_force(1, {"0", "0", "0"});
    check_expressions(built.model);  // sound so far
    spoil(built.model);
    try {
      check_expressions(built.model);
    } catch (const ModelError& error) {
      return error.at.line == 3 && error.at.column == 4;
    }
    return false;
  };
  EXPECT_TRUE(found([&](Model& model) { model.variables.push_back({1, "a", faulty, {}}); }));
  EXPECT_TRUE(found([&](Model& model) {
    model.equations.emplace_back();
    model.equations.back().right_side = faulty;
  }));
  EXPECT_TRUE(found([&](Model& model) { model.forces[0].force[2] = faulty; }));
  EXPECT_TRUE(found([&](Model& model) { model.forces[0].torque[0] = faulty; }));
  EXPECT_TRUE(found([&](Model& model) { model.joints[0].motions.push_back({0, MotionLevel::position, faulty}); }));
  EXPECT_TRUE(found([&](Model& model) { model.splines.push_back({1, "s", {0, 0}, {0, 0}, faulty.at}); }));
}

}  // namespace
}  // namespace qvslv
