#include "solver/report_page/element_loads.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "solver/marker_pose.h"

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

std::array<Vec3, 3> ContactAxes::directions(const ContactPointSample& point, const Frame& frame) const {
  const Element& element = m_model.elements[static_cast<size_t>(point.element)];
  const Vec3 normal = m_terrain.find_normal(point.position);
  const Vec3 y = from_marker_axes(m_model, element.marker, frame, {0, 1, 0});
  const Vec3 shear_1 = unit(cross(y, normal));
  return {shear_1, unit(cross(normal, shear_1)), normal};
}

Vec3 ContactAxes::force_in_ground(const ContactPointSample& point, const Frame& frame) const {
  const std::array<Vec3, 3> along = directions(point, frame);
  Vec3 force{};
  for (size_t k = 0; k < 3; ++k)
    for (size_t c = 0; c < 3; ++c) force[c] += point.local_force[k] * along[k][c];
  return force;
}

Vec3 ContactAxes::force_along(const ContactPointSample& point, const Vec3& in_ground, const Frame& frame) const {
  const std::array<Vec3, 3> along = directions(point, frame);
  Vec3 force{};
  for (size_t k = 0; k < 3; ++k)
    for (size_t c = 0; c < 3; ++c) force[k] += in_ground[c] * along[k][c];
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
    load.place = center_of_pressure(frame, m_elements[k], find_marker_place(m_model, element.marker, frame));
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
