#pragma once

#include <optional>
#include <vector>

#include "solver/engine/element_calls.h"
#include "solver/engine/readings.h"
#include "solver/model/fault.h"
#include "solver/model/model.h"
#include "solver/model/state_expression.h"

namespace qvslv {

/// The right-hand sides of a model's equations: expressions, or result 0 of elements of kind `evaluated`.
class RightSides {
public:
  /// Throws ModelError for an expression that cannot be compiled. The arguments must outlive this object.
  RightSides(const Model& model, const ModelReadings& readings);

  /// Sets the rates of the states of all equations. Raises a fault for a right-hand side that is not finite; after any
  /// fault the rates are 0.
  /// @param calls  its elements of kind `evaluated` have been called at this state
  void evaluate(const SimTK::State& state, const ElementCalls& calls, Fault& fault) const;

private:
  double calc(size_t equation, const StateReader& here, const ElementCalls& calls, Fault& fault) const;

  const Model& m_model;
  const ModelReadings& m_readings;
  std::vector<std::optional<StateExpression>> m_expressions;  ///< empty if an element gives the right-hand side
};

}  // namespace qvslv
