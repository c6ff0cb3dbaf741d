#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "bench/bench_host.h"
#include "bench/hull_maker.h"
#include "bench/limit_parts.h"
#include "qvbrisk/layouts.h"
#include "qvbrisk/subroutines.h"

// Cost of a patch of a floating hull through the exported function, in waves and current, compared with a limit that no
// implementation can go below; and the reading of a WAVE file, compared with a bare scan of its numbers.
namespace {

constexpr double k_depth = 0.02;  // [m] of the hull's centre under the still water
constexpr double k_exponent = 1.9;
constexpr double k_density = 1025.0, k_gravity = 9.81;
constexpr int k_box = 0;  // what a hull is made by: a box, or as many refinements of an icosahedron

qvbench::hull_mesh make_hull(int kind) { return kind == k_box ? qvbench::make_box() : qvbench::make_icosphere(kind); }

/// The `par` of qvhydro_force for a hull.
std::vector<double> parameters(const qvbench::hull_mesh& mesh, int id) {
  constexpr int k_forces = 16;  // the first call of the process sizes the container
  std::vector<double> par = {0, 1, double(id), k_forces, 1, 2,         1,         1,     2,          1000,
                             0, 0, 1,          0,        0, k_density, k_gravity, 0.003, k_exponent, 1};
  par.push_back(double(mesh.nodes.size()));
  for (const auto& node : mesh.nodes) par.insert(par.end(), node.begin(), node.end());
  par.push_back(double(mesh.patches.size()));
  for (const auto& patch : mesh.patches) par.insert(par.end(), patch.begin(), patch.end());
  return par;
}

/// Places the hull for a call: it drifts through the waves and rolls. Where it is and how it lies is worked out before,
/// so that calls on small hulls are not measured together with sines.
class course {
public:
  course() {
    for (int i = 0; i < k_poses; ++i) {
      const double angle = 0.2 * std::sin(6.283185307179586 * i / k_poses);
      m_axes.push_back({std::cos(angle), 0, -std::sin(angle), 0, 1, 0, std::sin(angle), 0, std::cos(angle)});
    }
  }
  void place(qvbench::BenchHost& host, int call) const {
    const auto& axes = m_axes[static_cast<std::size_t>(call % k_poses)];
    std::copy(axes.begin(), axes.end(), host.axes);
    host.position[0] = 20.0 + 0.001 * (call % 60000);
    host.position[1] = 5.0;
    host.position[2] = -k_depth;
    host.velocity[0] = 1.0;
    host.velocity[2] = 0.1;
    host.angular_velocity[1] = 0.2;
  }

private:
  static constexpr int k_poses = 6283;
  std::vector<std::array<double, 9>> m_axes;
};

void use_files(qvbench::BenchHost& host, const std::string& wave, const std::string& current) {
  host.strings[1].assign(wave.begin(), wave.end());
  host.strings[2].assign(current.begin(), current.end());
}

void count_patches(benchmark::State& state, const qvbench::hull_mesh& mesh) {
  state.SetLabel(std::to_string(mesh.patches.size()) + " patches");
  state.counters["per_patch"] = benchmark::Counter(double(mesh.patches.size()) * double(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// What a call in still water must give for a hull whose centre is at the surface: these hulls are symmetric about
/// their centre, so half of them is under water however they lie. Empty if it does.
std::string fault_of_still_water(const double* result, const qvbench::hull_mesh& mesh) {
  constexpr double k_rounding = 1e-11;
  const double half = 0.5 * qvbench::volume_of(mesh), weight = k_density * k_gravity * half;
  if (!(std::fabs(result[QV_HULL_RESULT_SUBMERGED_VOLUME] / half - 1.0) < k_rounding)) return "wrong volume";
  const double* buoyancy = result + QV_HULL_RESULT_BUOYANCY;
  if (!(std::fabs(buoyancy[2] / weight - 1.0) < k_rounding)) return "wrong buoyancy";
  for (int k = 0; k < 3; ++k) {
    const double sum =
        buoyancy[k] + result[QV_HULL_RESULT_NORMAL_DRAG_FORCE + k] + result[QV_HULL_RESULT_TANGENTIAL_DRAG_FORCE + k];
    if (!(std::fabs(result[QV_HULL_RESULT_FORCE + k] - sum) < k_rounding * weight)) return "wrong sum of the forces";
  }
  return "";
}

void floating(benchmark::State& state) {
  const int kind = static_cast<int>(state.range(0));
  const qvbench::hull_mesh mesh = make_hull(kind);
  qvbench::BenchHost host;
  use_files(host, qvbench::make_wave_file(200, 200), qvbench::make_current_file());
  std::vector<double> par = parameters(mesh, kind);
  const course drift;
  int calls = 0;
  double result[QV_HULL_RESULT_LENGTH], time = 0.0;
  const auto call = [&](int iflag) {
    qvhydro_force(host.handle(), time, par.data(), static_cast<int>(par.size()), 0, iflag, result);
  };
  drift.place(host, calls);
  call(1);
  for (auto _ : state) {
    drift.place(host, ++calls);
    call(0);
    time = std::min(time + 0.001, 19.0);  // the waves' last row is at 20 s, their last position at 100 m
  }
  const double half = 0.5 * qvbench::volume_of(mesh);
  if (std::fabs(result[QV_HULL_RESULT_SUBMERGED_VOLUME] / half - 1.0) > 0.25) state.SkipWithError("not half under");
  host.position[2] = 0.0;
  call(1);
  const std::string fault = fault_of_still_water(result, mesh);
  if (!fault.empty()) state.SkipWithError(fault.c_str());
  if (!host.complaint.empty()) state.SkipWithError(host.complaint.c_str());
  count_patches(state, mesh);
}

/// A patch of which it is known what the water does to it.
struct known_patch {
  std::array<int, 3> nodes;
  int powers;  ///< how many of its corners are reached by the drag
};

std::vector<known_patch> patches_in_water(const qvbench::hull_mesh& mesh) {
  std::vector<known_patch> known;
  for (const auto& patch : mesh.patches) {
    const auto wet = [&](int n) {
      return mesh.nodes[static_cast<std::size_t>(patch[static_cast<std::size_t>(n)])][2] < k_depth;
    };
    if (wet(0) || wet(1) || wet(2)) known.push_back({patch, !wet(0) ? 0 : !wet(1) ? 1 : !wet(2) ? 2 : 3});
  }
  return known;
}

/// Limit of the cost per patch: nodes are moved to the water frame, and only patches that are known to be in the water
/// are evaluated, each with a column under a level plane and a power for each corner that has drag.
void limit_per_patch(benchmark::State& state) {
  const qvbench::hull_mesh mesh = make_hull(static_cast<int>(state.range(0)));
  const std::vector<known_patch> wet = patches_in_water(mesh);
  std::vector<std::array<double, 3>> nodes(mesh.nodes.size());
  double sum = 0.0, moment[3] = {}, level = k_depth, tilt = 0.0;
  for (auto _ : state) {
    level = level > 0.03 ? 0.02 : level + 1e-6;
    tilt += 1e-9;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const auto& p = mesh.nodes[i];
      nodes[i] = {p[0] - tilt * p[1] + tilt * p[2] + 20.0, tilt * p[0] + p[1] - tilt * p[2] + 5.0,
                  -tilt * p[0] + tilt * p[1] + p[2] - tilt};
    }
    for (const auto& patch : wet) {
      const double* a = nodes[static_cast<std::size_t>(patch.nodes[0])].data();
      const double* b = nodes[static_cast<std::size_t>(patch.nodes[1])].data();
      const double* d = nodes[static_cast<std::size_t>(patch.nodes[2])].data();
      const double area = 0.5 * ((b[0] - a[0]) * (d[1] - a[1]) - (b[1] - a[1]) * (d[0] - a[0]));
      const double ha = level - a[2], hb = level - b[2], hd = level - d[2], h = ha + hb + hd;
      sum -= area * h / 3.0;
      for (int k = 0; k < 2; ++k) moment[k] -= area * (a[k] * (h + ha) + b[k] * (h + hb) + d[k] * (h + hd)) / 12.0;
      moment[2] -= area * (h * h + ha * ha + hb * hb + hd * hd) / 24.0;
      const double depths[3] = {ha, hb, hd};
      for (int n = 0; n < patch.powers; ++n) sum += std::pow(1.0 + depths[n], k_exponent);
    }
  }
  benchmark::DoNotOptimize(sum);
  benchmark::DoNotOptimize(moment);
  count_patches(state, mesh);
}

constexpr int k_rows = 1000;
int columns_of(int megabytes) { return megabytes * 1000 / 24; }  // about 12 bytes a number, two numbers a column

/// The first call of an element: a WAVE file read into its tables.
void read_wave(benchmark::State& state) {
  const std::string wave = qvbench::make_wave_file(k_rows, columns_of(static_cast<int>(state.range(0))));
  qvbench::BenchHost host;
  use_files(host, wave, qvbench::make_current_file());
  // A table is read once: an element for each size, and one iteration.
  std::vector<double> par = parameters(qvbench::make_icosphere(0), static_cast<int>(8 + state.range(1)));
  double result[QV_HULL_RESULT_LENGTH];
  for (auto _ : state) qvhydro_force(host.handle(), 0.0, par.data(), static_cast<int>(par.size()), 0, 1, result);
  if (!host.complaint.empty()) state.SkipWithError(host.complaint.c_str());
  state.SetBytesProcessed(static_cast<int64_t>(qvbench::file_size(wave)) * state.iterations());
}

void limit_scan_wave(benchmark::State& state) {
  const std::string wave = qvbench::make_wave_file(k_rows, columns_of(static_cast<int>(state.range(0))));
  const auto size = static_cast<std::size_t>(qvbench::file_size(wave));
  double sum = 0.0;
  for (auto _ : state) {
    sum += qvbench::sum_of_numbers(wave, size);
  }
  benchmark::DoNotOptimize(sum);
  state.SetBytesProcessed(static_cast<int64_t>(size) * state.iterations());
}

BENCHMARK(floating)->Arg(k_box)->Arg(2)->Arg(3)->Arg(4)->Arg(6)->ArgName("hull");
BENCHMARK(limit_per_patch)->Arg(k_box)->Arg(2)->Arg(3)->Arg(4)->Arg(6)->ArgName("hull");
BENCHMARK(read_wave)
    ->Args({10, 0})
    ->Args({100, 1})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->ArgNames({"megabytes", "slot"});
BENCHMARK(limit_scan_wave)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond)->ArgName("megabytes");

}  // namespace
