#include "solver/model_file/toml_document.h"

#include <algorithm>

#include "solver/model_file/toml_guard.h"
#include "solver/model_file/toml_parser.h"

namespace qvslv {

namespace {

FilePosition position_of(const toml::source_region& region, const std::string& file) {
  return {file, static_cast<int>(region.begin.line), static_cast<int>(region.begin.column)};
}

Value converted(const toml::node& node, const std::string& file);

void take_table(const toml::table& table, const std::string& file, Value& value) {
  value.kind = Value::Kind::table;
  for (const auto& [key, node] : table)
    value.table.push_back({std::string(key.str()), position_of(key.source(), file), converted(node, file)});
  // The parser sorts keys by name; the user expects the order of the file.
  std::stable_sort(value.table.begin(), value.table.end(), [](const Value::Entry& a, const Value::Entry& b) {
    return a.at.line != b.at.line ? a.at.line < b.at.line : a.at.column < b.at.column;
  });
}

Value converted(const toml::node& node, const std::string& file) {
  Value value;
  value.at = position_of(node.source(), file);
  if (const toml::table* table = node.as_table()) {
    take_table(*table, file, value);
  } else if (const toml::array* array = node.as_array()) {
    value.kind = Value::Kind::list;
    for (const toml::node& item : *array) value.list.push_back(converted(item, file));
  } else if (const auto* text = node.as_string()) {
    value.kind = Value::Kind::text;
    value.text = text->get();
  } else if (const auto* integer = node.as_integer()) {
    value.kind = Value::Kind::integer;
    value.number = static_cast<double>(integer->get());
  } else if (const auto* real = node.as_floating_point()) {
    value.kind = Value::Kind::real;
    value.number = real->get();
  } else if (const auto* boolean = node.as_boolean()) {
    value.kind = Value::Kind::boolean;
    value.boolean = boolean->get();
  } else {
    value.kind = Value::Kind::other;
  }
  return value;
}

/// The parser's text without the name of the setting of its own that it quotes.
std::string parser_text(const std::string& text) {
  const size_t setting = text.find(" (TOML_");
  return setting == std::string::npos ? text : text.substr(0, setting);
}

}  // namespace

const Value* Value::find(std::string_view key) const {
  for (const Entry& entry : table)
    if (entry.key == key) return &entry.value;
  return nullptr;
}

Value* Value::find(std::string_view key) {
  for (Entry& entry : table)
    if (entry.key == key) return &entry.value;
  return nullptr;
}

std::string described(const Value& value) {
  switch (value.kind) {
    case Value::Kind::boolean:
      return value.boolean ? "true" : "false";
    case Value::Kind::integer:
    case Value::Kind::real:
      return "a number";
    case Value::Kind::text:
      return "the text \"" + value.text + "\"";
    case Value::Kind::list:
      return "a list of " + std::to_string(value.list.size()) + (value.list.size() == 1 ? " value" : " values");
    case Value::Kind::table:
      return "a table";
    case Value::Kind::other:
      break;
  }
  return "a date or time";
}

Value parse_toml(std::string_view text, const std::string& file) {
  refuse_deep_keys(text, file);
  try {
    return converted(toml::parse(text), file);
  } catch (const toml::parse_error& error) {
    throw ModelError(position_of(error.source(), file), parser_text(std::string(error.description())));
  }
}

}  // namespace qvslv
