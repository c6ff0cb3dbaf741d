#pragma once

#include <memory>
#include <vector>

#include "solver/engine/call_order.h"
#include "solver/engine/element_host.h"
#include "solver/engine/load_table.h"
#include "solver/engine/plugin.h"
#include "solver/engine/time_spent.h"
#include "solver/engine/workers.h"
#include "solver/model/fault.h"
#include "solver/model/model.h"

namespace qvslv {

/// The flag that a user subroutine is called with (`iflag`).
enum class CallKind : int { evaluation = 0, set_up = 1, converged_step = 2 };

/// The elements of a model bound to their subroutines, with their parameter lists and result arrays.
///
/// A call clears the result array before. It raises a fault if the subroutine reports one, throws, or returns a value
/// of a force that is not finite; after a fault no element is called any more. The state of a call is that which the
/// readings were last refreshed with, realized to Velocity or further.
///
/// Forces and evaluated elements that share no data may be called on several threads. Nothing shows it: each sees the
/// loads of those before it in the file, and what they report is handed on in file order, up to the first fault.
class ElementCalls {
public:
  using Report = ElementHost::Report;

  /// Looks up every subroutine. Throws PluginError, with the element's name, if one is missing. The arguments must
  /// outlive this object.
  /// @param report  is told about requests of subroutines that could not be answered; may be empty
  /// @param threads  most threads to call elements on, at least 1
  ElementCalls(const Model& model, const Plugin& plugin, const ModelReadings& readings, LoadTable& loads, Fault& fault,
               TimeSpent& time, Report report, int threads);

  /// Makes the calls at the start: all elements, in file order.
  void set_up(const SimTK::State& state);

  /// Calls forces and evaluated elements in file order, and keeps the loads of the forces.
  void evaluate(const SimTK::State& state);

  /// Makes the calls after an accepted step: first the forces and evaluated elements in file order, then the reports,
  /// which add up what those leave behind.
  void after_step(const SimTK::State& state);

  const std::vector<double>& result(size_t element) const { return m_bound[element].result; }
  size_t size() const { return m_bound.size(); }
  bool is_force(size_t element) const { return m_model.elements[element].kind == ElementKind::force; }
  /// True for forces and for elements of kind `evaluated`: they are called at every evaluation.
  bool is_evaluated(size_t element) const { return m_model.elements[element].kind != ElementKind::report; }

private:
  /// An element together with its subroutine and what that is called with.
  struct Bound {
    qv_user_subroutine subroutine;
    std::vector<double> par;
    std::vector<double> result;
    std::unique_ptr<ElementHost> host;
    Ticks took = 0;  ///< time of the last measured call
  };

  /// Calls of one kind, one of each element of a list, under the same circumstances.
  struct Pass {
    CallKind kind;
    const SimTK::State& state;
    bool measured = false;
    CallOrder* order = nullptr;  ///< null if they are made one after the other
  };

  void call_evaluated(CallKind kind, const SimTK::State& state, bool measured);
  void call_on_threads(Pass pass);
  bool call_and_settle(size_t element, const Pass& pass);
  bool settle(size_t element, const Pass& pass);
  void call(size_t element, const Pass& pass);
  void enter(size_t element, const ElementHost::Circumstances& now, CallKind kind);
  void check_force(size_t element);
  AppliedLoad find_load(size_t element) const;

  const Model& m_model;
  const ModelReadings& m_readings;
  LoadTable& m_loads;
  Fault& m_fault;
  TimeSpent& m_time;
  Report m_report;
  ServiceIndex m_index;
  std::vector<Bound> m_bound;
  std::vector<size_t> m_evaluated;               ///< forces and evaluated elements in file order
  std::vector<size_t> m_position;                ///< by element: in m_evaluated
  std::vector<std::vector<size_t>> m_of_thread;  ///< the same elements, per thread that calls them
  CallOrder m_order;
  Workers m_workers;
};

}  // namespace qvslv
