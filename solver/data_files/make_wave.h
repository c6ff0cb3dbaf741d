#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "solver/data_files/made_file.h"
#include "solver/data_files/wave_file.h"

namespace qvslv {

enum class WaveKind { regular, pierson_moskowitz, jonswap, still };

/// Long-crested waves of linear theory along the x axis of the water marker, and the table to be made of them. Lengths
/// and times are in the model's units. `completed` fills in values that are 0 and have a default. Still water has only
/// an extent and a duration.
struct WaveSettings {
  WaveKind kind = WaveKind::regular;
  double height = 0;       ///< regular: from trough to crest; else the significant height, 4 times the rms elevation
  double period = 0;       ///< regular: period of the wave; else period at the spectrum's peak
  double gamma = 3.3;      ///< jonswap: how many times higher the peak is than that of Pierson and Moskowitz
  std::uint64_t seed = 1;  ///< seed of the random phases and frequencies
  int components = 200;    ///< number of waves that make up a spectrum
  double depth = 0;        ///< depth of the water; 0: deep
  bool against_x = false;  ///< true: the waves run towards -x
  double ramp = 0;         ///< time over which the waves grow from nothing; 0: none
  double duration = 0;     ///< the table's times run from 0 to this
  double time_step = 0;    ///< rounded so that whole steps fit
  double extent = 0;       ///< the table's positions run from 0 to this
  double x_step = 0;       ///< likewise
  double gravity = 0;      ///< [length/time^2]
};

/// The settings with their defaults: a duration of 20 (peak) periods, an extent of 5 (peak) wave lengths, and steps of
/// a twentieth of the shortest period and wave length in the table; for still water a duration of 1.
WaveSettings completed(WaveSettings settings);

/// What is wrong with completed settings, in words; empty if nothing is wrong.
std::string mistake_in(const WaveSettings& settings);

/// What is doubtful about settings that can be made, one text for each doubt.
std::vector<std::string> doubts_about(const WaveSettings& settings);

/// A spectrum leaves out frequencies above and below these multiples of its peak frequency.
constexpr double k_highest_frequency = 3.0, k_lowest_frequency = 0.4;

/// Wave number k [1/length] with omega^2 = g k tanh(k h), to the last digits (Newton, from Eckart's approximation).
/// @param omega  circular frequency [rad/time], > 0
/// @param depth  h [length]; 0: deep water, k = omega^2 / g
double wave_number(double omega, double depth, double gravity);

double wave_length(const WaveSettings& settings);           ///< at the (peak) period; still water has none
double shortest_wave_length(const WaveSettings& settings);  ///< length of the shortest component
int time_rows(const WaveSettings& settings);                ///< number of times in the table; 2 in still water
int columns_along_x(const WaveSettings& settings);          ///< number of positions in the table; 2 in still water

/// One wave: amplitude cos(k x - omega t + phase) [length, rad/length, rad/time, rad]. k is negative if the wave runs
/// towards -x.
struct WaveComponent {
  double amplitude = 0, omega = 0, k = 0, phase = 0;
};

/// The waves that are added up. A spectrum is cut into bands of equal width; each band gives one wave with the band's
/// energy, a random phase, and a random frequency within the band, so that the record does not repeat. The amplitudes
/// are scaled so that the sum of the waves has the significant height. Still water has no waves.
std::vector<WaveComponent> wave_components(const WaveSettings& settings);

/// Spectral density of the elevation at a circular frequency, up to a factor.
///   Pierson and Moskowitz (1964):  omega^-5 exp(-5/4 (omega_p / omega)^4)
///   JONSWAP, Hasselmann et al. (1973): times gamma^exp(-(omega - omega_p)^2 / (2 sigma^2 omega_p^2)),
///   sigma = 0.07 up to the peak and 0.09 above it
double spectral_shape(const WaveSettings& settings, double omega);

/// The table: the elevation, and as vertical velocity its rate of change, which in linear theory is the velocity of the
/// water at z = 0.
WaveFile wave_table(const WaveSettings& settings);

/// Significant height of a table: 4 times the standard deviation of all its elevations.
double significant_height(const WaveFile& wave);

/// One line that tells all settings, "MADE BY qvbrisk, ...". A file whose line differs counts as outdated: the wording
/// must not change.
std::string settings_line(const WaveSettings& settings);

MadeFileState made_file_state(const std::string& path, const WaveSettings& settings);

/// Makes the table of completed settings, writes it as a WAVE file, which appears whole or not at all, and returns it.
/// Throws std::runtime_error with the cause if the file cannot be written, std::invalid_argument if the settings have a
/// mistake.
WaveFile write_wave_file(const WaveSettings& settings, const std::string& path);

// Names of the kinds as on the command line and in model files.
const char* wave_kind_name(WaveKind kind);
const std::vector<std::string>& wave_kind_names();
WaveKind wave_kind(const std::string& name);

}  // namespace qvslv
