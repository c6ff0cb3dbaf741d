#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "solver/data_files/make_wave.h"
#include "solver/model/number_text.h"

namespace qvslv {

namespace {

constexpr double k_two_pi = 6.283185307179586;
constexpr double k_points = 20;       // per shortest period and wave length, if no step is given
constexpr double k_breaking = 0.142;  // height over length at which deep-water waves break (Michell, Miche)

constexpr const char* k_bad_duration = "the duration must be greater than 0";
constexpr const char* k_bad_extent = "the extent must be greater than 0: positions run from 0 to it";
constexpr int k_ends = 2;  // still water: two times and two positions are all that a table needs

bool positive(double value) { return std::isfinite(value) && value > 0; }

/// Number of equal steps that are no longer than asked for; at least one.
double steps_along(double length, double step) {
  constexpr double k_rounding = 1e-9;
  return std::fmax(1.0, std::ceil(length / step - k_rounding));
}

double shortest_period(const WaveSettings& s) {
  return s.kind == WaveKind::regular ? s.period : s.period / k_highest_frequency;
}

/// Amplitude of the second harmonic as a share of the wave's. Linear theory leaves it out (Stokes, second order).
double second_harmonic(const WaveSettings& s) {
  const double k = k_two_pi / wave_length(s), y = k * s.depth;
  constexpr double k_deep = 10;  // k h from which hyperbolic functions no longer matter
  if (s.depth == 0 || y > k_deep) return k * s.height / 4;
  return k * s.height / 8 * std::cosh(y) * (2 + std::cosh(2 * y)) / std::pow(std::sinh(y), 3);
}

std::string mistake_in_waves(const WaveSettings& s) {
  if (!positive(s.height)) return "the wave height must be greater than 0";
  if (!positive(s.period)) return "the wave period must be greater than 0";
  if (!positive(s.gravity)) return "gravity must be greater than 0";
  if (!(s.depth >= 0) || !std::isfinite(s.depth))
    return "the depth must be greater than 0 (leave it out for deep water)";
  if (s.kind == WaveKind::jonswap && !(s.gamma >= 1 && s.gamma <= 20)) return "gamma must lie between 1 and 20";
  if (s.components < 1 || s.components > 5000) return "the number of components must lie between 1 and 5000";
  const double length = wave_length(s), k = k_two_pi / length;
  const double limit = k_breaking * length * (s.depth == 0 ? 1.0 : std::tanh(k * s.depth));
  if (s.height > limit) {
    return fmt::format(
        "waves of this period are {:.4g} long here and break at a height of {:.4g}; lower the height or lengthen the "
        "period",
        length, limit);
  }
  return "";
}

std::string mistake_in_still_water(const WaveSettings& s) {
  if (s.height != 0 || s.period != 0) return "still water has no height and no period";
  if (s.extent == 0)
    return "still water needs an extent: positions run from 0 to it, and there is no wave length to choose it by";
  if (!positive(s.extent)) return k_bad_extent;
  if (!positive(s.duration)) return k_bad_duration;
  return "";
}

std::string percent(double share) { return fmt::format("{:.0f} %", 100 * share); }

}  // namespace

double wave_length(const WaveSettings& s) { return k_two_pi / wave_number(k_two_pi / s.period, s.depth, s.gravity); }

double shortest_wave_length(const WaveSettings& s) {
  return k_two_pi / wave_number(k_two_pi / shortest_period(s), s.depth, s.gravity);
}

int time_rows(const WaveSettings& s) {
  return s.kind == WaveKind::still ? k_ends : static_cast<int>(steps_along(s.duration, s.time_step)) + 1;
}

int columns_along_x(const WaveSettings& s) {
  return s.kind == WaveKind::still ? k_ends : static_cast<int>(steps_along(s.extent, s.x_step)) + 1;
}

WaveSettings completed(WaveSettings s) {
  if (s.kind == WaveKind::still) {
    if (s.duration == 0) s.duration = 1;
    return s;
  }
  if (!mistake_in_waves(s).empty()) return s;
  constexpr double k_periods = 20, k_lengths = 5;
  if (s.duration == 0) s.duration = k_periods * s.period;
  if (s.time_step == 0) s.time_step = std::min(shortest_period(s) / k_points, s.duration);
  if (s.extent == 0) s.extent = k_lengths * wave_length(s);
  if (s.x_step == 0) s.x_step = std::min(shortest_wave_length(s) / k_points, s.extent);
  return s;
}

std::string mistake_in(const WaveSettings& s) {
  if (s.kind == WaveKind::still) return mistake_in_still_water(s);
  std::string mistake = mistake_in_waves(s);
  if (!mistake.empty()) return mistake;
  if (!(s.ramp >= 0) || !std::isfinite(s.ramp)) return "the ramp's time must not be negative";
  if (!positive(s.duration)) return k_bad_duration;
  if (!positive(s.time_step)) return "the time step must be greater than 0";
  if (!positive(s.extent)) return k_bad_extent;
  if (!positive(s.x_step)) return "the x step must be greater than 0";
  if (s.time_step > s.duration) return "the time step is longer than the duration";
  if (s.x_step > s.extent) return "the x step is longer than the extent";
  constexpr double k_most_points = 1e7;  // a file of about 250 MB
  if (!((steps_along(s.duration, s.time_step) + 1) * (steps_along(s.extent, s.x_step) + 1) <= k_most_points))
    return "this makes a table of more than 10 million points; shorten the duration or the extent, or widen the steps";
  if (s.time_step > 0.5 * shortest_period(s))
    return "the time step is over half the shortest period: it cannot be shown";
  if (s.x_step > 0.5 * shortest_wave_length(s))
    return "the x step is over half the shortest wave length: it cannot be shown";
  return "";
}

std::vector<std::string> doubts_about(const WaveSettings& s) {
  std::vector<std::string> doubts;
  if (s.kind == WaveKind::still) return doubts;
  constexpr double k_doubtful_harmonic = 0.1;
  const double harmonic = second_harmonic(s);
  if (harmonic > k_doubtful_harmonic)
    doubts.push_back(
        "real waves of this height, length and depth have higher crests and flatter troughs: a second "
        "harmonic of " +
        percent(harmonic) + ", which linear theory leaves out");
  constexpr double k_few_points = 10;
  const double least = std::min(shortest_period(s) / s.time_step, shortest_wave_length(s) / s.x_step);
  if (least < k_few_points)
    doubts.push_back("the steps leave " + number_text(std::round(10 * least) / 10) +
                     " points to the shortest wave: between them the surface is straight, up to " +
                     percent(1 - std::cos(0.5 * k_two_pi / least)) + " of its height is lost");
  if (s.ramp > s.duration)
    doubts.emplace_back("the ramp is longer than the duration: the waves never reach their height");
  return doubts;
}

std::string settings_line(const WaveSettings& s) {
  std::string text = std::string(k_made_mark) + "wave " + wave_kind_name(s.kind);
  if (s.kind == WaveKind::still)
    return text + ", duration " + number_text(s.duration) + ", extent " + number_text(s.extent);
  text += ", height " + number_text(s.height) + ", period " + number_text(s.period);
  if (s.kind == WaveKind::jonswap) text += ", gamma " + number_text(s.gamma);
  if (s.kind != WaveKind::regular)
    text += ", seed " + std::to_string(s.seed) + ", components " + std::to_string(s.components);
  text += s.depth == 0 ? ", deep" : ", depth " + number_text(s.depth);
  text += std::string(", direction ") + (s.against_x ? "-x" : "+x") + ", ramp " + number_text(s.ramp);
  text += ", duration " + number_text(s.duration) + " in steps of " + number_text(s.time_step);
  text += ", extent " + number_text(s.extent) + " in steps of " + number_text(s.x_step);
  return text + ", gravity " + number_text(s.gravity);
}

MadeFileState made_file_state(const std::string& path, const WaveSettings& settings) {
  return state_by_last_line(path, settings_line(settings));
}

const std::vector<std::string>& wave_kind_names() {
  static const std::vector<std::string> names = {"regular", "pierson_moskowitz", "jonswap", "still"};
  return names;
}

const char* wave_kind_name(WaveKind kind) { return wave_kind_names()[static_cast<size_t>(kind)].c_str(); }

WaveKind wave_kind(const std::string& name) {
  const std::vector<std::string>& names = wave_kind_names();
  return static_cast<WaveKind>(std::find(names.begin(), names.end(), name) - names.begin());
}

}  // namespace qvslv
