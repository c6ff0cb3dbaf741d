#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>

#include "bench/bench_host.h"
#include "bench/road_maker.h"
#include "qvbrisk/subroutines.h"

// Cost of the set-up call, from the file's name to a road that is ready: time, and memory at its peak. And what the
// road still costs where a body comes for the first time. A process reads a road once, so every iteration is a process.
namespace {

using clock = std::chrono::steady_clock;

double seconds_since(clock::time_point start) { return std::chrono::duration<double>(clock::now() - start).count(); }

/// A plate of 2 x 2 points on a road of its own. Roads 0 to 3 belong to the contact benchmarks, and the first set-up
/// call of a process sizes the container for all.
class Plate {
public:
  explicit Plate(const std::string& road) { m_host.road_file.assign(road.begin(), road.end()); }

  void call(double x, double y, int iflag) {
    m_host.position[0] = x;
    m_host.position[1] = y;
    qvsoil_interaction(m_host.handle(), 0.0, m_par, 15, 0, iflag, m_result);
  }
  bool refused() const { return !m_host.complaint.empty(); }

private:
  qvbench::BenchHost m_host;
  double m_par[15] = {3, 1, 0, 4, 1, 2, 0, 8, 8, 1, 0.1, 0.1, 2, 2, 3};
  double m_result[7 + 8 * 4];
};

/// What a process found out.
struct finding {
  bool valid = false;
  double seconds = 0.0;  ///< set-up call, or all first visits
  double again = 0.0;    ///< [s] all second visits
  double memory = 0.0;   ///< [kB] what the call adds to the resident memory at its peak, pages of code included
};

/// A line of /proc/self/status [kB].
double memory_status(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double value;
    if (word == name + ":" && status >> value) return value;
  }
  return 0.0;
}

finding set_up(const qvbench::road_file& road) {
  Plate plate(road.path);
  std::ofstream("/proc/self/clear_refs") << 5;  // the peak begins here
  const double before = memory_status("VmRSS");
  finding found;
  const auto start = clock::now();
  plate.call(0.5 * road.length, 0.5 * road.length, 1);
  found.seconds = seconds_since(start);
  found.memory = memory_status("VmHWM") - before;
  found.valid = !plate.refused();
  return found;
}

constexpr double k_between_visits = 0.4;  // [m] the side of a tile of the grid over these meshes

int visits_along(const qvbench::road_file& road) { return static_cast<int>(road.length / k_between_visits); }

finding visit(const qvbench::road_file& road) {
  Plate plate(road.path);
  plate.call(0.2, 0.2, 1);
  const auto visit_all = [&] {
    const auto start = clock::now();
    for (int i = 0; i < visits_along(road); ++i)
      for (int j = 0; j < visits_along(road); ++j)
        plate.call(0.2 + k_between_visits * i, 0.2 + k_between_visits * j, 0);
    return seconds_since(start);
  };
  finding found;
  found.seconds = visit_all();
  found.again = visit_all();
  found.valid = !plate.refused();
  return found;
}

/// Lets another process, which has not read any road of Plate, find something out.
finding in_a_process(finding (*find)(const qvbench::road_file&), const qvbench::road_file& road) {
  int ends[2];
  finding found;
  if (pipe(ends) != 0) return found;
  const pid_t child = fork();
  if (child == 0) {
    found = find(road);
    _exit(write(ends[1], &found, sizeof found) == sizeof found ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  close(ends[1]);
  if (child < 0 || read(ends[0], &found, sizeof found) != sizeof found) found.valid = false;
  close(ends[0]);
  if (child > 0) waitpid(child, nullptr, 0);
  return found;
}

void set_up_call(benchmark::State& state) {
  const qvbench::road_file& road = qvbench::make_road(static_cast<int>(state.range(0)));
  double memory = 0.0;
  for (auto _ : state) {
    const finding found = in_a_process(set_up, road);
    if (!found.valid) return state.SkipWithError("the road was refused");
    state.SetIterationTime(found.seconds);
    memory = found.memory;
  }
  state.SetBytesProcessed(static_cast<int64_t>(road.bytes) * state.iterations());
  state.counters["peak_MB"] = memory / 1024.0;
  state.counters["per_triangle"] = benchmark::Counter(double(road.triangles) * double(state.iterations()),
                                                      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void first_visit(benchmark::State& state) {
  const qvbench::road_file& road = qvbench::make_road(static_cast<int>(state.range(0)));
  double first = 0.0, again = 0.0;
  for (auto _ : state) {
    const finding found = in_a_process(visit, road);
    if (!found.valid) return state.SkipWithError("the road was refused");
    state.SetIterationTime(found.seconds);
    first += found.seconds;
    again += found.again;
  }
  const double visits = double(visits_along(road)) * visits_along(road) * double(state.iterations());
  state.counters["first"] = benchmark::Counter(first / visits);
  state.counters["again"] = benchmark::Counter(again / visits);
}

BENCHMARK(set_up_call)
    ->Arg(2000)
    ->Arg(20000)
    ->Arg(200000)
    ->Arg(1000000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->ArgName("triangles");
BENCHMARK(first_visit)->Arg(20000)->Arg(1000000)->UseManualTime()->Unit(benchmark::kMillisecond)->ArgName("triangles");

}  // namespace
