#pragma once

#include <string>

namespace qvslv {

/// Beginning of the line in which a file that `qvbrisk make` writes holds its settings. By this line, a model that
/// describes the file by settings can tell whether the file is up to date.
constexpr const char* k_made_mark = "MADE BY qvbrisk, ";

enum class MadeFileState {
  missing,
  current,   ///< made with these settings
  outdated,  ///< made with other settings
  foreign    ///< not made by `qvbrisk make`
};

/// State of a file whose last line is its settings line.
MadeFileState state_by_last_line(const std::string& path, const std::string& settings_line);

/// Writes a file that appears whole or not at all: it is written under another name first and then renamed, so that a
/// reader never meets half of it. Throws std::runtime_error with the cause if it cannot be written.
void write_file_whole(const std::string& text, const std::string& path);

}  // namespace qvslv
