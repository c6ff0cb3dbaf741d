#pragma once

#include <vector>

#include "solver/engine/equations.h"
#include "solver/engine/marker_motions.h"
#include "solver/engine/marker_relation.h"
#include "solver/engine/multibody.h"
#include "solver/model/akima.h"
#include "solver/model/expression_scope.h"
#include "solver/model/fault.h"
#include "solver/model/marker_quantity.h"
#include "solver/model/state_expression.h"

namespace qvslv {

/// What expressions and services read: markers, and the model's variables, equations and splines.
class ModelReadings {
public:
  /// Throws ModelError for an expression or a spline that is none. The arguments must outlive this object.
  ModelReadings(const Multibody& multibody, Fault& fault);
  ModelReadings(const ModelReadings&) = delete;
  ModelReadings& operator=(const ModelReadings&) = delete;

  /// Lets expressions read the state of the last `refresh`. Made for one evaluation and not kept.
  class At : public StateReader {
  public:
    At(const ModelReadings& readings, const SimTK::State& state) : m_readings(readings), m_state(state) {}
    double time() const override { return m_state.getTime(); }
    double variable(int index) const override { return m_readings.variable(index); }
    double equation(int index, int derivative) const override {
      return m_readings.m_equations.value(m_state, static_cast<size_t>(index), derivative);
    }
    double quantity(const MarkerQuantity& wanted) const override { return find_quantity(m_readings.m_markers, wanted); }

  private:
    const ModelReadings& m_readings;
    const SimTK::State& m_state;
  };

  /// Takes a state: markers are those of it from now on. Evaluates all variables in their order. Raises a fault for a
  /// variable without a finite value.
  /// @param state  realized to Velocity or further
  void refresh(const SimTK::State& state);

  /// Value of a variable at the state of the last `refresh`.
  double variable(int index) const { return m_values[static_cast<size_t>(index)]; }

  const MarkerMotions& markers() const { return m_markers; }
  const std::vector<AkimaSpline>& splines() const { return m_splines; }
  const EquationStates& equations() const { return m_equations; }
  EquationStates& equations() { return m_equations; }

  /// What expressions outside of variables may read: all variables.
  ExpressionScope scope() const { return {m_multibody.model(), m_splines, m_multibody.model().variables.size()}; }

private:
  const Multibody& m_multibody;
  Fault& m_fault;
  MarkerMotions m_markers;
  std::vector<AkimaSpline> m_splines;
  EquationStates m_equations;
  std::vector<StateExpression> m_variables;
  std::vector<double> m_values;
};

}  // namespace qvslv
