#pragma once

#include <string>
#include <vector>

namespace qvslv {

/// Number of single-letter changes (insert, remove, replace, swap of neighbours) that turn one text into the other.
int edit_distance(const std::string& a, const std::string& b);

/// The known name that is nearest to a mistyped one, letter case aside. Empty if none is near: a third of the longer
/// text's letters may be wrong, at least one, but never all.
std::string nearest_name(const std::string& name, const std::vector<std::string>& known);

/// "did you mean 'wheel'?", or "known: a, b, c" if none is near, or "there are none".
std::string name_hint(const std::string& name, const std::vector<std::string>& known);

/// "a, b, c"; of a long list the first thirty and how many more there are.
std::string listed(const std::vector<std::string>& names);

}  // namespace qvslv
