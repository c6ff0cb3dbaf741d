#include "solver/model_file/toml_override.h"

#include <algorithm>

#include "solver/model/nearest_name.h"
#include "solver/model/quotation.h"

namespace qvslv {

namespace {

std::string trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// The parts of a dotted path; dots inside double quotes do not separate.
std::vector<std::string> path_parts(const std::string& path) {
  std::vector<std::string> parts(1);
  bool quoted = false;
  for (const char c : path) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == '.' && !quoted) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  for (std::string& part : parts) part = trimmed(part);
  return parts;
}

void place(Value& value, const FilePosition& at) {
  value.at = at;
  for (Value& item : value.list) place(item, at);
  for (Value::Entry& entry : value.table) {
    entry.at = at;
    place(entry.value, at);
  }
}

Value parsed_value(const std::string& text, const FilePosition& at) {
  Value value;
  try {
    value = *parse_toml("value = " + text, at.file).find("value");
  } catch (const ModelError& error) {
    const bool meant_as_toml = text.empty() || std::string("[{\"'").find(text[0]) != std::string::npos;
    if (meant_as_toml) throw ModelError(at, text.empty() ? "the value is missing" : error.text);
    value.kind = Value::Kind::text;
    value.text = text;
  }
  place(value, at);
  return value;
}

/// What an entry of a list of tables is called: its name, or its number from 1.
std::string entry_name(const Value& list, size_t index) {
  const Value* name = list.list[index].find("name");
  return name != nullptr && name->kind == Value::Kind::text ? name->text : std::to_string(index + 1);
}

Value& list_entry(Value& list, const std::string& part, const std::string& so_far, const FilePosition& at) {
  std::vector<std::string> names;
  for (size_t i = 0; i < list.list.size(); ++i) {
    names.push_back(entry_name(list, i));
    if (names.back() == part) return list.list[i];
  }
  for (size_t i = 0; i < list.list.size(); ++i)
    if (std::to_string(i + 1) == part) return list.list[i];
  throw ModelError(at, "there is no '" + part + "' in " + so_far + "; " + name_hint(part, names));
}

[[noreturn]] void no_such_key(const Value& table, const std::string& part, const std::string& so_far,
                              const FilePosition& at) {
  std::vector<std::string> keys;
  for (const Value::Entry& entry : table.table) keys.push_back(entry.key);
  throw ModelError(at, "there is no '" + part + "' in " + (so_far.empty() ? "the model file" : so_far) + "; " +
                           name_hint(part, keys));
}

/// A single word that only the parameters know is most often meant as one of them.
void check_top_key(const Value& document, const std::string& key, const FilePosition& at) {
  if (document.find(key) != nullptr) return;
  const Value* parameters = document.find("parameters");
  if (parameters != nullptr && parameters->find(key) != nullptr)
    throw ModelError(at, "there is no '" + key + "' in the model file; did you mean 'parameters." + key + "'?");
}

}  // namespace

void apply_override(Value& document, const std::string& option) {
  const FilePosition at{"--set " + quotation(option), 0, 0};
  const size_t equals = option.find('=');
  if (equals == std::string::npos) throw ModelError(at, "key=value is expected, for instance simulation.end_time=2");
  const std::vector<std::string> parts = path_parts(option.substr(0, equals));
  if (std::any_of(parts.begin(), parts.end(), [](const std::string& part) { return part.empty(); }))
    throw ModelError(at, "a part of the key is empty");

  if (parts.size() == 1) check_top_key(document, parts[0], at);
  Value* here = &document;
  std::string so_far;
  for (size_t i = 0; i + 1 < parts.size(); ++i) {
    Value* next = nullptr;
    if (here->kind == Value::Kind::list) {
      next = &list_entry(*here, parts[i], so_far, at);
    } else {
      next = here->find(parts[i]);
      if (next == nullptr) no_such_key(*here, parts[i], so_far, at);
    }
    so_far += (so_far.empty() ? "" : ".") + parts[i];
    here = next;
  }
  Value value = parsed_value(trimmed(option.substr(equals + 1)), at);
  if (here->kind == Value::Kind::list) {
    list_entry(*here, parts.back(), so_far, at) = std::move(value);
  } else if (here->kind != Value::Kind::table) {
    throw ModelError(at, so_far + " is " + described(*here) + ", it holds no keys");
  } else if (Value* old = here->find(parts.back())) {
    *old = std::move(value);
  } else if (so_far == "parameters") {
    no_such_key(*here, parts.back(), so_far, at);
  } else {
    here->table.push_back({parts.back(), at, std::move(value)});
  }
}

}  // namespace qvslv
