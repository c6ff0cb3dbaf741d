#include "tests/solver/test_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/exact_text.h"

using namespace qvslv;

Vec3 operator+(const Vec3& a, const Vec3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
Vec3 operator-(const Vec3& a, const Vec3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
Vec3 operator*(double s, const Vec3& a) { return {s * a[0], s * a[1], s * a[2]}; }

Rotation turn(int axis, double angle) {
  const double c = std::cos(angle), s = std::sin(angle);
  if (axis == 0) return {1, 0, 0, 0, c, s, 0, -s, c};
  if (axis == 1) return {c, 0, -s, 0, 1, 0, s, 0, c};
  return {c, s, 0, -s, c, 0, 0, 0, 1};
}

Vec3 rotate(const Rotation& a, const Vec3& v) {
  Vec3 out = {0, 0, 0};
  for (size_t row = 0; row < 3; ++row)
    for (size_t k = 0; k < 3; ++k) out[row] += a[3 * k + row] * v[k];
  return out;
}

Rotation product(const Rotation& a, const Rotation& b) {
  Rotation out{};
  for (size_t column = 0; column < 3; ++column) {
    const Vec3 v = rotate(a, {b[3 * column], b[3 * column + 1], b[3 * column + 2]});
    for (size_t row = 0; row < 3; ++row) out[3 * column + row] = v[row];
  }
  return out;
}

Rotation transposed(const Rotation& a) { return {a[0], a[3], a[6], a[1], a[4], a[7], a[2], a[5], a[8]}; }

/// Columns are the axes turned by the quaternion: v + 2 w (u x v) + 2 u x (u x v).
Rotation from_quaternion(double w, double x, double y, double z) {
  const Vec3 u = {x, y, z};
  Rotation out{};
  for (size_t column = 0; column < 3; ++column) {
    Vec3 axis = {0, 0, 0};
    axis[column] = 1;
    const Vec3 turned = axis + (2 * w) * cross(u, axis) + 2.0 * cross(u, cross(u, axis));
    for (size_t row = 0; row < 3; ++row) out[3 * column + row] = turned[row];
  }
  return out;
}

WaveFile EvenSurface::wave(double last_time, size_t columns, double spacing) const {
  WaveFile wave;
  wave.time = {0, last_time};
  for (size_t k = 0; k < columns; ++k) wave.x.push_back(spacing * static_cast<double>(k));
  for (const double time : wave.time) {
    wave.elevation.emplace_back();
    for (const double x : wave.x) wave.elevation.back().push_back(at(time, x));
    wave.velocity.emplace_back(columns, rate);
  }
  return wave;
}

std::vector<double> hull_par(int water_id, int body_id, int wave_string, const TriangleMesh& mesh) {
  std::vector<double> par(21, 0);
  par[5] = water_id;
  par[6] = body_id;
  par[7] = wave_string;
  par[20] = static_cast<double>(mesh.points.size());
  for (const Vec3& p : mesh.points) par.insert(par.end(), p.begin(), p.end());
  par.push_back(static_cast<double>(mesh.triangles.size()));
  for (const auto& t : mesh.triangles) par.insert(par.end(), t.begin(), t.end());
  return par;
}

Expression expression(const std::string& text) { return {text, {"test", 1, 1}, nullptr}; }

TestModel::TestModel(double end_time, double output_step) {
  model.path = "test_model.toml";
  model.simulation.end_time = end_time;
  model.simulation.output_step = output_step;
  model.simulation.accuracy = 1e-9;
  model.ground_id = k_ground_id;
  Marker ground;
  ground.id = k_ground_id;
  ground.name = "ground";
  model.markers.push_back(ground);
}

int TestModel::add_body(const std::string& name, double mass, const Vec3& moments) {
  EXPECT_EQ(model.markers.size(), model.bodies.size() + 1) << "bodies come before markers";
  Body added;
  added.id = static_cast<int>(model.bodies.size()) + 1;
  added.name = name;
  added.mass = mass;
  added.inertia = {moments[0], moments[1], moments[2], 0, 0, 0};
  model.bodies.push_back(added);
  Marker center;
  center.id = added.id;
  center.name = name;
  center.body = added.id - 1;
  model.markers.push_back(center);
  return added.id - 1;
}

int TestModel::add_marker(int on_body, const Vec3& position, const Rotation& orientation) {
  Marker marker;
  marker.id = static_cast<int>(model.markers.size()) + 100;
  marker.name = "marker" + std::to_string(marker.id);
  marker.body = on_body;
  marker.position = position;
  marker.orientation = orientation;
  model.markers.push_back(marker);
  return static_cast<int>(model.markers.size()) - 1;
}

Joint& TestModel::add_joint(JointType type, int parent_marker, int child_marker) {
  Joint joint;
  joint.name = "joint" + std::to_string(model.joints.size());
  joint.type = type;
  joint.parent_marker = parent_marker;
  joint.child_marker = child_marker;
  model.joints.push_back(joint);
  return model.joints.back();
}

AppliedForce& TestModel::add_force(int marker, const std::array<std::string, 3>& force,
                                   const std::array<std::string, 3>& torque) {
  AppliedForce added;
  added.name = "force" + std::to_string(model.forces.size());
  added.marker = marker;
  for (size_t k = 0; k < 3; ++k) {
    added.force[k] = expression(force[k]);
    added.torque[k] = expression(torque[k]);
  }
  model.forces.push_back(added);
  return model.forces.back();
}

Element& TestModel::add_element(const std::string& name, const std::string& subroutine, ElementKind kind,
                                const std::vector<double>& par, int result_length) {
  Element element;
  element.name = name;
  element.subroutine = subroutine;
  element.kind = kind;
  element.par = par;
  element.result_length = result_length;
  for (int k = 0; k < result_length; ++k) element.columns.push_back({k, "r" + std::to_string(k), ""});
  model.elements.push_back(element);
  return model.elements.back();
}

std::vector<double> TestRun::column(const std::string& name) const {
  for (size_t i = 0; i < columns.size(); ++i) {
    if (columns[i] != name && columns[i].substr(0, columns[i].find(" [")) != name) continue;
    std::vector<double> values;
    for (const auto& row : rows) values.push_back(row.at(i));
    return values;
  }
  ADD_FAILURE() << "no column " << name;
  return std::vector<double>(rows.size(), std::nan(""));
}

double TestRun::at(const std::string& name, size_t row) const { return column(name).at(row); }

Vec3 TestRun::vector(const std::string& owner, const char* a, const char* b, const char* c, size_t row) const {
  return {at(owner + "." + a, row), at(owner + "." + b, row), at(owner + "." + c, row)};
}

Rotation TestRun::orientation(const std::string& body, size_t row) const {
  return from_quaternion(at(body + ".qw", row), at(body + ".qx", row), at(body + ".qy", row), at(body + ".qz", row));
}

std::string test_folder() {
  const auto* info = testing::UnitTest::GetInstance()->current_test_info();
  const std::string folder = std::string(TEST_FOLDER) + "/" + info->test_suite_name() + "." + info->name();
  std::filesystem::remove_all(folder);
  return folder;
}

TestRun run(const TestModel& model, RunOptions options) {
  TestRun out;
  if (options.plugin_path.empty()) options.plugin_path = TEST_PLUGIN;
  if (options.out_folder.empty()) options.out_folder = test_folder();
  out.folder = options.out_folder;
  options.on_message = [&](const std::string& line) { out.told.push_back(line); };
  out.summary = run_model(model.model, options);

  std::ifstream csv(out.folder + "/results.csv");
  std::string line;
  while (std::getline(csv, line)) {
    std::stringstream fields(line);
    std::string field;
    std::vector<std::string> texts;
    while (std::getline(fields, field, ',')) texts.push_back(field);
    if (out.columns.empty()) {
      out.columns = texts;
      continue;
    }
    std::vector<double> row;
    for (const std::string& text : texts) row.push_back(qvtest::number_in(text));
    out.rows.push_back(row);
  }
  return out;
}

TestRun run_to_end(const TestModel& model) {
  TestRun out = run(model);
  EXPECT_EQ(out.summary.outcome, RunOutcome::finished) << out.summary.message;
  EXPECT_FALSE(out.rows.empty());
  return out;
}

void expect_near(const Vec3& expected, const Vec3& actual, double tolerance, const std::string& what) {
  for (size_t k = 0; k < 3; ++k) EXPECT_NEAR(expected[k], actual[k], tolerance) << what << " component " << k;
}

std::string read_text(const std::string& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}
