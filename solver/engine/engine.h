#pragma once

#include <Simbody.h>

#include <memory>
#include <string>

#include "solver/engine/element_calls.h"
#include "solver/engine/forces.h"
#include "solver/engine/load_table.h"
#include "solver/engine/merson_stepper.h"
#include "solver/engine/multibody.h"
#include "solver/engine/plugin.h"
#include "solver/engine/readings.h"
#include "solver/engine/time_spent.h"
#include "solver/model/fault.h"
#include "solver/model/model.h"

namespace qvslv {

/// A model in motion: the multibody system, its elements bound to a plug-in, and the integrator.
///
/// Order of calls to the elements: `start` calls each once with set_up, in file order. The integrator calls forces
/// and evaluated elements with evaluation as often as it likes, also in steps that it rejects. After every accepted
/// step each element is called with converged_step, reports last. These calls may change the forces, so all forces are
/// evaluated again before the next step. Derivatives of equations that are not integrated (EquationStates) are updated
/// right before the calls after a step.
class Engine {
public:
  /// @param report  is told about requests of subroutines that could not be answered; may be empty
  /// @param threads  most threads to call elements on; the results are the same for any number
  /// Throws MultibodyError, ModelError or PluginError. Model, plug-in and time must outlive this object.
  Engine(const Model& model, const Plugin& plugin, TimeSpent& time, ElementCalls::Report report, int threads = 1);
  ~Engine();

  /// Makes the state at time 0, calls the elements for their set-up, and evaluates the derivatives of the equations.
  void start();

  /// Advances by one accepted step, at most to the time `limit`, and makes the calls after it. Returns false if a
  /// fault ended the run; the state is then that of the last good step, or that of the step whose calls failed.
  bool step(double limit);

  const SimTK::State& state() const;
  double time() const { return state().getTime(); }
  double last_step() const { return m_last_step; }  ///< length of the last accepted step [model time]
  long steps() const { return m_steps; }
  long rejected_steps() const;  ///< steps that error control rejected: each began again from an earlier time
  long evaluations() const { return m_forces->evaluations(); }

  const Fault& fault() const { return m_fault; }
  const Multibody& multibody() const { return m_multibody; }
  const ElementCalls& elements() const { return m_calls; }
  const LoadTable& loads() const { return m_loads; }  ///< as they are at the present state
  /// Markers, variables and equations at the present state.
  const ModelReadings& readings() const { return m_readings; }

private:
  void start_motion();
  void make_integrator();
  void advance(double limit);
  void start_equations();
  void call_after_step();
  void refresh();
  void restart();
  bool creeps(double limit);
  void give_up(const std::string& why);

  const Model& m_model;
  TimeSpent& m_time;
  Fault m_fault;
  Multibody m_multibody;
  ModelReadings m_readings;
  LoadTable m_loads;
  ElementCalls m_calls;
  EngineForces* m_forces;  ///< owned by the multibody system
  SimTK::State m_initial;
  std::unique_ptr<MersonStepper> m_stepper;         ///< the error-controlled integrator, or else
  std::unique_ptr<SimTK::Integrator> m_integrator;  ///< one of fixed steps
  double m_last_step = 0;
  int m_smallest_steps = 0;  ///< number of steps of the smallest size in a row
  long m_steps = 0;
};

}  // namespace qvslv
