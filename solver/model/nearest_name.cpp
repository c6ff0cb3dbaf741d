#include "solver/model/nearest_name.h"

#include <algorithm>
#include <cctype>

namespace qvslv {

namespace {

std::string lower_case(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

int edit_distance(const std::string& a, const std::string& b) {
  std::vector<int> before_last(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = static_cast<int>(j);
  for (size_t i = 1; i <= a.size(); ++i) {
    before_last.swap(last);
    last.swap(row);
    row[0] = static_cast<int>(i);
    for (size_t j = 1; j <= b.size(); ++j) {
      const int replace = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({replace, last[j] + 1, row[j - 1] + 1});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) row[j] = std::min(row[j], before_last[j - 2] + 1);
    }
  }
  return row[b.size()];
}

std::string nearest_name(const std::string& name, const std::vector<std::string>& known) {
  std::string nearest;
  int least = 0;
  for (const std::string& candidate : known) {
    const size_t longer = std::max(name.size(), candidate.size()), shorter = std::min(name.size(), candidate.size());
    const int allowed = std::max(1, static_cast<int>((longer + 1) / 3));
    if (longer - shorter > static_cast<size_t>(allowed)) continue;  // so many letters at least are to be added
    const int distance = edit_distance(lower_case(name), lower_case(candidate));
    const bool something_in_common = distance < static_cast<int>(longer);
    if (distance > allowed || !something_in_common || (!nearest.empty() && distance >= least)) continue;
    nearest = candidate;
    least = distance;
  }
  return nearest;
}

std::string name_hint(const std::string& name, const std::vector<std::string>& known) {
  const std::string nearest = nearest_name(name, known);
  if (!nearest.empty()) return "did you mean '" + nearest + "'?";
  return known.empty() ? "there are none" : "known: " + listed(known);
}

std::string listed(const std::vector<std::string>& names) {
  constexpr size_t k_shown = 30;
  std::string text;
  for (size_t i = 0; i < names.size() && i < k_shown; ++i) text += (i == 0 ? "" : ", ") + names[i];
  if (names.size() > k_shown) text += " and " + std::to_string(names.size() - k_shown) + " more";
  return text;
}

}  // namespace qvslv
