#include "solver/results/vtk_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <utility>

#include "solver/results/hull_picture.h"
#include "solver/results/marker_pose.h"
#include "solver/results/shape_mesh.h"

namespace qvslv {

namespace {

constexpr const char* k_index_tail = "  </Collection>\n</VTKFile>\n";

using Floats = std::vector<float>;
using Integers = std::vector<std::int32_t>;
using Flags = std::vector<std::uint8_t>;

void append(std::vector<double>& coordinates, const Vec3& place) {
  coordinates.insert(coordinates.end(), place.begin(), place.end());
}

void append_corners(Integers& corners, const std::vector<std::array<int, 3>>& triangles, size_t first_point) {
  for (const auto& triangle : triangles)
    for (const int corner : triangle) corners.push_back(corner + static_cast<int>(first_point));
}

/// The largest distance of a coordinate from 0, and the size of what it belongs to.
struct Extent {
  Vec3 low = {0, 0, 0}, high = {0, 0, 0};
  bool empty = true;

  void add(const Vec3& place) {
    for (size_t c = 0; c < 3; ++c) {
      low[c] = empty ? place[c] : std::min(low[c], place[c]);
      high[c] = empty ? place[c] : std::max(high[c], place[c]);
    }
    empty = false;
  }
  double size() const { return std::hypot(high[0] - low[0], high[1] - low[1], high[2] - low[2]); }
  double farthest() const {
    double most = 0;
    for (size_t c = 0; c < 3; ++c) most = std::max({most, std::abs(low[c]), std::abs(high[c])});
    return most;
  }
};

Extent extent_of(const std::vector<Vec3>& points) {
  Extent extent;
  for (const Vec3& point : points) extent.add(point);
  return extent;
}

/// Whether the places of a scene, as it stands at the start, need more than single precision.
bool needs_double(const Recording& recording, const std::vector<TriangleMesh>& shapes) {
  constexpr double k_single = 1.0 / (1 << 24), k_resolved = 1e-6;  // of a coordinate; of the scene
  Extent scene = extent_of(recording.terrain.points);
  for (const Body& body : recording.model->bodies) scene.add(body.position);
  double size = scene.size();
  for (const TriangleMesh& shape : shapes) size = std::max(size, extent_of(shape.points).size());
  for (const Hull& hull : recording.hulls) size = std::max(size, extent_of(hull.mesh.points).size());
  return scene.farthest() * k_single > size * k_resolved;
}

/// The file of a frame's part, in the folder of the run.
std::string part_file(const char* part, long frame) { return fmt::format("frames/{}_{:06}.vtp", part, frame); }

float length_of(const Vec3& v) { return static_cast<float>(std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2])); }

}  // namespace

VtkWriter::VtkWriter(const Recording& recording, ResultsFolder& folder)
    : m_recording(recording),
      m_folder(folder),
      m_has_terrain(!recording.terrain.triangles.empty()),
      m_reaches(recording.waters.size()) {
  const Model& model = *recording.model;
  std::filesystem::create_directories(m_folder.path() + "/frames");
  for (const Body& body : model.bodies) m_shapes.push_back(shape_mesh(body.shape));
  for (const Element& element : model.elements) m_has_points = m_has_points || element.points.count > 0;
  m_double_places = needs_double(recording, m_shapes);
  m_bodies = body_topology();
  m_has_bodies = m_bodies.cells > 0;
  m_hulls = hull_topology();
  if (m_has_terrain) {
    m_thread.post([this, path = m_folder.add("frames/terrain.vtp")] { write_terrain(path); });
  }
  m_index = OutputFile(m_folder.add("frames.pvd"));
  m_index.write("<?xml version=\"1.0\"?>\n<VTKFile type=\"Collection\" version=\"0.1\">\n  <Collection>\n");
  m_index_end = m_index.position();
  m_index.write(k_index_tail);
  m_index.flush();
}

std::vector<const char*> VtkWriter::part_names() const {
  std::vector<const char*> names;
  if (m_has_bodies) names.push_back("bodies");
  if (m_has_points) names.push_back("points");
  if (!m_recording.hulls.empty()) names.push_back("hulls");
  if (!m_recording.waters.empty()) names.push_back("water");
  return names;
}

