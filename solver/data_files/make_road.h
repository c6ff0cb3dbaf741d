#pragma once

#include <cstdint>
#include <string>

#include "solver/data_files/made_file.h"
#include "solver/data_files/soil_presets.h"
#include "solver/model/model.h"

namespace qvslv {

enum class RoadKind { flat, slope, sine, rolling };

/// A road to be made: a rectangle of right-angled triangles with one soil. All values are in the road's units.
struct RoadSettings {
  RoadKind kind = RoadKind::flat;
  double size_x = 10, size_y = 10;
  double corner_x = -5, corner_y = -5;  ///< the corner with the least x and y
  double spacing = 0.1;                 ///< edge of a square of two triangles; rounded so that whole squares fit
  double height = 0;                    ///< added everywhere
  double grade = 0;                     ///< slope: rise over run along x; the slope adds nothing at x = 0
  double amplitude = 0;                 ///< sine: amplitude of the wave along x; rolling: root 2 times the rms height
  double wavelength = 0;                ///< sine: length of the wave; rolling: the middle of the waves' lengths
  std::uint64_t seed = 1;               ///< rolling: the same seed gives the same ground
  std::string soil_name;                ///< name of the preset, only for the file's remark
  RoadSoil soil;
  Units units;
};

/// What is wrong with the settings, in words; empty if nothing is wrong.
std::string mistake_in(const RoadSettings& settings);

std::int64_t triangle_count(const RoadSettings& settings);
/// Number of whole squares along an edge of the road: at least one, of about the edge length `spacing`.
int squares_along(double size, double spacing);

/// Height of the road's surface over a position in its plan.
class RoadHeights {
public:
  explicit RoadHeights(const RoadSettings& settings);
  double operator()(double x, double y) const;

private:
  static constexpr int k_waves = 24;
  struct Wave {
    double kx, ky, phase, amplitude;
  };
  RoadSettings m_settings;
  Wave m_waves[k_waves] = {};
};

/// One line that tells all settings, "MADE BY qvbrisk, ...". It holds no equals sign, so readers of the file pass it
/// over. A road whose line differs counts as outdated: the wording must not change.
std::string settings_line(const RoadSettings& settings);

MadeFileState made_file_state(const std::string& path, const RoadSettings& settings);

/// The text that write_road_file writes.
std::string road_text(const RoadSettings& settings);

/// Writes an RDF road file, which appears whole or not at all. Throws std::runtime_error with the cause if it cannot be
/// written, std::invalid_argument if the settings have a mistake.
void write_road_file(const RoadSettings& settings, const std::string& path);

}  // namespace qvslv
