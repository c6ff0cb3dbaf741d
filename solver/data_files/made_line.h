#pragma once

#include <optional>
#include <string>

#include "solver/data_files/make_current.h"
#include "solver/data_files/make_road.h"
#include "solver/data_files/make_wave.h"

namespace qvslv {

// The settings that a made-by line tells, as settings_line wrote them; none if the line is no such line to the letter.
std::optional<RoadSettings> road_settings_in(const std::string& line);
std::optional<WaveSettings> wave_settings_in(const std::string& line);
std::optional<CurrentSettings> current_settings_in(const std::string& line);

/// The made-by line of a road file, which is among its first lines, or of a WAVE or CURRENT file, whose last line it
/// is. Empty if there is none.
std::string made_line_at_head(const std::string& text);
std::string made_line_at_end(const std::string& text);

/// A file that tells the settings it was made with, and holds something else.
struct Tampering {
  int line = 0;            ///< the first line that differs, from 1; 0: the file is too short as a whole
  std::string is, should;  ///< its text and what the settings make
};
/// Makes the file anew in memory and compares. None if it has no made-by line or holds what that line says.
std::optional<Tampering> find_tampering_in_road(const std::string& text);
std::optional<Tampering> find_tampering_in_wave(const std::string& text);
std::optional<Tampering> find_tampering_in_current(const std::string& text);

/// The finding's text: what differs and what to do.
std::string tampering_text(const Tampering& tampering);

}  // namespace qvslv
