#pragma once

#include <string>

#include "common/call/parameters.h"
#include "common/files/data_file.h"
#include "hydro/records.h"

/// Readers of WAVE and CURRENT files; their formats are in docs/wave-file.md and docs/current-file.md. Numbers are read
/// as formatted stream input reads them, all in the model's units, and every separator is any one character.
///
/// Kept: a file that is short or malformed behind a header is no fault; what it does not give stays 0.
/// Faults: a count below 1, and a table of more than 1 GiB that the rest of the file cannot fill.
namespace qvhydro {

/// A file named by a string entity of the model.
struct named_file {
  std::wstring name;
  std::wstring second_path;  ///< path tried in the model's folder; empty if none was
  qv::data_file data;

  bool open_as_named();
  /// Opens the name in the folder of the model file; false if the model's path has no folder.
  bool open_beside(const std::wstring& model_path);
};

/// Asks the host for the name in the string entity `id`. A length below 0 or above 1024 is a fault.
std::wstring fetch_file_name(void* handle, int id, const qv::fault_channel& channel);

/// Opens a WAVE file as named, else in the folder of the model file.
/// @param model_path  receives the path of the model file, for which the host is asked only if the name alone fails
/// @return false if neither opens
bool open_wave_file(void* handle, named_file& file, std::wstring& model_path, const qv::fault_channel& channel);

/// Reads a WAVE file: T, X; X positions; T rows of a time, X elevations and X vertical velocities.
void read_wave_file(named_file& file, wave_table& wave, const qv::fault_channel& channel);

/// Reads a CURRENT file: twice a count, a mode and that many pairs of key and value.
/// @param first, second  currents along the water frame's x and y axis [length / time]
void read_current_file(named_file& file, current_table& first, current_table& second, const qv::fault_channel& channel);

}  // namespace qvhydro
