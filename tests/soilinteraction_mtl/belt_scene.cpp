#include "tests/soilinteraction_mtl/belt_scene.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "qvbrisk/subroutines.h"

namespace qvtest {
namespace {

int belt_roads_taken = 0;
bool a_scene_has_sized = false, a_set_up_was_called = false;

int next_road() {
  if (belt_roads_taken == k_belt_roads) std::abort();
  return belt_roads_taken++;
}

void size_module() {
  if (a_scene_has_sized) return;
  a_scene_has_sized = true;
  BeltScene scene(flat_mesh(1, 1, 1.0), loam(), level_circles(k_belt_nodes, 1.0, 0.1, 5.0), module_state::untouched);
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "");
}

}  // namespace

bool module_may_be_sized() { return a_set_up_was_called; }

std::vector<double> belt_parameters::list() const {
  std::vector<double> par = {track,
                             static_cast<double>(road),
                             k_file_string,
                             k_belt_I,
                             k_belt_J,
                             k_belt_R,
                             roads,
                             thickness,
                             width,
                             static_cast<double>(n_long),
                             static_cast<double>(n_lat),
                             k_belt_speed,
                             static_cast<double>(radii.size()),
                             k_poison};
  for (std::size_t i = 0; i < radii.size(); ++i) {
    par.push_back(k_belt_first_node + static_cast<double>(i));
    par.push_back(radii[i]);
  }
  return par;
}

std::size_t belt_parameters::results() const {
  const std::size_t rows = (radii.size() - 1) * static_cast<std::size_t>(n_long - 1) + 1;
  return 4 + 8 * rows * static_cast<std::size_t>(n_lat);
}

qvref::track_layout belt_parameters::layout() const {
  qvref::track_layout layout;
  layout.marker_I = k_belt_I;
  layout.marker_J = k_belt_J;
  layout.marker_R = k_belt_R;
  layout.speed_variable = k_belt_speed;
  layout.thickness = thickness;
  layout.width = width;
  layout.n_long = n_long;
  layout.n_lat = n_lat;
  layout.radii = radii;
  for (int i = 0; i < static_cast<int>(radii.size()); ++i) layout.markers.push_back(k_belt_first_node + i);
  return layout;
}

BeltScene::BeltScene(const soil_mesh& mesh, const qvref::soil& soil, const std::vector<circle>& circles,
                     module_state module) {
  if (module == module_state::sized) size_module();
  parameters.road = next_road();
  for (const circle& c : circles) parameters.radii.push_back(c.radius);
  file = temporary_path("track" + std::to_string(parameters.road) + ".rdf");
  write_text(file, rdf_text(mesh, soil));
  host.strings[k_file_string] = std::wstring(file.begin(), file.end());
  for (const int marker : {k_belt_I, k_belt_J, k_belt_R}) host.markers[marker] = {};
  belt_speed() = 0.0;
  put(circles);
}

void BeltScene::put(const std::vector<circle>& circles, double shift, double lift) {
  for (std::size_t i = 0; i < circles.size(); ++i) node(i).position = {circles[i].x + shift, 0.0, circles[i].z + lift};
}

void BeltScene::move(const vec3& velocity) {
  vehicle().velocity = velocity;
  for (std::size_t i = 0; i < parameters.radii.size(); ++i) node(i).velocity = velocity;
}

const std::vector<double>& BeltScene::call(int iflag, double time) {
  if (iflag == 1) a_set_up_was_called = true;  // other calls may run at the same time
  m_result.assign(parameters.results() + 1, k_poison);
  std::vector<double> par = parameters.list();
  const std::vector<double> before = par;
  qvsoil_interaction_mtl(host.handle(), time, par.data(), -99, -99, iflag, m_result.data());
  EXPECT_EQ(par, before) << "the parameter list is the host's";
  EXPECT_EQ(m_result.back(), k_poison) << "written behind the result";
  m_result.pop_back();
  return m_result;
}

std::string BeltScene::report_with(std::size_t parameter, double value, int iflag, std::size_t extra) {
  std::vector<double> par = parameters.list();
  if (iflag == 1) a_set_up_was_called = true;
  par.at(parameter) = value;
  std::vector<double> result(parameters.results() + extra + 1, k_poison);
  qvsoil_interaction_mtl(host.handle(), 0.25, par.data(), static_cast<int>(par.size()), 0, iflag, result.data());
  EXPECT_EQ(result.back(), k_poison) << "written behind the result";
  return take_report();
}

std::string BeltScene::take_report() { return report_of(host); }

double BeltScene::point(int row, int column, std::size_t entry) const {
  const int number = row * parameters.n_lat + column;
  return m_result.at(4 + 8 * static_cast<std::size_t>(number) + entry);
}

std::vector<double> BeltScene::shear_sum(int iflag) {
  return call_with(qvsoil_shearforce_mtl, host, {parameters.track, static_cast<double>(parameters.road)}, iflag, 6);
}

std::vector<double> BeltScene::normal_sum(int node_number, int iflag) {
  return call_with(qvsoil_normalforce_mtl, host,
                   {parameters.track, static_cast<double>(node_number), static_cast<double>(parameters.road)}, iflag,
                   6);
}

std::vector<double> BeltScene::contact_sum(int iflag) {
  return call_with(qvsoil_interaction_mtl_sum, host, {static_cast<double>(parameters.road), parameters.track}, iflag,
                   4);
}

std::vector<double> call_with(subroutine_to_call subroutine, ScriptedHost& host, std::vector<double> par, int iflag,
                              std::size_t size) {
  std::vector<double> result(size + 1, k_poison);
  subroutine(host.handle(), 0.25, par.data(), -99, -99, iflag, result.data());
  EXPECT_EQ(result.back(), k_poison) << "written behind the result";
  result.pop_back();
  return result;
}

std::string report_of(ScriptedHost& host) {
  std::string said;
  for (const ScriptedHost::report& report : host.reports) {
    EXPECT_EQ(report.title, "USUB ERROR");
    EXPECT_EQ(report.messages.size(), 1U);
    for (const std::string& message : report.messages) said += message;
  }
  host.reports.clear();
  return said;
}

std::vector<circle> level_circles(int count, double step, double radius, double bottom) {
  std::vector<circle> circles;
  circles.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) circles.push_back({i * step, bottom + radius, radius});
  return circles;
}

double loam_pressure(double width, double depth) { return -qvref::bekker_pressure(as_read(loam()), width, -depth); }

}  // namespace qvtest
