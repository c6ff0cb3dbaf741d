#include <benchmark/benchmark.h>

#include "bench/bench_host.h"
#include "bench/road_maker.h"
#include "qvbrisk/subroutines.h"

// Cost of the set-up call: from the file's name to a road that is ready. Each iteration needs a road number of its own,
// because a road is read only once.
namespace {

void set_up_call(benchmark::State& state) {
  const qvbench::road_file& file = qvbench::make_road(static_cast<int>(state.range(0)));
  qvbench::BenchHost host;
  host.road_file.assign(file.path.begin(), file.path.end());
  constexpr int k_roads = 8;  // the same in all benchmarks: the first set-up call of the process sizes the container
  // Roads 0 to 3 belong to the contact benchmarks; 4 to 7 stay for this one, one per size, so one iteration each.
  const int road = 4 + static_cast<int>(state.range(1));
  double par[15] = {3, 1, 0, double(road), 1, 2, 0, 8, k_roads, 2, 0.5, 0.3, 2, 2, 3};
  double result[7 + 8 * 4];
  for (auto _ : state) qvsoil_interaction(host.handle(), 0.0, par, 15, 0, 1, result);
  if (!host.complaint.empty()) state.SkipWithError(host.complaint.c_str());
  state.SetBytesProcessed(static_cast<int64_t>(file.bytes) * state.iterations());
  state.counters["per_triangle"] =
      benchmark::Counter(double(file.triangles), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK(set_up_call)
    ->Args({2000, 0})
    ->Args({20000, 1})
    ->Args({200000, 2})
    ->Args({1000000, 3})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->ArgNames({"triangles", "slot"});

}  // namespace
