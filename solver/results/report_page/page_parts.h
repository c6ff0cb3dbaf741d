#pragma once

#include <fmt/format.h>

#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "solver/results/report_page/base64.h"

namespace qvslv {

/// Collects the data of a page: JSON, and arrays beside it.
struct PageParts {  // NOLINT(bugprone-exception-escape): the JSON library's move is not marked noexcept
  nlohmann::ordered_json json;
  std::vector<std::string> arrays;

  template <class Number>
  void add(const char* name, const char* type, const std::vector<Number>& values) {
    json["arrays"][name] = {{"type", type}, {"length", values.size()}};
    constexpr const char* k_end = "</script>\n";
    std::string text = fmt::format("<script type=\"text/plain\" id=\"array-{}\">", name);
    const size_t bytes = values.size() * sizeof(Number);
    text.reserve(text.size() + base64_length(bytes) + std::strlen(k_end));
    append_base64(values.data(), bytes, text);
    arrays.push_back(std::move(text += k_end));
  }
  void note(const std::string& text) { json["notes"].push_back(text); }
};

}  // namespace qvslv
