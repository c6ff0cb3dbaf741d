#include "solver/watch/watch.h"

#include <algorithm>
#include <utility>

#include "solver/watch/watchers.h"

namespace qvslv {

namespace {

using MakeWatcher = std::unique_ptr<Watcher> (*)(const Engine&, const Recording&);
constexpr MakeWatcher k_makers[] = {watch_roads,  watch_waters,      watch_headings, watch_thrown,
                                    watch_energy, watch_lost_digits, watch_progress};

bool same_place(const FilePosition& a, const FilePosition& b) {
  return a.line == b.line && a.column == b.column && a.file == b.file;
}

}  // namespace

Watch::Watch(const Engine& engine, const Recording& recording, Findings known) : m_known(std::move(known)) {
  for (const MakeWatcher make : k_makers)
    if (std::unique_ptr<Watcher> watcher = make(engine, recording)) m_watchers.push_back(std::move(watcher));
}

Findings Watch::look(const Sight& sight) {
  Findings found, news;
  for (const std::unique_ptr<Watcher>& watcher : m_watchers) watcher->look(sight, found);
  for (const Finding& finding : found) {
    if (is_known(finding)) continue;
    m_known.push_back(finding);
    news.push_back(finding);
  }
  return news;
}

/// Parts of a hull stand at one place of the model file; they count as one.
bool Watch::is_known(const Finding& finding) const {
  return std::any_of(m_known.begin(), m_known.end(), [&](const Finding& other) {
    return other.id == finding.id && other.at.line != 0 && same_place(other.at, finding.at);
  });
}

void note(Findings& findings, const char* id, const Element& element, const std::string& text) {
  findings.push_back({Level::warning, id, element.at, "element '" + element.name + "': " + text});
}

void note(Findings& findings, const char* id, const Body& body, const std::string& text) {
  findings.push_back({Level::warning, id, body.at, "body '" + body.name + "': " + text});
}

void note(Findings& findings, const char* id, const Model& model, const std::string& text) {
  findings.push_back(finding_in(model.path, 0, Level::warning, id, text));
}

}  // namespace qvslv
