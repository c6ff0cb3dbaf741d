#include "solver/engine/readings.h"

#include <fmt/format.h>

#include <cmath>

namespace qvslv {

ModelReadings::ModelReadings(const Multibody& multibody, Fault& fault)
    : m_multibody(multibody),
      m_fault(fault),
      m_markers(multibody),
      m_splines(make_splines(multibody.model())),
      m_equations(multibody),
      m_variables(compile_variables(multibody.model(), m_splines)),
      m_values(m_variables.size(), 0.0) {}

void ModelReadings::refresh(const SimTK::State& state) {
  m_markers.take(state);
  const At here(*this, state);
  for (size_t i = 0; i < m_variables.size(); ++i) {
    m_values[i] = m_variables[i](here);
    if (std::isfinite(m_values[i])) continue;
    m_fault.raise(RunOutcome::failed, fmt::format("variable {} at time {}: the expression \"{}\" has no finite value",
                                                  m_multibody.model().variables[i].name, state.getTime(),
                                                  m_multibody.model().variables[i].value.text));
    return;
  }
}

}  // namespace qvslv
