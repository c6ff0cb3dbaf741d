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

/// The surface of a WAVE file at one time, for many positions: the values of elevation_at, bit for bit, without another
/// search in the times, and with hardly any in the positions where those are evenly spaced.
class SurfaceAt {
public:
  /// The file must outlive this object.
  SurfaceAt(const WaveFile& wave, double t);

  double elevation(double x) const;

private:
  const std::vector<double>& m_x;
  const std::vector<double>* m_before = nullptr;  ///< row of the table at or before the time; null if there is none
  const std::vector<double>* m_after = nullptr;   ///< the next one; null at a row or beyond the table
  double m_share = 0;                             ///< of the way from the one to the other
  double m_columns_per_length = 0;                ///< on the average; 0 if the positions do not increase
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
