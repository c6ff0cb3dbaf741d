#include <gtest/gtest.h>

#include "solver/model/state_expression.h"
#include "tests/support/replaced_new.h"

namespace {

long s_allocations = 0;

}  // namespace

void qvtest::admit_allocation(std::size_t) { ++s_allocations; }

namespace qvslv {
namespace {

class MovingReader : public StateReader {
public:
  double time() const override { return now; }
  double variable(int) const override { return 2 * now; }
  double equation(int, int derivative) const override { return now + derivative; }
  double quantity(const MarkerQuantity&) const override { return -now; }
  double now = 0;
};

TEST(StateExpression, IsEvaluatedWithoutAnAllocation) {
  Model model;
  model.markers.emplace_back();
  model.markers.back().name = "boat";
  model.variables.push_back({1, "command", {}, {}});
  model.equations.emplace_back();
  model.equations.back().name = "error";
  model.splines.push_back({1, "limit", {0, 1, 2}, {0, 1, 4}, {}});
  const std::vector<AkimaSpline> splines = make_splines(model);
  Expression text;
  text.text =
      "t < 0.5 ? min(command, spline(limit, t)) : step(t, 0, 0, 1, 1) * vx(boat) - dif1(error)^2 + max(1, 2, t)";
  const StateExpression compiled(text, {model, splines, 1});
  MovingReader here;
  const long before = s_allocations;
  double sum = 0;
  for (int k = 0; k < 1000; ++k) {
    here.now = 0.001 * k;
    sum += compiled(here);
  }
  EXPECT_EQ(s_allocations, before);
  EXPECT_GT(before, 0) << "nothing is counted";
  EXPECT_TRUE(sum == sum);
}

}  // namespace
}  // namespace qvslv
