#include "solver/elements/hull_water.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace qvslv {

namespace fs = std::filesystem;

namespace {

/// A frame seen in another frame.
struct Pose {
  Vec3 place = {0, 0, 0};
  Rotation axes = k_identity;
};

Vec3 outwards(const Pose& pose, const Vec3& p) {
  Vec3 result = pose.place;
  for (size_t column = 0; column < 3; ++column)
    for (size_t k = 0; k < 3; ++k) result[k] += pose.axes[3 * column + k] * p[column];
  return result;
}

/// The x coordinate of a point in a frame.
double x_within(const Pose& pose, const Vec3& p) {
  double x = 0;
  for (size_t k = 0; k < 3; ++k) x += pose.axes[k] * (p[k] - pose.place[k]);
  return x;
}

/// Start of a body in ground axes; none if a joint carries the body, because its start then follows from the joint.
std::optional<Pose> start_of(int body, const Model& model) {
  if (body == k_ground) return Pose{};
  for (const Joint& joint : model.joints)
    if (model.markers[static_cast<size_t>(joint.child_marker)].body == body) return std::nullopt;
  const Body& from = model.bodies[static_cast<size_t>(body)];
  return Pose{from.position, from.orientation};
}

struct Range {
  double low = 0, high = 0;
};

/// Range of x that a WAVE file covers: from its recipe if it has one, otherwise from the file; none if it is
/// unreadable.
std::optional<Range> range_of_wave(const std::string& file, const Reading& reading) {
  for (const WaveRecipe& recipe : reading.file.waves)
    if (fs::path(recipe.file).lexically_normal() == fs::path(file)) return Range{0, recipe.settings.extent};
  const std::optional<WaveFile> wave = read_wave_file(data_file_path(file, reading.file));
  if (!wave || wave->x.empty()) return std::nullopt;
  return Range{wave->x.front(), wave->x.back()};
}

Range reach_of(const TriangleMesh& mesh, const Pose& body, const std::optional<Pose>& on_body, const Pose& water) {
  Range reach;
  for (size_t i = 0; i < mesh.points.size(); ++i) {
    const Vec3& point = mesh.points[i];
    const double x = x_within(water, outwards(body, on_body ? outwards(*on_body, point) : point));
    reach = i == 0 ? Range{x, x} : Range{std::min(reach.low, x), std::max(reach.high, x)};
  }
  return reach;
}

Pose pose_of(const Marker& marker) { return {marker.position, marker.orientation}; }

}  // namespace

void warn_about_reach(const TableReader& table, const TriangleMesh& mesh, int hull_body, int water_marker,
                      Reading& reading) {
  const Model& model = reading.model();
  const Marker& water = model.markers[static_cast<size_t>(water_marker)];
  const std::optional<Pose> body = start_of(hull_body, model);
  const std::string file = wave_file_of(table, "wave", reading);
  const std::optional<Range> wave = range_of_wave(file, reading);
  if (!body || !wave || water.body != k_ground) return;
  std::optional<Pose> carrier;
  if (table.has("mesh_marker"))
    carrier = pose_of(model.markers[static_cast<size_t>(reading.marker(table, "mesh_marker"))]);
  const Range reach = reach_of(mesh, *body, carrier, pose_of(water));
  const double first = std::max(0.0, wave->low);
  if (reach.low >= first && reach.high < wave->high) return;
  const std::string text =
      table.what() + ": at the start the hull reaches from x = " + number_text(reach.low) + " to " +
      number_text(reach.high) + " in the axes of '" + water.name + "', and '" + file + "' has water from " +
      number_text(first) + " to " + number_text(wave->high) +
      ": corners beyond get no drag, triangles beyond no buoyancy; move the water marker or the body";
  reading.file.findings.push_back({Level::warning, "hull-off-table", table.at(), text});
}

}  // namespace qvslv
