#pragma once

#include <string>
#include <string_view>

namespace qvslv {

/// Refuses a key of many parts (`a.a.a.a = 1`) before the parser sees it: the parser, and all that walks over its
/// tables, goes down one call per part, and thousands of parts exhaust the stack. Throws ModelError at the line.
void refuse_deep_keys(std::string_view text, const std::string& file);

}  // namespace qvslv
