#pragma once

#include <string>

namespace qvslv {

/// Loads a library that lies beside libqvslv.so, to stay to the end of the process, and returns the address of a symbol
/// that it exports. Throws std::runtime_error with the loader's reason.
void* load_sibling(const std::string& file_name, const char* symbol);

}  // namespace qvslv
