#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace qvslv {

/// What a WAVE file holds: the water's surface over time and the position along the water marker's x axis. Lengths and
/// times in the model's units.
struct WaveFile {
  std::vector<double> time;                    ///< one entry per row
  std::vector<double> x;                       ///< one entry per column
  std::vector<std::vector<double>> elevation;  ///< [row][column], along the water marker's z axis
  std::vector<std::vector<double>> velocity;   ///< likewise, of the water at the surface, upwards

  /// Linear in time, then in position, as the subroutines take it from the table. Beyond an end of an axis the value
  /// at that end is held; the subroutines take a position there to be off the water.
  double elevation_at(double t, double x) const;
  double velocity_at(double t, double x) const;

private:
  double blended(const std::vector<std::vector<double>>& table, double t, double position) const;
};

/// Reads a WAVE file with the subroutines' grammar: where nothing more can be read, the rest stays 0. Nothing comes
/// back when the file cannot be opened, when a count is 0 or less, or when it declares a table of more than 1 GiB that
/// it cannot fill.
std::optional<WaveFile> read_wave_file(const std::string& path);
std::optional<WaveFile> read_wave_text(const std::string& text);

/// The text of a WAVE file, a row of the table in a line. Axes have twelve digits, values nine.
/// `remark` follows as the last line, which readers of the file never reach.
std::string wave_text(const WaveFile& wave, const std::string& remark);

}  // namespace qvslv
