#pragma once

#include <vector>

#include "solver/engine/host.h"
#include "solver/engine/load_table.h"
#include "solver/engine/multibody.h"
#include "solver/engine/plugin.h"
#include "solver/model/fault.h"
#include "solver/model/model.h"

namespace qvslv {

/// The flag that a user subroutine is called with (`iflag`).
enum class CallKind : int { evaluation = 0, set_up = 1, converged_step = 2 };

/// The elements of a model bound to their subroutines, with their parameter lists and result arrays.
class ElementCalls {
public:
  /// Looks up every subroutine. Throws PluginError, with the element's name, if one is missing. The arguments must
  /// outlive this object.
  ElementCalls(const Model& model, const Plugin& plugin, EngineHost& host, Fault& fault);

  /// Calls one element, after clearing its result array. Does nothing once a fault was raised. Raises one if the
  /// subroutine throws or if a force element returns a value that is not finite.
  /// @param state  realized to Velocity or further
  void call(size_t element, CallKind kind, const SimTK::State& state);

  /// Makes the calls at the start: all elements, in file order.
  void set_up(const SimTK::State& state);

  /// Makes the calls after an accepted step: first the forces and evaluated elements in file order, then the reports,
  /// which add up what those leave behind.
  void after_step(const SimTK::State& state);

  const std::vector<double>& result(size_t element) const { return m_bound[element].result; }
  size_t size() const { return m_bound.size(); }
  bool is_force(size_t element) const { return m_model.elements[element].kind == ElementKind::force; }
  /// True for forces and for elements of kind `evaluated`: they are called at every evaluation.
  bool is_evaluated(size_t element) const { return m_model.elements[element].kind != ElementKind::report; }

  /// The force and torque that a force element has just returned, turned into ground axes.
  AppliedLoad find_load(size_t element, const SimTK::State& state, const Multibody& multibody) const;

private:
  /// An element together with its subroutine and the arrays that it is called with.
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
