#include "solver/data_files/make_current.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace qvslv {

namespace {

bool has_stretch(const CurrentProfile& p) { return p.kind == ProfileKind::linear || p.kind == ProfileKind::power; }

/// Table of a profile: its points in the order of increasing position, each with its speed.
CurrentTable table_of(const CurrentProfile& profile) {
  CurrentTable table;
  table.mode = profile.over_x ? 1 : 0;
  if (!has_stretch(profile)) {
    table.key = {0};  // one key is enough: its value is held on both sides
    table.value = {profile.speed};
    return table;
  }
  const int intervals = profile.kind == ProfileKind::power ? k_power_intervals : 1;
  for (int i = 0; i <= intervals; ++i) {
    const double share = profile.kind == ProfileKind::power ? std::pow(static_cast<double>(i) / intervals, 4) : i;
    const double position = i == intervals ? profile.end : profile.begin + (profile.end - profile.begin) * share;
    table.key.push_back(position);
    table.value.push_back(profile_speed(profile, position));
  }
  if (profile.begin > profile.end) {
    std::reverse(table.key.begin(), table.key.end());
    std::reverse(table.value.begin(), table.value.end());
  }
  return table;
}

std::string mistake_in_profile(const CurrentProfile& p) {
  if (!std::isfinite(p.speed) || !std::isfinite(p.speed_end)) return "the speed must be a finite number";
  if (!has_stretch(p)) return p.over_x ? "only a linear or power profile lies over x" : "";
  if (!std::isfinite(p.begin) || !std::isfinite(p.end) || p.begin == p.end)
    return "the stretch must run from one position to another";
  constexpr double k_least_part = 1e-4;  // so that the closest points of a power profile differ in twelve digits
  if (std::abs(p.end - p.begin) < k_least_part * std::fmax(std::abs(p.begin), std::abs(p.end)))
    return "the stretch is too short for its distance from 0";
  return "";
}

}  // namespace

std::string mistake_in(const CurrentSettings& settings) {
  const std::string along_x = mistake_in_profile(settings.along_x), along_y = mistake_in_profile(settings.along_y);
  if (!along_x.empty()) return "along x: " + along_x;
  if (!along_y.empty()) return "along y: " + along_y;
  if (settings.along_x.kind == ProfileKind::none && settings.along_y.kind == ProfileKind::none)
    return "give a profile along x or along y (or both)";
  return "";
}

double profile_speed(const CurrentProfile& p, double position) {
  if (!has_stretch(p)) return p.speed;
  const double share = (position - p.begin) / (p.end - p.begin);
  if (p.kind == ProfileKind::linear) return p.speed + (p.speed_end - p.speed) * share;
  return p.speed * std::pow(std::fmax(share, 0.0), 1.0 / 7.0);
}

CurrentFile current_tables(const CurrentSettings& settings) {
  const std::string mistake = mistake_in(settings);
  if (!mistake.empty()) throw std::invalid_argument(mistake);
  return {table_of(settings.along_x), table_of(settings.along_y)};
}

std::string settings_line(const CurrentSettings& settings) {
  return std::string(k_made_mark) + "current along x " + profile_text(settings.along_x) + ", along y " +
         profile_text(settings.along_y);
}

MadeFileState made_file_state(const std::string& path, const CurrentSettings& settings) {
  return state_by_last_line(path, settings_line(settings));
}

void write_current_file(const CurrentSettings& settings, const std::string& path) {
  write_file_whole(current_text(current_tables(settings), settings_line(settings)), path);
}

const std::vector<std::string>& profile_kind_names() {
  static const std::vector<std::string> names = {"none", "uniform", "linear", "power"};
  return names;
}

}  // namespace qvslv
