#include "solver/recorder.h"

#include <cmath>
#include <set>
#include <stdexcept>

#include "solver/csv.h"
#include "solver/recorder_columns.h"
#include "solver/terrain.h"

namespace qvslv {

namespace {

std::string string_text(const Model& model, int id) {
  for (const StringEntity& entity : model.strings) {
    if (entity.id == id) return entity.text;
  }
  return {};
}

/// All roads of the model, each once, where their markers stand.
TriangleMesh place_roads(const Engine& engine, const std::function<void(const std::string&)>& report) {
  const Model& model = engine.multibody().model();
  TriangleMesh terrain;
  std::set<std::pair<int, int>> seen;
  for (const Element& element : model.elements) {
    if (element.road_string == 0 || !seen.emplace(element.road_string, element.road_marker).second) continue;
    const std::string name = string_text(model, element.road_string);
    const auto file = find_road_file(name, model.path);
    const auto mesh = file ? read_road_mesh(*file) : std::nullopt;
    if (!mesh) {
      if (report) report("element " + element.name + ": no picture of the road " + name + ": it cannot be read");
      continue;
    }
    const SimTK::Transform pose = engine.multibody().find_pose(engine.state(), element.road_marker);
    Rotation rotation{};
    for (int k = 0; k < 9; ++k) rotation[static_cast<size_t>(k)] = pose.R()[k % 3][k / 3];
    append_mesh(terrain, *mesh, rotation, {pose.p()[0], pose.p()[1], pose.p()[2]});
  }
  return terrain;
}

}  // namespace

Recorder::Recorder(const Engine& engine, const std::string& folder,
                   const std::function<void(const std::string&)>& report)
    : m_frame_step(engine.multibody().model().simulation.frame_step), m_csv_path(folder + "/results.csv") {
  const Model& model = engine.multibody().model();
  m_recording.model = &model;
  m_recording.terrain = place_roads(engine, report);
  m_recording.columns = result_columns(model);
  m_csv.open(m_csv_path, std::ios::trunc);
  m_csv << csv_line(m_recording.columns) << std::flush;
  if (!m_csv) throw std::runtime_error("cannot write " + m_csv_path);
  m_vtk = std::make_unique<VtkWriter>(model, folder, m_recording.terrain);
}

void Recorder::record(const Engine& engine) {
  m_recording.rows.push_back(calc_result_row(engine));
  m_csv << csv_line(m_recording.rows.back()) << std::flush;
  if (!m_csv) throw std::runtime_error("cannot write " + m_csv_path);
  if (!frame_due(engine.time())) return;
  m_recording.frames.push_back(calc_frame(engine));
  m_vtk->write(m_recording.frames.back());
}

/// Frames come with the first output at or after each multiple of the frame step.
bool Recorder::frame_due(double time) {
  if (!(m_frame_step > 0)) return true;
  const double slack = 1e-9 * m_frame_step;  // output times are rounded multiples too
  if (time < m_next_frame - slack) return false;
  m_next_frame = m_frame_step * (std::floor((time + slack) / m_frame_step) + 1);
  return true;
}

std::vector<std::string> Recorder::files() const {
  std::vector<std::string> all = {"results.csv"};
  all.insert(all.end(), m_vtk->files().begin(), m_vtk->files().end());
  return all;
}

}  // namespace qvslv
