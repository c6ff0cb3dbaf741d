#include "solver/model_file/names.h"

#include "solver/model/nearest_name.h"

namespace qvslv {

namespace {

std::string with_article(const std::string& kind) {
  const bool vowel = std::string("aeio").find(kind[0]) != std::string::npos;
  return (vowel ? "an " : "a ") + kind;
}

}  // namespace

void NameTable::add(const std::string& name, int index, const FilePosition& at) {
  if (name.empty()) throw ModelError(at, with_article(kind_) + " needs a name that is not empty");
  if (name.find_first_of(".:,;\"'\n\r") != std::string::npos)
    throw ModelError(at,
                     "the name '" + name + "' of " + with_article(kind_) + " may hold none of . : , ; and no quotes");
  if (has(name)) {
    const auto place = places_.find(name);
    const bool known = place != places_.end() && place->second.line != 0;
    throw ModelError(at, "the name '" + name + "' is taken: " + with_article(kind_) + " has it" +
                             (known ? " (line " + std::to_string(place->second.line) + ")" : " already"));
  }
  indices_[name] = index;
  places_[name] = at;
}

int NameTable::find(const std::string& name, const std::string& role, const FilePosition& at) const {
  const auto found = indices_.find(name);
  if (found != indices_.end()) return found->second;
  throw ModelError(at, role + ": there is no " + kind_ + " '" + name + "'; " + name_hint(name, known()));
}

std::vector<std::string> NameTable::known() const {
  std::vector<std::string> names;
  for (const auto& [candidate, index] : indices_)
    if (candidate.find('.') == std::string::npos) names.push_back(candidate);
  return names;
}

}  // namespace qvslv
