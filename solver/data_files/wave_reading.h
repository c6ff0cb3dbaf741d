#pragma once

#include <cstddef>

#include "solver/data_files/table_tokens.h"
#include "solver/data_files/wave_file.h"

/// The pieces of reading a WAVE file, for those who look at what happens on the way.
namespace qvslv {

struct WaveHeader {
  int rows = 0, columns = 0;  ///< times and positions
};

WaveHeader read_wave_header(TableTokens& tokens);

/// Does the header declare a table of more than 1 GiB that a file of so many bytes cannot fill?
bool cannot_hold(const WaveHeader& header, std::size_t bytes);

/// The rest of the file. Counts must be positive.
WaveFile read_wave_table(TableTokens& tokens, const WaveHeader& header);

}  // namespace qvslv
