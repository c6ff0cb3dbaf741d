#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "qvbrisk/layouts.h"
#include "solver/checks/checks.h"
#include "solver/checks/soil_track.h"
#include "solver/checks/standing.h"

/// Belts on soil (qvsoil_interaction_mtl).
namespace qvslv {

namespace {

/// Length of the belt between two nodes: along the tangent of both circles.
double span_length(const Scene& scene, const TrackNode& a, const TrackNode& b) {
  const Vec3 way = minus(scene.course.marker(b.marker).place, scene.course.marker(a.marker).place);
  const double difference = b.radius - a.radius;
  return std::sqrt(std::max(0.0, dot(way, way) - difference * difference));
}

void check_spacing(const SoilTrack& track, const Scene& scene, Findings& findings) {
  constexpr double k_unequal = 0.1;  // of the last span: the error of the area, and so of the load at a depth
  std::vector<double> spans;
  for (size_t i = 0; i + 1 < track.nodes.size(); ++i)
    spans.push_back(span_length(scene, track.nodes[i], track.nodes[i + 1]));
  const double last = spans.back();
  for (size_t i = 0; i + 1 < spans.size(); ++i) {
    if (!(std::abs(spans[i] - last) > k_unequal * last)) continue;
    warn(findings, "track-spacing", track.element, "wheels",
         fmt::format(
             "the belt from wheel {} to {} is {:.4g} long and counts with the length of the last span, {:.4g}: its "
             "area comes out {:.2g} times too {}; space the wheels so that all spans differ by less than 10 %",
             i + 1, i + 2, spans[i], last, last > spans[i] ? last / spans[i] : spans[i] / last,
             last > spans[i] ? "large" : "small"));
    return;
  }
}

void check_heading(const SoilTrack& track, const Scene& scene, Findings& findings) {
  constexpr double k_degrees = 57.29577951308232;
  if (!is_driven(track, scene.model)) return;
  const Vec3 forward = axis_of(scene.course.marker(track.hull), 0);
  const Vec3 along = axis_of(scene.course.marker(track.reference), 0);
  const double angle = std::acos(std::max(-1.0, std::min(1.0, dot(forward, along)))) * k_degrees;
  if (!(angle > k_most_heading)) return;
  warn(findings, "track-heading", track.element, "reference",
       fmt::format(
           "the track heads {:.0f} degrees off the x axis of '{}', and its drive feels only the shear along that "
           "axis; name a marker on the ground as 'reference' whose x axis is the track's heading (within {:.0f} "
           "degrees)",
           angle, scene.model.markers[static_cast<size_t>(track.reference)].name, k_most_heading));
}

/// The deepest wheel counts, and only that is told.
void check_depth(const SoilTrack& track, const Ground& ground, const Scene& scene, Findings& findings) {
  double deepest = 0;
  size_t which = 0;
  for (size_t i = 0; i < track.nodes.size(); ++i) {
    const Standing standing = find_standing(scene, ground, track.nodes[i].marker, track.road_marker);
    if (!standing.spot) continue;
    const double share = (track.nodes[i].radius - standing.above) / track.nodes[i].radius;
    if (share > deepest) which = i;
    deepest = std::max(deepest, share);
  }
  constexpr double k_most = 0.5;
  if (!(deepest > k_most)) return;
  const double radius = track.nodes[which].radius;
  warn(
      findings, "contact-buried", track.element, "wheels",
      fmt::format("the belt under wheel {} starts {:.4g} deep in the soil, more than half the wheel's radius ({:.4g}): "
                  "the vehicle will be thrown out; start it {:.4g} higher",
                  which + 1, deepest * radius, k_most * radius, deepest * radius));
}

void check_off_road(const SoilTrack& track, const Scene& scene, Findings& findings) {
  for (size_t i = 0; i < track.nodes.size(); ++i) {
    const size_t before = findings.size();
    note_off_road(scene, track.element, "wheel " + std::to_string(i + 1), track.nodes[i].marker, track.road_marker,
                  findings);
    if (findings.size() > before) return;
  }
}

/// The belt reaches to both sides of its wheels along the vehicle's y axis; the first wheel off the road is told.
void check_edges(const SoilTrack& track, const Scene& scene, Findings& findings) {
  const Vec3 across = axis_of(scene.course.marker(track.hull), 1);
  const double half = 0.5 * track.element.par[QV_TRACK_WIDTH];
  const size_t before = findings.size();
  for (const TrackNode& node : track.nodes) {
    const Vec3 way = turned_back(scene.course.marker(node.marker).axes, across);
    note_over_edge(scene, track.element, "width", node.marker, {half * way[0], half * way[1], half * way[2]},
                   track.road_marker, findings);
    if (findings.size() > before) return;
  }
}

}  // namespace

void check_tracks(const Scene& scene, Findings& findings) {
  for (const SoilTrack& track : soil_tracks_of(scene.model)) {
    check_spacing(track, scene, findings);
    check_heading(track, scene, findings);
    const Ground* ground = scene.ground_of(track.element);
    if (ground == nullptr) continue;
    check_depth(track, *ground, scene, findings);
    check_edges(track, scene, findings);
    check_off_road(track, scene, findings);
  }
}

}  // namespace qvslv
