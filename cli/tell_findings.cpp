#include "cli/tell_findings.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "cli/commands.h"
#include "cli/terminal.h"

namespace qvcli {

void tell(const qvslv::Findings& findings) {
  for (const qvslv::Finding& finding : findings)
    print(stderr, "%s: %s\n", level_name(finding.level), finding_text(finding).c_str());
}

int conclude(const qvslv::Findings& findings, const char* with_warnings) {
  tell(findings);
  if (any_error(findings)) return k_bad_input;
  print(stdout, "%s\n", findings.empty() ? "ok" : with_warnings);
  return k_done;
}

std::string json_text(const qvslv::Findings& findings) {
  using Json = nlohmann::ordered_json;
  Json json;
  json["ok"] = !any_error(findings);
  json["findings"] = Json::array();
  for (const qvslv::Finding& finding : findings)
    json["findings"].push_back({{"level", level_name(finding.level)},
                                {"id", finding.id},
                                {"file", finding.at.file},
                                {"line", finding.at.line},
                                {"column", finding.at.column},
                                {"text", finding.text}});
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace qvcli
