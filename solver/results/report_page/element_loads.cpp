#include "solver/results/report_page/element_loads.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "solver/results/marker_pose.h"

namespace qvslv {

namespace {

constexpr size_t k_no_column = 0;  // the first column is the time

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

/// The row with the frame's time; null if there is none.
const std::vector<double>* find_row(const Frame& frame, const std::vector<std::vector<double>>& rows) {
  if (!frame.row.empty()) return &frame.row;
  const auto row = std::lower_bound(rows.begin(), rows.end(), frame.time,
                                    [](const std::vector<double>& r, double time) { return r[0] < time; });
  return row != rows.end() && (*row)[0] == frame.time ? &*row : nullptr;
}

}  // namespace

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
  const std::vector<double>* row = find_row(frame, rows);
  std::vector<ElementLoad> loads;
  for (size_t k = 0; k < m_elements.size(); ++k) {
    const Element& element = m_model.elements[static_cast<size_t>(m_elements[k])];
    ElementLoad load;
    load.place = center_of_pressure(frame, m_elements[k], find_marker_place(m_model, element.marker, frame));
    if (row != nullptr) {
      Vec3 force{};
      for (size_t c = 0; c < 3; ++c) force[c] = (*row)[m_columns[k][c]];
      load.force = from_marker_axes(m_model, element.axes, frame, force);
    }
    loads.push_back(load);
  }
  return loads;
}

}  // namespace qvslv
