#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/limit_parts.h"
#include "bench/road_maker.h"
#include "qvbrisk/subroutines.h"
#include "solver/engine/service_host.h"

// Cost of a grid point of a track through the exported function: seven nodes, 20 x 5 points per span, driving (a
// millimetre per call, every fourth call closes a step) and jumping to random places, on roads of 2 10^3 to 10^6
// triangles. It is compared with a limit that no implementation can go below.
namespace {

using qvbench::terrain_height;

constexpr int k_nodes = 7, k_long = 20, k_lat = 5, k_first_node_marker = 10;
constexpr double k_radius = 0.1, k_spacing = 0.3, k_raised = 0.2, k_width = 0.3, k_sunk = 0.15;
constexpr int k_span_points = k_long * k_lat;
constexpr int k_points = (k_nodes - 1) * k_span_points;
constexpr int k_blocks = ((k_nodes - 1) * (k_long - 1) + 1) * k_lat;
constexpr double k_half = 0.5 * (k_nodes - 1) * k_spacing;

/// Position of a node seen from marker I [m]; sprocket and idler sit higher than the road wheels.
double node_x(int i) { return i * k_spacing - k_half; }
double node_z(int i) { return k_radius - k_sunk + (i == 0 || i == k_nodes - 1 ? k_raised : 0.0); }

/// A vehicle that only slides over the ground, level and without turning: marker I (1), the road (2), the ground (3).
class TrackHost final : public qvslv::ServiceHost {
public:
  double position[3] = {0, 0, 0};
  double speed[3] = {0, 0, 0};
  double belt_speed = 0.0;
  std::wstring road_file;
  std::string complaint;

  void* handle() { return static_cast<qvslv::ServiceHost*>(this); }

  bool vector_quantity(const char* name, const int* ids, int, double* values, int& count) override {
    std::fill_n(values, count, 0.0);
    const bool on_vehicle = ids[0] == 1 || ids[0] >= k_first_node_marker;
    if (name[0] == 'A') {
      values[0] = values[4] = values[8] = 1.0;
    } else if (name[0] == 'T' && on_vehicle) {
      const double* from = name[1] == 'D' ? position : speed;
      std::copy_n(from, 3, values);
      if (name[1] == 'D' && ids[0] != 1) {
        values[0] += node_x(ids[0] - k_first_node_marker);
        values[2] += node_z(ids[0] - k_first_node_marker);
      }
    }
    return true;
  }
  bool scalar_quantity(const char*, const int*, int, double& value) override {
    value = belt_speed;
    return true;
  }
  bool string_entity(int, std::wstring& text) override {
    text = road_file;
    return true;
  }
  bool model_path(std::wstring& path) override {
    path.clear();
    return true;
  }
  void stop(const char* message) override { complaint = message != nullptr ? message : "stop"; }
  void throw_error(const char* title, int count, char** messages) override {
    complaint = title;
    for (int i = 0; i < count; ++i) {
      complaint += std::string(" ") + messages[i];
      delete[] messages[i];
    }
  }
};

/// A point of the belt seen from marker I [m], and the direction of its span.
struct belt_point {
  double x, y, z;
  double upright;  ///< cosine between its span's normal and the vertical
};

/// Points of the belt by plane geometry alone: the circles are equal, so spans run parallel to the lines between the
/// centres, and a corner lies on the line that halves the angle there.
std::vector<belt_point> belt_of_spans() {
  std::vector<belt_point> points;
  for (int i = 0; i < k_nodes - 1; ++i) {
    const double dx = k_spacing, dz = node_z(i + 1) - node_z(i), D = std::hypot(dx, dz);
    double start[2] = {node_x(i) + k_radius * dz / D, node_z(i) - k_radius * dx / D};
    double end[2] = {start[0] + dx, start[1] + dz};
    const double turn = std::atan2(k_raised, k_spacing), back = k_radius * std::tan(0.5 * turn);
    if (i == 0) end[0] += back * dx / D, end[1] += back * dz / D;  // the first span ends in a corner
    if (i == k_nodes - 2) start[0] -= back * dx / D, start[1] -= back * dz / D;
    if (i == 1) start[0] -= back;  // an inner span begins in its corner and ends at the tangent point
    for (int j = 0; j < k_long; ++j) {
      const double part = double(j) / (k_long - 1);
      for (int k = 0; k < k_lat; ++k) {
        points.push_back({start[0] + part * (end[0] - start[0]), k_width * (double(k) / (k_lat - 1) - 0.5),
                          start[1] + part * (end[1] - start[1]), dx / D});
      }
    }
  }
  return points;
}

/// Index of a road in the library: roads are numbered in the order of their first use.
int road_index(int triangles) {
  static std::map<int, int> indices;
  return indices.emplace(triangles, static_cast<int>(indices.size())).first->second;
}

class TrackScene {
public:
  explicit TrackScene(int triangles) : m_road(qvbench::make_road(triangles)), m_belt(belt_of_spans()) {
    m_host.road_file.assign(m_road.path.begin(), m_road.path.end());
    m_par = {0, double(road_index(triangles)), 1, 1, 2, 3, 8, 0.0, k_width, k_long, k_lat, 4, k_nodes, 0};
    for (int i = 0; i < k_nodes; ++i) m_par.insert(m_par.end(), {double(k_first_node_marker + i), k_radius});
    place(0.5 * m_road.length, 0.5 * m_road.length);
    call(1);
    if (!m_host.complaint.empty()) throw std::runtime_error(m_host.complaint);
    check_lift();
    m_host.speed[0] = 1.0;
    m_host.speed[2] = -0.05;
  }

