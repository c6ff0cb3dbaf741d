#pragma once

#include <array>

#include "solver/element_calls.h"
#include "solver/expression.h"

namespace qvslv {

/// Adds a load to the forces on bodies: at the marker's origin on the marker's body, and the opposite, at the same
/// point, on the reaction's body.
/// @param body_forces  one per mobilized body, torque about the body's origin and force, in ground axes
void apply_load(const Multibody& multibody, const SimTK::State& state, const AppliedLoad& load,
                SimTK::Vector_<SimTK::SpatialVec>& body_forces);

/// All forces from outside in one place: elements in file order, then applied forces. An evaluation depends on the
/// state and on what the subroutines keep, which changes in their calls after accepted steps only.
class EngineForces : public SimTK::Force::Custom::Implementation {
public:
  /// Throws ModelError for an applied force whose expressions cannot be compiled. The arguments outlive this.
  EngineForces(const Multibody& multibody, ElementCalls& calls, EngineHost& host, Fault& fault);

  void calcForce(const SimTK::State& state, SimTK::Vector_<SimTK::SpatialVec>& body_forces,
                 SimTK::Vector_<SimTK::Vec3>& particle_forces, SimTK::Vector& mobility_forces) const override;
  double calcPotentialEnergy(const SimTK::State&) const override { return 0; }

  long evaluations() const { return m_evaluations; }

private:
  struct Components {
    std::array<CompiledExpression, 3> force;
    std::array<CompiledExpression, 3> torque;
  };

  AppliedLoad calc_applied(size_t index, const SimTK::State& state) const;

  const Multibody& m_multibody;
  ElementCalls& m_calls;
  EngineHost& m_host;
  Fault& m_fault;
  std::vector<size_t> m_force_elements;
  std::vector<Components> m_applied;
  mutable long m_evaluations = 0;
};

}  // namespace qvslv
