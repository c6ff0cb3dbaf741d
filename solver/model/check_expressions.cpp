#include "solver/model/check_expressions.h"

#include <vector>

#include "solver/model/akima.h"
#include "solver/model/expression.h"
#include "solver/model/expression_scope.h"
#include "solver/model/state_expression.h"

namespace qvslv {

void check_expressions(const Model& model) {
  const std::vector<AkimaSpline> splines = make_splines(model);
  compile_variables(model, splines);
  const ExpressionScope scope = {model, splines, model.variables.size()};
  for (const Equation& equation : model.equations) {
    if (equation.element == k_none) StateExpression(equation.right_side, scope);
  }
  for (const AppliedForce& force : model.forces) {
    for (const Expression& component : force.force) StateExpression(component, scope);
    for (const Expression& component : force.torque) StateExpression(component, scope);
  }
  for (const Joint& joint : model.joints) {
    for (const Motion& motion : joint.motions) CompiledExpression(motion.value);
  }
}

}  // namespace qvslv
