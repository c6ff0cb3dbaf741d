#include "solver/model_names.h"

#include "solver/nearest_name.h"

namespace qvslv {

void NameTable::add(const std::string& name, int index, const FilePosition& at) {
  if (name.empty()) throw ModelError(at, "a " + kind_ + " needs a name that is not empty");
  if (name.find_first_of(".:,;\"'\n\r") != std::string::npos)
    throw ModelError(at, "the name '" + name + "' of a " + kind_ + " may hold none of . : , ; and no quotes");
  if (has(name)) {
    const auto place = places_.find(name);
    const bool known = place != places_.end() && place->second.line != 0;
    throw ModelError(at, "the name '" + name + "' is taken: a " + kind_ + " has it" +
                             (known ? " (line " + std::to_string(place->second.line) + ")" : " already"));
  }
  indices_[name] = index;
  places_[name] = at;
}

int NameTable::find(const std::string& name, const std::string& role, const FilePosition& at) const {
  const auto found = indices_.find(name);
  if (found != indices_.end()) return found->second;
  std::vector<std::string> known;
  for (const auto& [candidate, index] : indices_)
    if (candidate.find('.') == std::string::npos) known.push_back(candidate);
  throw ModelError(at, role + ": there is no " + kind_ + " '" + name + "'; " + name_hint(name, known));
}

}  // namespace qvslv
