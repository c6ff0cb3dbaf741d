#pragma once

#include <string>

namespace qvslv {

/// Beginning of the line in which a file that `qvbrisk make` writes holds its settings. By this line, a model that
/// describes the file by settings can tell whether the file is up to date.
constexpr const char* k_made_mark = "MADE BY qvbrisk, ";

/// Version of the makers. To be raised when a maker writes other bytes for the same settings, so that files which an
/// earlier version made for a model are not taken for current ones.
constexpr int k_maker_version = 1;

/// Folder for the files that are made for models: qvbrisk/made in $XDG_CACHE_HOME, else in ~/.cache. Empty if neither
/// variable names an absolute path.
std::string default_made_folder();

/// Path of the file that is made for a model: the name that the model gives it, with a hash of its settings and of the
/// makers' version, in the folder for made files. Other settings give another path, so such a file never changes.
std::string made_path(const std::string& folder, const std::string& name, const std::string& settings_line);

enum class MadeFileState {
  missing,
  current,   ///< made with these settings
  outdated,  ///< made with other settings
  foreign    ///< not made by `qvbrisk make`
};

/// State of a file whose last line is its settings line.
MadeFileState state_by_last_line(const std::string& path, const std::string& settings_line);

/// Writes a file that appears whole or not at all: it is written under another name first and then renamed, so that a
/// reader never meets half of it, however many processes write the same file at a time. Throws std::runtime_error with
/// the cause if it cannot be written.
void write_file_whole(const std::string& text, const std::string& path);

}  // namespace qvslv
