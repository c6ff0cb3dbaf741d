#include <cmath>
#include <random>

#include "solver/data_files/make_road.h"

namespace qvslv {

namespace {

constexpr double k_two_pi = 6.283185307179586;

/// 0 <= u < 1 from the generator's upper 53 bits: the same on every machine, which the standard's distributions
/// are not.
double uniform(std::mt19937_64& generator) { return static_cast<double>(generator() >> 11) * 0x1p-53; }

}  // namespace

/// Rolling ground: waves of lengths spread evenly (in their logarithm) from half to twice the middle one, each in
/// its own direction and phase, amplitude proportional to length, so that no length stands out as steeper.
RoadHeights::RoadHeights(const RoadSettings& settings) : settings_(settings) {
  if (settings.kind != RoadKind::rolling) return;
  std::mt19937_64 generator(settings.seed);
  double sum_of_squares = 0;
  for (int i = 0; i < k_waves; ++i) {
    const double length = settings.wavelength * std::exp2(2.0 * (i + 0.5) / k_waves - 1.0);
    const double direction = k_two_pi * uniform(generator);
    const double phase = k_two_pi * uniform(generator);
    const double number = k_two_pi / length;
    waves_[i] = {number * std::cos(direction), number * std::sin(direction), phase, length};
    sum_of_squares += length * length;
  }
  for (Wave& wave : waves_) wave.amplitude *= settings.amplitude / std::sqrt(sum_of_squares);
}

double RoadHeights::operator()(double x, double y) const {
  switch (settings_.kind) {
    case RoadKind::flat:
      break;
    case RoadKind::slope:
      return settings_.height + settings_.grade * x;
    case RoadKind::sine:
      return settings_.height + settings_.amplitude * std::sin(k_two_pi * x / settings_.wavelength);
    case RoadKind::rolling: {
      double z = settings_.height;
      for (const Wave& wave : waves_) z += wave.amplitude * std::sin(wave.kx * x + wave.ky * y + wave.phase);
      return z;
    }
  }
  return settings_.height;
}

}  // namespace qvslv
