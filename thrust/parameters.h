#pragma once

#include "common/call/parameters.h"
#include "qvbrisk/layouts.h"

namespace qvthrust {

/// How thrust follows from the variable v and the equation. Any number without a name here means feedback.
enum class thrust_mode : int {
  variable = 1,         ///< v itself; there is no equation
  feedback_or_off = 2,  ///< the feedback law, 0 while v is exactly 0
  limited = 3           ///< the feedback law, no larger than the spline's value at v
};

/// The parameter list of a thrust, by names. An entry is read and checked when it is asked for and not before, because
/// models leave anything in the entries that their mode or wave switch does not use.
class thrust_parameters {
public:
  static constexpr qv::parameter k_element{QV_THRUST_ELEMENT, "thrust element ID"};

  static constexpr qv::parameter k_wave_string{QV_THRUST_WAVE_STRING, "string of the WAVE file"};

  thrust_parameters(const double* par, const qv::fault_channel& channel) : m_par(par), m_channel(channel) {}

  int element() const { return qv::to_int(m_par, k_element, m_channel); }
  int element_count() const {
    return qv::to_count(m_par, {QV_THRUST_ELEMENT_COUNT, "number of thrust elements"}, m_channel);
  }
  int thrust_marker() const { return integer(QV_THRUST_THRUST_MARKER, "thrust marker"); }
  int second_marker() const { return integer(QV_THRUST_SECOND_MARKER, "second marker"); }
  int water_marker() const { return integer(QV_THRUST_WATER_MARKER, "water marker"); }
  thrust_mode mode() const { return static_cast<thrust_mode>(integer(QV_THRUST_MODE, "thrust mode")); }
  int spline() const { return integer(QV_THRUST_SPLINE, "spline"); }
  int variable() const { return integer(QV_THRUST_VARIABLE, "variable"); }
  int equation() const { return integer(QV_THRUST_EQUATION, "differential equation"); }
  double first_derivative_gain() const { return m_par[QV_THRUST_FIRST_DERIVATIVE_GAIN]; }
  double second_derivative_gain() const { return m_par[QV_THRUST_SECOND_DERIVATIVE_GAIN]; }
  double state_gain() const { return m_par[QV_THRUST_STATE_GAIN]; }
  bool uses_wave() const { return integer(QV_THRUST_WAVE_SWITCH, "wave switch") == 1; }
  int wave_string() const { return qv::to_int(m_par, k_wave_string, m_channel); }

  const qv::fault_channel& channel() const { return m_channel; }

private:
  int integer(int position, const char* meaning) const { return qv::to_int(m_par, {position, meaning}, m_channel); }

  const double* m_par;
  qv::fault_channel m_channel;
};

/// The parameter list of a velocity error, read and checked in its order.
struct velocity_error_parameters {
  int vehicle, reference, command;  ///< two markers and a variable

  velocity_error_parameters(const double* par, const qv::fault_channel& channel)
      : vehicle(qv::to_int(par, {QV_SPEED_ERROR_VEHICLE_MARKER, "vehicle marker"}, channel)),
        reference(qv::to_int(par, {QV_SPEED_ERROR_REFERENCE_MARKER, "reference marker"}, channel)),
        command(qv::to_int(par, {QV_SPEED_ERROR_COMMAND, "commanded velocity"}, channel)) {}
};

}  // namespace qvthrust
