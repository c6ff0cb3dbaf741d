#include "solver/engine/host.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <optional>

namespace qvslv {

namespace {

int find_index(const std::vector<std::pair<int, int>>& table, int id) {
  const auto found = std::lower_bound(table.begin(), table.end(), id,
                                      [](const auto& entry, int wanted) { return entry.first < wanted; });
  return found != table.end() && found->first == id ? found->second : k_none;
}

template <class Things>
std::vector<std::pair<int, int>> index_by_id(const Things& things) {
  std::vector<std::pair<int, int>> table;
  for (size_t i = 0; i < things.size(); ++i) table.emplace_back(things[i].id, static_cast<int>(i));
  std::sort(table.begin(), table.end());
  return table;
}

bool same(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

void put(const SimTK::Vec3& v, double* values) {
  for (int k = 0; k < 3; ++k) values[k] = v[k];
}

std::optional<MarkerRelation> relation_named(const char* name) {
  if (same(name, "TDISP")) return MarkerRelation::displacement;
  if (same(name, "TVEL")) return MarkerRelation::velocity;
  if (same(name, "RVEL")) return MarkerRelation::angular_velocity;
  return std::nullopt;
}

/// Number of bytes that follow the first byte of a UTF-8 sequence; -1 if this byte starts none.
int continuation_bytes(unsigned char first) {
  if (first < 0x80) return 0;
  if ((first & 0xE0) == 0xC0) return 1;
  if ((first & 0xF0) == 0xE0) return 2;
  if ((first & 0xF8) == 0xF0) return 3;
  return -1;
}

}  // namespace

std::wstring widen(const std::string& text) {
  std::wstring wide;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto first = static_cast<unsigned char>(text[i]);
    const int following = continuation_bytes(first);
    wchar_t code = following <= 0 ? first : static_cast<wchar_t>(first & (0x3F >> following));
    bool whole = following >= 0 && i + static_cast<size_t>(following) < text.size();
    for (size_t k = 1; whole && k <= static_cast<size_t>(following); ++k) {
      const auto next = static_cast<unsigned char>(text[i + k]);
      whole = (next & 0xC0) == 0x80;
      code = static_cast<wchar_t>((static_cast<unsigned>(code) << 6) | (next & 0x3Fu));
    }
    if (!whole) {
      wide.push_back(static_cast<wchar_t>(first));
      continue;
    }
    wide.push_back(code);
    i += static_cast<size_t>(following);
  }
  return wide;
}

EngineHost::EngineHost(const ModelReadings& readings, const Multibody& multibody, Fault& fault, Report report)
    : m_readings(readings),
      m_multibody(multibody),
      m_fault(fault),
      m_report(std::move(report)),
      m_loads(multibody.model()) {
  const Model& model = multibody.model();
  m_marker_of_id = index_by_id(model.markers);
  m_body_of_id = index_by_id(model.bodies);
  m_variable_of_id = index_by_id(model.variables);
  m_equation_of_id = index_by_id(model.equations);
  m_spline_of_id = index_by_id(model.splines);
  for (const StringEntity& entity : model.strings)
    m_strings.emplace_back(entity.id, widen(entity.path.empty() ? entity.text : entity.path));
  m_path = widen(model.path);
}

EngineHost::Call::Call(EngineHost& host, const SimTK::State& state, const Element& element) : m_host(host) {
  host.m_state = &state;
  host.m_element = &element;
}

EngineHost::Call::~Call() {
  m_host.m_state = nullptr;
  m_host.m_element = nullptr;
}

bool EngineHost::vector_quantity(const char* name, const int* ids, int nids, double* values, int& count) {
  const bool matrix = same(name, "AM");
  const bool force_wanted = same(name, "TFORCE");
  const std::optional<MarkerRelation> wanted = relation_named(name);
  if (!matrix && !force_wanted && !wanted) return refuse(name, "sysary knows no such quantity");
  const int expected = matrix ? 9 : 3;
  if (count < expected) return refuse(name, fmt::format("{} values come back, there is room for {}", expected, count));
  const bool answered = matrix         ? rotation(ids, nids, values)
                        : force_wanted ? force(ids, nids, values)
                                       : relation(name, *wanted, ids, nids, values);
  if (answered) count = expected;
  return answered;
}

bool EngineHost::rotation(const int* ids, int nids, double* values) {
  Request request;
  if (!read_ids("AM", ids, nids, 3, request)) return false;
  const SimTK::Rotation r =
      ~m_multibody.find_axes(*m_state, request.reference) * m_multibody.find_axes(*m_state, request.measured);
  for (int column = 0; column < 3; ++column) put(r(column), values + 3 * column);
  return true;
}

bool EngineHost::relation(const char* name, MarkerRelation kind, const int* ids, int nids, double* values) {
  Request request;
  if (!read_ids(name, ids, nids, 3, request)) return false;
  const SimTK::Vec3 in_ground = find_relation(m_multibody, *m_state, kind, request.measured, request.reference);
  put(~m_multibody.find_axes(*m_state, request.axes) * in_ground, values);
  return true;
}

/// The first id is that of a force or of a marker. Both are numbered together, so an id cannot mean both.
bool EngineHost::force(const int* ids, int nids, double* values) {
  Request request;
  const AppliedLoad* load = nids > 0 ? m_loads.find(ids[0]) : nullptr;
  if (load == nullptr) {
    if (!read_ids("TFORCE", ids, nids, 3, request)) return false;
  } else {
    if (!check_count("TFORCE", nids, 3)) return false;
    const int with_own_marker[3] = {m_multibody.model().ground_id, nids > 1 ? ids[1] : 0, nids > 2 ? ids[2] : 0};
    if (!read_ids("TFORCE", with_own_marker, nids, 3, request)) return false;
  }
  const std::optional<int> reference = request.with_reference ? std::optional<int>(request.reference) : std::nullopt;
  const SimTK::Vec3 in_ground = load != nullptr ? load->force : m_loads.force_at(request.measured, reference);
  put(~m_multibody.find_axes(*m_state, request.axes) * in_ground, values);
  return true;
}

bool EngineHost::scalar_quantity(const char* name, const int* ids, int nids, double& value) {
  if (same(name, "VARVAL")) return variable_value(ids, nids, value);
  if (same(name, "DIF20")) return equation_value(name, 0, ids, nids, value);
  if (same(name, "DIF21")) return equation_value(name, 1, ids, nids, value);
  if (same(name, "DIF22")) return equation_value(name, 2, ids, nids, value);
  if (same(name, "FM")) return force_magnitude(ids, nids, value);
  if (same(name, "VM")) return speed(name, MarkerRelation::velocity, ids, nids, value);
  if (same(name, "WM")) return speed(name, MarkerRelation::angular_velocity, ids, nids, value);
  return refuse(name, "sysfnc knows no such quantity");
}

bool EngineHost::speed(const char* name, MarkerRelation kind, const int* ids, int nids, double& value) {
  Request request;
  if (!read_ids(name, ids, nids, 2, request)) return false;
  value = find_relation(m_multibody, *m_state, kind, request.measured, request.reference).norm();
  return true;
}

/// Variables and equations are each numbered from 1. If both have the id, the variable answers.
bool EngineHost::variable_value(const int* ids, int nids, double& value) {
  if (!check_count("VARVAL", nids, 1)) return false;
  const int variable = find_index(m_variable_of_id, ids[0]);
  if (variable != k_none) {
    value = m_readings.variable(variable);
    return true;
  }
  const int equation = find_index(m_equation_of_id, ids[0]);
  if (equation == k_none) return refuse("VARVAL", fmt::format("no variable or equation has the id {}", ids[0]));
  value = m_readings.equations().value(*m_state, static_cast<size_t>(equation), 0);
  return true;
}

bool EngineHost::equation_value(const char* name, int derivative, const int* ids, int nids, double& value) {
  if (!check_count(name, nids, 1)) return false;
  const int equation = find_index(m_equation_of_id, ids[0]);
  if (equation == k_none) return refuse(name, fmt::format("no equation has the id {}", ids[0]));
  value = m_readings.equations().value(*m_state, static_cast<size_t>(equation), derivative);
  return true;
}

/// A load without a reaction marker counts as reacting on the ground, so FM(m, ground) sums every load at m.
bool EngineHost::force_magnitude(const int* ids, int nids, double& value) {
  if (!check_count("FM", nids, 2)) return false;
  const AppliedLoad* load = m_loads.find(ids[0]);
  if (load != nullptr) {
    value = load->force.norm();
    return true;
  }
  Request request;
  if (!read_ids("FM", ids, nids, 2, request)) return false;
  const bool all = !request.with_reference || ids[1] == m_multibody.model().ground_id;
  value = m_loads.force_at(request.measured, all ? std::nullopt : std::optional<int>(request.reference)).norm();
  return true;
}

/// Always false between calls: there is no state to answer from.
bool EngineHost::check_count(const char* name, int nids, int most) {
  if (m_state == nullptr) return false;
  if (nids >= 1 && nids <= most) return true;
  return refuse(name, most == 1 ? fmt::format("takes one id, not {}", nids)
                                : fmt::format("takes 1 to {} ids, not {}", most, nids));
}

bool EngineHost::read_ids(const char* name, const int* ids, int nids, int most, Request& request) {
  if (!check_count(name, nids, most)) return false;
  int* const wanted[3] = {&request.measured, &request.reference, &request.axes};
  for (int k = 0; k < nids; ++k) {
    *wanted[k] = find_index(m_marker_of_id, ids[k]);
    if (*wanted[k] != k_none) continue;
    const bool force_asked = k == 0 && (same(name, "TFORCE") || same(name, "FM"));
    return refuse(name, fmt::format("no {}marker or body has the id {}", force_asked ? "force, " : "", ids[k]));
  }
  request.with_reference = nids > 1;
  return true;
}

bool EngineHost::string_entity(int id, std::wstring& text) {
  const auto found =
      std::find_if(m_strings.begin(), m_strings.end(), [id](const auto& entry) { return entry.first == id; });
  if (found == m_strings.end()) return refuse("get_string_s", fmt::format("no string has the id {}", id));
  text = found->second;
  return true;
}

bool EngineHost::model_path(std::wstring& path) {
  path = m_path;
  return true;
}

bool EngineHost::mass(int id, double& value) {
  const int body = find_index(m_body_of_id, id);
  if (body == k_none) return refuse("get_mass", fmt::format("no body has the id {}", id));
  value = m_multibody.model().bodies[static_cast<size_t>(body)].mass;
  return true;
}

bool EngineHost::spline(double x, double z, int id, int order, double& value) {
  const int spline = find_index(m_spline_of_id, id);
  if (spline == k_none) return refuse("AKISPL", fmt::format("no spline has the id {}", id));
  if (order < 0 || order > 2) return refuse("AKISPL", fmt::format("the order is 0, 1 or 2, not {}", order));
  if (z != 0) return refuse("AKISPL", fmt::format("splines are curves: the second abscissa is 0, not {}", z));
  value = m_readings.splines()[static_cast<size_t>(spline)](x, order);
  return true;
}

bool EngineHost::units(double scale[5], void* [5]) {
  const Units& units = m_multibody.model().units;
  const double factors[5] = {units.length_factor, units.mass_factor, units.time_factor, units.force_factor,
                             units.angle_factor};
  std::copy(factors, factors + 5, scale);
  return true;
}

void EngineHost::stop(const char* message) {
  const bool silent = message == nullptr || *message == '\0';
  m_fault.raise(RunOutcome::stopped,
                place() + (silent ? "the subroutine asked to stop without a message (a road file that could not be "
                                    "processed ends so)"
                                  : message));
}

void EngineHost::throw_error(const char* title, int count, char** messages) {
  std::string text = place() + (title == nullptr ? "error" : title);
  for (int k = 0; k < count; ++k) {
    if (messages[k] == nullptr) continue;
    text += std::string(": ") + messages[k];
    delete[] messages[k];
  }
  if (text.find("bad_alloc") != std::string::npos)
    text += " (there is not enough memory; make the grid, the road or the table coarser)";
  if (count == 0) text += ": the subroutine gave no message";
  if (title == nullptr || std::strcmp(title, "USUB WARNING") != 0) {
    m_fault.raise(RunOutcome::failed, text);
  } else if (m_report) {
    m_report(text);
  }
}

/// Always false, for the caller to return: the request is not answered. A subroutine asks thousands of times a second,
/// so each kind of request is reported once per element.
bool EngineHost::refuse(const char* service, const std::string& why) {
  if (m_reported.emplace(m_element, service).second && m_report) {
    m_report(fmt::format("{}{}: {}", place(), service, why));
  }
  return false;
}

std::string EngineHost::place() const {
  if (m_element == nullptr) return "";
  return fmt::format("element {} at time {}: ", m_element->name, m_state->getTime());
}

}  // namespace qvslv
