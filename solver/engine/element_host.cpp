#include "solver/engine/element_host.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>

namespace qvslv {

namespace {

/// A name of up to eight characters as one number, to tell names apart in one comparison. 0 for any other text.
constexpr std::uint64_t word(const char* name) {
  std::uint64_t letters = 0;
  for (int k = 0; k < 8; ++k) {
    if (name[k] == 0) return letters;
    letters = letters << 8 | static_cast<unsigned char>(name[k]);
  }
  return name[8] == 0 ? letters : 0;
}

void put(const SimTK::Vec3& v, double* values) {
  for (int k = 0; k < 3; ++k) values[k] = v[k];
}

}  // namespace

ElementHost::ElementHost(const ServiceIndex& index, const ModelReadings& readings, const LoadTable& loads,
                         const Model& model, const Element& element)
    : m_index(index), m_readings(readings), m_loads(loads), m_model(model), m_element(element) {}

void ElementHost::settle(Fault& fault, const Report& report) {
  for (const std::string& text : m_told)
    if (report) report(text);
  m_told.clear();
  if (m_fault.raised()) fault.raise(m_fault.outcome(), m_fault.message());
}

/// Always false, for the caller to return: the request is not answered. A subroutine asks thousands of times a second,
/// so each kind of request is reported once per element.
/// @param why  a format of the values
template <class... Values>
bool ElementHost::refuse(const char* service, const char* why, const Values&... values) {
  if (m_refused.insert(service).second)
    m_told.push_back(place() + service + ": " + fmt::format(fmt::runtime(why), values...));
  return false;
}

template <class Answer>
bool ElementHost::timed(Answer&& answer) {
  if (m_now == nullptr || !m_now->measured) return answer();
  const Ticks begin = ticks_now();
  const bool answered = answer();
  m_request_time += ticks_now() - begin;
  return answered;
}

bool ElementHost::vector_quantity(const char* name, const int* ids, int nids, double* values, int& count) {
  return timed([&] { return find_vector(name, ids, nids, values, count); });
}

bool ElementHost::scalar_quantity(const char* name, const int* ids, int nids, double& value) {
  return timed([&] { return find_scalar(name, ids, nids, value); });
}

bool ElementHost::find_vector(const char* name, const int* ids, int nids, double* values, int& count) {
  const std::uint64_t quantity = word(name);
  const int expected = quantity == word("AM") ? 9 : 3;
  const auto answer = [&](auto&& request) {
    if (count < expected) return refuse(name, "{} values come back, there is room for {}", expected, count);
    if (!request()) return false;
    count = expected;
    return true;
  };
  switch (quantity) {
    case word("AM"):
      return answer([&] { return rotation(ids, nids, values); });
    case word("TDISP"):
      return answer([&] { return relation(name, MarkerRelation::displacement, ids, nids, values); });
    case word("TVEL"):
      return answer([&] { return relation(name, MarkerRelation::velocity, ids, nids, values); });
    case word("RVEL"):
      return answer([&] { return relation(name, MarkerRelation::angular_velocity, ids, nids, values); });
    case word("TFORCE"):
      return answer([&] { return force(ids, nids, values); });
    default:
      return refuse(name, "sysary knows no such quantity");
  }
}

bool ElementHost::rotation(const int* ids, int nids, double* values) {
  Request request;
  if (!read_ids("AM", ids, nids, 3, request)) return false;
  const SimTK::Rotation r = find_rotation(m_readings.markers(), request.measured, request.reference);
  for (int column = 0; column < 3; ++column) put(r(column), values + 3 * column);
  return true;
}

bool ElementHost::relation(const char* name, MarkerRelation kind, const int* ids, int nids, double* values) {
  Request request;
  if (!read_ids(name, ids, nids, 3, request)) return false;
  const SimTK::Vec3 in_ground = find_relation(m_readings.markers(), kind, request.measured, request.reference);
  put(~m_readings.markers().of(request.axes).axes * in_ground, values);
  return true;
}

/// The first id is that of a force or of a marker. Both are numbered together, so an id cannot mean both.
bool ElementHost::force(const int* ids, int nids, double* values) {
  Request request;
  const AppliedLoad* load = nids > 0 ? m_loads.find(ids[0], seen_loads()) : nullptr;
  if (load == nullptr) {
    if (!read_ids("TFORCE", ids, nids, 3, request)) return false;
  } else {
    if (!check_count("TFORCE", nids, 3)) return false;
    const int with_own_marker[3] = {m_model.ground_id, nids > 1 ? ids[1] : 0, nids > 2 ? ids[2] : 0};
    if (!read_ids("TFORCE", with_own_marker, nids, 3, request)) return false;
  }
  const std::optional<int> reference = request.with_reference ? std::optional<int>(request.reference) : std::nullopt;
  const SimTK::Vec3 in_ground =
      load != nullptr ? load->force : m_loads.force_at(request.measured, reference, seen_loads());
  put(~m_readings.markers().of(request.axes).axes * in_ground, values);
  return true;
}

bool ElementHost::find_scalar(const char* name, const int* ids, int nids, double& value) {
  switch (word(name)) {
    case word("VARVAL"):
      return variable_value(ids, nids, value);
    case word("DIF20"):
      return equation_value(name, 0, ids, nids, value);
    case word("DIF21"):
      return equation_value(name, 1, ids, nids, value);
    case word("DIF22"):
      return equation_value(name, 2, ids, nids, value);
    case word("FM"):
      return force_magnitude(ids, nids, value);
    case word("VM"):
      return speed(name, MarkerRelation::velocity, ids, nids, value);
    case word("WM"):
      return speed(name, MarkerRelation::angular_velocity, ids, nids, value);
    default:
      return refuse(name, "sysfnc knows no such quantity");
  }
}

bool ElementHost::speed(const char* name, MarkerRelation kind, const int* ids, int nids, double& value) {
  Request request;
  if (!read_ids(name, ids, nids, 2, request)) return false;
  value = find_relation(m_readings.markers(), kind, request.measured, request.reference).norm();
  return true;
}

/// Variables and equations are each numbered from 1. If both have the id, the variable answers.
bool ElementHost::variable_value(const int* ids, int nids, double& value) {
  if (!check_count("VARVAL", nids, 1)) return false;
  const int variable = m_index.variables.find(ids[0]);
  if (variable != k_none) {
    value = m_readings.variable(variable);
    return true;
  }
  const int equation = m_index.equations.find(ids[0]);
  if (equation == k_none) return refuse("VARVAL", "no variable or equation has the id {}", ids[0]);
  value = m_readings.equations().value(m_now->state, static_cast<size_t>(equation), 0);
  return true;
}

bool ElementHost::equation_value(const char* name, int derivative, const int* ids, int nids, double& value) {
  if (!check_count(name, nids, 1)) return false;
  const int equation = m_index.equations.find(ids[0]);
  if (equation == k_none) return refuse(name, "no equation has the id {}", ids[0]);
  value = m_readings.equations().value(m_now->state, static_cast<size_t>(equation), derivative);
  return true;
}

/// A load without a reaction marker counts as reacting on the ground, so FM(m, ground) sums every load at m.
bool ElementHost::force_magnitude(const int* ids, int nids, double& value) {
  if (!check_count("FM", nids, 2)) return false;
  const AppliedLoad* load = m_loads.find(ids[0], seen_loads());
  if (load != nullptr) {
    value = load->force.norm();
    return true;
  }
  Request request;
  if (!read_ids("FM", ids, nids, 2, request)) return false;
  const bool all = !request.with_reference || ids[1] == m_model.ground_id;
  value = m_loads.force_at(request.measured, all ? std::nullopt : std::optional<int>(request.reference), seen_loads())
              .norm();
  return true;
}

/// Number of force elements whose new loads a request sees: of those called before this one, which are waited for.
size_t ElementHost::seen_loads() const {
  if (m_now == nullptr) return 0;
  if (m_now->order != nullptr) m_now->order->await_all_before(m_now->position);
  return m_now->seen_loads;
}

/// Always false between calls: there is no state to answer from.
bool ElementHost::check_count(const char* name, int nids, int most) {
  if (m_now == nullptr) return false;
  if (nids >= 1 && nids <= most) return true;
  if (most == 1) return refuse(name, "takes one id, not {}", nids);
  return refuse(name, "takes 1 to {} ids, not {}", most, nids);
}

bool ElementHost::read_ids(const char* name, const int* ids, int nids, int most, Request& request) {
  if (!check_count(name, nids, most)) return false;
  int* const wanted[3] = {&request.measured, &request.reference, &request.axes};
  for (int k = 0; k < nids; ++k) {
    *wanted[k] = m_index.markers.find(ids[k]);
    if (*wanted[k] != k_none) continue;
    const bool force_asked = k == 0 && (word(name) == word("TFORCE") || word(name) == word("FM"));
    return refuse(name, "no {}marker or body has the id {}", force_asked ? "force, " : "", ids[k]);
  }
  request.with_reference = nids > 1;
  return true;
}

bool ElementHost::string_entity(int id, std::wstring& text) {
  const int found = m_index.strings.find(id);
  if (found == k_none) return refuse("get_string_s", "no string has the id {}", id);
  text = m_index.texts[static_cast<size_t>(found)];
  return true;
}

bool ElementHost::model_path(std::wstring& path) {
  path = m_index.model_path;
  return true;
}

bool ElementHost::mass(int id, double& value) {
  const int body = m_index.bodies.find(id);
  if (body == k_none) return refuse("get_mass", "no body has the id {}", id);
  value = m_model.bodies[static_cast<size_t>(body)].mass;
  return true;
}

bool ElementHost::spline(double x, double z, int id, int order, double& value) {
  const int spline = m_index.splines.find(id);
  if (spline == k_none) return refuse("AKISPL", "no spline has the id {}", id);
  if (order < 0 || order > 2) return refuse("AKISPL", "the order is 0, 1 or 2, not {}", order);
  if (z != 0) return refuse("AKISPL", "splines are curves: the second abscissa is 0, not {}", z);
  value = m_readings.splines()[static_cast<size_t>(spline)](x, order);
  return true;
}

bool ElementHost::units(double scale[5], void* [5]) {
  const Units& units = m_model.units;
  const double factors[5] = {units.length_factor, units.mass_factor, units.time_factor, units.force_factor,
                             units.angle_factor};
  std::copy(factors, factors + 5, scale);
  return true;
}

void ElementHost::stop(const char* message) {
  const bool silent = message == nullptr || *message == '\0';
  raise(RunOutcome::stopped, silent ? "the subroutine asked to stop without a message (a road file that could not be "
                                      "processed ends so)"
                                    : message);
}

void ElementHost::throw_error(const char* title, int count, char** messages) {
  std::string text = title == nullptr ? "error" : title;
  for (int k = 0; k < count; ++k) {
    if (messages[k] == nullptr) continue;
    text += std::string(": ") + messages[k];
    delete[] messages[k];
  }
  if (text.find("bad_alloc") != std::string::npos)
    text += " (there is not enough memory; make the grid, the road or the table coarser)";
  if (count == 0) text += ": the subroutine gave no message";
  if (title == nullptr || std::strcmp(title, "USUB WARNING") != 0) {
    raise(RunOutcome::failed, text);
  } else {
    m_told.push_back(place() + text);
  }
}

std::string ElementHost::place() const {
  if (m_now == nullptr) return "";
  return fmt::format("element {} at time {}: ", m_element.name, m_now->state.getTime());
}

}  // namespace qvslv
