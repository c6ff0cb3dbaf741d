#pragma once

#include <Simbody.h>

#include "solver/model/expression.h"
#include "solver/model/fault.h"

namespace qvslv {

/// First time derivative by fourth-order central differences; exact for quartics but for rounding.
///   f'(t) = [f(t-2h) - 8 f(t-h) + 8 f(t+h) - f(t+2h)] / 12h
double derivative(const CompiledExpression& f, double t, double h);

/// Second time derivative by fourth-order central differences; exact for quintics but for rounding.
///   f''(t) = [-f(t-2h) + 16 f(t-h) - 30 f(t) + 16 f(t+h) - f(t+2h)] / 12h^2
double second_derivative(const CompiledExpression& f, double t, double h);

/// Spacing of the differences [s]: balances h^4 truncation against rounding that grows with 1/h^2, for motions up
/// to some ten cycles per second. A kink in an expression is rounded over twice this time.
constexpr double k_difference_spacing = 1e-3;

/// The motion of a coordinate of one degree of freedom as an expression of time. At position level the speed and the
/// acceleration are its differences; at velocity level the coordinate is integrated.
class PrescribedMotion : public SimTK::Motion::Custom::Implementation {
public:
  /// @param label    what moves, for messages ("joint hinge, coordinate angle")
  /// @param spacing  of the differences, in model time
  /// @param fault    told when the expression has no finite value; outlives this
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
