#pragma once

#include <string>
#include <vector>

#include "solver/data_files/current_file.h"
#include "solver/data_files/made_file.h"

namespace qvslv {

enum class ProfileKind { none, uniform, linear, power };

/// The speed of the water along one axis of the water marker as a function of the position along x or y. Lengths and
/// speeds are in the model's units.
struct CurrentProfile {
  ProfileKind kind = ProfileKind::none;
  double speed = 0;           ///< uniform: everywhere; linear: at `begin`; power: at `end`
  double speed_end = 0;       ///< linear: at `end`
  bool over_x = false;        ///< true: over x, and 0 outside the stretch; false: over y, and held beyond its ends
  double begin = 0, end = 0;  ///< ends of the stretch, in any order; power: the speed is 0 at `begin`
};

struct CurrentSettings {
  CurrentProfile along_x, along_y;
};

/// What is wrong with the settings, in words; empty if nothing is wrong.
std::string mistake_in(const CurrentSettings& settings);

/// Reads "none", "uniform:SPEED", "linear:SPEED:SPEED@AXIS:BEGIN:END" or "power:SPEED@AXIS:BEGIN:END", with AXIS x or
/// y. Throws std::invalid_argument with what is wrong.
CurrentProfile parse_profile(const std::string& text);

/// The text that parse_profile reads, with the shortest numbers.
std::string profile_text(const CurrentProfile& profile);

/// Speed of the profile at a position along its axis. The table's points are taken from this law.
///   linear: straight from `speed` at `begin` to `speed_end` at `end`
///   power:  speed (s / width)^(1/7), with s the distance from `begin` and width that from `begin` to `end`
double profile_speed(const CurrentProfile& profile, double position);

/// Number of intervals between the points of a power profile. The points stand closer where the profile is steep; from
/// a hundred thousandth of the width on, the straight lines between them stay within 1 % of the speed.
constexpr int k_power_intervals = 40;

/// The tables that the settings describe. Throws std::invalid_argument if the settings have a mistake.
CurrentFile current_tables(const CurrentSettings& settings);

/// One line that tells all settings, "MADE BY qvbrisk, ...". A file whose line differs counts as outdated: the wording
/// must not change.
std::string settings_line(const CurrentSettings& settings);

MadeFileState made_file_state(const std::string& path, const CurrentSettings& settings);

/// Writes a CURRENT file, which appears whole or not at all. Throws std::runtime_error with the cause if it cannot be
/// written, std::invalid_argument if the settings have a mistake.
void write_current_file(const CurrentSettings& settings, const std::string& path);

const std::vector<std::string>& profile_kind_names();

}  // namespace qvslv
