#pragma once

#include <string>

#include "solver/model_file/toml_document.h"

namespace qvslv {

/// A document as JSON, its keys in file order. Numbers keep every bit; dates and times, which no model uses, become
/// null.
std::string json_text(const Value& document);

}  // namespace qvslv
