#pragma once

#include <Simbody.h>

#include "solver/engine/motion_scales.h"
#include "solver/engine/multibody.h"
#include "solver/model/fault.h"

namespace qvslv {

/// The error-controlled integrator: Runge-Kutta of fourth order after Merson, "An operational method for the study of
/// integration processes" (1957), with his estimate of the error
///   e = (y_end - y_4) / 5,   y_4 the value of the fourth stage,
/// which is held against MotionScales.
class MersonStepper {
public:
  /// @param start     at time 0, realized to Velocity; it is realized to Acceleration here
  /// @param shortest  a step of this length is accepted whatever its error
  /// @param fault     ends a step as soon as an evaluation raises it. It and the system must outlive this object.
  MersonStepper(const Multibody& multibody, const SimTK::State& start, double shortest, const Fault& fault);

  const SimTK::State& state() const { return m_state; }
  /// The state, to evaluate forces anew at; it is realized to Acceleration again before the next step.
  SimTK::State& upd_state() { return m_state; }

  /// Advances by one accepted step, at most to the time `limit`. When an evaluation raises a fault the state goes back
  /// to the beginning of the step. Throws SimTK::Exception::Base if no step, however short, has a finite end.
  void step(double limit);

  long rejected() const { return m_rejected; }

private:
  double choose_length(double limit) const;
  bool try_step(double end, double length);
  bool evaluate(double time, const SimTK::Vector& y);
  void move_to(double time, const SimTK::Vector& y);

  const Multibody& m_multibody;
  const Fault& m_fault;
  SimTK::State m_state;
  MotionScales m_scales;
  double m_shortest, m_longest;
  double m_wanted;        ///< length of the next step if nothing cuts it short
  double m_share = 0;     ///< error of the last attempt, as a share of what is allowed
  SimTK::Vector m_begin;  ///< all states at the beginning of the step
  SimTK::Vector m_rate;   ///< and their rates
  double m_begin_time = 0;
  long m_rejected = 0;
};

}  // namespace qvslv
