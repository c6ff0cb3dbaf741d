#pragma once

#include <string>
#include <vector>

#include "solver/data_files/current_file.h"
#include "solver/data_files/made_file.h"

namespace qvslv {

enum class ProfileKind { none, uniform, linear, power };

/// The speed of the water along one axis, over a stretch of a position. Units are the model's.
struct CurrentProfile {
  ProfileKind kind = ProfileKind::none;
  double speed = 0;           ///< uniform: everywhere; linear: at `begin`; power: at `end`
  double speed_end = 0;       ///< linear: at `end`
  bool over_x = false;        ///< over x, 0 outside the stretch; otherwise over y, held beyond its ends
  double begin = 0, end = 0;  ///< of the stretch; power: the speed is 0 at `begin`. Either may be the lesser
};

struct CurrentSettings {
  CurrentProfile along_x, along_y;
};

/// What is wrong with the settings, in words; empty when nothing is.
std::string mistake_in(const CurrentSettings& settings);

/// Reads "none", "uniform:SPEED", "linear:SPEED:SPEED@AXIS:BEGIN:END" or "power:SPEED@AXIS:BEGIN:END", AXIS being x or
/// y. Throws std::invalid_argument with what is wrong.
CurrentProfile parse_profile(const std::string& text);

/// The same text again, with the shortest numbers.
std::string profile_text(const CurrentProfile& profile);

/// Speed of the profile at a position of its axis: the law that the table's points are taken from.
///   linear: straight from `speed` to `speed_end`;   power: speed (s / width)^(1/7), s the distance from `begin`
double profile_speed(const CurrentProfile& profile, double position);

/// Points of a power profile stand closer where it is steep; the straight lines between them stay within 1 % of the
/// speed from a hundred thousandth of the width on.
constexpr int k_power_intervals = 40;

CurrentFile current_tables(const CurrentSettings& settings);

/// One line that tells all settings.
std::string settings_line(const CurrentSettings& settings);

MadeFileState current_file_state(const std::string& path, const CurrentSettings& settings);

/// Writes a CURRENT file, which appears whole or not at all. Throws std::runtime_error with the cause when it cannot be
/// written, std::invalid_argument when the settings have a mistake.
void write_current_file(const CurrentSettings& settings, const std::string& path);

const std::vector<std::string>& profile_kind_names();

}  // namespace qvslv
