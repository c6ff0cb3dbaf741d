#pragma once

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "solver/results/report_page/base64.h"

namespace qvslv {

/// Collects the data of a page: JSON, and arrays beside it.
struct PageParts {  // NOLINT(bugprone-exception-escape): the JSON library's move is not marked noexcept
  nlohmann::ordered_json json;
  std::string arrays;

  template <class Number>
  void add(const char* name, const char* type, const std::vector<Number>& values) {
    json["arrays"][name] = {{"type", type}, {"length", values.size()}};
    arrays += fmt::format("<script type=\"text/plain\" id=\"array-{}\">", name);
    append_base64(values.data(), values.size() * sizeof(Number), arrays);
    arrays += "</script>\n";
  }
  void note(const std::string& text) { json["notes"].push_back(text); }
};

}  // namespace qvslv
