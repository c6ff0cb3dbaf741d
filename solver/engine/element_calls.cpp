#include "solver/engine/element_calls.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

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
                           Fault& fault, TimeSpent& time, Report report)
    : m_model(model),
      m_readings(readings),
      m_loads(loads),
      m_fault(fault),
      m_time(time),
      m_report(std::move(report)),
      m_index(model) {
  for (const Element& element : model.elements) {
    try {
      m_bound.push_back({plugin.find(element.subroutine), element.par, std::vector<double>(result_length(element)),
                         std::make_unique<ElementHost>(m_index, readings, loads, model, element)});
    } catch (const PluginError& error) {
      throw PluginError("element " + element.name + ": " + error.what());
    }
  }
}

void ElementCalls::call(size_t element, CallKind kind, const SimTK::State& state, bool measured) {
  if (m_fault.raised()) return;
  ElementHost& host = *m_bound[element].host;
  const Ticks begin = measured ? ticks_now() : 0;
  enter(element, kind, state, measured);
  if (measured) m_time.add_sample(element, ticks_now() - begin, host.request_time());
  host.settle(m_fault, m_report);
}

void ElementCalls::enter(size_t element, CallKind kind, const SimTK::State& state, bool measured) {
  Bound& bound = m_bound[element];
  std::fill(bound.result.begin(), bound.result.end(), 0.0);
  const ElementHost::Call under_way(*bound.host, state, measured);
  try {
    bound.subroutine(static_cast<ServiceHost*>(bound.host.get()), state.getTime(), bound.par.data(),
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

void ElementCalls::set_up(const SimTK::State& state) {
  for (size_t i = 0; i < size(); ++i) call(i, CallKind::set_up, state, false);
}

void ElementCalls::evaluate(const SimTK::State& state) {
  const TimeSpent::During here(m_time, Work::subroutines);
  const bool measured = m_time.samples_next(TimeSpent::Pass::evaluation);
  for (size_t i = 0; i < size(); ++i) {
    if (!is_evaluated(i)) continue;
    call(i, CallKind::evaluation, state, measured);
    if (m_fault.raised()) return;
    if (is_force(i)) m_loads.of_element(i) = find_load(i);
  }
}

void ElementCalls::after_step(const SimTK::State& state) {
  const TimeSpent::During here(m_time, Work::subroutines);
  const bool measured = m_time.samples_next(TimeSpent::Pass::after_step);
  for (const bool evaluated : {true, false}) {
    for (size_t i = 0; i < size(); ++i) {
      if (is_evaluated(i) == evaluated) call(i, CallKind::converged_step, state, measured);
    }
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
