#include <benchmark/benchmark.h>

#include <random>

#include "bench/soil_scene.h"

// Cost of a grid point through the exported function: driving (a millimetre per call, every fourth call closes a
// step) and jumping to random places, on roads of 2 10^3 to 10^6 triangles.
namespace {

using qvbench::body;
using qvbench::SoilScene;

constexpr body k_bodies[] = {{true, 36, 9}, {true, 72, 19}, {false, 20, 20}};
constexpr const char* k_names[] = {"wheel 36x9", "wheel 72x19", "plate 20x20"};

void report(benchmark::State& state, const SoilScene& scene, const body& what) {
  if (!scene.complaint().empty() || scene.points_in_contact() == 0) state.SkipWithError("no contact");
  state.SetLabel(k_names[state.range(0)]);
  state.counters["in_contact"] = double(scene.points_in_contact()) / what.points();
  state.counters["per_point"] = benchmark::Counter(double(what.points()) * double(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void driving(benchmark::State& state) {
  const body what = k_bodies[state.range(0)];
  SoilScene scene(what, static_cast<int>(state.range(1)));
  const double margin = 0.7, span = scene.road_length() - 2 * margin;
  double travel = 0.0;
  long call = 0;
  const auto drive = [&] {
    scene.place(margin + travel, 0.5 * scene.road_length());
    scene.call(++call % 4 == 0 ? 2 : 0);
    travel += 0.001;
    if (travel > span) travel = 0.0;
  };
  for (int i = 0; i < 200; ++i) drive();  // reach a moving state, in which points have a history
  for (auto _ : state) drive();
  report(state, scene, what);
}

void jumping(benchmark::State& state) {
  const body what = k_bodies[state.range(0)];
  SoilScene scene(what, static_cast<int>(state.range(1)));
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> place(0.7, scene.road_length() - 0.7);
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
  report(state, scene, what);
}

void all_cases(benchmark::internal::Benchmark* b) {
  for (int what = 0; what < 3; ++what)
    for (const int triangles : {2000, 20000, 200000, 1000000}) b->Args({what, triangles});
  b->ArgNames({"body", "triangles"});
}

BENCHMARK(driving)->Apply(all_cases);
BENCHMARK(jumping)->Apply(all_cases);

}  // namespace
