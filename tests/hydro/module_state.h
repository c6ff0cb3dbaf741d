#pragma once

#include <utility>

#include "hydro/hydro_force.h"

namespace qvtest {

/// While an object of this class lives, the hydro module is as before the first call of a process.
class empty_module {
public:
  empty_module() {
    m_elements.swap(qvhydro::gp_hydro_force);
    m_report.swap(qvhydro::s_HydroForce_Report);
  }
  ~empty_module() {
    m_elements.swap(qvhydro::gp_hydro_force);
    m_report.swap(qvhydro::s_HydroForce_Report);
  }
  empty_module(const empty_module&) = delete;
  empty_module& operator=(const empty_module&) = delete;

private:
  std::vector<qvhydro::Chydro_force> m_elements;
  std::vector<std::array<double, 2>> m_report;
};

inline qvhydro::Chydro_force& element_of(int id) { return qvhydro::gp_hydro_force.at(static_cast<std::size_t>(id)); }

}  // namespace qvtest
