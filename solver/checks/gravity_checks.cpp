#include <fmt/format.h>

#include <set>

#include "qvbrisk/layouts.h"
#include "solver/checks/checks.h"

namespace qvslv {

namespace {

/// The marker whose z axis is up for an element on a road or in water: index into Model::markers, k_none if it has
/// none.
int up_marker(const Element& element, const Model& model) {
  if (element.subroutine == "qvsoil_interaction" || element.subroutine == "qvsoil_interaction_mtl")
    return element.road_marker;
  if (element.subroutine == "qvhydro_force") return find_marker(model, whole(element.par[QV_HULL_WATER_MARKER]));
  return k_none;
}

}  // namespace

void check_gravity(const Scene& scene, Findings& findings) {
  const Vec3& g = scene.model.gravity;
  if (length(g) == 0) return;
  std::set<int> seen;
  for (const Element& element : scene.model.elements) {
    const int marker = up_marker(element, scene.model);
    if (marker == k_none || !seen.insert(marker).second) continue;
    const double up = dot(unit(g), axis_of(scene.course.marker(marker), 2));
    constexpr double k_least = -0.05;  // nearly level
    if (up < k_least) continue;
    const bool afloat = element.subroutine == "qvhydro_force";
    warn(findings, "gravity-direction", element, afloat ? "water" : "road",
         fmt::format(
             "gravity = [{:.4g}, {:.4g}, {:.4g}] pulls {} the {}, whose up is the z axis of '{}'; turn gravity or "
             "the marker",
             g[0], g[1], g[2], up > -k_least ? "away from" : "along", afloat ? "water" : "road",
             scene.model.markers[static_cast<size_t>(marker)].name));
  }
}

}  // namespace qvslv
