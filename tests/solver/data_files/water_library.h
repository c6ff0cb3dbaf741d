#pragma once

#include <string>

#include "hydro/records.h"

/// WAVE and CURRENT files as the subroutines of the library read them.
namespace qvtest {

/// False when the library refuses the file; `message` is what it says then.
bool library_reads_wave(const std::string& path, qvhydro::wave_table& wave, std::string& message);
bool library_reads_current(const std::string& path, qvhydro::current_table& along_x, qvhydro::current_table& along_y,
                           std::string& message);

/// Elevation as the library blends it from its table, for a time that does not go back.
double library_elevation(qvhydro::wave_table& wave, double time, double x);

}  // namespace qvtest
