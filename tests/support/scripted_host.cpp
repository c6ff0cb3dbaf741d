#include "tests/support/scripted_host.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace qvtest {

vec3 times(const mat3& A, const vec3& v) {
  return {A[0] * v[0] + A[3] * v[1] + A[6] * v[2], A[1] * v[0] + A[4] * v[1] + A[7] * v[2],
          A[2] * v[0] + A[5] * v[1] + A[8] * v[2]};
}

vec3 transposed_times(const mat3& A, const vec3& v) {
  return {A[0] * v[0] + A[1] * v[1] + A[2] * v[2], A[3] * v[0] + A[4] * v[1] + A[5] * v[2],
          A[6] * v[0] + A[7] * v[1] + A[8] * v[2]};
}

vec3 cross(const vec3& a, const vec3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

mat3 rotation(const vec3& axis, double angle) {
  const double length = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
  const double x = axis[0] / length, y = axis[1] / length, z = axis[2] / length;
  const double c = std::cos(angle), s = std::sin(angle), v = 1 - c;
  return {c + x * x * v,     y * x * v + z * s, z * x * v - y * s, x * y * v - z * s, c + y * y * v,
          z * y * v + x * s, x * z * v + y * s, y * z * v - x * s, c + z * z * v};
}

bool ScriptedHost::vector_quantity(const char* name, const int* ids, int nids, double* values, int& count) {
  announce(name, ids[0]);
  if (log) {
    std::string request = name;
    for (int i = 0; i < nids; ++i) request += " " + std::to_string(ids[i]);
    requests.push_back(request);
  }
  static const marker_state k_ground;
  const bool force = std::strcmp(name, "TFORCE") == 0;
  const marker_state* m[3] = {&k_ground, &k_ground, &k_ground};
  for (int i = force ? 1 : 0; i < nids && i < 3; ++i) {
    const auto found = markers.find(ids[i]);
    if (found == markers.end()) return refuse();
    m[i] = &found->second;
  }
  if (std::strcmp(name, "AM") == 0) {
    if (nids < 1 || nids > 2 || count != 9) return refuse();
    for (size_t c = 0; c < 3; ++c) {
      const vec3 axis = {m[0]->axes[3 * c], m[0]->axes[3 * c + 1], m[0]->axes[3 * c + 2]};
      const vec3 seen = transposed_times(m[1]->axes, axis);
      for (size_t r = 0; r < 3; ++r) values[r + 3 * c] = seen[r];
    }
    return true;
  }
  if (nids < 1 || nids > 3 || count != 3) return refuse();
  vec3 difference{};
  if (force) {
    const auto found = forces.find(ids[0]);
    if (found == forces.end()) return refuse();
    difference = found->second;
  }
  for (size_t c = 0; c < 3 && !force; ++c) {
    if (std::strcmp(name, "TDISP") == 0) {
      difference[c] = m[0]->position[c] - m[1]->position[c];
    } else if (std::strcmp(name, "TVEL") == 0) {
      difference[c] = m[0]->velocity[c] - m[1]->velocity[c];
    } else if (std::strcmp(name, "RVEL") == 0) {
      difference[c] = m[0]->angular_velocity[c] - m[1]->angular_velocity[c];
    } else {
      return refuse();
    }
  }
  const vec3 seen = transposed_times(m[2]->axes, difference);
  std::copy(seen.begin(), seen.end(), values);
  return true;
}

bool ScriptedHost::scalar_quantity(const char* name, const int* ids, int nids, double& value) {
  announce(name, ids[0]);
  if (log) requests.push_back(std::string(name) + " " + std::to_string(ids[0]));
  const auto found = scalars.find({name, ids[0]});
  if (nids != 1 || found == scalars.end()) return refuse();
  value = found->second;
  return true;
}

bool ScriptedHost::string_entity(int id, std::wstring& text) {
  announce("string", id);
  if (log) requests.push_back("string " + std::to_string(id));
  const auto found = strings.find(id);
  if (found == strings.end()) return refuse();
  text = found->second;
  return true;
}

bool ScriptedHost::model_path(std::wstring& text) {
  announce("path", 0);
  if (log) requests.push_back("path");
  text = path;
  return true;
}

void ScriptedHost::stop(const char* message) { stops.push_back(message != nullptr ? message : "(null)"); }

void ScriptedHost::throw_error(const char* title, int count, char** messages) {
  report said{title, {}};
  for (int i = 0; i < count; ++i) {
    said.messages.push_back(messages[i] != nullptr ? messages[i] : "(null)");
    delete[] messages[i];
  }
  reports.push_back(said);
}

bool ScriptedHost::spline(double x, double z, int id, int order, double& value) {
  announce("spline", id);
  if (log) requests.push_back("spline " + std::to_string(id));
  const auto found = splines.find(id);
  if (found == splines.end() || z != 0.0 || order != 0) return refuse();
  value = found->second(x);
  return true;
}

bool ScriptedHost::units(double scale[5], void* names[5]) {
  announce("units", 0);
  if (log) requests.push_back("units");
  for (int i = 0; i < 5; ++i) units_were_zeroed = units_were_zeroed && scale[i] == 0.0 && names[i] == nullptr;
  if (!unit_scale) return refuse();
  std::copy(unit_scale->begin(), unit_scale->end(), scale);
  return true;
}

bool ScriptedHost::mass(int id, double& value) {
  const auto found = masses.find(id);
  if (found == masses.end()) return refuse();
  value = found->second;
  return true;
}

}  // namespace qvtest
