#include "solver/results/hull_picture.h"

#include <algorithm>

#include "qvbrisk/layouts.h"
#include "solver/results/marker_pose.h"
#include "solver/results/water_surface.h"

namespace qvslv {

namespace {

/// A count or an id, truncated; -1 if it is negative or too large for any container.
int whole(double value) { return value >= 0 && value < 2e9 ? static_cast<int>(value) : -1; }

/// The count that stands at `place` in `par`, before its items of three numbers each; -1 if not all items are there.
int count_at(const std::vector<double>& par, size_t place) {
  if (place >= par.size()) return -1;
  const int count = whole(par[place]);
  const size_t rest = (par.size() - place - 1) / 3;
  return count >= 0 && static_cast<size_t>(count) <= rest ? count : -1;
}

std::optional<TriangleMesh> read_mesh(const std::vector<double>& par) {
  const int nodes = count_at(par, QV_HULL_NODE_COUNT);
  if (nodes < 0) return std::nullopt;
  const double* at = par.data() + QV_HULL_LENGTH;
  TriangleMesh mesh;
  for (int k = 0; k < nodes; ++k, at += 3) mesh.points.push_back({at[0], at[1], at[2]});
  const int patches = count_at(par, QV_HULL_LENGTH + QV_HULL_NODE_LENGTH * static_cast<size_t>(nodes));
  ++at;
  bool spare = false;  // whether a patch names the node behind the last, at the origin
  for (int k = 0; k < patches; ++k, at += 3) {
    const std::array<int, 3> patch = {whole(at[0]), whole(at[1]), whole(at[2])};
    bool inside = true;
    for (const int node : patch) inside = inside && node >= 0 && node <= nodes;
    if (!inside) continue;
    mesh.triangles.push_back(patch);
    spare = spare || std::find(patch.begin(), patch.end(), nodes) != patch.end();
  }
  if (spare) mesh.points.push_back({0, 0, 0});
  if (mesh.triangles.empty()) return std::nullopt;
  return mesh;
}

/// Depth of a point, given by x and z in the water's frame, under the water; 0 if no water is there.
double depth_of(const Water& water, const SurfaceAt& surface, double x, double z) {
  return is_over(water, x) ? surface.elevation(x) - z : 0;
}

}  // namespace

bool is_hull(const Element& element) { return element.subroutine == "qvhydro_force"; }

std::optional<Hull> read_hull(const Model& model, int element) {
  const std::vector<double>& par = model.elements[static_cast<size_t>(element)].par;
  std::optional<TriangleMesh> mesh = read_mesh(par);
  if (!mesh) return std::nullopt;
  Hull hull;
  hull.element = element;
  hull.marker = find_marker(model, whole(par[QV_HULL_BODY_MARKER]));
  hull.water_marker = find_marker(model, whole(par[QV_HULL_WATER_MARKER]));
  hull.wave_string = whole(par[QV_HULL_WAVE_STRING]);
  hull.mesh = std::move(*mesh);
  if (hull.marker == k_none || hull.water_marker == k_none) return std::nullopt;
  return hull;
}

HullState calc_hull_state(const Model& model, const Hull& hull, const Water* water, const Frame& frame) {
  HullState state;
  const MarkerPose pose = find_marker_pose(model, hull.marker, frame);
  state.points.reserve(hull.mesh.points.size());
  for (const Vec3& node : hull.mesh.points) state.points.push_back(to_ground(pose, node));
  state.depth.assign(state.points.size(), 0);
  state.wet.assign(hull.mesh.triangles.size(), false);
  if (water == nullptr) return state;

  const MarkerPose water_pose = find_marker_pose(model, water->marker, frame);
  const SurfaceAt surface(water->wave, frame.time);
  struct Third {
    double x, z;
  };
  std::vector<Third> thirds;  // of each node's place in the water's frame: what it adds to a patch's centroid
  thirds.reserve(state.points.size());
  for (size_t k = 0; k < state.points.size(); ++k) {
    const Vec3 afloat = to_marker(water_pose, state.points[k]);
    state.depth[k] = depth_of(*water, surface, afloat[0], afloat[2]);
    thirds.push_back({afloat[0] / 3, afloat[2] / 3});
  }
  for (size_t k = 0; k < state.wet.size(); ++k) {
    double x = 0, z = 0;
    for (const int node : hull.mesh.triangles[k]) {
      x += thirds[static_cast<size_t>(node)].x;
      z += thirds[static_cast<size_t>(node)].z;
    }
    state.wet[k] = depth_of(*water, surface, x, z) > 0;
  }
  return state;
}

}  // namespace qvslv
