#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// A TOML value with the place it came from, so that every later complaint can point at it.
struct Value {
  enum class Kind { boolean, integer, real, text, list, table, other };
  struct Entry;

  Kind kind = Kind::table;
  bool boolean = false;
  double number = 0;  ///< integer and real
  std::string text;
  std::vector<Value> list;
  std::vector<Entry> table;  ///< in file order
  FilePosition at;

  const Value* find(std::string_view key) const;
  Value* find(std::string_view key);
};

struct Value::Entry {
  std::string key;
  FilePosition at;
  Value value;
};

/// "a number", "a text", "a list of 3 values", ...: for messages
std::string described(const Value& value);

/// Parses a whole document. `file` is only named in messages. Throws ModelError at the place of a syntax error.
Value parse_toml(std::string_view text, const std::string& file);

}  // namespace qvslv
