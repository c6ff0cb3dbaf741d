#include "solver/model_file/names.h"

#include "solver/model/nearest_name.h"
#include "solver/model/printable.h"

namespace qvslv {

namespace {

std::string with_article(const std::string& kind) {
  const bool vowel = std::string("aeio").find(kind[0]) != std::string::npos;
  return (vowel ? "an " : "a ") + kind;
}

}  // namespace

void NameTable::add(const std::string& name, int index, const FilePosition& at) {
  if (name.empty()) throw ModelError(at, with_article(m_kind) + " needs a name that is not empty");
  if (!is_printable_line(name))
    throw ModelError(at, "the name '" + shown_on_a_line(name) + "' of " + with_article(m_kind) +
                             " holds a control character; letters, digits, signs and blanks are expected");
  if (name.find_first_of(".:,;\"'") != std::string::npos)
    throw ModelError(at,
                     "the name '" + name + "' of " + with_article(m_kind) + " may hold none of . : , ; and no quotes");
  if (has(name)) {
    const auto place = m_places.find(name);
    const bool known = place != m_places.end() && place->second.line != 0;
    throw ModelError(at, "the name '" + name + "' is taken: " + with_article(m_kind) + " has it" +
                             (known ? " (line " + std::to_string(place->second.line) + ")" : " already"));
  }
  m_indices[name] = index;
  m_places[name] = at;
}

int NameTable::find(const std::string& name, const std::string& role, const FilePosition& at) const {
  const auto found = m_indices.find(name);
  if (found != m_indices.end()) return found->second;
  throw ModelError(at, role + ": there is no " + m_kind + " '" + name + "'; " + name_hint(name, known()));
}

std::vector<std::string> NameTable::known() const {
  std::vector<std::string> names;
  for (const auto& [candidate, index] : m_indices)
    if (candidate.find('.') == std::string::npos) names.push_back(candidate);
  return names;
}

}  // namespace qvslv
