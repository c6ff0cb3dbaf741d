#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace qvslv {

/// What a WAVE file holds: the water's surface over the time and the position along the water marker's x axis. Lengths
/// and times are in the model's units.
struct WaveFile {
  std::vector<double> time;                    ///< one entry per row
  std::vector<double> x;                       ///< one entry per column
  std::vector<std::vector<double>> elevation;  ///< [row][column], along the water marker's z axis
  std::vector<std::vector<double>> velocity;   ///< [row][column], of the water at the surface, along the z axis

  // Values at a time and a position, linear in both, as the subroutines interpolate them. Beyond an end of an axis the
  // value at that end is held; to the subroutines, a position there is off the water.
  double elevation_at(double t, double x) const;
  double velocity_at(double t, double x) const;

private:
  double blended(const std::vector<std::vector<double>>& table, double t, double position) const;
};

/// Reads a WAVE file with the subroutines' grammar: from the first token that cannot be read, all values stay 0.
/// Returns nothing if the file cannot be opened, if a count is 0 or less, or if it declares a table of more than 1 GiB
/// that it cannot fill.
std::optional<WaveFile> read_wave_file(const std::string& path);
std::optional<WaveFile> read_wave_text(const std::string& text);

/// The text of a WAVE file with one row of the table in a line. Axes have twelve digits, values nine.
/// `remark` follows as the last line, which readers of the file never reach.
std::string wave_text(const WaveFile& wave, const std::string& remark);

}  // namespace qvslv
