#include "solver/engine/element_calls.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace qvslv {

namespace {

constexpr size_t k_force_entries = 6;  // force x y z, torque x y z
constexpr const char* k_entry_names[k_force_entries] = {"force x",  "force y",  "force z",
                                                        "torque x", "torque y", "torque z"};

size_t result_length(const Element& element) {
  return std::max(k_force_entries, static_cast<size_t>(std::max(element.result_length, 0)));
}

}  // namespace

ElementCalls::ElementCalls(const Model& model, const Plugin& plugin, EngineHost& host, Fault& fault)
    : m_model(model), m_host(host), m_fault(fault) {
  for (const Element& element : model.elements) {
    try {
      m_bound.push_back({plugin.find(element.subroutine), element.par, std::vector<double>(result_length(element))});
    } catch (const PluginError& error) {
      throw PluginError("element " + element.name + ": " + error.what());
    }
  }
}

void ElementCalls::call(size_t element, CallKind kind, const SimTK::State& state) {
  if (m_fault.raised()) return;
  Bound& bound = m_bound[element];
  std::fill(bound.result.begin(), bound.result.end(), 0.0);
  const double time = state.getTime();
  {
    const EngineHost::Call under_way(m_host, state, m_model.elements[element]);
    try {
      bound.subroutine(static_cast<ServiceHost*>(&m_host), time, bound.par.data(), static_cast<int>(bound.par.size()),
                       0, static_cast<int>(kind), bound.result.data());
    } catch (...) {
      m_fault.raise(RunOutcome::failed,
                    fmt::format("element {} at time {}: the subroutine {} threw an exception",
                                m_model.elements[element].name, time, m_model.elements[element].subroutine));
    }
  }
  if (is_force(element)) check_force(element, time);
}

void ElementCalls::check_force(size_t element, double time) {
  const std::vector<double>& result = m_bound[element].result;
  for (size_t k = 0; k < k_force_entries; ++k) {
    if (std::isfinite(result[k])) continue;
    m_fault.raise(RunOutcome::failed,
                  fmt::format("element {} at time {}: result {} ({}) is {}, no finite number",
                              m_model.elements[element].name, time, k, k_entry_names[k], result[k]));
    return;
  }
}

void ElementCalls::set_up(const SimTK::State& state) {
  for (size_t i = 0; i < size(); ++i) call(i, CallKind::set_up, state);
}

void ElementCalls::after_step(const SimTK::State& state) {
  for (const bool evaluated : {true, false}) {
    for (size_t i = 0; i < size(); ++i) {
      if (is_evaluated(i) == evaluated) call(i, CallKind::converged_step, state);
    }
  }
}

AppliedLoad ElementCalls::find_load(size_t element, const SimTK::State& state, const Multibody& multibody) const {
  const std::vector<double>& result = m_bound[element].result;
  const Element& from = m_model.elements[element];
  const SimTK::Rotation axes = multibody.find_axes(state, from.axes);
  return {from.marker, from.reaction, axes * SimTK::Vec3(result[0], result[1], result[2]),
          axes * SimTK::Vec3(result[3], result[4], result[5])};
}

}  // namespace qvslv
