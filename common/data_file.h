#pragma once

#include <string>

#include "common/large_vector.h"

/// Data files named by a string entity of the model.
namespace qv {

/// A file read whole.
struct file_text {
  large_vector<char> data;
  std::size_t size = 0;  ///< what of it is text
};

/// Reads a file as it is; false when it cannot be opened. A file that opens but cannot be read (a folder) is empty.
bool read_whole_file(const std::string& name, file_text& text);

/// Reads the file by the name given or, failing that, by that name in the model file's folder (GET_QVSPATH_S).
/// Throws the integer 1 when a name has no narrow form. `path_length` is what the host says of its path's length.
enum class file_outcome { read, not_found, path_too_long };
file_outcome read_data_file(void* handle, const std::wstring& name, file_text& text, int& path_length);

/// The text of a string entity of the model (get_string_s). A length beyond the buffer gives no text: false.
bool fetch_string(void* handle, int id, std::wstring& text, int& length);

}  // namespace qv
