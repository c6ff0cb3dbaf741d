#include "common/kernels/powers.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

// Cost of a power and of an exponential: by the C library, one by one, and in rows of a block of points by each version
// that runs on this processor. Values that are not those of the C library end the benchmark.
namespace {

constexpr int k_row = 64;
constexpr double k_exponent = -0.3;

/// Depths of contact points, and exponents of the shear curve.
std::vector<double> row(double low, double high) {
  std::mt19937_64 random(5);
  std::uniform_real_distribution<double> number(low, high);
  std::vector<double> numbers(k_row);
  for (double& x : numbers) x = number(random);
  return numbers;
}
std::vector<double> depths() { return row(1e-4, 0.2); }
std::vector<double> curve_arguments() { return row(-10.0, 1.0); }

double library_power(double x) { return std::pow(x, k_exponent); }
double library_exponential(double x) { return std::exp(x); }
double own_power(double x) { return qv::power(x, k_exponent); }
double own_exponential(double x) { return qv::exponential(x); }

void report(benchmark::State& state, const std::vector<double>& x, const std::vector<double>& values,
            double (*reference)(double)) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double expected = reference(x[i]);
    if (!(std::fabs(values[i] - expected) <= 1e-15 * expected)) state.SkipWithError("wrong value");
  }
  state.counters["per_value"] = benchmark::Counter(double(x.size()) * double(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void one_by_one(benchmark::State& state, const std::vector<double>& x, double (*function)(double),
                double (*reference)(double)) {
  std::vector<double> values(x.size());
  for (auto _ : state) {
    for (std::size_t i = 0; i < x.size(); ++i) values[i] = function(x[i]);
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
  }
  report(state, x, values, reference);
}

void powers_in_rows(benchmark::State& state, const qv::power_version& version) {
  const std::vector<double> x = depths();
  std::vector<double> values(x.size());
  for (auto _ : state) {
    version.powers(x.data(), k_exponent, values.data(), k_row);
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
  }
  report(state, x, values, library_power);
}

void exponentials_in_rows(benchmark::State& state, const qv::power_version& version) {
  const std::vector<double> x = curve_arguments();
  std::vector<double> values(x.size());
  for (auto _ : state) {
    version.exponentials(x.data(), values.data(), k_row);
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
  }
  report(state, x, values, library_exponential);
}

int register_versions() {
  for (const qv::power_version& version : qv::all_power_versions()) {
    if (!version.runs_here) continue;
    benchmark::RegisterBenchmark((std::string("power/rows, ") + version.name).c_str(), powers_in_rows, version);
    benchmark::RegisterBenchmark((std::string("exponential/rows, ") + version.name).c_str(), exponentials_in_rows,
                                 version);
  }
  return 0;
}

void power_by_c_library(benchmark::State& state) { one_by_one(state, depths(), library_power, library_power); }
void power_by_itself(benchmark::State& state) { one_by_one(state, depths(), own_power, library_power); }
void exponential_by_c_library(benchmark::State& state) {
  one_by_one(state, curve_arguments(), library_exponential, library_exponential);
}
void exponential_by_itself(benchmark::State& state) {
  one_by_one(state, curve_arguments(), own_exponential, library_exponential);
}

BENCHMARK(power_by_c_library)->Name("power/C library");
BENCHMARK(power_by_itself)->Name("power/one by one");
BENCHMARK(exponential_by_c_library)->Name("exponential/C library");
BENCHMARK(exponential_by_itself)->Name("exponential/one by one");
[[maybe_unused]] const int k_registered = register_versions();

}  // namespace
