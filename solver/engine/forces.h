#pragma once

#include <array>
#include <vector>

#include "solver/engine/element_calls.h"
#include "solver/engine/load_table.h"
#include "solver/engine/multibody.h"
#include "solver/engine/readings.h"
#include "solver/engine/right_sides.h"
#include "solver/engine/time_spent.h"
#include "solver/model/fault.h"
#include "solver/model/state_expression.h"

namespace qvslv {

/// Adds a load to the forces on bodies. The load acts on the marker's body at the marker's origin; its opposite acts on
/// the reaction marker's body at the same point.
/// @param body_forces  per mobilized body the torque about the body's origin and the force, in ground axes
void apply_load(const Multibody& multibody, const MarkerMotions& markers, const AppliedLoad& load,
                SimTK::Vector_<SimTK::SpatialVec>& body_forces);

/// All forces that act on the bodies besides gravity, and the rates of the equations. An evaluation depends only on the
/// state and on what changes after accepted steps: the history that subroutines keep, and derivatives of equations that
/// are not integrated. So a rejected step leaves no trace.
///
/// An evaluation goes through variables, then applied forces, then force and evaluated elements in file order, then
/// right-hand sides of equations.
class EngineForces : public SimTK::Force::Custom::Implementation {
public:
  /// Throws ModelError for expressions that cannot be compiled. The arguments must outlive this object.
  EngineForces(const Multibody& multibody, ModelReadings& readings, ElementCalls& calls, LoadTable& loads, Fault& fault,
               TimeSpent& time);

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

  void evaluate_loads(const SimTK::State& state) const;
  void apply_loads(SimTK::Vector_<SimTK::SpatialVec>& body_forces) const;
  AppliedLoad calc_applied(size_t index, const SimTK::State& state) const;

  const Multibody& m_multibody;
  ModelReadings& m_readings;
  ElementCalls& m_calls;
  LoadTable& m_loads;
  Fault& m_fault;
  TimeSpent& m_time;
  std::vector<Components> m_applied;
  RightSides m_right_sides;
  mutable long m_evaluations = 0;
};

}  // namespace qvslv
