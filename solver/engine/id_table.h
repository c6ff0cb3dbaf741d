#pragma once

#include <cstddef>
#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// Finds things by their id. Ids are numbered closely as a rule, so a table by id holds the indices; ids that lie far
/// apart are searched for.
class IdTable {
public:
  IdTable() = default;
  /// @param things  of a list of the model; if two have an id, it stands for the first
  template <class Things>
  explicit IdTable(const Things& things) {
    for (size_t i = 0; i < things.size(); ++i) add(things[i].id, static_cast<int>(i));
  }

  void add(int id, int index) {
    if (id >= 0 && id < k_densest) {
      const auto at = static_cast<size_t>(id);
      if (at >= m_by_id.size()) m_by_id.resize(at + 1, k_none);
      if (m_by_id[at] == k_none) m_by_id[at] = index;
    } else {
      m_others.push_back({id, index});
    }
  }

  /// k_none if nothing has the id.
  int find(int id) const {
    if (id >= 0 && static_cast<size_t>(id) < m_by_id.size()) return m_by_id[static_cast<size_t>(id)];
    for (const Other& other : m_others)
      if (other.id == id) return other.index;
    return k_none;
  }

private:
  static constexpr int k_densest = 1 << 16;  ///< ids below it have a place in the table: at most 256 kB

  struct Other {
    int id;
    int index;
  };

  std::vector<int> m_by_id;
  std::vector<Other> m_others;  ///< few: a model file numbers from 1
};

}  // namespace qvslv
