#include "solver/engine/right_sides.h"

#include <fmt/format.h>

#include <cmath>
#include <string>

namespace qvslv {

RightSides::RightSides(const Model& model, const ModelReadings& readings) : m_model(model), m_readings(readings) {
  for (const Equation& equation : model.equations) {
    m_expressions.emplace_back();
    if (equation.element == k_none) m_expressions.back().emplace(equation.right_side, readings.scope());
  }
}

void RightSides::evaluate(const SimTK::State& state, const ElementCalls& calls, Fault& fault) const {
  const ModelReadings::At here(m_readings, state);
  for (size_t i = 0; i < m_expressions.size(); ++i) {
    m_readings.equations().set_rates(state, i, calc(i, here, calls, fault));
  }
}

double RightSides::calc(size_t equation, const StateReader& here, const ElementCalls& calls, Fault& fault) const {
  if (fault.raised()) return 0;
  const Equation& from = m_model.equations[equation];
  const std::optional<StateExpression>& expression = m_expressions[equation];
  const double value = expression ? (*expression)(here) : calls.result(static_cast<size_t>(from.element))[0];
  if (std::isfinite(value)) return value;
  const std::string source = expression ? fmt::format("the expression \"{}\" has no finite value", from.right_side.text)
                                        : fmt::format("result 0 of element {} is {}, no finite number",
                                                      m_model.elements[static_cast<size_t>(from.element)].name, value);
  fault.raise(RunOutcome::failed, fmt::format("equation {} at time {}: {}", from.name, here.time(), source));
  return 0;
}

}  // namespace qvslv
