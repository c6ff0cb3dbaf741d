#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "qvbrisk/layouts.h"
#include "solver/checks/checks.h"
#include "solver/checks/soil_contact.h"
#include "solver/checks/standing.h"

/// Wheels and plates on soil (qvsoil_interaction).
namespace qvslv {

namespace {

constexpr double k_misfit =
    1.5;  // between the sizes of an element and of the body's shape; a diameter for a radius is 2

void check_grid(const SoilContact& contact, Findings& findings) {
  constexpr double k_least_around = 60;
  const double around = contact.element.par[QV_SOIL_POINTS_ALONG];
  if (!contact.wheel || around >= k_least_around) return;
  warn(findings, "wheel-grid", contact.element, "grid",
       fmt::format(
           "{:.0f} points around the wheel make it a polygon that bumps along (with 36, results are 5 % off); take "
           "60 or more",
           std::trunc(around)));
}

/// The axis of a cylinder in its body's axes.
Vec3 cylinder_axis(const Shape& shape) {
  Vec3 axis = {0, 0, 0};
  axis[static_cast<size_t>(shape.axis)] = 1;
  return axis;
}

/// A wheel with the axle of a body's cylinder, or around a body's sphere.
bool drawn_as(const SoilContact& contact, const Marker& marker, const Body& body) {
  if (!contact.wheel) return false;
  if (body.shape.kind == ShapeKind::sphere) return true;
  if (body.shape.kind != ShapeKind::cylinder) return false;
  constexpr double k_parallel = 0.99;
  const Vec3 axle = {marker.orientation[3], marker.orientation[4], marker.orientation[5]};
  return std::abs(dot(axle, cylinder_axis(body.shape))) > k_parallel;
}

void check_shape(const SoilContact& contact, const Model& model, Findings& findings) {
  const Marker& marker = model.markers[static_cast<size_t>(contact.marker)];
  if (marker.body == k_ground) return;
  const Body& body = model.bodies[static_cast<size_t>(marker.body)];
  const auto note = [&](const char* key, double value, const char* drawn, double other) {
    warn(findings, "contact-size", contact.element, key,
         fmt::format("is {:.4g}, and the body '{}' is drawn with the {} {:.4g}; make the two agree", value, body.name,
                     drawn, other));
  };
  if (drawn_as(contact, marker, body)) {
    const double radius = body.shape.radius;
    if (contact.size > k_misfit * radius || contact.size < radius / k_misfit)
      note("radius", contact.size, "radius", radius);
    const double length = body.shape.kind == ShapeKind::sphere ? 2 * radius : body.shape.length;
    if (contact.width > k_misfit * length) note("width", contact.width, "length", length);
  } else if (!contact.wheel && body.shape.kind == ShapeKind::box) {
    const double largest = std::max({body.shape.size[0], body.shape.size[1], body.shape.size[2]});
    if (contact.size > k_misfit * largest) note("length", contact.size, "largest edge", largest);
    if (contact.width > k_misfit * largest) note("width", contact.width, "largest edge", largest);
  }
}

void check_spacing(const SoilContact& contact, const Ground& ground, const Scene& scene, Findings& findings) {
  if (ground.flat() || ground.edge() <= contact.size) return;
  warn(findings, "contact-road-spacing", contact.element, contact.size_key(),
       fmt::format(
           "is {:.4g}, less than the edges of the triangles of the uneven road '{}', about {:.4g}: the body meets "
           "single facets and their edges; make the road's spacing smaller",
           contact.size, scene.text(contact.element.road_string), ground.edge()));
}

void check_axle(const SoilContact& contact, const Standing& standing, const Scene& scene, Findings& findings) {
  constexpr double k_most_tilt = 0.5;  // sine of 30 degrees
  if (!contact.wheel) return;
  const Vec3 axle =
      turned_back(scene.course.marker(contact.road_marker).axes, axis_of(scene.course.marker(contact.marker), 1));
  const double tilt = std::abs(dot(axle, standing.spot ? standing.spot->normal : Vec3{0, 0, 1}));
  if (tilt <= k_most_tilt) return;
  constexpr double k_degrees = 57.29577951308232;
  warn(findings, "wheel-axle", contact.element, "marker",
       fmt::format(
           "the y axis of '{}' is the wheel's axle, and it stands at {:.0f} degrees to the road's plane (more than "
           "30); turn the marker so that its y axis lies along the axle",
           scene.model.markers[static_cast<size_t>(contact.marker)].name, std::asin(std::min(1.0, tilt)) * k_degrees));
}

void check_depth(const SoilContact& contact, const Standing& standing, Findings& findings) {
  if (!standing.spot) return;
  const double reach = contact.wheel ? contact.size : 0;
  const double most = 0.5 * (contact.wheel ? contact.size : std::min(contact.size, contact.width));
  const double depth = reach - standing.above;
  if (depth <= most) return;
  warn(
      findings, "contact-buried", contact.element, "marker",
      fmt::format("the {} starts {:.4g} deep in the soil, more than half its {} ({:.4g}): it will be thrown out; start "
                  "the body {:.4g} higher",
                  contact.wheel ? "wheel" : "plate", depth, contact.wheel ? "radius" : "shorter edge", most, depth));
}

void check_edges(const SoilContact& contact, const Scene& scene, Findings& findings) {
  const auto note = [&](const char* key, const Vec3& half_way) {
    note_over_edge(scene, contact.element, key, contact.marker, half_way, contact.road_marker, findings);
  };
  const size_t before = findings.size();
  note("width", {0, 0.5 * contact.width, 0});
  if (!contact.wheel && findings.size() == before) note("length", {0.5 * contact.size, 0, 0});
}

}  // namespace

void check_contacts(const Scene& scene, Findings& findings) {
  for (const SoilContact& contact : soil_contacts_of(scene.model)) {
    check_grid(contact, findings);
    check_shape(contact, scene.model, findings);
    const Ground* ground = scene.ground_of(contact.element);
    if (ground == nullptr) continue;
    check_spacing(contact, *ground, scene, findings);
    const Standing standing = find_standing(scene, *ground, contact.marker, contact.road_marker);
    check_axle(contact, standing, scene, findings);
    check_depth(contact, standing, findings);
    check_edges(contact, scene, findings);
    note_off_road(scene, contact.element, contact.wheel ? "the wheel's axle" : "the plate's middle", contact.marker,
                  contact.road_marker, findings);
  }
}

}  // namespace qvslv
