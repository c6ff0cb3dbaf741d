#include "solver/model/expression_names.h"

#include <cctype>
#include <cstddef>

namespace qvslv {

namespace {

bool in_number(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '.'; }

}  // namespace

bool starts_name(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool continues_name(char c) { return starts_name(c) || std::isdigit(static_cast<unsigned char>(c)) != 0; }

std::vector<std::string> names_in(const std::string& text) {
  std::vector<std::string> names;
  for (size_t i = 0; i < text.size();) {
    if (in_number(text[i])) {
      while (i < text.size() && in_number(text[i])) ++i;
      const bool exponent = i + 1 < text.size() && (text[i] == 'e' || text[i] == 'E') &&
                            (in_number(text[i + 1]) || text[i + 1] == '-' || text[i + 1] == '+');
      if (exponent) i += 2;
    } else if (starts_name(text[i])) {
      size_t end = i;
      while (end < text.size() && continues_name(text[end])) ++end;
      names.push_back(text.substr(i, end - i));
      i = end;
    } else {
      ++i;
    }
  }
  return names;
}

}  // namespace qvslv
