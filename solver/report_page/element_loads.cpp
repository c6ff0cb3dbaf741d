#include "solver/report_page/element_loads.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace qvslv {

namespace {

constexpr size_t k_no_column = 0;  // the first column is the time

Vec3 cross(const Vec3& a, const Vec3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// A unit vector, or no vector at all.
Vec3 unit(const Vec3& v) {
  const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
  if (!(length > 0)) return {0, 0, 0};
  return {v[0] / length, v[1] / length, v[2] / length};
}

Vec3 rotated(const Rotation& axes, const Vec3& v) {
  Vec3 out{};
  for (size_t row = 0; row < 3; ++row) {
    for (size_t column = 0; column < 3; ++column) out[row] += axes[3 * column + row] * v[column];
  }
  return out;
}

/// v turned by a unit quaternion w, x, y, z.
Vec3 rotated(const std::array<double, 4>& q, const Vec3& v) {
  const Vec3 axis = {q[1], q[2], q[3]};
  const Vec3 once = cross(axis, v);
  const Vec3 twice = cross(axis, once);
  Vec3 out = v;
  for (size_t c = 0; c < 3; ++c) out[c] += 2 * (q[0] * once[c] + twice[c]);
  return out;
}

/// A vector of a marker's axes in ground axes.
Vec3 from_marker_axes(const Model& model, int marker, const Frame& frame, const Vec3& v) {
  if (marker == k_none) return v;
  const Marker& at = model.markers[static_cast<size_t>(marker)];
  const Vec3 in_body = rotated(at.orientation, v);
  return at.body == k_ground ? in_body : rotated(frame.body_poses[static_cast<size_t>(at.body)].quaternion, in_body);
}

Vec3 marker_place(const Model& model, int marker, const Frame& frame) {
  if (marker == k_none) return {0, 0, 0};
  const Marker& at = model.markers[static_cast<size_t>(marker)];
  if (at.body == k_ground) return at.position;
  const auto body = static_cast<size_t>(at.body);
  Vec3 from_center{};
  for (size_t c = 0; c < 3; ++c) from_center[c] = at.position[c] - model.bodies[body].center[c];
  Vec3 place = rotated(frame.body_poses[body].quaternion, from_center);
  for (size_t c = 0; c < 3; ++c) place[c] += frame.body_poses[body].position[c];
  return place;
}

Vec3 center_of_pressure(const Frame& frame, int element, const Vec3& without_points) {
  double weight = 0;
  Vec3 sum{};
  for (const ContactPointSample& point : frame.points) {
    if (point.element != element || !point.in_contact()) continue;
    const double normal_force = std::abs(point.local_force[2]);
    weight += normal_force;
    for (size_t c = 0; c < 3; ++c) sum[c] += normal_force * point.position[c];
  }
  if (!(weight > 0)) return without_points;
  for (double& value : sum) value /= weight;
  return sum;
}

}  // namespace

ContactAxes::ContactAxes(const Model& model, const TriangleMesh& terrain, const UpAxis& up)
    : m_model(model), m_terrain(terrain, up) {}

Vec3 ContactAxes::force_in_ground(const ContactPointSample& point, const Frame& frame) const {
  const Element& element = m_model.elements[static_cast<size_t>(point.element)];
  const Vec3 normal = m_terrain.find_normal(point.position);
  const Vec3 y = from_marker_axes(m_model, element.marker, frame, {0, 1, 0});
  const Vec3 shear_1 = unit(cross(y, normal));
  const Vec3 shear_2 = unit(cross(normal, shear_1));
  Vec3 force{};
  for (size_t c = 0; c < 3; ++c) {
    force[c] = point.local_force[0] * shear_1[c] + point.local_force[1] * shear_2[c] + point.local_force[2] * normal[c];
  }
  return force;
}

ElementLoads::ElementLoads(const Model& model, const std::vector<std::string>& columns) : m_model(model) {
  std::map<std::string, size_t> places;
  for (size_t k = 0; k < columns.size(); ++k) places[columns[k].substr(0, columns[k].find(" ["))] = k;
  for (size_t i = 0; i < model.elements.size(); ++i) {
    const Element& element = model.elements[i];
    if (element.kind != ElementKind::force) continue;
    std::array<size_t, 3> found = {k_no_column, k_no_column, k_no_column};
    for (const ResultColumn& column : element.columns) {
      const auto place = places.find(element.name + "." + column.name);
      if (column.index >= 0 && column.index < 3 && place != places.end()) {
        found[static_cast<size_t>(column.index)] = place->second;
      }
    }
    if (std::find(found.begin(), found.end(), k_no_column) != found.end()) continue;
    m_elements.push_back(static_cast<int>(i));
    m_columns.push_back(found);
  }
}

std::vector<ElementLoad> ElementLoads::find_loads(const Frame& frame,
                                                  const std::vector<std::vector<double>>& rows) const {
  const auto row = std::lower_bound(rows.begin(), rows.end(), frame.time,
                                    [](const std::vector<double>& r, double time) { return r[0] < time; });
  std::vector<ElementLoad> loads;
  for (size_t k = 0; k < m_elements.size(); ++k) {
    const Element& element = m_model.elements[static_cast<size_t>(m_elements[k])];
    ElementLoad load;
    load.place = center_of_pressure(frame, m_elements[k], marker_place(m_model, element.marker, frame));
    if (row != rows.end() && (*row)[0] == frame.time) {
      Vec3 force{};
      for (size_t c = 0; c < 3; ++c) force[c] = (*row)[m_columns[k][c]];
      load.force = from_marker_axes(m_model, element.axes, frame, force);
    }
    loads.push_back(load);
  }
  return loads;
}

}  // namespace qvslv
