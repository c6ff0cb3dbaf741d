#pragma once

#include <string>

#include "solver/model/finding.h"

namespace qvcli {

/// Prints each finding to stderr as "warning: file:line:column: text" or "error: ...".
void tell(const qvslv::Findings& findings);

/// Tells the findings, then concludes on stdout: "ok", or `with_warnings` if there are any. Returns the exit code.
int conclude(const qvslv::Findings& findings, const char* with_warnings);

/// The findings as a JSON text for editors and scripts:
/// {"ok": true, "findings": [{"level", "id", "file", "line", "column", "text"}, ...]}; line 0 is the file as a whole.
std::string json_text(const qvslv::Findings& findings);

}  // namespace qvcli
