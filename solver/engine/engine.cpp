#include "solver/engine/engine.h"

#include <fmt/format.h>

#include <exception>
#include <utility>

#include "solver/engine/lost_numbers.h"

namespace qvslv {

namespace {

/// The smallest step, as a share of the run's time. The integrator accepts a step of this size whatever its error, and
/// so gets past a jump of a force. A force that no step can follow keeps it at this size for ever; after this many such
/// steps in a row the run gives up.
constexpr double k_smallest_step = 1e-11;
constexpr int k_most_smallest_steps = 200;

}  // namespace

Engine::Engine(const Model& model, const Plugin& plugin, TimeSpent& time, ElementCalls::Report report, int threads)
    : m_model(model),
      m_time(time),
      m_multibody(model, m_fault),
      m_readings(m_multibody, m_fault),
      m_loads(model),
      m_calls(model, plugin, m_readings, m_loads, m_fault, time, std::move(report), threads),
      m_forces(new EngineForces(m_multibody, m_readings, m_calls, m_loads, m_fault, time)) {
  SimTK::Force::Custom(m_multibody.forces(), m_forces);
}

Engine::~Engine() = default;

void Engine::start() {
  try {
    start_motion();
  } catch (const SimTK::Exception::Base& error) {
    m_fault.raise(RunOutcome::failed, engine_reason(error, m_multibody, m_initial));
  }
}

void Engine::start_motion() {
  m_initial = m_multibody.make_state();
  m_readings.refresh(m_initial);
  m_calls.set_up(m_initial);
  start_equations();
  if (m_fault.raised()) return;
  make_integrator();
}

/// Derivatives that are not integrated come from an evaluation of their own. Forces may read them, so what that
/// evaluation computed is thrown away and the forces are evaluated again.
void Engine::start_equations() {
  if (m_fault.raised() || m_readings.equations().size() == 0) return;
  m_multibody.system().realize(m_initial, SimTK::Stage::Dynamics);
  m_readings.equations().accept(m_initial);
  m_initial.invalidateAllCacheAtOrAbove(SimTK::Stage::Dynamics);
}

void Engine::make_integrator() {
  const Simulation& simulation = m_model.simulation;
  if (simulation.integrator == Integrator::runge_kutta_merson) {
    m_stepper = std::make_unique<MersonStepper>(m_multibody, m_initial, k_smallest_step * simulation.end_time, m_fault);
    return;
  }
  if (simulation.integrator == Integrator::semi_explicit_euler) {
    m_integrator = std::make_unique<SimTK::SemiExplicitEulerIntegrator>(m_multibody.system(), simulation.step);
  } else {
    m_integrator = std::make_unique<SimTK::RungeKuttaMersonIntegrator>(m_multibody.system());
    m_integrator->setFixedStepSize(simulation.step);
  }
  m_integrator->setReturnEveryInternalStep(true);
  m_integrator->setAllowInterpolation(false);
  m_integrator->initialize(m_initial);
}

const SimTK::State& Engine::state() const {
  if (m_stepper) return m_stepper->state();
  return m_integrator ? m_integrator->getAdvancedState() : m_initial;
}

long Engine::rejected_steps() const { return m_stepper ? m_stepper->rejected() : 0; }

void Engine::advance(double limit) {
  if (m_stepper) return m_stepper->step(limit);
  const double before = time();
  // stepTo also returns without an advance: at the start of an interval, and if the limit is reached already.
  while (!(time() > before) && !m_fault.raised()) m_integrator->stepTo(limit, limit);
}

bool Engine::step(double limit) {
  if (m_fault.raised()) return false;
  const TimeSpent::During here(m_time, Work::engine);
  const double before = time();
  try {
    advance(limit);
  } catch (const std::exception& error) {
    const std::string text = error.what();
    const bool lost = text.find("NaN") != std::string::npos;
    if (text.find("Integrator step failed") != std::string::npos && !lost) {
      give_up("every attempt failed");
    } else {
      m_fault.raise(RunOutcome::failed, engine_reason(error, m_multibody, state()));
    }
  }
  if (m_fault.raised()) return false;
  m_last_step = time() - before;
  ++m_steps;
  if (creeps(limit)) give_up("the error stays too large at the smallest step");
  if (m_fault.raised()) return false;
  try {
    call_after_step();
    if (!m_fault.raised()) restart();
  } catch (const SimTK::Exception::Base& error) {
    m_fault.raise(RunOutcome::failed, engine_reason(error, m_multibody, state()));
  }
  return !m_fault.raised();
}

void Engine::call_after_step() {
  if (m_readings.equations().size() > 0) {
    m_multibody.system().realize(state(), SimTK::Stage::Dynamics);
    m_readings.equations().accept(state());
  }
  refresh();
  m_calls.after_step(state());
}

void Engine::refresh() {
  const TimeSpent::During here(m_time, Work::expressions);
  m_readings.refresh(state());
}

/// True once error control has kept the smallest step for too long. Steps that an output time cut short do not count.
bool Engine::creeps(double limit) {
  const double smallest = k_smallest_step * m_model.simulation.end_time;
  const bool controlled = m_model.simulation.integrator == Integrator::runge_kutta_merson;
  if (!controlled || m_last_step > 1.5 * smallest) {
    m_smallest_steps = 0;
  } else if (time() < limit) {
    ++m_smallest_steps;
  }
  return m_smallest_steps >= k_most_smallest_steps;
}

/// The calls after a step may have changed what the subroutines remember, and with it the forces. So the forces are
/// evaluated again at the same state, and the next step starts from them.
void Engine::restart() {
  SimTK::State& advanced = m_stepper ? m_stepper->upd_state() : m_integrator->updAdvancedState();
  advanced.invalidateAllCacheAtOrAbove(SimTK::Stage::Dynamics);
  m_multibody.system().realize(advanced, SimTK::Stage::Acceleration);
  if (m_integrator) m_integrator->reinitialize(SimTK::Stage::Dynamics, false);
}

void Engine::give_up(const std::string& why) {
  m_fault.raise(
      RunOutcome::failed,
      fmt::format("the integrator gave up at time {}, where no step is small enough (the last one was {}): {}. Forces "
                  "that jump or are very stiff do that; try a larger accuracy number, more damping, a start without "
                  "deep penetration, or integrator = \"semi-explicit\" with a fixed step",
                  time(), m_last_step, why));
}

}  // namespace qvslv
