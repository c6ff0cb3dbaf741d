#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "bench/bench_host.h"
#include "bench/hull_maker.h"
#include "bench/limit_parts.h"
#include "qvbrisk/subroutines.h"

// Cost of a patch of a floating hull through the exported function, in waves and current, compared with a limit that no
// implementation can go below; and the reading of a WAVE file, compared with a bare scan of its numbers.
namespace {

constexpr double k_draft = 0.02;  // [m] depth of the sphere's centre under the still water
constexpr double k_exponent = 1.9;

/// The `par` of qvhydro_force for a sphere of unit radius with this mesh.
std::vector<double> parameters(const qvbench::hull_mesh& mesh, int id) {
  constexpr int k_forces = 16;  // the first call of the process sizes the container
  std::vector<double> par = {0, 1, double(id), k_forces, 1, 2,    1,    1,     2,          1000,
                             0, 0, 1,          0,        0, 1025, 9.81, 0.003, k_exponent, 1};
  par.push_back(double(mesh.nodes.size()));
  for (const auto& node : mesh.nodes) par.insert(par.end(), node.begin(), node.end());
  par.push_back(double(mesh.patches.size()));
  for (const auto& patch : mesh.patches) par.insert(par.end(), patch.begin(), patch.end());
  return par;
}

/// Places the sphere for a call: it drifts through the waves and rolls.
void place(qvbench::BenchHost& host, double travel) {
  const double angle = 0.2 * std::sin(travel);
  const double axes[9] = {std::cos(angle), 0, -std::sin(angle), 0, 1, 0, std::sin(angle), 0, std::cos(angle)};
  std::copy(axes, axes + 9, host.axes);
  host.position[0] = 20.0 + travel;
  host.position[1] = 5.0;
  host.position[2] = -k_draft;
  host.velocity[0] = 1.0;
  host.velocity[2] = 0.1;
  host.angular_velocity[1] = 0.2;
}

void use_files(qvbench::BenchHost& host, const std::string& wave, const std::string& current) {
  host.strings[1].assign(wave.begin(), wave.end());
  host.strings[2].assign(current.begin(), current.end());
}

void floating(benchmark::State& state) {
  const qvbench::hull_mesh mesh = qvbench::make_icosphere(static_cast<int>(state.range(0)));
  qvbench::BenchHost host;
  use_files(host, qvbench::make_wave_file(200, 200), qvbench::make_current_file());
  std::vector<double> par = parameters(mesh, static_cast<int>(state.range(0)));
  double result[34], time = 0.0;
  const auto call = [&](int iflag) {
    place(host, time);
    qvhydro_force(host.handle(), time, par.data(), static_cast<int>(par.size()), 0, iflag, result);
    time += 0.001;
  };
  call(1);
  for (auto _ : state) call(0);
  const double half_sphere = 2.0 / 3.0 * 3.141592653589793;
  if (!host.complaint.empty()) state.SkipWithError(host.complaint.c_str());
  if (std::fabs(result[33] / half_sphere - 1.0) > 0.25) state.SkipWithError("the sphere is not half under water");
  state.SetLabel(std::to_string(mesh.patches.size()) + " patches");
  state.counters["per_patch"] = benchmark::Counter(double(mesh.patches.size()) * double(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// Limit of the cost per patch: nodes are moved to the water frame, and only patches that are known to be under water
/// are evaluated, each with a column under a level plane and three powers.
void limit_per_patch(benchmark::State& state) {
  const qvbench::hull_mesh mesh = qvbench::make_icosphere(static_cast<int>(state.range(0)));
  std::vector<std::array<int, 3>> wet;
  const auto under = [&](int node) { return mesh.nodes[static_cast<std::size_t>(node)][2] < k_draft; };
  for (const auto& patch : mesh.patches) {
    if (under(patch[0]) && under(patch[1]) && under(patch[2])) wet.push_back(patch);
  }
  std::vector<std::array<double, 3>> nodes(mesh.nodes.size());
  double sum = 0.0, moment[3] = {}, level = k_draft, tilt = 0.0;
  for (auto _ : state) {
    level = level > 0.03 ? 0.02 : level + 1e-6;
    tilt += 1e-9;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const auto& p = mesh.nodes[i];
      nodes[i] = {p[0] - tilt * p[1] + tilt * p[2] + 20.0, tilt * p[0] + p[1] - tilt * p[2] + 5.0,
                  -tilt * p[0] + tilt * p[1] + p[2] - tilt};
    }
    for (const auto& patch : wet) {
      const double* a = nodes[static_cast<std::size_t>(patch[0])].data();
      const double* b = nodes[static_cast<std::size_t>(patch[1])].data();
      const double* d = nodes[static_cast<std::size_t>(patch[2])].data();
      const double area = 0.5 * ((b[0] - a[0]) * (d[1] - a[1]) - (b[1] - a[1]) * (d[0] - a[0]));
      const double ha = level - a[2], hb = level - b[2], hd = level - d[2], h = ha + hb + hd;
      sum -= area * h / 3.0;
      for (int k = 0; k < 2; ++k) moment[k] -= area * (a[k] * (h + ha) + b[k] * (h + hb) + d[k] * (h + hd)) / 12.0;
      moment[2] -= area * (h * h + ha * ha + hb * hb + hd * hd) / 24.0;
      sum += std::pow(1.0 + ha, k_exponent) + std::pow(1.0 + hb, k_exponent) + std::pow(1.0 + hd, k_exponent);
    }
  }
  benchmark::DoNotOptimize(sum);
  benchmark::DoNotOptimize(moment);
  state.SetLabel(std::to_string(mesh.patches.size()) + " patches");
  state.counters["per_patch"] = benchmark::Counter(double(mesh.patches.size()) * double(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
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
  double result[34];
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

BENCHMARK(floating)->Arg(2)->Arg(4)->Arg(6)->ArgName("refinements");
BENCHMARK(limit_per_patch)->Arg(2)->Arg(4)->Arg(6)->ArgName("refinements");
BENCHMARK(read_wave)
    ->Args({10, 0})
    ->Args({100, 1})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->ArgNames({"megabytes", "slot"});
BENCHMARK(limit_scan_wave)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond)->ArgName("megabytes");

}  // namespace
