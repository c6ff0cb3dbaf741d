#pragma once

#include <Simbody.h>

#include <vector>

#include "solver/engine/multibody.h"

namespace qvslv {

/// The model's differential equations as states that the integrator carries along with the bodies': y for an equation
/// of order 1, y and y' for one of order 2. They live in the force subsystem of the multibody system.
///
/// The highest derivative (y' of order 1, y'' of order 2) is not integrated; it is kept from the last accepted step,
/// so that it does not depend on the order of evaluation within a step. For order 1, y'' is the difference quotient of
/// y' over that step, and 0 before there are two values.
class EquationStates {
public:
  /// Throws ModelError, at the equation, if its right-hand side is to come from an element that is not `evaluated`.
  /// The multibody system must outlive this object.
  explicit EquationStates(const Multibody& multibody);

  size_t size() const { return m_entries.size(); }

  /// Adds the states with their values at time 0. Called while the system's topology is made.
  void allocate(SimTK::State& state) const;

  /// Value of y or of a derivative.
  /// @param equation    index into Model::equations
  /// @param derivative  0 y, 1 y', 2 y'' [per model time, per model time^2]
  double value(const SimTK::State& state, size_t equation, int derivative) const;

  /// Sets the rates of the states of an equation whose right-hand side is `right_side`.
  /// @param state  realized to Velocity or further; its rates are what changes
  void set_rates(const SimTK::State& state, size_t equation, double right_side) const;

  /// Keeps the derivatives that are not integrated.
  /// @param state  that of an accepted step, or of the start, realized to Dynamics
  void accept(const SimTK::State& state);

private:
  struct Entry {
    int order = 1;
    int first = 0;             ///< index of its first state, counted from m_first
    double highest = 0;        ///< y' of order 1, y'' of order 2, at the last accepted step
    double quotient = 0;       ///< order 1: y''
    double quotient_time = 0;  ///< order 1: time at which the next difference quotient begins
    double quotient_base = 0;  ///< order 1: y' at that time
  };

  void accept_first_order(Entry& entry, double time, double rate) const;

  const Multibody& m_multibody;
  std::vector<Entry> m_entries;
  SimTK::Vector m_start;
  mutable SimTK::ZIndex m_first;
  double m_shortest = 0;  ///< [model time] a difference quotient over less would be rounding only
  bool m_started = false;
};

}  // namespace qvslv
