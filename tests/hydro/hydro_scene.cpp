#include "tests/hydro/hydro_scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "qvbrisk/layouts.h"
#include "qvbrisk/subroutines.h"
#include "tests/support/exact_text.h"
#include "tests/support/temporary_folder.h"

namespace qvtest {
namespace {

int elements_taken = 0;

vec3 slots(const std::vector<double>& result, std::size_t first) {
  return {result.at(first), result.at(first + 1), result.at(first + 2)};
}

}  // namespace

int fresh_element() {
  if (elements_taken > k_elements) std::abort();
  return elements_taken++;
}

std::string write_file(const std::string& name, const std::string& text) {
  std::string path = temporary_path(name);
  std::filesystem::remove(path);  // some file systems wait for the disk when a file is written over
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) std::abort();
  return path;
}

std::wstring wide(const std::string& text) { return {text.begin(), text.end()}; }

std::string wave_text(const qvref::wave_file& wave, const std::string& separator) {
  const auto rows = static_cast<std::size_t>(wave.rows), cols = static_cast<std::size_t>(wave.cols);
  std::string text = std::to_string(rows) + separator + std::to_string(cols) + "\n";
  for (std::size_t j = 0; j < cols; ++j) text += exact_text(wave.x[j]) + (j + 1 < cols ? separator : "\n");
  for (std::size_t i = 0; i < rows; ++i) {
    text += exact_text(wave.time[i]);
    for (std::size_t j = 0; j < cols; ++j) text += separator + exact_text(wave.elevation[i][j]);
    for (std::size_t j = 0; j < cols; ++j) text += separator + exact_text(wave.velocity[i][j]);
    text += "\n";
  }
  return text;
}

std::string current_text(const qvref::current_file& currents, const std::string& separator) {
  std::string text;
  for (const qvref::current_table* table : {&currents.first, &currents.second}) {
    text += std::to_string(table->count) + separator + std::to_string(table->mode) + "\n";
    for (std::size_t i = 0; i < static_cast<std::size_t>(table->count); ++i) {
      text += exact_text(table->key[i]) + separator + exact_text(table->value[i]) + "\n";
    }
  }
  return text;
}

qvref::wave_file calm_water(double length, double elevation, double velocity) {
  qvref::wave_file wave;
  wave.rows = wave.cols = 2;
  wave.time = {0.0, 1000.0, 1000.0};
  wave.x = {0.0, length, length};
  wave.elevation.assign(3, std::vector<double>(3, elevation));
  wave.velocity.assign(3, std::vector<double>(3, velocity));
  return wave;
}

qvref::current_file steady_current(double along_x, double along_y) {
  qvref::current_file currents;
  currents.first = {1, 0, {0.0, 0.0}, {along_x, along_x}};
  currents.second = {1, 0, {0.0, 0.0}, {along_y, along_y}};
  return currents;
}

std::vector<double> hydro_parameters::list() const {
  std::vector<double> par = {static_cast<double>(sub),
                             static_cast<double>(subs),
                             static_cast<double>(id),
                             k_elements,
                             k_force_marker,
                             k_water_marker,
                             k_body_marker,
                             k_wave_string,
                             k_current_string,
                             mass,
                             option,
                             reserve,
                             scale,
                             t_start,
                             t_end,
                             density,
                             gravity,
                             tangential_coef,
                             tangential_exp,
                             drag_scale,
                             static_cast<double>(shape.nodes.size())};
  for (const qvref::v3& node : shape.nodes) par.insert(par.end(), node.begin(), node.end());
  par.push_back(static_cast<double>(shape.patches.size()));
  for (const auto& patch : shape.patches) par.insert(par.end(), patch.begin(), patch.end());
  return par;
}

HydroScene::HydroScene(const hull& shape, const qvref::wave_file& wave, const qvref::current_file& currents) {
  parameters.shape = shape;
  parameters.id = fresh_element();
  const std::string suffix = std::to_string(parameters.id) + ".txt";
  host.strings[k_wave_string] = wide(write_file("wave" + suffix, wave_text(wave)));
  host.strings[k_current_string] = wide(write_file("current" + suffix, current_text(currents)));
  host.unit_scale = {1.0, 1.0, 1.0, 1.0, 1.0};
  host.markers[k_body_marker] = host.markers[k_force_marker] = {};
  host.markers[k_water_marker].position = {-100.0, 0.0, 0.0};
  host.forces[force_of_report] = {0.0, 0.0, 0.0};
}

void HydroScene::place(const vec3& position, const mat3& axes) {
  body().position = force_marker().position = position;
  body().axes = force_marker().axes = axes;
}

