#include <cmath>
#include <random>

#include "solver/data_files/make_road.h"

namespace qvslv {

namespace {

constexpr double k_two_pi = 6.283185307179586;

/// A number 0 <= u < 1 from the generator's upper 53 bits. It is the same on every machine; the standard's
/// distributions are not.
double uniform(std::mt19937_64& generator) { return static_cast<double>(generator() >> 11) * 0x1p-53; }

}  // namespace

/// Rolling ground is a sum of waves. The logarithms of their lengths are spread evenly from half to twice the middle
/// length, each wave has a direction and phase of its own, and its amplitude is proportional to its length, so that no
/// length stands out as steeper.
RoadHeights::RoadHeights(const RoadSettings& settings) : m_settings(settings) {
  if (settings.kind != RoadKind::rolling) return;
  std::mt19937_64 generator(settings.seed);
  double sum_of_squares = 0;
  for (int i = 0; i < k_waves; ++i) {
    const double length = settings.wavelength * std::exp2(2.0 * (i + 0.5) / k_waves - 1.0);
    const double direction = k_two_pi * uniform(generator);
    const double phase = k_two_pi * uniform(generator);
    const double number = k_two_pi / length;
    m_waves[i] = {number * std::cos(direction), number * std::sin(direction), phase, length};
    sum_of_squares += length * length;
  }
  for (Wave& wave : m_waves) wave.amplitude *= settings.amplitude / std::sqrt(sum_of_squares);
}

double RoadHeights::operator()(double x, double y) const {
  switch (m_settings.kind) {
    case RoadKind::flat:
      break;
    case RoadKind::slope:
      return m_settings.height + m_settings.grade * x;
    case RoadKind::sine:
      return m_settings.height + m_settings.amplitude * std::sin(k_two_pi * x / m_settings.wavelength);
    case RoadKind::rolling: {
      double z = m_settings.height;
      for (const Wave& wave : m_waves) z += wave.amplitude * std::sin(wave.kx * x + wave.ky * y + wave.phase);
      return z;
    }
  }
  return m_settings.height;
}

}  // namespace qvslv
