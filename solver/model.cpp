#include "solver/model.h"

namespace qvslv {

namespace {

std::string placed(const FilePosition& at, const std::string& text) {
  if (at.line == 0) return at.file.empty() ? text : at.file + ": " + text;
  return at.file + ":" + std::to_string(at.line) + ":" + std::to_string(at.column) + ": " + text;
}

}  // namespace

ModelError::ModelError(const FilePosition& where, const std::string& what)
    : std::runtime_error(placed(where, what)), at(where), text(what) {}

}  // namespace qvslv
