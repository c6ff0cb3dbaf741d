#pragma once

#include <array>

#include "solver/engine/right_sides.h"

namespace qvslv {

/// Adds a load to the forces on bodies: at the marker's origin on the marker's body, and the opposite, at the same
/// point, on the reaction's body.
/// @param body_forces  one per mobilized body, torque about the body's origin and force, in ground axes
void apply_load(const Multibody& multibody, const SimTK::State& state, const AppliedLoad& load,
                SimTK::Vector_<SimTK::SpatialVec>& body_forces);

/// All forces from outside, and the rates of the equations, in one place. An evaluation depends on the state and on
/// what changes after accepted steps only: what the subroutines keep, and derivatives of equations that are no states.
///
/// Order: variables; applied forces; elements that are forces or evaluated, in file order; right-hand sides.
class EngineForces : public SimTK::Force::Custom::Implementation {
public:
  /// Throws ModelError for expressions that cannot be compiled. The arguments outlive this.
  EngineForces(const Multibody& multibody, ModelReadings& readings, ElementCalls& calls, EngineHost& host,
               Fault& fault);

  void realizeTopology(SimTK::State& state) const override;
  void calcForce(const SimTK::State& state, SimTK::Vector_<SimTK::SpatialVec>& body_forces,
                 SimTK::Vector_<SimTK::Vec3>& particle_forces, SimTK::Vector& mobility_forces) const override;
  double calcPotentialEnergy(const SimTK::State&) const override { return 0; }

  long evaluations() const { return m_evaluations; }

private:
  struct Components {
    std::array<StateExpression, 3> force;
    std::array<StateExpression, 3> torque;
  };

  void add_forces(const SimTK::State& state, SimTK::Vector_<SimTK::SpatialVec>& body_forces) const;
  AppliedLoad calc_applied(size_t index, const SimTK::State& state) const;

  const Multibody& m_multibody;
  ModelReadings& m_readings;
  ElementCalls& m_calls;
  EngineHost& m_host;
  Fault& m_fault;
  std::vector<size_t> m_evaluated;  ///< elements
  std::vector<Components> m_applied;
  RightSides m_right_sides;
  mutable long m_evaluations = 0;
};

}  // namespace qvslv
