#pragma once

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "solver/engine/service_host.h"

namespace qvtest {

using vec3 = std::array<double, 3>;
using mat3 = std::array<double, 9>;  // column by column

/// State of a marker in ground axes.
struct marker_state {
  vec3 position = {0, 0, 0};
  mat3 axes = {1, 0, 0, 0, 1, 0, 0, 0, 1};  // marker -> ground
  vec3 velocity = {0, 0, 0};
  vec3 angular_velocity = {0, 0, 0};  // in ground axes
};

/// A host with scripted answers. Every request is answered from the tables below. A request for something that they do
/// not hold is not answered (the error flag is set and the output stays) and is counted. Markers that a request leaves
/// out are the ground.
class ScriptedHost : public qvslv::ServiceHost {
public:
  std::map<int, marker_state> markers;
  std::map<int, std::wstring> strings;
  std::wstring path;
  std::map<int, double> masses;
  std::map<std::pair<std::string, int>, double> scalars;  // (name, first id)
  std::map<int, vec3> forces;                             // "TFORCE" by its first id, in ground axes
  std::map<int, std::function<double(double)>> splines;   // by id: the value at x
  std::optional<std::array<double, 5>> unit_scale;        // length, mass, time, force, angle

  /// Called before every request is answered, with its name and first id (0 if it has none).
  std::function<void(const std::string& name, int id)> before_request;
  std::vector<std::string> requests;  // "AM 1 3", in order, if `log` is set
  bool log = false;
  int unanswered = 0;
  bool units_were_zeroed = true;   // whether both arrays were zero whenever units were asked for
  std::vector<std::string> stops;  // "(null)" for a null text
  struct report {
    std::string title;
    std::vector<std::string> messages;
  };
  std::vector<report> reports;  // THROW_ERROR calls

  bool vector_quantity(const char* name, const int* ids, int nids, double* values, int& count) override;
  bool scalar_quantity(const char* name, const int* ids, int nids, double& value) override;
  bool string_entity(int id, std::wstring& text) override;
  bool model_path(std::wstring& text) override;
  void stop(const char* message) override;
  void throw_error(const char* title, int count, char** messages) override;
  bool spline(double x, double z, int id, int order, double& value) override;
  bool units(double scale[5], void* names[5]) override;
  bool mass(int id, double& value) override;

  void* handle() { return static_cast<qvslv::ServiceHost*>(this); }

private:
  void announce(const char* name, int id) {
    if (before_request) before_request(name, id);
  }
  bool refuse() {
    ++unanswered;
    return false;
  }
};

mat3 rotation(const vec3& axis, double angle);
vec3 times(const mat3& A, const vec3& v);
vec3 transposed_times(const mat3& A, const vec3& v);
vec3 cross(const vec3& a, const vec3& b);

}  // namespace qvtest