void VtkWriter::write(const Frame& frame) {
  for (const char* part : part_names()) m_folder.add(part_file(part, m_posted));
  m_thread.post([this, frame] { write_frame(frame); });
  ++m_posted;
}

void VtkWriter::close() {
  m_thread.finish();
  m_index.close();
}

void VtkWriter::write_frame(const Frame& frame) {
  m_parts.clear();
  if (m_has_bodies) write_bodies(frame);
  if (m_has_points) write_points(frame);
  if (!m_recording.hulls.empty()) write_hulls(frame);
  if (!m_recording.waters.empty()) write_water(frame);
  if (m_has_terrain) m_parts.emplace_back("frames/terrain.vtp");
  index_frame(frame.time);
  ++m_frames;
}

void VtkWriter::write_terrain(const std::string& path) {
  const TriangleMesh& terrain = m_recording.terrain;
  Integers corners;
  append_corners(corners, terrain.triangles, 0);
  std::vector<double> coordinates;
  Floats heights;
  for (const Vec3& point : terrain.points) {
    append(coordinates, point);
    heights.push_back(static_cast<float>(point[2]));
  }
  const VtpArray height("height", 1, heights, Packing::fast);
  write_new_file(
      path, vtp_text(triangle_topology(terrain.points.size(), corners, Packing::fast), places(coordinates), {height}));
}

VtpTopology VtkWriter::body_topology() const {
  Integers corners, owners;
  size_t points = 0;
  for (size_t body = 0; body < m_shapes.size(); ++body) {
    append_corners(corners, m_shapes[body].triangles, points);
    points += m_shapes[body].points.size();
    owners.resize(corners.size() / 3, static_cast<std::int32_t>(body));
  }
  VtpTopology topology = triangle_topology(points, corners, Packing::small);
  topology.cell_data.emplace_back("body", 1, owners, Packing::small);
  return topology;
}

void VtkWriter::write_bodies(const Frame& frame) {
  std::vector<double> coordinates;
  coordinates.reserve(3 * m_bodies.points);
  for (size_t body = 0; body < m_shapes.size(); ++body) {
    const MarkerPose pose{frame.body_poses[body].position, rotation_of(frame.body_poses[body].quaternion)};
    for (const Vec3& point : m_shapes[body].points) append(coordinates, to_ground(pose, point));
  }
  write_part("bodies", m_bodies, coordinates, {});
}

VtpTopology VtkWriter::point_topology(const Frame& frame) const {
  VtpTopology topology = vertex_topology(frame.points.size());
  Integers elements;
  for (const ContactPointSample& point : frame.points) elements.push_back(point.element);
  topology.point_data.emplace_back("element", 1, elements, Packing::small);
  return topology;
}

void VtkWriter::write_points(const Frame& frame) {
  const size_t count = frame.points.size();
  if (m_frames == 0 || m_points.points != count) m_points = point_topology(frame);
  std::vector<double> coordinates;
  coordinates.reserve(3 * count);
  Floats sinkage, dynamic_sinkage, local_force, force, normal_force;
  for (Floats* values : {&sinkage, &dynamic_sinkage, &force, &normal_force}) values->reserve(count);
  local_force.reserve(3 * count);
  Flags in_contact;
  in_contact.reserve(count);
  for (const ContactPointSample& point : frame.points) {
    append(coordinates, point.position);
    sinkage.push_back(static_cast<float>(point.sinkage));
    dynamic_sinkage.push_back(static_cast<float>(point.dynamic_sinkage));
    for (const double component : point.local_force) local_force.push_back(static_cast<float>(component));
    force.push_back(length_of(point.local_force));
    normal_force.push_back(static_cast<float>(point.local_force[2]));
    in_contact.push_back(point.in_contact() ? 1 : 0);
  }
  std::vector<VtpArray> data;
  data.reserve(6);
  data.emplace_back("sinkage", 1, sinkage, Packing::fast);
  data.emplace_back("dynamic_sinkage", 1, dynamic_sinkage, Packing::fast);
  data.emplace_back("local_force", 3, local_force, Packing::fast);
  data.emplace_back("force", 1, force, Packing::fast);
  data.emplace_back("normal_force", 1, normal_force, Packing::fast);
  data.emplace_back("in_contact", 1, in_contact, Packing::fast);
  write_part("points", m_points, coordinates, data);
}

