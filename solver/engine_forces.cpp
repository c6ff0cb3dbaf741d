#include "solver/engine_forces.h"

#include <fmt/format.h>

namespace qvslv {

using SimTK::SpatialVec;

void apply_load(const Multibody& multibody, const SimTK::State& state, const AppliedLoad& load,
                SimTK::Vector_<SpatialVec>& body_forces) {
  if (load.marker == k_none) return;
  const SimTK::Vec3 point = multibody.find_pose(state, load.marker).p();
  const auto add = [&](int marker, double sign) {
    const SimTK::MobilizedBody& body = multibody.marker_body(marker);
    const SimTK::Vec3 arm = point - body.getBodyOriginLocation(state);
    body_forces[body.getMobilizedBodyIndex()] += sign * SpatialVec(load.torque + arm % load.force, load.force);
  };
  add(load.marker, 1.0);
  if (load.reaction != k_none) add(load.reaction, -1.0);
}

namespace {

std::array<CompiledExpression, 3> compile(const std::array<Expression, 3>& components) {
  return {CompiledExpression(components[0]), CompiledExpression(components[1]), CompiledExpression(components[2])};
}

SimTK::Vec3 evaluate(const std::array<CompiledExpression, 3>& components, double time) {
  return SimTK::Vec3(components[0](time), components[1](time), components[2](time));
}

}  // namespace

EngineForces::EngineForces(const Multibody& multibody, ElementCalls& calls, EngineHost& host, Fault& fault)
    : m_multibody(multibody), m_calls(calls), m_host(host), m_fault(fault) {
  for (size_t i = 0; i < calls.size(); ++i) {
    if (calls.is_force(i)) m_force_elements.push_back(i);
  }
  for (const AppliedForce& applied : multibody.model().forces) {
    m_applied.push_back({compile(applied.force), compile(applied.torque)});
  }
  host.loads().assign(m_force_elements.size() + m_applied.size(), AppliedLoad());
}

void EngineForces::calcForce(const SimTK::State& state, SimTK::Vector_<SpatialVec>& body_forces,
                             SimTK::Vector_<SimTK::Vec3>&, SimTK::Vector&) const {
  ++m_evaluations;
  size_t slot = 0;
  for (const size_t element : m_force_elements) {
    m_calls.call(element, CallKind::evaluation, state);
    if (m_fault.raised()) return;
    AppliedLoad& load = m_host.loads()[slot++];
    load = m_calls.find_load(element, state, m_multibody);
    apply_load(m_multibody, state, load, body_forces);
  }
  for (size_t i = 0; i < m_applied.size(); ++i) {
    AppliedLoad& load = m_host.loads()[slot++];
    load = calc_applied(i, state);
    if (m_fault.raised()) return;
    apply_load(m_multibody, state, load, body_forces);
  }
}

AppliedLoad EngineForces::calc_applied(size_t index, const SimTK::State& state) const {
  const AppliedForce& from = m_multibody.model().forces[index];
  const SimTK::Rotation axes = m_multibody.find_axes(state, from.axes);
  const double time = state.getTime();
  const SimTK::Vec3 force = evaluate(m_applied[index].force, time);
  const SimTK::Vec3 torque = evaluate(m_applied[index].torque, time);
  if (!force.isFinite() || !torque.isFinite()) {
    m_fault.raise(RunOutcome::failed,
                  fmt::format("force {} at time {}: an expression has no finite value", from.name, time));
  }
  return {from.marker, from.reaction, axes * force, axes * torque};
}

}  // namespace qvslv
