#pragma once

#include <Simbody.h>

#include <string>

#include "solver/model/expression.h"
#include "solver/model/fault.h"
#include "solver/model/model.h"

namespace qvslv {

/// First time derivative by central differences of fourth order; exact for quartics but for rounding.
///   f'(t) = [f(t-2h) - 8 f(t-h) + 8 f(t+h) - f(t+2h)] / 12h
double derivative(const CompiledExpression& f, double t, double h);

/// Second time derivative by central differences of fourth order; exact for quintics but for rounding.
///   f''(t) = [-f(t-2h) + 16 f(t-h) - 30 f(t) + 16 f(t+h) - f(t+2h)] / 12h^2
double second_derivative(const CompiledExpression& f, double t, double h);

/// Spacing h of the differences [s]. It balances truncation, which grows with h^4, against rounding, which grows with
/// 1/h^2, for motions up to some ten cycles per second. A kink in an expression is rounded over 2h on either side.
constexpr double k_difference_spacing = 1e-3;

/// The motion of a mobilizer of one degree of freedom as an expression of time [radian or model length; at velocity
/// level per model time]. At position level speed and acceleration are its finite differences; at velocity level the
/// coordinate is integrated.
class PrescribedMotion : public SimTK::Motion::Custom::Implementation {
public:
  /// @param label    what moves, for messages ("joint hinge, coordinate angle")
  /// @param spacing  h of the differences [model time]
  /// @param fault    is told if the expression has no finite value; must outlive this object
  PrescribedMotion(const Motion& motion, std::string label, double spacing, Fault& fault);

  SimTK::Motion::Level getLevel(const SimTK::State&) const override;
  void calcPrescribedPosition(const SimTK::State& state, int count, double* q) const override;
  void calcPrescribedPositionDot(const SimTK::State& state, int count, double* qdot) const override;
  void calcPrescribedPositionDotDot(const SimTK::State& state, int count, double* qdotdot) const override;
  void calcPrescribedVelocity(const SimTK::State& state, int count, double* u) const override;
  void calcPrescribedVelocityDot(const SimTK::State& state, int count, double* udot) const override;

private:
  double checked(double value, double time) const;

  MotionLevel m_level;
  CompiledExpression m_value;
  std::string m_label;
  std::string m_text;
  double m_spacing;
  Fault& m_fault;
};

}  // namespace qvslv
