#include "solver/results/recorder.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "solver/data_files/find_data_file.h"
#include "solver/data_files/road_mesh.h"
#include "solver/results/csv.h"
#include "solver/results/frames.h"
#include "solver/results/hull_picture.h"

namespace qvslv {

namespace {

using Report = std::function<void(const std::string&)>;

/// The text of a string and the file that it names.
struct NamedFile {
  std::string name, path;
};

NamedFile named_file(const Model& model, int id) {
  for (const StringEntity& entity : model.strings)
    if (entity.id == id)
      return {entity.text, entity.path.empty() ? find_data_file(entity.text, model.path) : entity.path};
  return {};
}

RoadPlan plan_of(const Element& element, const TriangleMesh& mesh) {
  RoadPlan plan{element.road_string, element.road_marker, mesh.points.front(), mesh.points.front()};
  for (const Vec3& point : mesh.points)
    for (size_t k = 0; k < 3; ++k) {
      plan.low[k] = std::min(plan.low[k], point[k]);
      plan.high[k] = std::max(plan.high[k], point[k]);
    }
  return plan;
}

/// Notes where all roads of the model lie, each once, and, if there will be pictures, adds them to the terrain in
/// ground axes at the poses of their markers.
void place_roads(Recording& recording, const Engine& engine, RoadMeshes& roads, bool pictures, const Report& report) {
  const Model& model = engine.multibody().model();
  std::set<std::pair<int, int>> seen;
  for (const Element& element : model.elements) {
    if (element.road_string == 0 || !seen.emplace(element.road_string, element.road_marker).second) continue;
    const NamedFile file = named_file(model, element.road_string);
    const auto mesh = roads.take(file.path);
    if (!mesh) {
      if (report) report("element " + element.name + ": no picture of the road " + file.name + ": it cannot be read");
      continue;
    }
    recording.roads.push_back(plan_of(element, *mesh));
    if (!pictures) continue;
    const SimTK::Transform pose = engine.multibody().find_pose(engine.state(), element.road_marker);
    Rotation rotation{};
    for (int k = 0; k < 9; ++k) rotation[static_cast<size_t>(k)] = pose.R()[k % 3][k / 3];
    append_mesh(recording.terrain, *mesh, rotation, {pose.p()[0], pose.p()[1], pose.p()[2]});
  }
}

/// Adds the water that a hull floats in. Returns its index in Recording::waters, or k_none if its file cannot be read.
int place_water(Recording& recording, const Hull& hull, const Report& report) {
  const Model& model = *recording.model;
  const Element& element = model.elements[static_cast<size_t>(hull.element)];
  const NamedFile file = named_file(model, hull.wave_string);
  auto wave = read_wave_file(file.path);
  if (!wave) {
    if (report) report("element " + element.name + ": no picture of the water " + file.name + ": it cannot be read");
    return k_none;
  }
  wave->velocity.clear();
  recording.waters.push_back({hull.water_marker, std::move(*wave)});
  return static_cast<int>(recording.waters.size()) - 1;
}

/// Adds the patch meshes of the model, each with its water.
void place_hulls(Recording& recording, const Report& report) {
  const Model& model = *recording.model;
  std::map<std::pair<int, int>, int> waters;  // by string and marker
  for (size_t i = 0; i < model.elements.size(); ++i) {
    if (!is_hull(model.elements[i])) continue;
    std::optional<Hull> hull = read_hull(model, static_cast<int>(i));
    if (!hull) {
      if (report) report("element " + model.elements[i].name + ": no picture of the hull: its par holds no whole mesh");
      continue;
    }
    const auto [water, added] = waters.try_emplace({hull->wave_string, hull->water_marker}, k_none);
    if (added) water->second = place_water(recording, *hull, report);
    hull->water = water->second;
    recording.hulls.push_back(std::move(*hull));
  }
}

size_t bytes_of(const Frame& frame) {
  return sizeof frame + frame.body_poses.size() * sizeof(BodyPose) + frame.points.size() * sizeof(ContactPointSample) +
         frame.row.size() * sizeof(double);
}

}  // namespace

Recorder::Recorder(const Engine& engine, ResultsFolder& folder, const Report& report, const RecordingLimits& limits,
                   RoadMeshes roads)
    : m_kinds(engine.multibody().model().simulation.results),
      m_frame_step(find_frame_step(engine.multibody().model().simulation)),
      m_end_time(engine.multibody().model().simulation.end_time),
      m_columns(result_columns(engine.multibody().model())),
      m_frames(limits.frames),
      m_rows(limits.rows),
      m_folder(folder) {
  const Model& model = engine.multibody().model();
  const bool pictures = m_kinds.frames || m_kinds.page;
  m_recording.model = &model;
  const Report& tell = pictures ? report : Report{};
  place_roads(m_recording, engine, roads, pictures, tell);
  place_hulls(m_recording, tell);
  m_recording.columns = headers_of(m_columns);
  if (m_kinds.table) {
    m_csv = std::make_unique<OutputFile>(folder.add("results.csv"));
    m_csv->write(csv_line(m_recording.columns));
    m_csv->flush();
  }
  if (m_kinds.frames) m_vtk = std::make_unique<VtkWriter>(m_recording, folder);
  if (pictures && std::any_of(model.elements.begin(), model.elements.end(), is_belt))
    m_contact_axes = std::make_unique<ContactAxes>(model, m_recording.terrain, find_up(model.gravity));
}

void Recorder::record(const Engine& engine) {
  m_folder.check_held();
  if (m_kinds.table || m_kinds.page) record_row(engine);
  if ((m_kinds.frames || m_kinds.page) && frame_due(engine.time())) record_frame(engine);
}

void Recorder::record_row(const Engine& engine) {
  m_row = calc_result_row(m_columns, engine);
  if (m_csv) {
    m_csv->write(csv_line(m_row));
    m_csv->flush();
  }
  if (!m_kinds.page) return;
  m_rows.add(m_recording.rows, m_row, sizeof(std::vector<double>) + m_row.size() * sizeof(double));
  m_recording.row_count = m_rows.count();
}

void Recorder::record_frame(const Engine& engine) {
  Frame frame = calc_frame(engine, m_contact_axes.get());
  if (m_vtk) m_vtk->write(frame);
  if (!m_kinds.page) return;
  frame.row = m_row;
  const size_t bytes = bytes_of(frame);
  m_frames.add(m_recording.frames, std::move(frame), bytes);
  m_recording.frame_count = m_frames.count();
}

void Recorder::close() {
  if (m_csv) m_csv->close();
  if (m_vtk) m_vtk->close();
}

/// Frames come with the first output at or after each multiple of the frame step, and with the last one.
bool Recorder::frame_due(double time) {
  if (!(m_frame_step > 0) || time >= m_end_time) return true;
  const double slack = 1e-9 * m_frame_step;  // output times are rounded multiples too
  if (time < m_next_frame - slack) return false;
  m_next_frame = m_frame_step * (std::floor((time + slack) / m_frame_step) + 1);
  return true;
}

}  // namespace qvslv
