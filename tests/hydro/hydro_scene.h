#pragma once

#include <string>
#include <vector>

#include "tests/hydro/hulls.h"
#include "tests/reference/hydro_reference.h"
#include "tests/support/comparison.h"
#include "tests/support/scripted_host.h"
#include "tests/support/temporary_folder.h"

/// A hull in the water, called through the exported subroutines with a scripted host.
///
/// The module keeps its elements until the process ends and sizes their table at the first call. Each test case runs
/// in a process of its own (gtest_discover_tests). So that the cases are also right in one common process, every scene
/// asks for the same number of elements and takes an id that no other scene has.
namespace qvtest {

constexpr int k_elements = 2047;  ///< number of elements that every scene declares
constexpr int k_force_marker = 3, k_water_marker = 8, k_body_marker = 5;
constexpr int k_wave_string = 21, k_current_string = 22;
constexpr double k_poison = -7.25e77;

/// An id that no scene of this process has used yet.
int fresh_element();

std::string write_file(const std::string& name, const std::string& text);
std::wstring wide(const std::string& text);

/// Texts of files whose numbers read back as the same doubles.
std::string wave_text(const qvref::wave_file& wave, const std::string& separator = ",");
std::string current_text(const qvref::current_file& currents, const std::string& separator = ",");

/// A calm surface over [0, length] at the elevation, moving up at the velocity, at all times.
qvref::wave_file calm_water(double length = 200.0, double elevation = 0.0, double velocity = 0.0);
/// One current along each axis, the same everywhere.
qvref::current_file steady_current(double along_x = 0.0, double along_y = 0.0);

struct hydro_parameters {
  int sub = 0, subs = 1, id = 0;
  double mass = 0.0, option = 0.0, reserve = 0.0, scale = 1.0, t_start = 0.0, t_end = 0.0;
  double density = 1.0, gravity = 1.0, tangential_coef = 0.0, tangential_exp = 1.0, drag_scale = 1.0;
  hull shape;

  std::vector<double> list() const;
};

/// Results of a hull, by their names.
struct hull_forces {
  vec3 force, torque, buoyancy, buoyancy_centre, drag, drag_torque, normal_drag, normal_torque, tangential_drag,
      tangential_torque, marker_position;
  double volume;
};

/// The report's results before those of its points.
struct hull_report {
  double buoyancy, first_angle, second_lever, second_angle, first_lever, force;
  vec3 buoyancy_centre, second_lever_point, first_lever_point, mass_centre;
};

class HydroScene {
public:
  /// SI units. All markers coincide with the ground's, except that the water marker is 100 m behind the body, so that
  /// the body is in the middle of calm_water().
  explicit HydroScene(const hull& shape, const qvref::wave_file& wave = calm_water(),
                      const qvref::current_file& currents = steady_current());

  ScriptedHost host;
  hydro_parameters parameters;
  int force_of_report = 40, marker_of_force = k_water_marker;
  std::vector<int> points;  ///< markers that the report watches

  marker_state& body() { return host.markers[k_body_marker]; }
  marker_state& water() { return host.markers[k_water_marker]; }
  marker_state& force_marker() { return host.markers[k_force_marker]; }
  /// Puts body and force marker at this position, with these axes.
  void place(const vec3& position, const mat3& axes);
  /// Gives the body this velocity and angular velocity.
  void move(const vec3& velocity, const vec3& angular_velocity = {0, 0, 0});

  /// Calls with a poisoned result array; writing behind its end or into the parameters fails the test, and so does a
  /// request that the host cannot answer.
  const std::vector<double>& call(double time = 0.0, int iflag = 0);
  hull_forces forces(double time = 0.0, int iflag = 0);
  const std::vector<double>& call_report(int iflag = 2);
  hull_report report();
  std::vector<double> report_list() const;
  /// Returns what was reported since the last look, "" if nothing was.
  std::string take_report();

private:
  std::vector<double> m_result;
};

inline double length(const vec3& a) { return std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]); }

}  // namespace qvtest
