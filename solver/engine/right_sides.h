#pragma once

#include <optional>
#include <vector>

#include "solver/engine/element_calls.h"
#include "solver/engine/readings.h"

namespace qvslv {

/// The right-hand sides of a model's equations: expressions, or what elements have just returned.
class RightSides {
public:
  /// Throws ModelError for an expression that cannot be compiled. The arguments outlive this.
  RightSides(const Model& model, const ModelReadings& readings);

  /// Sets the rates of all equations' states. Raises a fault for a right-hand side that is not finite; the rates are 0
  /// then and whenever a fault was raised before.
  /// @param calls  elements of kind `evaluated` were called at this state
  void evaluate(const SimTK::State& state, const ElementCalls& calls, Fault& fault) const;

private:
  double calc(size_t equation, const StateReader& here, const ElementCalls& calls, Fault& fault) const;

  const Model& m_model;
  const ModelReadings& m_readings;
  std::vector<std::optional<StateExpression>> m_expressions;  ///< none where an element gives the right-hand side
};

}  // namespace qvslv
