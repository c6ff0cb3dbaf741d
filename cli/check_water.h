#pragma once

#include <string>

#include "solver/data_files/current_file.h"
#include "solver/model_file/contents.h"

namespace qvcli {

// Check a WAVE or CURRENT file. If `describe` is set, print what it holds.
qvslv::Findings check_wave(const std::string& file, bool describe);
qvslv::Findings check_current(const std::string& file, bool describe);

/// Prints one line about a table of a CURRENT file; nothing if it is empty.
void tell_current_table(const char* name, const qvslv::CurrentTable& table);

/// Announces the WAVE and CURRENT files that a run of the model makes first.
void tell_water_of(const qvslv::ModelFile& file);

}  // namespace qvcli
