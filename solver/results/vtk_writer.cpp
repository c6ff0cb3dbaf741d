#include "solver/results/vtk_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "solver/results/hull_picture.h"
#include "solver/results/marker_pose.h"
#include "solver/results/shape_mesh.h"

namespace qvslv {

namespace {

constexpr const char* k_index_tail = "  </Collection>\n</VTKFile>\n";

/// Builds the text of a PolyData file.
class PolyData {
public:
  PolyData(const std::vector<Vec3>& points, const std::vector<std::array<int, 3>>& triangles, bool vertices) {
    add("<?xml version=\"1.0\"?>\n<VTKFile type=\"PolyData\" version=\"0.1\" byte_order=\"LittleEndian\">\n  "
        "<PolyData>\n");
    add("    <Piece NumberOfPoints=\"{}\" NumberOfVerts=\"{}\" NumberOfLines=\"0\" NumberOfStrips=\"0\" "
        "NumberOfPolys=\"{}\">\n",
        points.size(), vertices ? points.size() : 0, triangles.size());
    add("      <Points>\n");
    open_array("Float64", "Points", 3);
    for (const Vec3& p : points) add("{} {} {}\n", p[0], p[1], p[2]);
    close_array();
    add("      </Points>\n");
    if (vertices) add_vertices(points.size());
    if (!triangles.empty()) add_triangles(triangles);
  }

  void begin(const char* section) { add("      <{}>\n", section); }
  void end(const char* section) { add("      </{}>\n", section); }

  /// Adds an array of `count` numbers, one per point or cell; `value(k)` gives the k-th.
  template <class Value>
  void scalars(const char* name, const char* type, size_t count, Value&& value) {
    open_array(type, name, 1);
    for (size_t k = 0; k < count; ++k) add("{}\n", value(k));
    close_array();
  }

  template <class Value>
  void vectors(const char* name, size_t count, Value&& value) {
    open_array("Float64", name, 3);
    for (size_t k = 0; k < count; ++k) {
      const Vec3 v = value(k);
      add("{} {} {}\n", v[0], v[1], v[2]);
    }
    close_array();
  }

  std::string finish() {
    add("    </Piece>\n  </PolyData>\n</VTKFile>\n");
    return fmt::to_string(m_text);
  }

private:
  template <class... Args>
  void add(fmt::format_string<Args...> format, Args&&... args) {
    fmt::format_to(std::back_inserter(m_text), format, std::forward<Args>(args)...);
  }

  void open_array(const char* type, const char* name, int components) {
    add("        <DataArray type=\"{}\" Name=\"{}\" NumberOfComponents=\"{}\" format=\"ascii\">\n", type, name,
        components);
  }
  void close_array() { add("        </DataArray>\n"); }

  void add_vertices(size_t count) {
    add("      <Verts>\n");
    scalars("connectivity", "Int32", count, [](size_t k) { return k; });
    scalars("offsets", "Int32", count, [](size_t k) { return k + 1; });
    add("      </Verts>\n");
  }

  void add_triangles(const std::vector<std::array<int, 3>>& triangles) {
    add("      <Polys>\n");
    open_array("Int32", "connectivity", 1);
    for (const auto& t : triangles) add("{} {} {}\n", t[0], t[1], t[2]);
    close_array();
    scalars("offsets", "Int32", triangles.size(), [](size_t k) { return 3 * (k + 1); });
    add("      </Polys>\n");
  }

