#pragma once

#include <string>

#include "solver/data_files/current_file.h"
#include "solver/model_file/contents.h"

namespace qvcli {

// Tell what a WAVE or CURRENT file holds and what its readers would misunderstand. Return the exit code.
int check_wave(const std::string& file);
int check_current(const std::string& file);

/// Prints one line about a table of a CURRENT file; nothing if it is empty.
void tell_current_table(const char* name, const qvslv::CurrentTable& table);

/// Announces the WAVE and CURRENT files that a run of the model makes first.
void tell_water_of(const qvslv::ModelFile& file);

}  // namespace qvcli
