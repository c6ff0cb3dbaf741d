#pragma once

#include <Simbody.h>

#include <memory>
#include <string>
#include <vector>

#include "solver/engine/element_calls.h"
#include "solver/engine/forces.h"
#include "solver/engine/host.h"
#include "solver/engine/multibody.h"

namespace qvslv {

/// A model in motion: the multibody system, its elements bound to a plug-in, and the integrator.
///
/// Order of calls to the elements: `start` calls each once with set_up, in file order; the integrator calls forces
/// and evaluated elements with evaluation as often as it likes, also in steps that it rejects; after every accepted
/// step each is called with converged_step, reports last. As those calls may change the forces, integration goes on
/// from newly evaluated ones. Derivatives of equations that are no states change right before the calls after a step.
class Engine {
public:
  /// @param report  told about requests of subroutines that could not be answered; may be empty
  /// Throws MultibodyError, ModelError or PluginError. Model and plug-in outlive this.
  Engine(const Model& model, const Plugin& plugin, EngineHost::Report report);
  ~Engine();

  /// State at time 0, the set-up calls, and the derivatives of equations at that state.
  void start();

  /// Advances by one accepted step, at most to `limit`, and makes the calls after it. Returns false when a fault ended
  /// the run; the state then is that of the last step that went well, or the one whose calls failed.
  bool step(double limit);

  const SimTK::State& state() const;
  double time() const { return state().getTime(); }
  double last_step() const { return m_last_step; }
  long steps() const { return m_steps; }
  long rejected_steps() const;  ///< by error control: what followed began again at an earlier time
  long evaluations() const { return m_forces->evaluations(); }

  const Fault& fault() const { return m_fault; }
  const Multibody& multibody() const { return m_multibody; }
  const ElementCalls& elements() const { return m_calls; }
  /// Variables and equations as they are at the present state.
  const ModelReadings& readings() const { return m_readings; }

private:
  void make_integrator();
  void start_equations();
  void call_after_step();
  void restart();
  bool creeps(double limit);
  void give_up(const std::string& why);

  const Model& m_model;
  Fault m_fault;
  Multibody m_multibody;
  ModelReadings m_readings;
  EngineHost m_host;
  ElementCalls m_calls;
  EngineForces* m_forces;  ///< owned by the multibody system
  SimTK::State m_initial;
  std::unique_ptr<SimTK::Integrator> m_integrator;
  double m_last_step = 0;
  int m_smallest_steps = 0;  ///< in a row
  long m_steps = 0;
};

}  // namespace qvslv
