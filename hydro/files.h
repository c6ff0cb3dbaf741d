#pragma once

#include <string>

#include "common/call/parameters.h"
#include "common/files/data_file.h"
#include "hydro/records.h"

/// WAVE and CURRENT files: numbers as formatted stream input takes them, every separator any one character. What a
/// short or malformed file does not give stays 0; a count below 1 is a fault, and so is a table of more than 1 GiB
/// that the file cannot fill.
namespace qvhydro {

/// A file named by a string entity of the model.
struct named_file {
  std::wstring name;
  std::wstring second_path;  ///< what was tried in the model's folder, else empty
  qv::data_file data;

  bool open_as_named();
  /// In the folder of the model file; false for a model path that has none.
  bool open_beside(const std::wstring& model_path);
};

/// The name in the string entity `id`.
std::wstring fetch_file_name(void* handle, int id, const qv::fault_channel& channel);

/// Opens a WAVE file; asks for the model's path (into `model_path`) only when the name alone does not do.
bool open_wave_file(void* handle, named_file& file, std::wstring& model_path, const qv::fault_channel& channel);

/// WAVE file: T, X; X positions; T rows of a time, X elevations and X vertical velocities.
void read_wave_file(named_file& file, wave_table& wave, const qv::fault_channel& channel);

/// CURRENT file: twice a count, a mode and that many pairs of key and value.
void read_current_file(named_file& file, current_table& first, current_table& second, const qv::fault_channel& channel);

}  // namespace qvhydro
