#include <fmt/format.h>

#include <algorithm>

#include "qvbrisk/layouts.h"
#include "solver/checks/checks.h"
#include "solver/model/number_text.h"

namespace qvslv {

namespace {

struct Range {
  double low = 0, high = 0;
};

/// Adds the findings of a file's reader, each once.
void note_files(const Scene& scene, Findings& findings) {
  for (const auto& [string, sea] : scene.seas) findings.insert(findings.end(), sea.found.begin(), sea.found.end());
  for (const auto& [string, stream] : scene.currents)
    findings.insert(findings.end(), stream.found.begin(), stream.found.end());
}

/// A [[wave]] that ends early is told where it is read.
void check_ends(const Scene& scene, Findings& findings) {
  const double end = scene.model.simulation.end_time;
  for (const auto& [string, sea] : scene.seas) {
    if (sea.made || !sea.table || !sea.table->moves || sea.table->end >= end) continue;
    const std::string text = "the table ends at " + number_text(sea.table->end) + ", the run at " + number_text(end) +
                             ": from there on the water keeps its last shape; make a longer table";
    findings.push_back(finding_in(scene.text(string), 0, Level::warning, "wave-ends-early", text));
  }
}

/// How far points reach along the water's x axis.
Range reach_of(const std::vector<Vec3>& points, const Pose& hull, const Pose& water) {
  Range reach;
  bool first = true;
  for (const Vec3& point : points) {
    const double x = inwards(water, outwards(hull, point))[0];
    reach = first ? Range{x, x} : Range{std::min(reach.low, x), std::max(reach.high, x)};
    first = false;
  }
  return reach;
}

/// Corners of the box around points: enough for moments after the start, where a hull turns little.
std::vector<Vec3> box_around(const std::vector<Vec3>& points) {
  Vec3 low = points[0], high = points[0];
  for (const Vec3& point : points)
    for (size_t k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], point[k]);
      high[k] = std::max(high[k], point[k]);
    }
  std::vector<Vec3> corners;
  for (const double x : {low[0], high[0]})
    for (const double y : {low[1], high[1]})
      for (const double z : {low[2], high[2]}) corners.push_back({x, y, z});
  return corners;
}

bool within(const Range& reach, const Range& table) { return reach.low >= table.low && reach.high < table.high; }

std::string off_table(const Scene& scene, const HullPatches& hull, const Range& reach, const Range& table) {
  return "the hull reaches from x = " + number_text(reach.low) + " to " + number_text(reach.high) +
         " in the axes of '" + scene.model.markers[static_cast<size_t>(hull.water_marker)].name + "', and '" +
         scene.text(hull.wave_string) + "' has water from " + number_text(table.low) + " to " +
         number_text(table.high) +
         ": corners beyond get no drag, triangles beyond no buoyancy; move the water marker or the body";
}

/// Where the hull starts, and where motions carry it. The start of a free hull is all that can be known of it.
void check_reach(const Scene& scene, const HullPatches& hull, Findings& findings) {
  const auto sea = scene.seas.find(hull.wave_string);
  if (sea == scene.seas.end() || !sea->second.table || hull.mesh.points.empty()) return;
  const Range table{std::max(0.0, sea->second.table->first_x), sea->second.table->last_x};
  const auto reach = [&](const std::vector<Vec3>& points, size_t moment) {
    return reach_of(points, scene.course.marker(hull.marker, moment), scene.course.marker(hull.water_marker, moment));
  };
  const Range start = reach(hull.mesh.points, 0);
  if (!within(start, table)) {
    warn(findings, "hull-off-table", hull.element, "", "at the start " + off_table(scene, hull, start, table));
    return;
  }
  const std::vector<Vec3> box = box_around(hull.mesh.points);
  for (size_t moment = 1; moment < scene.course.moments(); ++moment) {
    const Range then = reach(box, moment);
    if (within(then, table)) continue;
    warn(findings, "hull-leaves-table", hull.element, "",
         fmt::format("moved as prescribed, at the time {:.4g} ", scene.course.time(moment)) +
             off_table(scene, hull, then, table));
    return;
  }
}

/// A thruster that needs the water of a WAVE file, and stands or is moved beside its positions.
void check_thruster(const Scene& scene, const Element& element, Findings& findings) {
  const std::vector<double>& par = element.par;
  const auto sea = scene.seas.find(whole(par[QV_THRUST_WAVE_STRING]));
  const int marker = find_marker(scene.model, whole(par[QV_THRUST_THRUST_MARKER])),
            water = find_marker(scene.model, whole(par[QV_THRUST_WATER_MARKER]));
  const bool needs_water = whole(par[QV_THRUST_WAVE_SWITCH]) == 1;
  if (!needs_water || sea == scene.seas.end() || !sea->second.table || marker == k_none || water == k_none) return;
  const Range table{std::max(0.0, sea->second.table->first_x), sea->second.table->last_x};
  for (size_t moment = 0; moment < scene.course.moments(); ++moment) {
    const double x = inwards(scene.course.marker(water, moment), scene.course.marker(marker, moment).place)[0];
    if (within({x, x}, table)) continue;
    warn(findings, "thruster-off-table", element, "wave",
         fmt::format("at the time {:.4g} '{}' is at x = {:.4g} in the axes of '{}', and '{}' has water from {:.4g} to "
                     "{:.4g}: beyond there is no thrust; move the water marker or the body",
                     scene.course.time(moment), scene.model.markers[static_cast<size_t>(marker)].name, x,
                     scene.model.markers[static_cast<size_t>(water)].name, scene.text(sea->first), table.low,
                     table.high));
    return;
  }
}

}  // namespace

void check_water(const Scene& scene, Findings& findings) {
  note_files(scene, findings);
  check_ends(scene, findings);
  for (const HullPatches& hull : scene.hulls) check_reach(scene, hull, findings);
  for (const Element& element : scene.model.elements)
    if (element.subroutine == "qvsoil_thrustforce") check_thruster(scene, element, findings);
}

}  // namespace qvslv
