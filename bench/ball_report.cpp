#include <benchmark/benchmark.h>

#include <vector>

#include "bench/bench_host.h"
#include "qvbrisk/services.h"
#include "qvbrisk/subroutines.h"

// Cost of the ball report, compared with the cost of its three service calls per ball alone.
namespace {

void per_ball(benchmark::State& state, int balls) {
  state.counters["per_ball"] = benchmark::Counter(double(balls) * double(state.iterations()),
                                                  benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void ball_report(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  qvbench::BenchHost host;
  std::vector<double> par(2 + 2 * static_cast<std::size_t>(n), 0.25), result(3 * static_cast<std::size_t>(n));
  par[1] = n;
  for (int i = 0; i < n; ++i) par[2 + static_cast<std::size_t>(i)] = i;
  for (auto _ : state) {
    qvballplacing_report(host.handle(), 0.0, par.data(), static_cast<int>(par.size()), 0, 0, result.data());
    benchmark::DoNotOptimize(result.data());
  }
  if (result[1] != 6.0) state.SkipWithError("wrong energy");
  per_ball(state, n);
}

void ball_services_alone(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  qvbench::BenchHost host;
  for (auto _ : state) {
    for (int i = 0; i < n; ++i) {
      double m, v, w;
      int flag = 0;
      get_mass(host.handle(), &i, 1, &m, &flag);
      sysfnc(host.handle(), "VM", &i, 1, &v, &flag);
      sysfnc(host.handle(), "WM", &i, 1, &w, &flag);
      benchmark::DoNotOptimize(m + v + w);
    }
  }
  per_ball(state, n);
}

BENCHMARK(ball_report)->Arg(100)->Arg(100000);
BENCHMARK(ball_services_alone)->Arg(100)->Arg(100000);

}  // namespace
