#pragma once

#include "tests/hydro/hydro_scene.h"

/// A thruster with a scripted host. As for hulls (hydro_scene.h), every scene asks for the same number of elements and
/// takes an id that no other scene has.
namespace qvtest {

constexpr int k_thrusters = 2047;
constexpr int k_thrust_marker = 31, k_second_marker = 32, k_thrust_water = 33;
constexpr int k_spline = 51, k_variable = 52, k_equation = 53, k_thrust_string = 54;

struct thrust_parameters {
  int id = 0;
  double mode = 1, switch_on_waves = 0;
  double gains[3] = {0, 0, 0};

  std::vector<double> list() const;
};

class ThrustScene {
public:
  /// A thruster over a wave table whose frame is the ground's. The wave switch is off.
  explicit ThrustScene(const qvref::wave_file& wave = calm_water());

  ScriptedHost host;
  thrust_parameters parameters;

  marker_state& point() { return host.markers[k_thrust_marker]; }
  marker_state& water() { return host.markers[k_thrust_water]; }
  void set_variable(double v) { host.scalars[{"VARVAL", k_variable}] = v; }
  void set_equation(double value, double rate, double second);

  /// Calls with a poisoned result array; writing behind its end or into the parameters fails the test.
  const std::vector<double>& call(double time = 0.0, int iflag = 0);
  /// Calls and returns the thrust. The other results must be zero, and nothing may be reported.
  double thrust(double time = 0.0, int iflag = 0);
  std::string take_report();
  std::string wave_file() const;

private:
  std::vector<double> m_result;
};

/// Calls and returns the velocity error. Only one number may be written.
double call_velocity_error(ScriptedHost& host, std::vector<double> par, int iflag = 0);

}  // namespace qvtest
