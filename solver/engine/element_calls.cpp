#include "solver/engine/element_calls.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "solver/engine/independent_calls.h"

namespace qvslv {

namespace {

constexpr size_t k_force_entries = 6;  // force x y z, torque x y z
constexpr const char* k_entry_names[k_force_entries] = {"force x",  "force y",  "force z",
                                                        "torque x", "torque y", "torque z"};

size_t result_length(const Element& element) {
  return std::max(k_force_entries, static_cast<size_t>(std::max(element.result_length, 0)));
}

}  // namespace

ElementCalls::ElementCalls(const Model& model, const Plugin& plugin, const ModelReadings& readings, LoadTable& loads,
                           Fault& fault, TimeSpent& time, Report report, int threads)
    : m_model(model),
      m_readings(readings),
      m_loads(loads),
      m_fault(fault),
      m_time(time),
      m_report(std::move(report)),
      m_index(model),
      m_position(model.elements.size(), 0),
      m_of_thread(divide_calls(model, threads)),
      m_order(model.elements.size()),
      m_workers(static_cast<int>(m_of_thread.size())) {
  for (const Element& element : model.elements) {
    try {
      m_bound.push_back({plugin.find(element.subroutine), element.par, std::vector<double>(result_length(element)),
                         std::make_unique<ElementHost>(m_index, readings, loads, model, element)});
    } catch (const PluginError& error) {
      throw PluginError("element " + element.name + ": " + error.what());
    }
  }
  for (size_t i = 0; i < size(); ++i) {
    if (!is_evaluated(i)) continue;
    m_position[i] = m_evaluated.size();
    m_evaluated.push_back(i);
  }
}

void ElementCalls::set_up(const SimTK::State& state) {
  for (size_t i = 0; i < size(); ++i)
    if (!call_and_settle(i, {CallKind::set_up, state})) return;
}

void ElementCalls::evaluate(const SimTK::State& state) {
  const TimeSpent::During here(m_time, Work::subroutines);
  call_evaluated(CallKind::evaluation, state, m_time.samples_next(TimeSpent::Pass::evaluation));
  if (!m_fault.raised()) m_loads.take_new();
}

void ElementCalls::after_step(const SimTK::State& state) {
  const TimeSpent::During here(m_time, Work::subroutines);
  const bool measured = m_time.samples_next(TimeSpent::Pass::after_step);
  call_evaluated(CallKind::converged_step, state, measured);
  for (size_t i = 0; i < size(); ++i)
    if (!is_evaluated(i) && !call_and_settle(i, {CallKind::converged_step, state, measured})) return;
}

void ElementCalls::call_evaluated(CallKind kind, const SimTK::State& state, bool measured) {
  if (m_workers.count() > 1) return call_on_threads({kind, state, measured, &m_order});
  for (const size_t element : m_evaluated)
    if (!call_and_settle(element, {kind, state, measured})) return;
}

void ElementCalls::call_on_threads(Pass pass) {
  if (m_fault.raised()) return;
  m_order.begin();
  m_workers.run([&](int thread) {
    for (const size_t element : m_of_thread[static_cast<size_t>(thread)]) {
      call(element, pass);
      m_order.set_done(m_position[element]);
    }
  });
  for (const size_t element : m_evaluated)
    if (!settle(element, pass)) return;
}

/// Returns false once a fault was raised, also if that was before.
bool ElementCalls::call_and_settle(size_t element, const Pass& pass) {
  if (m_fault.raised()) return false;
  call(element, pass);
  return settle(element, pass);
}

/// Hands on what a call left. Returns false if a fault was raised.
bool ElementCalls::settle(size_t element, const Pass& pass) {
  const Bound& bound = m_bound[element];
  if (pass.measured) m_time.add_sample(element, bound.took, bound.host->request_time());
  bound.host->settle(m_fault, m_report);
  return !m_fault.raised();
}

void ElementCalls::call(size_t element, const Pass& pass) {
  const bool evaluation = pass.kind == CallKind::evaluation;
  const Ticks begin = pass.measured ? ticks_now() : 0;
  enter(element,
        {pass.state, pass.measured, evaluation ? m_loads.forces_before(element) : 0, evaluation ? pass.order : nullptr,
         m_position[element]},
        pass.kind);
  if (evaluation && is_force(element)) m_loads.set_new(element, find_load(element));
  if (pass.measured) m_bound[element].took = ticks_now() - begin;
}

void ElementCalls::enter(size_t element, const ElementHost::Circumstances& now, CallKind kind) {
  Bound& bound = m_bound[element];
  std::fill(bound.result.begin(), bound.result.end(), 0.0);
  const ElementHost::Call under_way(*bound.host, now);
  try {
    bound.subroutine(static_cast<ServiceHost*>(bound.host.get()), now.state.getTime(), bound.par.data(),
                     static_cast<int>(bound.par.size()), 0, static_cast<int>(kind), bound.result.data());
  } catch (...) {
    bound.host->raise(RunOutcome::failed,
                      "the subroutine " + m_model.elements[element].subroutine + " threw an exception");
  }
  if (is_force(element)) check_force(element);
}

void ElementCalls::check_force(size_t element) {
  const Bound& bound = m_bound[element];
  for (size_t k = 0; k < k_force_entries; ++k) {
    if (std::isfinite(bound.result[k])) continue;
    bound.host->raise(RunOutcome::failed,
                      fmt::format("result {} ({}) is {}, no finite number", k, k_entry_names[k], bound.result[k]));
    return;
  }
}

/// The force and torque that a force element has just returned, turned into ground axes.
AppliedLoad ElementCalls::find_load(size_t element) const {
  const std::vector<double>& result = m_bound[element].result;
  const Element& from = m_model.elements[element];
  const SimTK::Rotation& axes = m_readings.markers().of(from.axes).axes;
  return {from.marker, from.reaction, axes * SimTK::Vec3(result[0], result[1], result[2]),
          axes * SimTK::Vec3(result[3], result[4], result[5])};
}

}  // namespace qvslv