VtpTopology VtkWriter::hull_topology() const {
  Integers corners, elements;
  size_t points = 0;
  for (const Hull& hull : m_recording.hulls) {
    append_corners(corners, hull.mesh.triangles, points);
    points += hull.mesh.points.size();
    elements.resize(corners.size() / 3, hull.element);
  }
  VtpTopology topology = triangle_topology(points, corners, Packing::small);
  topology.cell_data.emplace_back("element", 1, elements, Packing::small);
  return topology;
}

void VtkWriter::write_hulls(const Frame& frame) {
  std::vector<double> coordinates;
  coordinates.reserve(3 * m_hulls.points);
  Floats depth;
  depth.reserve(m_hulls.points);
  Flags wet;
  wet.reserve(m_hulls.cells);
  for (const Hull& hull : m_recording.hulls) {
    const Water* water = hull.water == k_none ? nullptr : &m_recording.waters[static_cast<size_t>(hull.water)];
    const HullState state = calc_hull_state(*m_recording.model, hull, water, frame);
    for (const Vec3& point : state.points) append(coordinates, point);
    for (const double value : state.depth) depth.push_back(static_cast<float>(value));
    wet.insert(wet.end(), state.wet.begin(), state.wet.end());
  }
  std::vector<VtpArray> of_nodes, of_patches;
  of_nodes.emplace_back("depth", 1, depth, Packing::fast);
  of_patches.emplace_back("wet", 1, wet, Packing::fast);
  write_part("hulls", m_hulls, coordinates, of_nodes, of_patches);
}

void VtkWriter::write_water(const Frame& frame) {
  TriangleMesh all;
  Floats elevations;
  std::vector<size_t> columns;
  for (size_t k = 0; k < m_recording.waters.size(); ++k) {
    const Water& water = m_recording.waters[k];
    widen(m_reaches[k], m_recording, k, frame);
    const WaterStrip strip = choose_strip(water, m_reaches[k], k_water_columns);
    append_mesh(all, sheet_mesh(*m_recording.model, water, strip, frame), k_identity, {0, 0, 0});
    const SurfaceAt surface(water.wave, frame.time);
    for (const double x : strip.x) elevations.insert(elevations.end(), 2, static_cast<float>(surface.elevation(x)));
    columns.push_back(strip.x.size());
  }
  if (columns != m_water_columns) {
    Integers corners;
    append_corners(corners, all.triangles, 0);
    m_water = triangle_topology(all.points.size(), corners, Packing::small);
    m_water_columns = columns;
  }
  std::vector<double> coordinates;
  coordinates.reserve(3 * all.points.size());
  for (const Vec3& point : all.points) append(coordinates, point);
  std::vector<VtpArray> data;
  data.emplace_back("elevation", 1, elevations, Packing::fast);
  write_part("water", m_water, coordinates, data);
}

VtpArray VtkWriter::places(const std::vector<double>& coordinates) const {
  if (m_double_places) return {"Points", 3, coordinates, Packing::fast};
  return {"Points", 3, Floats(coordinates.begin(), coordinates.end()), Packing::fast};
}

void VtkWriter::write_part(const char* name, const VtpTopology& topology, const std::vector<double>& coordinates,
                           const std::vector<VtpArray>& point_data, const std::vector<VtpArray>& cell_data) {
  m_parts.push_back(part_file(name, m_frames));
  write_new_file(m_folder.path() + "/" + m_parts.back(),
                 vtp_text(topology, places(coordinates), point_data, cell_data));
}

/// Writes the new entries over the closing tags, and the tags behind them again.
void VtkWriter::index_frame(double time) {
  m_index.go_to(m_index_end);
  for (size_t k = 0; k < m_parts.size(); ++k) {
    m_index.write(
        fmt::format("    <DataSet timestep=\"{}\" group=\"\" part=\"{}\" file=\"{}\"/>\n", time, k, m_parts[k]));
  }
  m_index_end = m_index.position();
  m_index.write(k_index_tail);
  m_index.flush();
}

}  // namespace qvslv
