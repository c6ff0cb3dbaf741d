#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "bench/limit_parts.h"
#include "bench/road_maker.h"
#include "bench/soil_scene.h"

// Limits that no implementation can go below: finding a point on a grid that is known to be regular, with only the
// powers and exponentials that the laws need for a point in contact, one by one by the C library or in rows; and a bare
// scan of a road file's numbers.
namespace {

using qvbench::body;
using qvbench::regular_terrain;

constexpr body k_bodies[] = {{true, 36, 9}, {true, 72, 19}, {false, 20, 20}};
constexpr const char* k_names[] = {"wheel 36x9", "wheel 72x19", "plate 20x20"};

template <typename Laws>
void limit_per_point(benchmark::State& state) {
  const body what = k_bodies[state.range(0)];
  static regular_terrain terrain(707);
  std::vector<std::array<double, 3>> grid;
  for (int i = 0; i < what.nx; ++i) {
    for (int j = 0; j < what.ny; ++j) {
      const double across = what.width() * (double(j) / (what.ny - 1) - 0.5);
      const double angle = 6.283185307179586 * i / what.nx;
      if (what.wheel) {
        grid.push_back({what.size() * std::cos(angle), across, what.size() * std::sin(angle)});
      } else {
        grid.push_back({what.size() * (double(i) / (what.nx - 1) - 0.5), across, 0.0});
      }
    }
  }
  double travel = 0.0, sum = 0.0;
  Laws laws;
  long in_contact = 0, points = 0;
  for (auto _ : state) {
    const double x = 0.7 + travel, y = 35.35, z = qvbench::terrain_height(x, y) + what.height();
    travel = travel > 60.0 ? 0.0 : travel + 0.001;
    for (const auto& at : grid) {
      const double depth = terrain.under(x + at[0], y + at[1]) - (z + at[2]);
      ++points;
      if (depth <= 0.0) continue;
      ++in_contact;
      laws.add(depth, 20000.0 + 1000.0 * depth, 0.01 + at[0] * at[0], 0.001 + depth);
    }
    sum = laws.sum();
  }
  benchmark::DoNotOptimize(sum);
  state.SetLabel(k_names[state.range(0)]);
  state.counters["in_contact"] = double(in_contact) / double(points);
  state.counters["per_point"] =
      benchmark::Counter(double(points), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void limit_scan(benchmark::State& state) {
  const qvbench::road_file& road = qvbench::make_road(static_cast<int>(state.range(0)));
  double sum = 0.0;
  for (auto _ : state) {
    sum += qvbench::sum_of_numbers(road.path, road.bytes);
  }
  benchmark::DoNotOptimize(sum);
  state.SetBytesProcessed(static_cast<int64_t>(road.bytes) * state.iterations());
}

BENCHMARK(limit_per_point<qvbench::laws_by_c_library>)->Name("limit_per_point")->DenseRange(0, 2)->ArgName("body");
BENCHMARK(limit_per_point<qvbench::laws_in_rows>)->Name("limit_per_point_in_rows")->DenseRange(0, 2)->ArgName("body");
BENCHMARK(limit_scan)
    ->Arg(2000)
    ->Arg(20000)
    ->Arg(200000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->ArgName("triangles");

}  // namespace
