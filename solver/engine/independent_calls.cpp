#include "solver/engine/independent_calls.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <utility>

#include "qvbrisk/layouts.h"

namespace qvslv {

namespace {

/// What a subroutine of the library works with: a kind of record and the entries of `par` that say which of them.
struct SharedRecord {
  const char* kind;
  std::vector<int> entries;
};

/// By the subroutine's name. A kind without entries is one record for all; no kind: nothing but the element's own.
const std::map<std::string, SharedRecord>& shared_records() {
  static const std::map<std::string, SharedRecord> k_records = {
      {"qvsoil_interaction", {"soil", {QV_SOIL_ROAD, QV_SOIL_ELEMENT}}},
      {"qvsoil_interaction_mtl", {"track", {QV_TRACK_ROAD, QV_TRACK_TRACK}}},
      {"qvsoil_mtl_eom", {"track", {QV_TRACK_EOM_ROAD, QV_TRACK_EOM_TRACK}}},
      {"qvsoil_shearforce_mtl", {"track", {QV_TRACK_SHEAR_ROAD, QV_TRACK_SHEAR_TRACK}}},
      {"qvsoil_normalforce_mtl", {"track", {QV_TRACK_NORMAL_ROAD, QV_TRACK_NORMAL_TRACK}}},
      {"qvsoil_interaction_mtl_sum", {"track", {QV_TRACK_SUM_ROAD, QV_TRACK_SUM_TRACK}}},
      {"qvsoil_mtl_velocity", {"", {}}},
      {"qvhydro_force", {"hull", {QV_HULL_FORCE_ID}}},
      {"qvhydro_report", {"hull", {QV_HULL_REPORT_FORCE_ID}}},
      {"qvsoil_thrustforce", {"thrust", {QV_THRUST_ELEMENT}}},
      {"qvsoil_error_velocity", {"", {}}},
      {"qvballplacing_report", {"", {}}},
  };
  return k_records;
}

/// Elements with one key share data.
std::string key_of(const Element& element, size_t index) {
  const auto found = shared_records().find(element.subroutine);
  if (found == shared_records().end()) return "any";
  const SharedRecord& record = found->second;
  std::string key = record.kind;
  if (key.empty()) return "own " + std::to_string(index);
  for (const int entry : record.entries) {
    const auto at = static_cast<size_t>(entry);
    // The library takes entries without their fraction. What has no such number, it refuses.
    const double value = at < element.par.size() && std::isfinite(element.par[at]) ? element.par[at] : 0;
    key += ' ' + std::to_string(static_cast<long long>(std::clamp(value, -1e9, 1e9)));
  }
  return key;
}

/// Sums over a road read the records of every soil element on it, so they make all of these one group.
bool sums_soil(const Element& element) { return element.subroutine == "qvsoil_interaction_Sum"; }

struct Group {
  double work = 0;
  std::vector<size_t> elements;
};

std::vector<Group> groups_of(const Model& model) {
  std::map<std::string, Group> by_key;
  const bool one_soil = std::any_of(model.elements.begin(), model.elements.end(), [](const Element& element) {
    return sums_soil(element) && element.kind != ElementKind::report;
  });
  for (size_t i = 0; i < model.elements.size(); ++i) {
    const Element& element = model.elements[i];
    if (element.kind == ElementKind::report) continue;
    const bool soil = element.subroutine == "qvsoil_interaction" || sums_soil(element);
    Group& group = by_key[soil && one_soil ? "soil" : key_of(element, i)];
    // Contact points stand in the result, patches of hulls in par: their numbers are in proportion to the work.
    group.work += 20 + static_cast<double>(element.result_length) + static_cast<double>(element.par.size());
    group.elements.push_back(i);
  }
  std::vector<Group> groups;
  groups.reserve(by_key.size());
  for (auto& [key, group] : by_key) groups.push_back(std::move(group));
  return groups;
}

}  // namespace

std::vector<std::vector<size_t>> divide_calls(const Model& model, int threads) {
  std::vector<Group> groups = groups_of(model);
  // The largest first, each to the thread that has least to do.
  std::stable_sort(groups.begin(), groups.end(), [](const Group& a, const Group& b) { return a.work > b.work; });
  const size_t count = std::max<size_t>(1, std::min(groups.size(), static_cast<size_t>(std::max(threads, 1))));
  std::vector<Group> shares(count);
  for (const Group& group : groups) {
    Group& share =
        *std::min_element(shares.begin(), shares.end(), [](const Group& a, const Group& b) { return a.work < b.work; });
    share.work += group.work;
    share.elements.insert(share.elements.end(), group.elements.begin(), group.elements.end());
  }
  std::vector<std::vector<size_t>> divided;
  for (Group& share : shares) {
    std::sort(share.elements.begin(), share.elements.end());
    divided.push_back(std::move(share.elements));
  }
  return divided;
}

}  // namespace qvslv
