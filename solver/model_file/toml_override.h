#pragma once

#include <string>

#include "solver/model_file/toml_document.h"

namespace qvslv {

/// Applies one `--set` text, "path=value", to a model document.
///
/// The path is dotted: a table's key ("simulation.end_time"), or for the lists of named tables the entry's name or
/// its number from 1 ("body.wheel.mass", "force.2.torque"); a part that holds a dot goes in double quotes. The
/// value is read as a TOML value; anything else (a bare word, an expression) is taken as a text. Everything on the
/// way must exist; the last key of a table may be new (the reader of the model judges it), but not in [parameters],
/// where nothing would notice. Later complaints about the value point at the option.
///
/// Throws ModelError, placed at the option, when the path leads nowhere.
void apply_override(Value& document, const std::string& option);

}  // namespace qvslv
