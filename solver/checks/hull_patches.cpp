#include "solver/checks/hull_patches.h"

#include <algorithm>
#include <array>

#include "qvbrisk/layouts.h"
#include "solver/data_files/hull_mesh.h"

namespace qvslv {

namespace {

/// The patches of one part. The reader has checked the counts against the length of `par`.
TriangleMesh mesh_of(const std::vector<double>& par) {
  TriangleMesh mesh;
  const int nodes = whole(par[QV_HULL_NODE_COUNT]);
  const double* at = &par[QV_HULL_LENGTH];
  for (int i = 0; i < nodes; ++i, at += QV_HULL_NODE_LENGTH) mesh.points.push_back({at[0], at[1], at[2]});
  const int patches = whole(*at++);
  for (int i = 0; i < patches; ++i, at += QV_HULL_PATCH_LENGTH) {
    const std::array<int, 3> patch = {whole(at[0]), whole(at[1]), whole(at[2])};
    bool known = true;
    for (const int node : patch) known = known && node >= 0 && node <= nodes;
    if (!known) continue;
    mesh.triangles.push_back(patch);
    const bool spare = std::find(patch.begin(), patch.end(), nodes) != patch.end();
    if (spare && mesh.points.size() == static_cast<size_t>(nodes)) mesh.points.push_back({0, 0, 0});
  }
  return mesh;
}

bool belongs(const HullPatches& hull, const Element& part, int marker) {
  return hull.marker == marker && whole(hull.element.par[QV_HULL_FORCE_ID]) == whole(part.par[QV_HULL_FORCE_ID]);
}

}  // namespace

int whole(double value) { return value >= 0 && value < 2e9 ? static_cast<int>(value) : -1; }

std::vector<HullPatches> hulls_of(const Model& model) {
  std::vector<HullPatches> hulls;
  for (const Element& element : model.elements) {
    if (element.subroutine != "qvhydro_force") continue;
    const int marker = find_marker(model, whole(element.par[QV_HULL_BODY_MARKER]));
    const int water = find_marker(model, whole(element.par[QV_HULL_WATER_MARKER]));
    if (marker == k_none || water == k_none) continue;
    if (hulls.empty() || !belongs(hulls.back(), element, marker))
      hulls.push_back({element, 0, marker, water, whole(element.par[QV_HULL_WAVE_STRING]), {}});
    ++hulls.back().parts;
    append_mesh(hulls.back().mesh, mesh_of(element.par), k_identity, {0, 0, 0});
  }
  for (HullPatches& hull : hulls)
    if (hull.parts > 1) hull.mesh = welded(hull.mesh);
  return hulls;
}

}  // namespace qvslv
