#include "solver/engine/prescribed_motion.h"

#include <fmt/format.h>

#include <cmath>
#include <string>
#include <utility>

namespace qvslv {

double derivative(const CompiledExpression& f, double t, double h) {
  return (f(t - 2 * h) - 8 * f(t - h) + 8 * f(t + h) - f(t + 2 * h)) / (12 * h);
}

double second_derivative(const CompiledExpression& f, double t, double h) {
  return (-f(t - 2 * h) + 16 * f(t - h) - 30 * f(t) + 16 * f(t + h) - f(t + 2 * h)) / (12 * h * h);
}

PrescribedMotion::PrescribedMotion(const Motion& motion, std::string label, double spacing, Fault& fault)
    : m_level(motion.level),
      m_value(motion.value),
      m_label(std::move(label)),
      m_text(motion.value.text),
      m_spacing(spacing),
      m_fault(fault) {}

SimTK::Motion::Level PrescribedMotion::getLevel(const SimTK::State&) const {
  return m_level == MotionLevel::position ? SimTK::Motion::Position : SimTK::Motion::Velocity;
}

void PrescribedMotion::calcPrescribedPosition(const SimTK::State& state, int, double* q) const {
  *q = checked(m_value(state.getTime()), state.getTime());
}

void PrescribedMotion::calcPrescribedPositionDot(const SimTK::State& state, int, double* qdot) const {
  *qdot = checked(derivative(m_value, state.getTime(), m_spacing), state.getTime());
}

void PrescribedMotion::calcPrescribedPositionDotDot(const SimTK::State& state, int, double* qdotdot) const {
  *qdotdot = checked(second_derivative(m_value, state.getTime(), m_spacing), state.getTime());
}

void PrescribedMotion::calcPrescribedVelocity(const SimTK::State& state, int, double* u) const {
  *u = checked(m_value(state.getTime()), state.getTime());
}

void PrescribedMotion::calcPrescribedVelocityDot(const SimTK::State& state, int, double* udot) const {
  *udot = checked(derivative(m_value, state.getTime(), m_spacing), state.getTime());
}

double PrescribedMotion::checked(double value, double time) const {
  if (std::isfinite(value)) return value;
  m_fault.raise(RunOutcome::failed,
                fmt::format("motion of {}: the expression \"{}\" or its time derivative has no finite value at time {} "
                            "(derivatives look {} ahead and back)",
                            m_label, m_text, time, 2 * m_spacing));
  return 0;
}

}  // namespace qvslv