  fmt::memory_buffer m_text;
};

}  // namespace

VtkWriter::VtkWriter(const Recording& recording, ResultsFolder& folder)
    : m_recording(recording),
      m_folder(folder),
      m_has_terrain(!recording.terrain.triangles.empty()),
      m_has_points(false),
      m_reaches(recording.waters.size()) {
  const Model& model = *recording.model;
  const TriangleMesh& terrain = recording.terrain;
  std::filesystem::create_directories(m_folder.path() + "/frames");
  for (const Body& body : model.bodies) m_shapes.push_back(shape_mesh(body.shape));
  for (const Element& element : model.elements) m_has_points = m_has_points || element.points.count > 0;
  if (m_has_terrain) {
    PolyData file(terrain.points, terrain.triangles, false);
    file.begin("PointData");
    file.scalars("height", "Float64", terrain.points.size(), [&](size_t k) { return terrain.points[k][2]; });
    file.end("PointData");
    write_file("frames/terrain.vtp", file.finish());
  }
  m_index = OutputFile(m_folder.add("frames.pvd"));
  m_index.write("<?xml version=\"1.0\"?>\n<VTKFile type=\"Collection\" version=\"0.1\">\n  <Collection>\n");
  m_index_end = m_index.position();
  m_index.write(k_index_tail);
  m_index.flush();
}

void VtkWriter::write(const Frame& frame) {
  std::vector<std::string> parts = {fmt::format("frames/bodies_{:06}.vtp", m_frames)};
  write_bodies(frame, parts.back());
  if (m_has_points) {
    parts.push_back(fmt::format("frames/points_{:06}.vtp", m_frames));
    write_points(frame, parts.back());
  }
  if (!m_recording.hulls.empty()) {
    parts.push_back(fmt::format("frames/hulls_{:06}.vtp", m_frames));
    write_hulls(frame, parts.back());
  }
  if (!m_recording.waters.empty()) {
    parts.push_back(fmt::format("frames/water_{:06}.vtp", m_frames));
    write_water(frame, parts.back());
  }
  if (m_has_terrain) parts.push_back("frames/terrain.vtp");
  index_frame(frame.time, parts);
  ++m_frames;
}

void VtkWriter::write_bodies(const Frame& frame, const std::string& name) {
  TriangleMesh all;
  std::vector<size_t> owners;  // per triangle
  for (size_t i = 0; i < m_shapes.size(); ++i) {
    append_mesh(all, m_shapes[i], rotation_of(frame.body_poses[i].quaternion), frame.body_poses[i].position);
    owners.resize(all.triangles.size(), i);
  }
  PolyData file(all.points, all.triangles, false);
  file.begin("CellData");
  file.scalars("body", "Int32", owners.size(), [&](size_t k) { return owners[k]; });
  file.end("CellData");
  write_file(name, file.finish());
}

void VtkWriter::write_points(const Frame& frame, const std::string& name) {
  std::vector<Vec3> positions;
  for (const ContactPointSample& point : frame.points) positions.push_back(point.position);
  PolyData file(positions, {}, true);
  const std::vector<ContactPointSample>& p = frame.points;
  const size_t n = p.size();
  file.begin("PointData");
  file.scalars("sinkage", "Float64", n, [&](size_t k) { return p[k].sinkage; });
  file.scalars("dynamic_sinkage", "Float64", n, [&](size_t k) { return p[k].dynamic_sinkage; });
  file.vectors("local_force", n, [&](size_t k) { return p[k].local_force; });
  file.scalars("force", "Float64", n, [&](size_t k) {
    const Vec3& f = p[k].local_force;
    return std::sqrt(f[0] * f[0] + f[1] * f[1] + f[2] * f[2]);
  });
  file.scalars("normal_force", "Float64", n, [&](size_t k) { return p[k].local_force[2]; });
  file.scalars("in_contact", "Int32", n, [&](size_t k) { return p[k].in_contact() ? 1 : 0; });
  file.scalars("element", "Int32", n, [&](size_t k) { return p[k].element; });
  file.end("PointData");
  write_file(name, file.finish());
}

void VtkWriter::write_hulls(const Frame& frame, const std::string& name) {
  TriangleMesh all;
  std::vector<double> depth;       // per node
  std::vector<int> wet, elements;  // per patch
  for (const Hull& hull : m_recording.hulls) {
    const Water* water = hull.water == k_none ? nullptr : &m_recording.waters[static_cast<size_t>(hull.water)];
    const HullState state = calc_hull_state(*m_recording.model, hull, water, frame);
    append_mesh(all, {state.points, hull.mesh.triangles}, k_identity, {0, 0, 0});
    depth.insert(depth.end(), state.depth.begin(), state.depth.end());
    wet.insert(wet.end(), state.wet.begin(), state.wet.end());
    elements.resize(all.triangles.size(), hull.element);
  }
  PolyData file(all.points, all.triangles, false);
  file.begin("PointData");
  file.scalars("depth", "Float64", depth.size(), [&](size_t k) { return depth[k]; });
  file.end("PointData");
  file.begin("CellData");
  file.scalars("wet", "Int32", wet.size(), [&](size_t k) { return wet[k]; });
  file.scalars("element", "Int32", elements.size(), [&](size_t k) { return elements[k]; });
  file.end("CellData");
  write_file(name, file.finish());
}

void VtkWriter::write_water(const Frame& frame, const std::string& name) {
  TriangleMesh all;
  std::vector<double> elevations;
  for (size_t k = 0; k < m_recording.waters.size(); ++k) {
    const Water& water = m_recording.waters[k];
    widen(m_reaches[k], m_recording, k, frame);
    const WaterStrip strip = choose_strip(water, m_reaches[k], k_water_columns);
    append_mesh(all, sheet_mesh(*m_recording.model, water, strip, frame), k_identity, {0, 0, 0});
    for (const double x : strip.x) elevations.insert(elevations.end(), 2, find_level(water, frame.time, x));
  }
  PolyData file(all.points, all.triangles, false);
  file.begin("PointData");
  file.scalars("elevation", "Float64", elevations.size(), [&](size_t k) { return elevations[k]; });
  file.end("PointData");
  write_file(name, file.finish());
}

/// Writes the new entries over the closing tags, and the tags behind them again.
void VtkWriter::index_frame(double time, const std::vector<std::string>& parts) {
  m_index.go_to(m_index_end);
  for (size_t k = 0; k < parts.size(); ++k) {
    m_index.write(
        fmt::format("    <DataSet timestep=\"{}\" group=\"\" part=\"{}\" file=\"{}\"/>\n", time, k, parts[k]));
  }
  m_index_end = m_index.position();
  m_index.write(k_index_tail);
  m_index.flush();
}

void VtkWriter::write_file(const std::string& name, const std::string& text) {
  write_new_file(m_folder.add(name), text);
}

}  // namespace qvslv
