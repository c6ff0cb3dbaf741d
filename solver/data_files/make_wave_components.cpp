#include <cmath>
#include <random>
#include <vector>

#include "solver/data_files/make_wave.h"

namespace qvslv {

namespace {

constexpr double k_two_pi = 6.283185307179586;

/// A number 0 <= u < 1 from the generator's upper 53 bits. It is the same on every machine; the standard's
/// distributions are not.
double uniform(std::mt19937_64& generator) { return static_cast<double>(generator() >> 11) * 0x1p-53; }

/// Energy of a band by Simpson's rule, up to the spectrum's factor.
double band_energy(const WaveSettings& settings, double low, double high) {
  constexpr int k_intervals = 32;  // even; a peak of 7 % width is resolved even by a few bands
  const double step = (high - low) / k_intervals;
  double sum = spectral_shape(settings, low) + spectral_shape(settings, high);
  for (int i = 1; i < k_intervals; ++i) sum += (i % 2 == 1 ? 4 : 2) * spectral_shape(settings, low + i * step);
  return sum * step / 3;
}

WaveComponent component(const WaveSettings& settings, double amplitude, double omega, double phase) {
  const double k = wave_number(omega, settings.depth, settings.gravity);
  return {amplitude, omega, settings.against_x ? -k : k, phase};
}

std::vector<WaveComponent> spectrum_components(const WaveSettings& settings) {
  std::mt19937_64 generator(settings.seed);
  const double peak = k_two_pi / settings.period;
  const double low = k_lowest_frequency * peak;
  const double width = (k_highest_frequency * peak - low) / settings.components;
  std::vector<WaveComponent> waves;
  double energy = 0;
  for (int i = 0; i < settings.components; ++i) {
    const double begin = low + i * width;
    const double band = band_energy(settings, begin, begin + width);
    const double omega = begin + width * uniform(generator);
    waves.push_back(component(settings, std::sqrt(2 * band), omega, k_two_pi * uniform(generator)));
    energy += band;
  }
  // The waves' variances sum up to m0 = (height / 4)^2, so the energy of the frequencies left out is spread over them.
  for (WaveComponent& wave : waves) wave.amplitude *= settings.height / (4 * std::sqrt(energy));
  return waves;
}

}  // namespace

double wave_number(double omega, double depth, double gravity) {
  const double deep = omega * omega / gravity;
  if (depth == 0) return deep;
  // y tanh y = a with y = k h and a = omega^2 h / g. The left side is convex or nearly straight: Newton's steps
  // converge.
  const double a = deep * depth;
  double y = a / std::sqrt(std::tanh(a));
  constexpr int k_most_steps = 50;
  for (int i = 0; i < k_most_steps; ++i) {
    const double tanh_y = std::tanh(y);
    const double step = (y * tanh_y - a) / (tanh_y + y * (1 - tanh_y * tanh_y));
    y -= step;
    if (std::abs(step) <= 1e-16 * y) break;
  }
  return y / depth;
}

double spectral_shape(const WaveSettings& settings, double omega) {
  const double peak = k_two_pi / settings.period;
  const double r = peak / omega;
  const double shape = std::pow(omega, -5) * std::exp(-1.25 * r * r * r * r);
  if (settings.kind != WaveKind::jonswap) return shape;
  const double sigma = omega <= peak ? 0.07 : 0.09;
  const double distance = (omega - peak) / (sigma * peak);
  return shape * std::pow(settings.gamma, std::exp(-0.5 * distance * distance));
}

std::vector<WaveComponent> wave_components(const WaveSettings& settings) {
  if (settings.kind == WaveKind::still) return {};
  if (settings.kind != WaveKind::regular) return spectrum_components(settings);
  return {component(settings, 0.5 * settings.height, k_two_pi / settings.period, 0)};
}

}  // namespace qvslv
