#pragma once

#include <string>
#include <vector>

#include "solver/engine/host.h"
#include "solver/engine/plugin.h"

namespace qvslv {

/// Meaning of the flag that a user subroutine is called with.
enum class CallKind : int { evaluation = 0, set_up = 1, converged_step = 2 };

/// The elements of a model bound to their subroutines, with their parameter lists and result arrays.
class ElementCalls {
public:
  /// Looks every subroutine up. Throws PluginError, with the element's name, when one is missing. The arguments
  /// outlive this.
  ElementCalls(const Model& model, const Plugin& plugin, EngineHost& host, Fault& fault);

  /// Calls one element; its result array is cleared before. Does nothing once a fault was raised, and raises one when
  /// the subroutine throws or a force element returns something that is no number.
  /// @param state  realized to Velocity or further
  void call(size_t element, CallKind kind, const SimTK::State& state);

  /// The call at the start: all elements, in file order.
  void set_up(const SimTK::State& state);

  /// The call after an accepted step: all that are evaluated, then reports, each in file order.
  void after_step(const SimTK::State& state);

  const std::vector<double>& result(size_t element) const { return m_bound[element].result; }
  size_t size() const { return m_bound.size(); }
  bool is_force(size_t element) const { return m_model.elements[element].kind == ElementKind::force; }
  /// Forces, and elements of kind `evaluated`.
  bool is_evaluated(size_t element) const { return m_model.elements[element].kind != ElementKind::report; }

  /// Force and torque of a force element as just returned, turned into ground axes.
  AppliedLoad find_load(size_t element, const SimTK::State& state, const Multibody& multibody) const;

private:
  struct Bound {
    qv_user_subroutine subroutine;
    std::vector<double> par;
    std::vector<double> result;
  };

  void check_force(size_t element, double time);

  const Model& m_model;
  EngineHost& m_host;
  Fault& m_fault;
  std::vector<Bound> m_bound;
};

}  // namespace qvslv
