#pragma once

#include <cstddef>

#include "solver/data_files/table_tokens.h"
#include "solver/data_files/wave_file.h"

/// The steps of reading a WAVE file, for callers that inspect what happens on the way.
namespace qvslv {

struct WaveHeader {
  int rows = 0, columns = 0;  ///< numbers of times and positions
};

WaveHeader read_wave_header(TableTokens& tokens);

/// True if the header declares a table of more than 1 GiB that a file of so many bytes cannot fill.
bool cannot_hold(const WaveHeader& header, std::size_t bytes);

/// Reads the rest of the file. Both counts must be positive.
WaveFile read_wave_table(TableTokens& tokens, const WaveHeader& header);

}  // namespace qvslv
