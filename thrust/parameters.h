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

// The texts below name these positions.
static_assert(QV_THRUST_ELEMENT == 0 && QV_THRUST_ELEMENT_COUNT == 1 && QV_THRUST_THRUST_MARKER == 2);
static_assert(QV_THRUST_SECOND_MARKER == 4 && QV_THRUST_WATER_MARKER == 5 && QV_THRUST_MODE == 6);
static_assert(QV_THRUST_SPLINE == 7 && QV_THRUST_VARIABLE == 8 && QV_THRUST_EQUATION == 9);
static_assert(QV_THRUST_WAVE_SWITCH == 13 && QV_THRUST_WAVE_STRING == 14);

/// The parameter list of a thrust, by names. An entry is read and checked when it is asked for and not before, because
/// models leave anything in the entries that their mode or wave switch does not use.
class thrust_parameters {
public:
  static constexpr const char* k_element = "thrust element ID (parameter 0)";

  thrust_parameters(const double* par, const qv::fault_channel& channel) : par_(par), channel_(channel) {}

  int element() const { return integer(QV_THRUST_ELEMENT, k_element); }
  int element_count() const {
    return qv::to_count(par_[QV_THRUST_ELEMENT_COUNT], "number of thrust elements (parameter 1)", channel_);
  }
  int thrust_marker() const { return integer(QV_THRUST_THRUST_MARKER, "thrust marker (parameter 2)"); }
  int second_marker() const { return integer(QV_THRUST_SECOND_MARKER, "second marker (parameter 4)"); }
  int water_marker() const { return integer(QV_THRUST_WATER_MARKER, "water marker (parameter 5)"); }
  thrust_mode mode() const { return static_cast<thrust_mode>(integer(QV_THRUST_MODE, "thrust mode (parameter 6)")); }
  int spline() const { return integer(QV_THRUST_SPLINE, "spline (parameter 7)"); }
  int variable() const { return integer(QV_THRUST_VARIABLE, "variable (parameter 8)"); }
  int equation() const { return integer(QV_THRUST_EQUATION, "differential equation (parameter 9)"); }
  double first_derivative_gain() const { return par_[QV_THRUST_FIRST_DERIVATIVE_GAIN]; }
  double second_derivative_gain() const { return par_[QV_THRUST_SECOND_DERIVATIVE_GAIN]; }
  double state_gain() const { return par_[QV_THRUST_STATE_GAIN]; }
  bool uses_wave() const { return integer(QV_THRUST_WAVE_SWITCH, "wave switch (parameter 13)") == 1; }
  int wave_string() const { return integer(QV_THRUST_WAVE_STRING, "string of the WAVE file (parameter 14)"); }

  const qv::fault_channel& channel() const { return channel_; }

private:
  int integer(int position, const char* quantity) const { return qv::to_int(par_[position], quantity, channel_); }

  const double* par_;
  qv::fault_channel channel_;
};

static_assert(QV_SPEED_ERROR_VEHICLE_MARKER == 1 && QV_SPEED_ERROR_REFERENCE_MARKER == 2 &&
              QV_SPEED_ERROR_COMMAND == 3);

/// The parameter list of a velocity error, read and checked in its order.
struct velocity_error_parameters {
  int vehicle, reference, command;  ///< two markers and a variable

  velocity_error_parameters(const double* par, const qv::fault_channel& channel)
      : vehicle(qv::to_int(par[QV_SPEED_ERROR_VEHICLE_MARKER], "vehicle marker (parameter 1)", channel)),
        reference(qv::to_int(par[QV_SPEED_ERROR_REFERENCE_MARKER], "reference marker (parameter 2)", channel)),
        command(qv::to_int(par[QV_SPEED_ERROR_COMMAND], "commanded velocity (parameter 3)", channel)) {}
};

}  // namespace qvthrust
