#pragma once

#include <string>
#include <vector>

#include "solver/engine/id_table.h"
#include "solver/model/model.h"

namespace qvslv {

/// What the ids in requests of user subroutines mean, and the texts that are asked for: everything that stays as it is
/// from before the run on.
struct ServiceIndex {
  explicit ServiceIndex(const Model& model);

  // Indices into the lists of the model.
  IdTable markers, bodies, variables, equations, splines;
  IdTable strings;                  ///< indices into `texts`
  std::vector<std::wstring> texts;  ///< of Model::strings: the path of the file that one names, or the text itself
  std::wstring model_path;
};

/// Turns UTF-8 into wide characters. A byte that belongs to no UTF-8 sequence becomes a character of its own.
std::wstring widen(const std::string& text);

}  // namespace qvslv
