#pragma once

#include <cstdio>

namespace qvcli {

/// std::fprintf for the command's texts. Names of a model, a file or the command line may hold anything; what a
/// terminal would obey instead of show is escaped (qvslv::printable). Only the progress line, which moves the cursor
/// itself, writes without it.
__attribute__((format(printf, 2, 3))) void print(std::FILE* stream, const char* format, ...);

}  // namespace qvcli
