#pragma once

#include <string>
#include <vector>

#include "solver/model/model.h"

namespace qvslv {

enum class Level {
  warning,  ///< the run goes on, with a result that is hardly meant
  error     ///< refused
};

/// Something in a model or data file, or in a run, that a user should look at.
struct Finding {
  Level level = Level::warning;
  std::string id;    ///< a name for scripts, which stays the same when the text is reworded: "road-unit"
  FilePosition at;   ///< line 0: the file as a whole
  std::string text;  ///< one sentence: what is wrong, with its value; what would be right
};

using Findings = std::vector<Finding>;

/// A finding in a line of a data file; line 0 is the file as a whole.
Finding finding_in(const std::string& file, int line, Level level, const char* id, const std::string& text);

bool any_error(const Findings& findings);

/// "file:line:column: text", without the parts of the place that are not known.
std::string finding_text(const Finding& finding);

std::vector<std::string> finding_texts(const Findings& findings);

/// "warning" or "error".
const char* level_name(Level level);

/// Turns the warnings into errors.
void make_strict(Findings& findings);

}  // namespace qvslv
