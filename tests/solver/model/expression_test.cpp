#include "solver/model/expression.h"

#include <gtest/gtest.h>

#include <cmath>

#include "qvbrisk/services.h"
#include "tests/solver/test_model.h"

namespace qvslv {
namespace {

double value(const std::string& text, double time) { return CompiledExpression(expression(text))(time); }

std::string complaint(const Expression& faulty) {
  try {
    const CompiledExpression compiled(faulty);
  } catch (const ModelError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(CompiledExpression, GivesTheValueOfItsFormulaAtAnyTime) {
  EXPECT_DOUBLE_EQ(value("2*t + 1", 3.0), 7.0);
  EXPECT_DOUBLE_EQ(value("sin(pi*t)", 0.5), 1.0);
  EXPECT_DOUBLE_EQ(value("t < 1 ? 5 : t^2", 3.0), 9.0);
}

TEST(CompiledExpression, StepIsTheServicesCubicStep) {
  for (const double t : {-1.0, 0.5, 0.7, 1.1, 1.499, 1.5, 4.0}) {
    double expected = 0;
    int err = 0;
    STEP(nullptr, &expected, &err, t, 0.5, -2.0, 1.5, 3.0);
    EXPECT_DOUBLE_EQ(value("step(t, 0.5, -2, 1.5, 3)", t), expected) << "at " << t;
  }
}

TEST(CompiledExpression, KnowsTheModelsParameters) {
  Expression e = expression("speed * t");
  e.parameters = std::make_shared<std::map<std::string, double>>(std::map<std::string, double>{{"speed", 2.5}});
  EXPECT_DOUBLE_EQ(CompiledExpression(e)(4.0), 10.0);
}

TEST(CompiledExpression, TellsWhetherItDependsOnTime) {
  EXPECT_TRUE(CompiledExpression(expression("3*pi")).constant());
  EXPECT_FALSE(CompiledExpression(expression("3*t")).constant());
}

TEST(CompiledExpression, HasNoValueOutsideItsDomain) { EXPECT_FALSE(std::isfinite(value("sqrt(t)", -1.0))); }

TEST(CompiledExpression, NamesThePlaceAndTheTokenOfAMistake) {
  const std::string text = complaint({"2*t + spede", {"car.toml", 7, 9}, nullptr});
  EXPECT_EQ(text.rfind("car.toml:7:9: ", 0), 0u) << text;
  EXPECT_NE(text.find("spede"), std::string::npos) << text;
}

TEST(CompiledExpression, RefusesTextsThatAreNoSingleValue) {
  for (const char* text : {"", "2 +", "(t", "1, 2", "t = 3", "sin()"}) {
    EXPECT_NE(complaint(expression(text)), "accepted") << "\"" << text << "\"";
  }
}

TEST(CompiledExpression, ComparisonIsNoAssignment) { EXPECT_DOUBLE_EQ(value("t == 2", 2.0), 1.0); }

}  // namespace
}  // namespace qvslv