void HydroScene::move(const vec3& velocity, const vec3& angular_velocity) {
  body().velocity = velocity;
  body().angular_velocity = angular_velocity;
}

const std::vector<double>& HydroScene::call(double time, int iflag) {
  m_result.assign(QV_HULL_RESULT_LENGTH + 1, k_poison);
  std::vector<double> par = parameters.list();
  const std::vector<double> before = par;
  qvhydro_force(host.handle(), time, par.data(), -1, 7, iflag, m_result.data());
  EXPECT_EQ(first_difference(par, before), -1) << "the parameter list is the host's";
  EXPECT_EQ(m_result.back(), k_poison) << "written behind the result";
  EXPECT_EQ(host.unanswered, 0);
  m_result.pop_back();
  return m_result;
}

hull_forces HydroScene::forces(double time, int iflag) {
  const std::vector<double>& r = call(time, iflag);
  EXPECT_EQ(take_report(), "");
  return {slots(r, QV_HULL_RESULT_FORCE),
          slots(r, QV_HULL_RESULT_TORQUE),
          slots(r, QV_HULL_RESULT_BUOYANCY),
          slots(r, QV_HULL_RESULT_BUOYANCY_CENTRE),
          slots(r, QV_HULL_RESULT_DRAG_FORCE),
          slots(r, QV_HULL_RESULT_DRAG_TORQUE),
          slots(r, QV_HULL_RESULT_NORMAL_DRAG_FORCE),
          slots(r, QV_HULL_RESULT_NORMAL_DRAG_TORQUE),
          slots(r, QV_HULL_RESULT_TANGENTIAL_DRAG_FORCE),
          slots(r, QV_HULL_RESULT_TANGENTIAL_DRAG_TORQUE),
          slots(r, QV_HULL_RESULT_FORCE_MARKER),
          r[QV_HULL_RESULT_SUBMERGED_VOLUME]};
}

std::vector<double> HydroScene::report_list() const {
  std::vector<double> par(QV_HULL_REPORT_LENGTH, k_poison);
  par[QV_HULL_REPORT_FORCE_ID] = parameters.id;
  par[QV_HULL_REPORT_BODY_MARKER] = k_body_marker;
  par[QV_HULL_REPORT_WATER_MARKER] = k_water_marker;
  par[QV_HULL_REPORT_REPORTED_FORCE] = force_of_report;
  par[QV_HULL_REPORT_REPORTED_FORCE_MARKER] = marker_of_force;
  par[QV_HULL_REPORT_POINT_COUNT] = static_cast<double>(points.size());
  par.insert(par.end(), points.begin(), points.end());
  return par;
}

const std::vector<double>& HydroScene::call_report(int iflag) {
  m_result.assign(QV_HULL_REPORT_RESULT_LENGTH + QV_HULL_REPORT_POINT_LENGTH * points.size() + 1, k_poison);
  std::vector<double> par = report_list();
  qvhydro_report(host.handle(), 0.0, par.data(), -1, 7, iflag, m_result.data());
  EXPECT_EQ(first_difference(par, report_list()), -1) << "the parameter list is the host's";
  EXPECT_EQ(m_result.back(), k_poison) << "written behind the result";
  EXPECT_EQ(host.unanswered, 0);
  m_result.pop_back();
  return m_result;
}

hull_report HydroScene::report() {
  const std::vector<double>& r = call_report();
  EXPECT_EQ(take_report(), "");
  return {r[QV_HULL_REPORT_RESULT_BUOYANCY],
          r[QV_HULL_REPORT_RESULT_ROLL],
          r[QV_HULL_REPORT_RESULT_LEVER_Y],
          r[QV_HULL_REPORT_RESULT_PITCH],
          r[QV_HULL_REPORT_RESULT_LEVER_X],
          r[QV_HULL_REPORT_RESULT_FORCE_Z],
          slots(r, QV_HULL_REPORT_RESULT_BUOYANCY_CENTRE),
          slots(r, QV_HULL_REPORT_RESULT_LEVER_Y_POINT),
          slots(r, QV_HULL_REPORT_RESULT_LEVER_X_POINT),
          slots(r, QV_HULL_REPORT_RESULT_MASS_CENTRE)};
}

std::string HydroScene::take_report() {
  std::string said;
  for (const ScriptedHost::report& report : host.reports) {
    EXPECT_EQ(report.title, "USUB ERROR");
    EXPECT_EQ(report.messages.size(), 1U);
    for (const std::string& message : report.messages) said += message;
  }
  host.reports.clear();
  return said;
}

}  // namespace qvtest
