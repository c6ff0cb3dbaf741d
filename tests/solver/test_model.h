#pragma once

#include <map>
#include <string>
#include <vector>

#include "solver/model/model.h"
#include "solver/results/recording.h"
#include "solver/run.h"

/// Models made in place, and runs of them read back from their files.

constexpr int k_ground_id = 1000;  // of the ground marker
constexpr double k_pi = 3.141592653589793;

using qvslv::cross;
using qvslv::dot;
using qvslv::length;
using qvslv::Rotation;
using qvslv::Vec3;

/// Small vector algebra, none of it the engine's.
Vec3 operator+(const Vec3& a, const Vec3& b);
Vec3 operator-(const Vec3& a, const Vec3& b);
Vec3 operator*(double s, const Vec3& a);
inline double norm(const Vec3& a) { return length(a); }
Rotation turn(int axis, double angle);  ///< 0 x, 1 y, 2 z
Rotation product(const Rotation& a, const Rotation& b);
Rotation transposed(const Rotation& a);
Vec3 rotate(const Rotation& a, const Vec3& v);
Rotation from_quaternion(double w, double x, double y, double z);

/// A model under construction. Bodies come first, then markers, joints, loads and elements.
struct TestModel {
  qvslv::Model model;

  explicit TestModel(double end_time, double output_step);

  /// A body with the id `index + 1`; returns its index.
  int add_body(const std::string& name, double mass, const Vec3& moments);
  /// Returns the marker's index; its id is that + 100.
  int add_marker(int body, const Vec3& position, const Rotation& orientation = qvslv::k_identity);
  int marker_id(int marker) const { return model.markers[static_cast<size_t>(marker)].id; }
  qvslv::Body& body(int index) { return model.bodies[static_cast<size_t>(index)]; }

  qvslv::Joint& add_joint(qvslv::JointType type, int parent_marker, int child_marker);
  qvslv::AppliedForce& add_force(int marker, const std::array<std::string, 3>& force,
                                 const std::array<std::string, 3>& torque = {"0", "0", "0"});
  /// Columns r0, r1, ... of all results.
  qvslv::Element& add_element(const std::string& name, const std::string& subroutine, qvslv::ElementKind kind,
                              const std::vector<double>& par, int result_length);
};

/// A surface that rises evenly along x and over time: reading between rows and columns is exact on it.
struct EvenSurface {
  double level = 0, slope = 0, rate = 0;
  double at(double time, double x) const { return level + slope * x + rate * time; }
  /// As a WAVE file with times 0 and `last_time` and `columns` positions from 0 on.
  qvslv::WaveFile wave(double last_time, size_t columns, double spacing) const;
};

/// Parameters of a hydro force whose mesh is given; the rest of them 0.
std::vector<double> hull_par(int water_id, int body_id, int wave_string, const qvslv::TriangleMesh& mesh);

qvslv::Expression expression(const std::string& text);

/// A run and its results.csv.
struct TestRun {
  qvslv::RunSummary summary;
  std::string folder;
  std::vector<std::string> told;  ///< lines for the user
  std::vector<std::string> columns;
  std::vector<std::vector<double>> rows;

  /// Values of a column, named with or without its unit. Fails the test when there is none.
  std::vector<double> column(const std::string& name) const;
  double at(const std::string& name, size_t row) const;
  double last(const std::string& name) const { return at(name, rows.size() - 1); }
  /// Columns owner.a, owner.b, owner.c.
  Vec3 vector(const std::string& owner, const char* a, const char* b, const char* c, size_t row) const;
  Vec3 position(const std::string& body, size_t row) const { return vector(body, "x", "y", "z", row); }
  Vec3 velocity(const std::string& body, size_t row) const { return vector(body, "vx", "vy", "vz", row); }
  Vec3 spin(const std::string& body, size_t row) const { return vector(body, "wx", "wy", "wz", row); }
  Rotation orientation(const std::string& body, size_t row) const;
};

/// An empty folder of the running test's own.
std::string test_folder();

/// Runs in test_folder(); does not expect success.
TestRun run(const TestModel& model, qvslv::RunOptions options = {});

/// Runs and expects the end to be reached.
TestRun run_to_end(const TestModel& model);

void expect_near(const Vec3& expected, const Vec3& actual, double tolerance, const std::string& what = "");

std::string read_text(const std::string& path);
