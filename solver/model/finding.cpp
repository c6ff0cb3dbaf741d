#include "solver/model/finding.h"

#include <algorithm>

namespace qvslv {

Finding finding_in(const std::string& file, int line, Level level, const char* id, const std::string& text) {
  return {level, id, {file, line, 0}, text};
}

bool any_error(const Findings& findings) {
  return std::any_of(findings.begin(), findings.end(), [](const Finding& f) { return f.level == Level::error; });
}

std::string finding_text(const Finding& finding) { return placed(finding.at, finding.text); }

std::vector<std::string> finding_texts(const Findings& findings) {
  std::vector<std::string> texts;
  for (const Finding& finding : findings) texts.push_back(finding_text(finding));
  return texts;
}

const char* level_name(Level level) { return level == Level::error ? "error" : "warning"; }

void make_strict(Findings& findings) {
  for (Finding& finding : findings) finding.level = Level::error;
}

}  // namespace qvslv
