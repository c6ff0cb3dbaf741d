#pragma once

#include <string>
#include <vector>

namespace qvslv {

/// The names that an expression uses; the e of 2e-3 is none.
std::vector<std::string> names_in(const std::string& text);

bool starts_name(char c);
bool continues_name(char c);

}  // namespace qvslv
