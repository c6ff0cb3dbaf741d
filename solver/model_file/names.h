#pragma once

#include <map>
#include <string>
#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// The names of one kind of thing in a model and the indices they stand for.
class NameTable {
public:
  explicit NameTable(std::string kind) : m_kind(std::move(kind)) {}

  /// Throws ModelError when the name is taken or is none that a file can refer to: it must not be empty, and may
  /// hold neither . : , ; quotes nor control characters (paths and column heads are made of them).
  void add(const std::string& name, int index, const FilePosition& at);
  /// Adds a name that the reader makes itself. It may hold a dot, so that it never meets a user's name.
  void add_internal(const std::string& name, int index) { m_indices[name] = index; }
  bool has(const std::string& name) const { return m_indices.count(name) != 0; }
  /// The names that a file gave, in alphabetical order.
  std::vector<std::string> known() const;
  /// Index of a name. If nothing has this name, throws ModelError that offers the nearest one. `role` says who asks.
  int find(const std::string& name, const std::string& role, const FilePosition& at) const;

private:
  std::string m_kind;
  std::map<std::string, int> m_indices;
  std::map<std::string, FilePosition> m_places;
};

}  // namespace qvslv