  void place(double x, double y) {
    m_host.position[0] = x;
    m_host.position[1] = y;
    m_host.position[2] = terrain_height(x, y);
  }

  /// The belt slips to and fro, so that its shear displacement stays of the soil's size.
  void call(int iflag) {
    qvsoil_interaction_mtl(m_host.handle(), 0.02, m_par.data(), static_cast<int>(m_par.size()), 0, iflag,
                           m_result.data());
    if (iflag == 2) m_host.belt_speed = m_host.speed[0] + (m_host.belt_speed > m_host.speed[0] ? -0.2 : 0.2);
  }

  double margin() const { return k_half + 2.0 * k_radius; }
  double road_length() const { return m_road.length; }
  const std::string& complaint() const { return m_host.complaint; }
  int blocks_in_contact() const {
    int count = 0;
    for (std::size_t p = 0; p < k_blocks; ++p) count += m_result[10 + 8 * p] < 0.0;
    return count;
  }

private:
  /// Throws if the normal force at rest on fresh soil differs from Bekker's law over the terrain's own formula: a
  /// faster wrong answer must fail.
  void check_lift() {
    m_host.position[2] += 100.0;
    call(2);  // out of contact: the points forget what an earlier scene left
    m_host.position[2] -= 100.0;
    call(0);
    const double length = std::hypot(k_spacing, k_raised);  // of the last span; the library takes it for all spans
    const double stiffness = 5270.0 / std::min(length, k_width) + 1515040.0;
    double expected = 0.0;
    for (const belt_point& at : m_belt) {
      const double depth =
          terrain_height(m_host.position[0] + at.x, m_host.position[1] + at.y) - (m_host.position[2] + at.z);
      if (depth > 0.0) expected += stiffness * std::pow(depth, 0.7) * at.upright * length * k_width / k_span_points;
    }
    constexpr double k_mesh_and_slope = 0.03;  // share: triangles replace the formula, and normals are not vertical
    if (!(std::fabs(m_result[2] - expected) < k_mesh_and_slope * expected)) {
      throw std::runtime_error("lift " + std::to_string(m_result[2]) + " instead of " + std::to_string(expected));
    }
  }

  const qvbench::road_file& m_road;
  std::vector<belt_point> m_belt;
  TrackHost m_host;
  std::vector<double> m_par;
  std::array<double, 4 + 8 * k_blocks> m_result{};
};

void report(benchmark::State& state, const TrackScene& scene) {
  if (!scene.complaint().empty() || scene.blocks_in_contact() == 0) state.SkipWithError("no contact");
  state.counters["in_contact"] = double(scene.blocks_in_contact()) / k_blocks;
  state.counters["per_point"] = benchmark::Counter(double(k_points) * double(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void track_driving(benchmark::State& state) {
  TrackScene scene(static_cast<int>(state.range(0)));
  const double span = scene.road_length() - 2 * scene.margin();
  double travel = 0.0;
  long call = 0;
  const auto drive = [&] {
    scene.place(scene.margin() + travel, 0.5 * scene.road_length());
    scene.call(++call % 4 == 0 ? 2 : 0);
    travel += 0.001;
    if (travel > span) travel = 0.0;
  };
  for (int i = 0; i < 200; ++i) drive();  // reach a moving state, in which points have a history
  for (auto _ : state) drive();
  report(state, scene);
}

void track_jumping(benchmark::State& state) {
  TrackScene scene(static_cast<int>(state.range(0)));
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> place(scene.margin(), scene.road_length() - scene.margin());
  std::vector<std::array<double, 2>> places(4096);
  for (auto& at : places) at = {place(random), place(random)};
  scene.call(2);
  std::size_t next = 0;
  const auto jump = [&] {
    const auto& at = places[next++ % places.size()];
    scene.place(at[0], at[1]);
    scene.call(0);
  };
  for (std::size_t i = 0; i < places.size(); ++i) jump();  // tiles of the road are made once (first_visit)
  for (auto _ : state) jump();
  report(state, scene);
}

template <typename Laws>
void limit_per_track_point(benchmark::State& state) {
  static qvbench::regular_terrain terrain(707);
  const std::vector<belt_point> belt = belt_of_spans();
  double travel = 0.0, sum = 0.0;
  Laws laws;
  long in_contact = 0, points = 0;
  for (auto _ : state) {
    const double x = 1.2 + travel, y = 35.35, z = terrain_height(x, y);
    travel = travel > 60.0 ? 0.0 : travel + 0.001;
    for (const belt_point& at : belt) {
      const double depth = terrain.under(x + at.x, y + at.y) - (z + at.z);
      ++points;
      if (depth <= 0.0) continue;
      ++in_contact;
      laws.add(depth, 20000.0 + 1000.0 * depth, 0.01 + at.x * at.x, 0.001 + depth);
    }
    sum = laws.sum();
  }
  benchmark::DoNotOptimize(sum);
  state.counters["in_contact"] = double(in_contact) / double(points);
  state.counters["per_point"] =
      benchmark::Counter(double(points), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK(limit_per_track_point<qvbench::laws_by_c_library>)->Name("limit_per_track_point");
BENCHMARK(limit_per_track_point<qvbench::laws_in_rows>)->Name("limit_per_track_point_in_rows");
BENCHMARK(track_driving)->Arg(2000)->Arg(20000)->Arg(200000)->Arg(1000000)->ArgName("triangles");
BENCHMARK(track_jumping)->Arg(2000)->Arg(20000)->Arg(200000)->Arg(1000000)->ArgName("triangles");

}  // namespace
