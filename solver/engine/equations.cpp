#include "solver/engine/equations.h"

namespace qvslv {

namespace {

/// The shortest step that gives a difference quotient, as a share of the run's time. Steps across a jump are shorter;
/// over them a difference is rounding only.
constexpr double k_shortest_quotient = 1e-9;

void check_element(const Equation& equation, const Model& model) {
  if (equation.element == k_none) return;
  const bool there = equation.element >= 0 && static_cast<size_t>(equation.element) < model.elements.size();
  if (there && model.elements[static_cast<size_t>(equation.element)].kind == ElementKind::evaluated) return;
  throw ModelError(equation.at, "equation '" + equation.name +
                                    "': its right-hand side must come from an element of kind \"evaluated\"");
}

}  // namespace

EquationStates::EquationStates(const Multibody& multibody) : m_multibody(multibody) {
  const Model& model = multibody.model();
  m_shortest = k_shortest_quotient * model.simulation.end_time;
  std::vector<double> start;
  for (const Equation& equation : model.equations) {
    check_element(equation, model);
    Entry entry;
    entry.order = equation.order;
    entry.first = static_cast<int>(start.size());
    m_entries.push_back(entry);
    start.push_back(equation.value);
    if (equation.order == 2) start.push_back(equation.rate);
  }
  m_start.resize(static_cast<int>(start.size()));
  for (size_t k = 0; k < start.size(); ++k) m_start[static_cast<int>(k)] = start[k];
}

void EquationStates::allocate(SimTK::State& state) const {
  if (!m_entries.empty()) m_first = m_multibody.forces().allocateZ(state, m_start);
}

double EquationStates::value(const SimTK::State& state, size_t equation, int derivative) const {
  const Entry& entry = m_entries[equation];
  if (derivative < entry.order) return m_multibody.forces().getZ(state)[m_first + entry.first + derivative];
  return derivative == entry.order ? entry.highest : entry.quotient;
}

void EquationStates::set_rates(const SimTK::State& state, size_t equation, double right_side) const {
  const Entry& entry = m_entries[equation];
  SimTK::Vector& rates = m_multibody.forces().updZDot(state);
  const int at = m_first + entry.first;
  if (entry.order == 2) rates[at] = m_multibody.forces().getZ(state)[at + 1];
  rates[at + entry.order - 1] = right_side;
}

void EquationStates::accept(const SimTK::State& state) {
  if (m_entries.empty()) return;
  const SimTK::Vector& rates = m_multibody.forces().getZDot(state);
  for (Entry& entry : m_entries) {
    entry.highest = rates[m_first + entry.first + entry.order - 1];
    if (entry.order == 1) accept_first_order(entry, state.getTime(), entry.highest);
  }
  m_started = true;
}

void EquationStates::accept_first_order(Entry& entry, double time, double rate) const {
  const double elapsed = time - entry.quotient_time;
  if (m_started && elapsed < m_shortest) return;
  if (m_started) entry.quotient = (rate - entry.quotient_base) / elapsed;
  entry.quotient_time = time;
  entry.quotient_base = rate;
}

}  // namespace qvslv
