#pragma once

#include <Simbody.h>

#include <vector>

#include "solver/engine/multibody.h"

namespace qvslv {

/// The model's differential equations as states that the integrator carries along with the bodies': y for an equation
/// of order 1, y and y' for one of order 2. They live in the force subsystem of the multibody system.
///
/// A derivative that is no state (y' of order 1, y'' of either) is the value at the last accepted step. For order 1,
/// y'' is the difference quotient of y' over that step, 0 before there are two values.
class EquationStates {
public:
  /// Throws ModelError, at the equation, when its right-hand side is to come from an element that is not `evaluated`.
  /// The multibody system outlives this.
  explicit EquationStates(const Multibody& multibody);

  size_t size() const { return m_entries.size(); }

  /// Adds the states, at their values of time 0; called while the system's topology is made.
  void allocate(SimTK::State& state) const;

  /// @param derivative  0 y, 1 y', 2 y''
  double value(const SimTK::State& state, size_t equation, int derivative) const;

  /// Rates of the states of an equation whose right-hand side is `right_side`.
  /// @param state  realized to Velocity or further; its rates become those
  void set_rates(const SimTK::State& state, size_t equation, double right_side) const;

  /// The state, realized to Dynamics, is that of an accepted step, or of the start: keeps the derivatives that are no
  /// states.
  void accept(const SimTK::State& state);

private:
  struct Entry {
    int order = 1;
    int first = 0;             ///< of its states, from m_first
    double highest = 0;        ///< y' of order 1, y'' of order 2, at the last accepted step
    double quotient = 0;       ///< order 1: y''
    double quotient_time = 0;  ///< order 1: `highest` of this time is where the next quotient begins
    double quotient_base = 0;
  };

  void accept_first_order(Entry& entry, double time, double rate) const;

  const Multibody& m_multibody;
  std::vector<Entry> m_entries;
  SimTK::Vector m_start;
  mutable SimTK::ZIndex m_first;
  double m_shortest = 0;  ///< a difference quotient over less time would be rounding
  bool m_started = false;
};

}  // namespace qvslv
