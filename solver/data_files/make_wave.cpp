#include "solver/data_files/make_wave.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

namespace qvslv {

namespace {

constexpr double k_pi = 3.141592653589793;
constexpr size_t k_block = 512;  // columns computed together, so that their values for all components stay in cache

/// Values from 0 to `end` in equal steps, each rounded to the digits that it has in the file.
std::vector<double> axis(double end, int count) {
  constexpr int k_digits = 12;
  std::vector<double> values;
  for (int i = 0; i < count; ++i) {
    char buffer[40];
    const char* last =
        std::to_chars(buffer, buffer + sizeof buffer, end * i / (count - 1), std::chars_format::general, k_digits).ptr;
    values.emplace_back();
    std::from_chars(buffer, last, values.back());
  }
  return values;
}

/// amplitude cos(k x + phase) and amplitude sin(k x + phase) of a component over a block of columns.
struct ColumnWaves {
  double cosine[k_block], sine[k_block];
};

std::vector<ColumnWaves> waves_over(const std::vector<WaveComponent>& components, const double* x, size_t count) {
  std::vector<ColumnWaves> columns(components.size());
  for (size_t c = 0; c < components.size(); ++c) {
    for (size_t j = 0; j < count; ++j) {
      const double angle = components[c].k * x[j] + components[c].phase;
      columns[c].cosine[j] = components[c].amplitude * std::cos(angle);
      columns[c].sine[j] = components[c].amplitude * std::sin(angle);
    }
  }
  return columns;
}

/// Adds all components at time t to a block of columns. cos(k x + phase - omega t) comes from the addition theorem,
/// which needs one cosine and sine per component and time instead of one per value.
void add_row(const std::vector<WaveComponent>& components, const std::vector<ColumnWaves>& columns, double t,
             size_t count, double* elevation, double* velocity) {
  for (size_t c = 0; c < components.size(); ++c) {
    const double omega = components[c].omega;
    const double cosine = std::cos(omega * t), sine = std::sin(omega * t);
    const ColumnWaves& wave = columns[c];
    for (size_t j = 0; j < count; ++j) {
      elevation[j] += wave.cosine[j] * cosine + wave.sine[j] * sine;
      velocity[j] += omega * (wave.sine[j] * cosine - wave.cosine[j] * sine);
    }
  }
}

/// Makes the waves grow from nothing: multiplies the elevation by r(t) = (1 - cos(pi t / ramp)) / 2 and changes the
/// velocity by the product rule.
void apply_ramp(WaveFile& wave, double ramp) {
  for (size_t i = 0; i < wave.time.size() && wave.time[i] < ramp; ++i) {
    const double angle = k_pi * wave.time[i] / ramp;
    const double share = 0.5 * (1 - std::cos(angle)), growth = 0.5 * k_pi / ramp * std::sin(angle);
    for (size_t j = 0; j < wave.x.size(); ++j) {
      wave.velocity[i][j] = growth * wave.elevation[i][j] + share * wave.velocity[i][j];
      wave.elevation[i][j] *= share;
    }
  }
}

}  // namespace

WaveFile wave_table(const WaveSettings& settings) {
  const std::string mistake = mistake_in(settings);
  if (!mistake.empty()) throw std::invalid_argument(mistake);
  WaveFile wave;
  wave.time = axis(settings.duration, time_rows(settings));
  wave.x = axis(settings.extent, columns_along_x(settings));
  wave.elevation.assign(wave.time.size(), std::vector<double>(wave.x.size(), 0.0));
  wave.velocity = wave.elevation;
  const std::vector<WaveComponent> components = wave_components(settings);
  for (size_t first = 0; first < wave.x.size(); first += k_block) {
    const size_t count = std::min(k_block, wave.x.size() - first);
    const std::vector<ColumnWaves> columns = waves_over(components, wave.x.data() + first, count);
    for (size_t i = 0; i < wave.time.size(); ++i)
      add_row(components, columns, wave.time[i], count, wave.elevation[i].data() + first,
              wave.velocity[i].data() + first);
  }
  if (settings.ramp > 0) apply_ramp(wave, settings.ramp);
  return wave;
}

double significant_height(const WaveFile& wave) {
  double sum = 0, squares = 0;
  for (const std::vector<double>& row : wave.elevation) {
    for (const double value : row) {
      sum += value;
      squares += value * value;
    }
  }
  const double count = static_cast<double>(wave.time.size()) * static_cast<double>(wave.x.size());
  const double mean = sum / count;
  return 4 * std::sqrt(std::max(0.0, squares / count - mean * mean));
}

WaveFile write_wave_file(const WaveSettings& settings, const std::string& path) {
  WaveFile wave = wave_table(settings);
  write_file_whole(wave_text(wave, settings_line(settings)), path);
  return wave;
}

}  // namespace qvslv
