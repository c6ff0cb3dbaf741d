#include "solver/engine/merson_stepper.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qvslv {

namespace {

/// The length of the next attempt, as a factor: the local error grows with the fifth power of the step. Some tenth is
/// kept in hand, so that few steps are rejected.
double growth(double share) {
  constexpr double k_margin = 0.9, k_least = 0.1, k_most = 5;
  if (!std::isfinite(share)) return k_least;
  if (!(share > 0)) return k_most;
  return std::clamp(k_margin * std::pow(share, -0.2), k_least, k_most);
}

}  // namespace

MersonStepper::MersonStepper(const Multibody& multibody, const SimTK::State& start, double shortest, const Fault& fault)
    : m_multibody(multibody),
      m_fault(fault),
      m_state(start),
      m_scales(multibody, start),
      m_shortest(shortest),
      m_longest(multibody.model().simulation.max_step > 0 ? multibody.model().simulation.max_step
                                                          : std::numeric_limits<double>::infinity()),
      m_wanted(m_scales.first_step()) {
  m_multibody.system().realize(m_state, SimTK::Stage::Acceleration);
}

void MersonStepper::step(double limit) {
  m_begin = m_state.getY();
  m_rate = m_state.getYDot();
  m_begin_time = m_state.getTime();
  m_wanted = std::min(m_wanted, m_scales.find_longest_step(m_state));
  for (;;) {
    const double length = choose_length(limit);
    const bool cut = m_begin_time + length >= limit;
    if (!try_step(cut ? limit : m_begin_time + length, length)) {
      if (m_fault.raised()) return move_to(m_begin_time, m_begin);
      if (length <= m_shortest) throw SimTK::Exception::Base(__FILE__, __LINE__);
    } else if (m_share <= 1 || length <= m_shortest) {
      const double next = std::max(length * growth(m_share), m_shortest);
      // A step that an output time cut short says little about longer ones.
      m_wanted = cut ? std::max(m_wanted, next) : next;
      m_scales.extend(m_state);
      return;
    }
    ++m_rejected;
    m_wanted = std::max(length * std::min(growth(m_share), 0.9), m_shortest);
  }
}

double MersonStepper::choose_length(double limit) const {
  constexpr double k_slack = 1e-9;  // a rest shorter than this part of a step is no step of its own
  const double rest = limit - m_begin_time, length = std::min(m_wanted, m_longest);
  return length * (1 + k_slack) >= rest ? rest : length;
}

/// Returns false if the attempt has no finite end, or a fault was raised.
bool MersonStepper::try_step(double end, double length) {
  m_share = std::numeric_limits<double>::infinity();
  const double t = m_begin_time, h = length;
  const SimTK::Vector &y = m_begin, &k1 = m_rate;
  try {
    if (!evaluate(t + h / 3, y + (h / 3) * k1)) return false;
    const SimTK::Vector k2 = m_state.getYDot();
    if (!evaluate(t + h / 3, y + (h / 6) * (k1 + k2))) return false;
    const SimTK::Vector k3 = m_state.getYDot();
    if (!evaluate(t + h / 2, y + (h / 8) * (k1 + 3 * k3))) return false;
    const SimTK::Vector k4 = m_state.getYDot();
    const SimTK::Vector fourth = y + (h / 2) * (k1 - 3 * k3 + 4 * k4);
    if (!evaluate(end, fourth)) return false;
    const SimTK::Vector last = y + (h / 6) * (k1 + 4 * k4 + m_state.getYDot());
    move_to(end, last);
    m_share = m_scales.find_error_share(m_state, 0.2 * (last - fourth));
    m_multibody.matter().normalizeQuaternions(m_state);
    m_multibody.system().realize(m_state, SimTK::Stage::Velocity);
  } catch (const SimTK::Exception::Base&) {  // numbers overflow; a shorter step may not
    return false;
  }
  return std::isfinite(m_share);
}

/// Forces at a stage. Returns false if they raised a fault.
bool MersonStepper::evaluate(double time, const SimTK::Vector& y) {
  move_to(time, y);
  m_multibody.system().realize(m_state, SimTK::Stage::Acceleration);
  return !m_fault.raised();
}

/// Prescribed coordinates and speeds are those of the time, whatever `y` holds for them.
void MersonStepper::move_to(double time, const SimTK::Vector& y) {
  m_state.setTime(time);
  m_state.updY() = y;
  m_multibody.system().prescribe(m_state);
  m_multibody.system().realize(m_state, SimTK::Stage::Velocity);
}

}  // namespace qvslv
