#include "solver/engine/forces.h"

#include <fmt/format.h>

namespace qvslv {

using SimTK::SpatialVec;

void apply_load(const Multibody& multibody, const MarkerMotions& markers, const AppliedLoad& load,
                SimTK::Vector_<SpatialVec>& body_forces) {
  if (load.marker == k_none) return;
  const SimTK::Vec3& point = markers.of(load.marker).position;
  const auto add = [&](int marker, double sign) {
    const SimTK::Vec3 arm = point - markers.of(marker).body_origin;
    body_forces[multibody.marker(marker).body] += sign * SpatialVec(load.torque + arm % load.force, load.force);
  };
  add(load.marker, 1.0);
  if (load.reaction != k_none) add(load.reaction, -1.0);
}

namespace {

std::array<StateExpression, 3> compile(const std::array<Expression, 3>& components, const ExpressionScope& scope) {
  return {StateExpression(components[0], scope), StateExpression(components[1], scope),
          StateExpression(components[2], scope)};
}

SimTK::Vec3 evaluate(const std::array<StateExpression, 3>& components, const StateReader& here) {
  return SimTK::Vec3(components[0](here), components[1](here), components[2](here));
}

}  // namespace

EngineForces::EngineForces(const Multibody& multibody, ModelReadings& readings, ElementCalls& calls, LoadTable& loads,
                           Fault& fault, TimeSpent& time)
    : m_multibody(multibody),
      m_readings(readings),
      m_calls(calls),
      m_loads(loads),
      m_fault(fault),
      m_time(time),
      m_right_sides(multibody.model(), readings) {
  for (const AppliedForce& applied : multibody.model().forces) {
    m_applied.push_back({compile(applied.force, readings.scope()), compile(applied.torque, readings.scope())});
  }
}

void EngineForces::realizeTopology(SimTK::State& state) const { m_readings.equations().allocate(state); }

void EngineForces::calcForce(const SimTK::State& state, SimTK::Vector_<SpatialVec>& body_forces,
                             SimTK::Vector_<SimTK::Vec3>&, SimTK::Vector&) const {
  ++m_evaluations;
  const TimeSpent::During here(m_time, Work::expressions);
  m_readings.refresh(state);
  evaluate_loads(state);
  if (!m_fault.raised()) apply_loads(body_forces);
  m_right_sides.evaluate(state, m_calls, m_fault);
}

/// Elements may ask for applied forces, so these are evaluated before any element is called.
void EngineForces::evaluate_loads(const SimTK::State& state) const {
  for (size_t i = 0; i < m_applied.size() && !m_fault.raised(); ++i) m_loads.of_force(i) = calc_applied(i, state);
  m_calls.evaluate(state);
}

/// Elements first, in file order, then applied forces: sums depend on their order.
void EngineForces::apply_loads(SimTK::Vector_<SpatialVec>& body_forces) const {
  for (size_t i = 0; i < m_calls.size(); ++i)
    if (m_calls.is_force(i)) apply_load(m_multibody, m_readings.markers(), m_loads.of_element(i), body_forces);
  for (size_t i = 0; i < m_applied.size(); ++i)
    apply_load(m_multibody, m_readings.markers(), m_loads.of_force(i), body_forces);
}

AppliedLoad EngineForces::calc_applied(size_t index, const SimTK::State& state) const {
  const AppliedForce& from = m_multibody.model().forces[index];
  const SimTK::Rotation& axes = m_readings.markers().of(from.axes).axes;
  const ModelReadings::At here(m_readings, state);
  const SimTK::Vec3 force = evaluate(m_applied[index].force, here);
  const SimTK::Vec3 torque = evaluate(m_applied[index].torque, here);
  if (!force.isFinite() || !torque.isFinite()) {
    m_fault.raise(RunOutcome::failed,
                  fmt::format("force {} at time {}: an expression has no finite value", from.name, state.getTime()));
  }
  return {from.marker, from.reaction, axes * force, axes * torque};
}

}  // namespace qvslv
