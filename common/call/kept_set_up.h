#pragma once

#include <initializer_list>
#include <set>
#include <utility>

#include "common/call/parameters.h"

/// What the first set-up call lays down stands until the library is unloaded. A later one that asks for something else,
/// as a second model in the same process does, is told so.
namespace qv {

/// An entry of the parameter list of a set-up call, and what the element was set up with before.
struct kept_entry {
  parameter entry;
  double asked;
  int held;
};

class kept_set_up {
public:
  explicit kept_set_up(const char* prefix) : m_prefix(prefix) {}

  /// Tells the host, once for each element, the first entry that differs. Nothing else happens: the call goes on with
  /// what is held. An entry that no int can hold is not looked at.
  /// @param element  two indices that name it
  void compare(void* handle, std::pair<int, int> element, std::initializer_list<kept_entry> entries);

private:
  const char* m_prefix;  ///< what the module's warnings begin with; ends with a blank
  std::set<std::pair<int, int>> m_told;
};

}  // namespace qv
