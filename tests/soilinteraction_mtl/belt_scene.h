#pragma once

#include "tests/reference/track_reference.h"
#include "tests/soilinteraction/soil_scene.h"

/// A track on a soil road, called through the exported subroutines with a scripted host.
///
/// The first set-up call of a process fixes how many roads and how many nodes every track has. So that all scenes of a
/// process have room, the first one sets up a track of k_belt_nodes nodes, unless a test asks for an untouched module.
namespace qvtest {

constexpr int k_belt_roads = 1024;  ///< what every scene says the model has
constexpr int k_belt_nodes = 9;
constexpr int k_belt_I = 1, k_belt_J = 5, k_belt_R = 14, k_belt_first_node = 21, k_belt_speed = 11;

/// The parameter list of a track.
struct belt_parameters {
  double track = 0.0;
  int road = 0;
  double roads = k_belt_roads;
  double thickness = 0.0, width = 0.5;
  int n_long = 5, n_lat = 3;
  std::vector<double> radii;  ///< markers count from k_belt_first_node

  std::vector<double> list() const;
  std::size_t results() const;
  /// The same for the reference.
  qvref::track_layout layout() const;
};

/// A circle of the chain: where its centre is, from marker R along x and z, and its radius.
struct circle {
  double x, z, radius;
};

enum class module_state { sized, untouched };

class BeltScene {
public:
  /// A track over the circles given, with a road of its own; nothing is called yet.
  BeltScene(const soil_mesh& mesh, const qvref::soil& soil, const std::vector<circle>& circles,
            module_state module = module_state::sized);

  ScriptedHost host;
  belt_parameters parameters;
  std::string file;

  marker_state& vehicle() { return host.markers[k_belt_I]; }
  marker_state& road() { return host.markers[k_belt_J]; }
  marker_state& reference() { return host.markers[k_belt_R]; }
  marker_state& node(std::size_t i) { return host.markers[k_belt_first_node + static_cast<int>(i)]; }
  double& belt_speed() { return host.scalars[{"VARVAL", k_belt_speed}]; }

  /// Puts the nodes' centres where the circles are, `shift` further along x and `lift` higher.
  void put(const std::vector<circle>& circles, double shift = 0.0, double lift = 0.0);
  /// Gives the vehicle and all nodes one velocity.
  void move(const vec3& velocity);

  /// Calls the subroutine with a poisoned result array and returns what it left there. Writing behind the end fails
  /// the test.
  const std::vector<double>& call(int iflag, double time = 0.25);
  const std::vector<double>& result() const { return m_result; }
  /// A call with one parameter replaced and room for `extra` more results; what was reported.
  std::string report_with(std::size_t parameter, double value, int iflag, std::size_t extra = 0);
  /// The only report since the last look, "" when there was none; several are joined.
  std::string take_report();

  double total(std::size_t entry) const { return m_result.at(entry); }
  /// Entry 0-2 force, 3-5 position, 6 sinkage, 7 dynamic sinkage of the point in a row along the belt and a column.
  double point(int row, int column, std::size_t entry) const;
  int rows() const { return static_cast<int>(parameters.radii.size() - 1) * (parameters.n_long - 1) + 1; }

  std::vector<double> shear_sum(int iflag = 0);
  std::vector<double> normal_sum(int node, int iflag = 0);
  std::vector<double> contact_sum(int iflag = 2);  ///< consumes it when iflag is 2

private:
  std::vector<double> m_result;
};

/// Whether a set-up call of this process may have sized the module's containers.
bool module_may_be_sized();

/// A subroutine called with a list of parameters; `size` results, poisoned before.
using subroutine_to_call = void (*)(void*, double, double*, int, int, int, double*);
std::vector<double> call_with(subroutine_to_call subroutine, ScriptedHost& host, std::vector<double> par, int iflag,
                              std::size_t size);

/// The only report since the last look, "" when there was none; several are joined.
std::string report_of(ScriptedHost& host);

/// Circles of one radius in a row along x, `step` apart, their lowest points at the height `bottom`.
std::vector<circle> level_circles(int count, double step, double radius, double bottom);

/// The loam's pressure at a depth, under a belt of a Bekker width.
double loam_pressure(double width, double depth);

}  // namespace qvtest
