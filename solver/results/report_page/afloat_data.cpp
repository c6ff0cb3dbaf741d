#include "solver/results/report_page/afloat_data.h"

#include "solver/results/hull_picture.h"
#include "solver/results/marker_pose.h"

namespace qvslv {

namespace {

using Json = nlohmann::ordered_json;

/// Place and axes of a marker in the frame of its body, counted from the centre of mass; for a marker on the ground,
/// counted from the page's origin.
MarkerPose pose_on_body(const Model& model, int marker, const Vec3& origin) {
  const Marker& at = model.markers[static_cast<size_t>(marker)];
  const Vec3 middle = at.body == k_ground ? origin : model.bodies[static_cast<size_t>(at.body)].center;
  MarkerPose pose{at.position, at.orientation};
  for (size_t c = 0; c < 3; ++c) pose.place[c] -= middle[c];
  return pose;
}

int body_of(const Model& model, int marker) { return model.markers[static_cast<size_t>(marker)].body; }

}  // namespace

AfloatData::AfloatData(const Recording& recording, const Vec3& origin) : m_recording(recording), m_origin(origin) {
  for (const Hull& hull : recording.hulls) m_patches += hull.mesh.triangles.size();
  choose_strips();
}

void AfloatData::choose_strips() {
  for (size_t k = 0; k < m_recording.waters.size(); ++k) {
    WaterReach reach;
    for (const Frame& frame : m_recording.frames) widen(reach, m_recording, k, frame);
    m_strips.push_back(choose_strip(m_recording.waters[k], reach, k_water_columns));
    for (const double x : m_strips.back().x) m_x.push_back(static_cast<float>(x));
  }
}

void AfloatData::append(const Frame& frame) {
  for (size_t k = 0; k < m_strips.size(); ++k) {
    const SurfaceAt surface(m_recording.waters[k].wave, frame.time);
    for (const double x : m_strips[k].x) m_levels.push_back(static_cast<float>(surface.elevation(x)));
  }
  const size_t first = m_wet.size();
  m_wet.resize(first + (m_patches + 7) / 8, 0);
  size_t bit = 0;
  for (const Hull& hull : m_recording.hulls) {
    const Water* water = hull.water == k_none ? nullptr : &m_recording.waters[static_cast<size_t>(hull.water)];
    for (const bool wet : calc_hull_state(*m_recording.model, hull, water, frame).wet) {
      if (wet) m_wet[first + bit / 8] = static_cast<std::uint8_t>(m_wet[first + bit / 8] | 1U << bit % 8);
      ++bit;
    }
  }
}

Json AfloatData::hulls_json() const {
  Json list = Json::array();
  for (const Hull& hull : m_recording.hulls) {
    list.push_back({{"element", hull.element},
                    {"body", body_of(*m_recording.model, hull.marker)},
                    {"water", hull.water},
                    {"nodes", hull.mesh.points.size()},
                    {"patches", hull.mesh.triangles.size()}});
  }
  return list;
}

Json AfloatData::waters_json() const {
  Json list = Json::array();
  for (size_t k = 0; k < m_strips.size(); ++k) {
    const int marker = m_recording.waters[k].marker;
    const MarkerPose pose = pose_on_body(*m_recording.model, marker, m_origin);
    list.push_back({{"body", body_of(*m_recording.model, marker)},
                    {"place", pose.place},
                    {"axes", pose.axes},
                    {"y", {m_strips[k].y_low, m_strips[k].y_high}},
                    {"columns", m_strips[k].x.size()}});
  }
  return list;
}

void AfloatData::add_meshes(PageParts& page) const {
  std::vector<float> nodes;
  std::vector<std::uint32_t> patches;
  for (const Hull& hull : m_recording.hulls) {
    const MarkerPose pose = pose_on_body(*m_recording.model, hull.marker, m_origin);
    for (const Vec3& node : hull.mesh.points) {
      for (const double value : to_ground(pose, node)) nodes.push_back(static_cast<float>(value));
    }
    for (const auto& patch : hull.mesh.triangles) {
      for (const int node : patch) patches.push_back(static_cast<std::uint32_t>(node));
    }
  }
  page.add("hull_nodes", "f32", nodes);
  page.add("hull_patches", "u32", patches);
}

void AfloatData::add_to(PageParts& page) const {
  page.json["hulls"] = hulls_json();
  page.json["waters"] = waters_json();
  if (m_recording.hulls.empty()) return;
  add_meshes(page);
  page.add("hull_wet", "u8", m_wet);
  page.add("water_x", "f32", m_x);
  page.add("water_levels", "f32", m_levels);
}

}  // namespace qvslv
