#include <gmock/gmock.h>

#include <cmath>

#include "tests/solver/data_files/wave_settings.h"

namespace {

using namespace qvtest;
using qvslv::WaveFile;

/// The spectra as they are printed in the books, up to a factor; written without a look at the maker.
double book_spectrum(double f, double peak_f, double gamma) {
  const double pm = std::pow(f, -5) * std::exp(-5.0 / 4.0 * std::pow(f / peak_f, -4));
  const double sigma = f <= peak_f ? 0.07 : 0.09;
  return pm * std::pow(gamma, std::exp(-(f - peak_f) * (f - peak_f) / (2 * sigma * sigma * peak_f * peak_f)));
}

/// integral of (2 pi f)^order S(f) df by the midpoint rule, over the frequencies that the maker keeps.
double book_moment(int order, double peak_f, double gamma, double from, double to) {
  constexpr int k_steps = 20000;
  double sum = 0;
  for (int i = 0; i < k_steps; ++i) {
    const double f = peak_f * (from + (to - from) * (i + 0.5) / k_steps);
    sum += std::pow(k_two_pi * f, order) * book_spectrum(f, peak_f, gamma);
  }
  return sum * peak_f * (to - from) / k_steps;
}

double mean_square(const std::vector<std::vector<double>>& table) {
  double sum = 0;
  for (const std::vector<double>& row : table)
    for (const double value : row) sum += value * value;
  return sum / static_cast<double>(table.size() * table.front().size());
}

struct spectrum_case {
  const char* why;
  WaveKind kind;
  double gamma, depth;
};
const spectrum_case k_spectra[] = {
    {"Pierson-Moskowitz in deep water", WaveKind::pierson_moskowitz, 1.0, 0},
    {"JONSWAP in deep water", WaveKind::jonswap, 3.3, 0},
    {"a narrow JONSWAP peak over 15 m", WaveKind::jonswap, 7.0, 15},
};

/// 400 peak periods and 20 peak wave lengths, as coarse as the shortest wave allows.
WaveSettings long_record(const spectrum_case& row) {
  WaveSettings s = sea(row.kind, 2.0, 8.0);
  s.gamma = row.gamma;
  s.depth = row.depth;
  s.duration = 400 * s.period;
  s.time_step = s.period / 7;
  s.extent = 20 * qvslv::wave_length(s);
  s.x_step = s.extent / 400;
  return s;
}

TEST(MakeWave, TableHasTheSpectrumsHeightAndZeroCrossingPeriod) {
  constexpr double k_sampling = 0.02;  // of a fixed seed: neighbours in frequency do not average out altogether
  for (const spectrum_case& row : k_spectra) {
    SCOPED_TRACE(row.why);
    const WaveFile wave = qvslv::wave_table(long_record(row));
    const double m0 = mean_square(wave.elevation), m2 = mean_square(wave.velocity);
    EXPECT_NEAR(4 * std::sqrt(m0), 2.0, 2.0 * k_sampling);
    EXPECT_NEAR(qvslv::significant_height(wave), 4 * std::sqrt(m0), 0.01);
    const double target =
        k_two_pi * std::sqrt(book_moment(0, 1.0 / 8, row.gamma, 0.4, 3) / book_moment(2, 1.0 / 8, row.gamma, 0.4, 3));
    EXPECT_NEAR(k_two_pi * std::sqrt(m0 / m2), target, target * k_sampling);
  }
}

/// Variance that a record's frequencies between two limits carry (Fourier sums, one-sided).
double band_variance(const std::vector<double>& record, double step, double low, double high) {
  const double count = static_cast<double>(record.size());
  double sum = 0;
  for (double n = std::ceil(low * count * step); n < high * count * step; n += 1) {
    double c = 0, s = 0;
    for (size_t i = 0; i < record.size(); ++i) {
      const double angle = k_two_pi * n * static_cast<double>(i) / count;
      c += record[i] * std::cos(angle);
      s += record[i] * std::sin(angle);
    }
    sum += 2 * (c * c + s * s) / (count * count);
  }
  return sum;
}

TEST(MakeWave, EnergyLiesWhereTheSpectrumHasIt) {
  for (const spectrum_case& row : k_spectra) {
    SCOPED_TRACE(row.why);
    const WaveFile wave = qvslv::wave_table(long_record(row));
    const double peak_f = 1.0 / 8, all = book_moment(0, peak_f, row.gamma, 0.4, 3);
    const double edges[] = {0.4, 0.85, 1.15, 1.6, 3.0};
    for (int band = 0; band < 4; ++band) {
      const double low = edges[band], high = edges[band + 1];
      double variance = 0;
      constexpr int k_places = 5;
      for (size_t place = 0; place < k_places; ++place) {
        std::vector<double> record;
        for (const std::vector<double>& at : wave.elevation) record.push_back(at[place * 80]);
        variance += band_variance(record, wave.time[1], low * peak_f, high * peak_f) / k_places;
      }
      constexpr double k_of_all = 0.03;  // five records of 400 periods
      EXPECT_NEAR(variance / 0.25, book_moment(0, peak_f, row.gamma, low, high) / all, k_of_all) << low << " " << high;
    }
  }
}

TEST(MakeWave, ComponentsCarryExactlyTheSignificantHeight) {
  for (const spectrum_case& row : k_spectra) {
    double m0 = 0;
    for (const qvslv::WaveComponent& wave : qvslv::wave_components(long_record(row)))
      m0 += 0.5 * wave.amplitude * wave.amplitude;
    EXPECT_NEAR(4 * std::sqrt(m0), 2.0, 200 * k_rounding);
  }
}

TEST(MakeWave, JonswapWithoutEnhancementIsPiersonMoskowitz) {
  WaveSettings s = small_sea(WaveKind::jonswap);
  s.gamma = 1;
  const WaveFile jonswap = qvslv::wave_table(s);
  s.kind = WaveKind::pierson_moskowitz;
  EXPECT_EQ(qvslv::wave_table(s).elevation, jonswap.elevation);
}

TEST(MakeWave, SameSeedGivesTheSameBytesAndAnotherSeedAnotherSea) {
  WaveSettings s = small_sea(WaveKind::jonswap);
  const std::string text = qvslv::wave_text(qvslv::wave_table(s), "");
  EXPECT_EQ(qvslv::wave_text(qvslv::wave_table(s), ""), text);
  s.seed = 2;
  EXPECT_NE(qvslv::wave_text(qvslv::wave_table(s), ""), text);
}

TEST(MakeWave, RandomNumbersAreThoseOfTheStandardsGeneratorAndNotOfACompilersDistribution) {
  // The generator's first two outputs for seed 1 are 2469588189546311528 and 2516265689700432462 (any implementation of
  // the 64-bit Mersenne Twister); times 2^-64 they are the place in the first band and the first phase in turns.
  const WaveSettings s = sea(WaveKind::pierson_moskowitz, 1.0, k_two_pi);  // peak at omega 1
  const qvslv::WaveComponent first = qvslv::wave_components(s).front();
  const double width = (3.0 - 0.4) / 200;
  EXPECT_NEAR(first.omega, 0.4 + width * (2469588189546311528.0 * 0x1p-64), 1e-15);
  EXPECT_NEAR(first.phase, k_two_pi * (2516265689700432462.0 * 0x1p-64), 1e-14);
}

}  // namespace
