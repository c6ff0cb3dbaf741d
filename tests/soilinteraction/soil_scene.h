#pragma once

#include <string>
#include <vector>

#include "tests/reference/soil_interaction_reference.h"
#include "tests/soilinteraction/soil_meshes.h"
#include "tests/support/comparison.h"
#include "tests/support/scripted_host.h"
#include "tests/support/temporary_folder.h"

/// A body on a soil road, called through the exported subroutines with a scripted host.
///
/// The module keeps its roads and elements until the process ends and sizes its tables at the first set-up call. Each
/// test case runs in a process of its own (gtest_discover_tests), but to keep them right in a common one too, every
/// scene asks for the same number of roads and takes a road index nobody has used.
namespace qvtest {

constexpr int k_roads = 8192;  ///< what every scene says the model has
constexpr int k_body_marker = 1, k_road_marker = 5, k_ground_marker = 14, k_file_string = 4;

/// A road index that no scene of this process has used yet.
int fresh_road();
/// Whether a scene of this process has taken a road, and so may have sized the module's tables.
bool module_is_in_use();

void write_text(const std::string& path, const std::string& text);

/// The text of an RDF file; numbers read back as the same doubles.
std::string rdf_text(const soil_mesh& mesh, const qvref::soil& soil);

/// Sandy loam as used throughout: dynamic sinkage off, all laws on.
qvref::soil loam();
/// A soil with everything random, fractional exponents included.
qvref::soil random_soil(random_source& random);
/// The parameters with the friction angle that comes back from a file that holds it in degrees.
qvref::soil as_read(const qvref::soil& soil);

/// The parameter list of an element.
struct element_parameters {
  int element = 0;
  int road = 0;
  int elements = 4;
  qvref::body body;

  std::vector<double> list() const;
};

constexpr double k_poison = -7.25e77;

/// One element on one road, its host and its results.
class SoilScene {
public:
  /// A scene with a road of its own.
  SoilScene(const soil_mesh& mesh, const qvref::soil& soil, const qvref::body& body);
  /// Another element on a road that stands.
  SoilScene(const SoilScene& on, int element, const qvref::body& body);

  ScriptedHost host;
  element_parameters parameters;
  std::string file;

  marker_state& body() { return host.markers[k_body_marker]; }
  marker_state& road() { return host.markers[k_road_marker]; }
  marker_state& ground() { return host.markers[k_ground_marker]; }

  /// Calls the subroutine with a poisoned result array and returns what it left there. Writing behind the end fails
  /// the test.
  const std::vector<double>& call(int iflag);
  const std::vector<double>& result() const { return m_result; }
  /// The only report since the last look, "" when there was none; several are joined.
  std::string take_report();

  double total(std::size_t entry) const { return m_result[entry]; }
  vec3 force() const { return {m_result[0], m_result[1], m_result[2]}; }
  vec3 moment() const { return {m_result[3], m_result[4], m_result[5]}; }
  double area() const { return m_result[6]; }
  /// Entry 0-2 local force, 3-5 position, 6 sinkage, 7 dynamic sinkage of point (i, j).
  double point(int i, int j, std::size_t entry) const;

private:
  std::vector<double> m_result;
};

/// The running sums of a road.
std::vector<double> call_sum(ScriptedHost& host, double road, int iflag);

}  // namespace qvtest
