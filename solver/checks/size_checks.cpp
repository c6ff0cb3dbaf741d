#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "solver/checks/checks.h"

namespace qvslv {

namespace {

constexpr double k_most = 1e6, k_most_bytes = 2e9;

/// Columns of results.csv: time and two energies; place, quaternion, velocity and angular velocity of each body; value
/// and rate of each coordinate; what elements, variables and equations have.
double columns_of(const Model& model) {
  double columns = 3 + 13.0 * static_cast<double>(model.bodies.size()) + static_cast<double>(model.variables.size()) +
                   2.0 * static_cast<double>(model.equations.size());
  for (const Joint& joint : model.joints) columns += 2.0 * static_cast<double>(joint.position.size());
  for (const Element& element : model.elements) columns += static_cast<double>(element.columns.size());
  return columns;
}

/// Bytes of one picture's files: points with eleven numbers each, corners and patches of hulls and bodies, and the
/// water.
double frame_bytes(const Scene& scene) {
  constexpr double k_point = 45, k_corner = 16, k_patch = 6, k_body = 2000, k_water = 10000;
  double bytes = k_body * static_cast<double>(scene.model.bodies.size());
  if (!scene.hulls.empty()) bytes += k_water;
  for (const Element& element : scene.model.elements) bytes += k_point * element.points.count;
  for (const HullPatches& hull : scene.hulls)
    bytes += k_corner * static_cast<double>(hull.mesh.points.size()) +
             k_patch * static_cast<double>(hull.mesh.triangles.size());
  return bytes;
}

void note(const Scene& scene, const char* key, const char* what, double step, double bytes_each, Findings& findings) {
  const double count = std::floor(scene.model.simulation.end_time / step) + 1, bytes = count * bytes_each;
  if (count <= k_most && bytes <= k_most_bytes) return;
  const double fitting = scene.model.simulation.end_time / std::min(k_most, k_most_bytes / bytes_each);
  const std::string text = fmt::format(
      "simulation, {}: {:.4g} makes {:.3g} {} of about {:.3g} MB in all; up to 10^6 and 2000 MB make sense, which "
      "{:.2g} or more keeps",
      key, step, count, what, bytes / 1e6, fitting);
  findings.push_back(finding_in(scene.model.path, 0, Level::warning, "results-size", text));
}

}  // namespace

void check_sizes(const Scene& scene, Findings& findings) {
  constexpr double k_number = 15;  // bytes of a number in results.csv, with its comma: most have all their digits
  const Simulation& simulation = scene.model.simulation;
  if (simulation.results.table)
    note(scene, "output_step", "rows", simulation.output_step, k_number * columns_of(scene.model), findings);
  if (simulation.results.frames)
    note(scene, "frame_step", "frames", std::max(find_frame_step(simulation), simulation.output_step),
         frame_bytes(scene), findings);
}

}  // namespace qvslv
