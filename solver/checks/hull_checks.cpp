#include <fmt/format.h>

#include <cmath>
#include <optional>
#include <string>

#include "qvbrisk/layouts.h"
#include "solver/checks/checks.h"
#include "solver/checks/waterline.h"
#include "solver/data_files/hull_mesh.h"

/// Hulls of patches in water (qvhydro_force).
namespace qvslv {

namespace {

double density_of(const HullPatches& hull) { return hull.element.par[QV_HULL_DENSITY]; }

void check_density(const HullPatches& hull, const Units& units, Findings& findings) {
  constexpr double k_least = 100, k_most = 14000;  // kg/m^3; no liquid but mercury is heavier than 14 t/m^3
  const double si = units.mass_factor / std::pow(units.length_factor, 3);
  const double density = density_of(hull) * si;
  if (density >= k_least && density <= k_most) return;
  warn(findings, "water-density", hull.element, "density",
       fmt::format("{:.4g} is {:.4g} kg/m^3, and water has 1000 to 1030; in the model's units that is {:.4g} and more",
                   density_of(hull), density, 1000 / si));
}

/// A readable hull has been checked where it was read.
bool read_from_mesh(const HullPatches& hull, const ModelFile& file) {
  for (const HullSummary& summary : file.hulls)
    if (hull.element.name == summary.name || hull.element.name.rfind(summary.name + "_", 0) == 0) return true;
  return false;
}

void check_mesh(const HullPatches& hull, Findings& findings) {
  try {
    check_hull_mesh(hull.parts > 1 ? hull.mesh : welded(hull.mesh));
  } catch (const MeshError& error) {
    warn(findings, "hull-mesh", hull.element, "par", std::string("the patches bound no hull: ") + error.what());
  }
}

int body_of(const HullPatches& hull, const Model& model) {
  return model.markers[static_cast<size_t>(hull.marker)].body;
}

/// The unit factors that a hull's load is multiplied by on the way; 1 where the force unit is the newton.
double load_scale(const HullPatches& hull, const Units& units) {
  return hull.element.par[QV_HULL_LOAD_SCALE] * units.time_factor * units.time_factor /
         (units.length_factor * units.mass_factor * units.force_factor);
}

/// Force on the whole mesh under water.
double greatest_buoyancy(const HullPatches& hull, const Units& units) {
  return std::abs(calc_measures(hull.mesh).volume) * density_of(hull) * hull.element.par[QV_HULL_GRAVITY] *
         load_scale(hull, units);
}

/// What floats together: the bodies of a tree that hangs on nothing.
struct Float {
  double mass = 0, buoyancy = 0;
  int hulls = 0;
};

Float find_float(const Scene& scene, int root) {
  Float found;
  for (size_t i = 0; i < scene.model.bodies.size(); ++i)
    if (scene.course.floating_root(static_cast<int>(i)) == root) found.mass += scene.model.bodies[i].mass;
  for (const HullPatches& hull : scene.hulls) {
    if (scene.course.floating_root(body_of(hull, scene.model)) != root) continue;
    found.buoyancy += greatest_buoyancy(hull, scene.model.units);
    ++found.hulls;
  }
  return found;
}

void check_weight(const HullPatches& hull, const Float& afloat, const Model& model, Findings& findings) {
  const double weight = afloat.mass * length(model.gravity);
  if (!(weight > afloat.buoyancy) || !(afloat.buoyancy > 0)) return;
  warn(findings, "hull-too-heavy", hull.element, "body",
       fmt::format(
           "'{}' and what hangs on it have the mass {:.4g}, and the whole mesh under water lifts {:.4g}: it sinks; "
           "check mass, density and the mesh's scale",
           model.bodies[static_cast<size_t>(body_of(hull, model))].name, afloat.mass,
           afloat.buoyancy / length(model.gravity)));
}

/// Whether the hull can move level through its water, or the water past it, so that its upright faces meet drag.
bool meets_drag(const Scene& scene, const HullPatches& hull) {
  const std::vector<double>& par = hull.element.par;
  if (par[QV_HULL_DRAG_SCALE] == 0 || par[QV_HULL_LOAD_SCALE] == 0) return false;
  const auto sea = scene.seas.find(hull.wave_string);
  const auto current = scene.currents.find(whole(par[QV_HULL_CURRENT_STRING]));
  if (sea != scene.seas.end() && sea->second.table && sea->second.table->moves) return true;
  if (current != scene.currents.end() && current->second.flows) return true;
  return scene.course.can_travel(hull.marker, hull.water_marker);
}

/// Drag takes whole corners. A face of two triangles, cut by the water, counts with up to half of its area, or not at
/// all if dry corners are named first: for panels of the height h at a draught d, from 1 - h/d to 1 + h/(2 d) of the
/// drag.
void check_panels(const HullPatches& hull, const Waterline& line, Findings& findings) {
  constexpr double k_coarsest = 0.6, k_fine = 0.1;
  const double share = line.panel_height / line.draught;
  if (!(share > k_coarsest)) return;
  warn(findings, "hull-coarse", hull.element, "mesh",
       fmt::format(
           "the triangles at the waterline are {:.3g} high at a draught of {:.3g}: the drag may come out "
           "between {:.1f} and {:.1f} of its value; take divisions that make them {:.3g} high or less ({:.3g} for drag "
           "within 10 %)",
           line.panel_height, line.draught, std::fmax(0, 1 - share), 1 + 0.5 * share, k_coarsest * line.draught,
           k_fine * line.draught));
}

TriangleMesh in_water(const Scene& scene, const HullPatches& hull) {
  const Pose carrier = scene.course.marker(hull.marker), water = scene.course.marker(hull.water_marker);
  TriangleMesh mesh = hull.mesh;
  for (Vec3& point : mesh.points) point = inwards(water, outwards(carrier, point));
  return mesh;
}

/// The waterline at which a hull floats alone, in the attitude of its start; of one that is held, that of its start.
std::optional<Waterline> find_line(const Scene& scene, const HullPatches& hull, const Float& afloat) {
  const TriangleMesh mesh = in_water(scene, hull);
  const double weight = afloat.mass * length(scene.model.gravity);
  const bool floats = afloat.hulls == 1 && weight < afloat.buoyancy;
  return waterline_at(mesh, floats ? find_level(mesh, weight / afloat.buoyancy) : 0);
}

}  // namespace

void check_hulls(const Scene& scene, Findings& findings) {
  for (const HullPatches& hull : scene.hulls) {
    if (hull.mesh.triangles.empty()) continue;
    check_density(hull, scene.model.units, findings);
    if (!read_from_mesh(hull, scene.file)) check_mesh(hull, findings);
    const int root = scene.course.floating_root(body_of(hull, scene.model));
    const Float afloat = root == k_ground ? Float{} : find_float(scene, root);
    if (root != k_ground) check_weight(hull, afloat, scene.model, findings);
    if (!meets_drag(scene, hull)) continue;
    const std::optional<Waterline> line = find_line(scene, hull, afloat);
    if (line) check_panels(hull, *line, findings);
  }
}

}  // namespace qvslv
