#include "solver/engine_host.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace qvslv {

namespace {

int find_index(const std::vector<std::pair<int, int>>& table, int id) {
  const auto found = std::lower_bound(table.begin(), table.end(), id,
                                      [](const auto& entry, int wanted) { return entry.first < wanted; });
  return found != table.end() && found->first == id ? found->second : k_none;
}

bool same(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

void put(const SimTK::Vec3& v, double* values) {
  for (int k = 0; k < 3; ++k) values[k] = v[k];
}

/// Number of bytes that follow the first byte of a UTF-8 sequence, -1 when it starts none.
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

EngineHost::EngineHost(const Multibody& multibody, Fault& fault, Report report)
    : m_multibody(multibody), m_fault(fault), m_report(std::move(report)) {
  const Model& model = multibody.model();
  for (size_t i = 0; i < model.markers.size(); ++i) {
    m_marker_of_id.emplace_back(model.markers[i].id, static_cast<int>(i));
  }
  for (size_t i = 0; i < model.bodies.size(); ++i) m_body_of_id.emplace_back(model.bodies[i].id, static_cast<int>(i));
  std::sort(m_marker_of_id.begin(), m_marker_of_id.end());
  std::sort(m_body_of_id.begin(), m_body_of_id.end());
  for (const StringEntity& entity : model.strings) m_strings.emplace_back(entity.id, widen(entity.text));
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
  const bool rotation = same(name, "AM");
  const int expected = rotation ? 9 : 3;
  const bool displacement = !rotation && same(name, "TDISP");
  const bool velocity = !rotation && !displacement && same(name, "TVEL");
  const bool spin = !rotation && !displacement && !velocity && same(name, "RVEL");
  const bool force = !rotation && !displacement && !velocity && !spin && same(name, "TFORCE");
  if (!(rotation || displacement || velocity || spin || force)) return refuse(name, "sysary knows no such quantity");
  if (count < expected) return refuse(name, fmt::format("{} values come back, there is room for {}", expected, count));
  Request request;
  if (!read_ids(name, ids, nids, 3, request)) return false;
  count = expected;

  const SimTK::State& state = *m_state;
  if (rotation) {
    const SimTK::Rotation r =
        ~m_multibody.find_axes(state, request.reference) * m_multibody.find_axes(state, request.measured);
    for (int column = 0; column < 3; ++column) put(r(column), values + 3 * column);
    return true;
  }
  SimTK::Vec3 in_ground(0);
  if (force) {
    in_ground = force_on(request);
  } else {
    const MarkerMotion measured = m_multibody.find_motion(state, request.measured);
    const MarkerMotion reference = m_multibody.find_motion(state, request.reference);
    if (displacement) in_ground = measured.position - reference.position;
    if (velocity) in_ground = measured.velocity - reference.velocity;
    if (spin) in_ground = measured.angular_velocity - reference.angular_velocity;
  }
  put(~m_multibody.find_axes(state, request.axes) * in_ground, values);
  return true;
}

bool EngineHost::scalar_quantity(const char* name, const int* ids, int nids, double& value) {
  const bool speed = same(name, "VM");
  const bool spin = same(name, "WM");
  if (!speed && !spin) return refuse(name, "sysfnc does not give this quantity yet");
  Request request;
  if (!read_ids(name, ids, nids, 2, request)) return false;
  const MarkerMotion measured = m_multibody.find_motion(*m_state, request.measured);
  const MarkerMotion reference = m_multibody.find_motion(*m_state, request.reference);
  value = speed ? (measured.velocity - reference.velocity).norm()
                : (measured.angular_velocity - reference.angular_velocity).norm();
  return true;
}

bool EngineHost::read_ids(const char* name, const int* ids, int nids, int most, Request& request) {
  if (m_state == nullptr) return false;  // asked outside of a call: there is no state to answer from
  if (nids < 1 || nids > most) return refuse(name, fmt::format("takes 1 to {} ids, not {}", most, nids));
  int* const wanted[3] = {&request.measured, &request.reference, &request.axes};
  for (int k = 0; k < nids; ++k) {
    *wanted[k] = find_marker(ids[k]);
    if (*wanted[k] == k_none) return refuse(name, fmt::format("no marker or body has the id {}", ids[k]));
  }
  request.with_reference = nids > 1;
  return true;
}

int EngineHost::find_marker(int id) const { return find_index(m_marker_of_id, id); }

SimTK::Vec3 EngineHost::force_on(const Request& request) const {
  SimTK::Vec3 sum(0);
  for (const AppliedLoad& load : m_loads) {
    const int other_end = load.marker == request.measured ? load.reaction : load.marker;
    if (request.with_reference && other_end != request.reference) continue;
    if (load.marker == request.measured) sum += load.force;
    if (load.reaction == request.measured) sum -= load.force;
  }
  return sum;
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

bool EngineHost::spline(double, double, int id, int, double&) {
  return refuse("AKISPL", fmt::format("the model has no spline {}", id));
}

bool EngineHost::units(double[5], void* [5]) {
  return refuse("GTUNTS", "the engine does not give the model's units yet");
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
  if (count == 0) text += ": the subroutine gave no message";
  m_fault.raise(RunOutcome::failed, text);
}

/// Always false: the request is not answered. A kernel asks thousands of times a second; it is told once.
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
