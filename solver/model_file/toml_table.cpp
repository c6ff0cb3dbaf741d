#include "solver/model_file/toml_table.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "qvbrisk/constants.h"
#include "solver/model/nearest_name.h"

namespace qvslv {

namespace {

/// Position of an unexpected key, or of its value if the key has none (an override has no line).
const FilePosition& key_position(const Value::Entry& entry) { return entry.at.line != 0 ? entry.at : entry.value.at; }

}  // namespace

TableReader::TableReader(const Value& table, std::string what, const Parameters& parameters,
                         std::vector<std::string> known)
    : m_table(&table), m_what(std::move(what)), m_parameters(&parameters), m_known(std::move(known)) {
  if (table.kind != Value::Kind::table)
    throw ModelError(table.at, m_what + ": a table is expected, not " + described(table));
  for (const Value::Entry& entry : table.table)
    if (std::find(m_known.begin(), m_known.end(), entry.key) == m_known.end())
      throw ModelError(key_position(entry),
                       m_what + ": unknown key '" + entry.key + "'; " + name_hint(entry.key, m_known));
}

const Value& TableReader::value(const std::string& key) const {
  const Value* found = m_table->find(key);
  if (found == nullptr) fail("the key '" + key + "' is missing");
  return *found;
}

void TableReader::fail(const std::string& text) const { throw ModelError(m_table->at, m_what + ": " + text); }

void TableReader::fail(const std::string& key, const std::string& text) const {
  throw ModelError(position(key), named(key) + ": " + text);
}

std::string TableReader::named(const std::string& key) const { return m_what == k_root ? key : m_what + ", " + key; }

void TableReader::wrong(const Value& value, const std::string& key, const std::string& expected) const {
  throw ModelError(value.at, named(key) + ": " + expected + " is expected, not " + described(value));
}

std::string TableReader::text(const std::string& key) const {
  const Value& found = value(key);
  if (found.kind != Value::Kind::text) wrong(found, key, "a text in quotes");
  return found.text;
}

std::string TableReader::text(const std::string& key, const std::string& otherwise) const {
  return has(key) ? text(key) : otherwise;
}

bool TableReader::flag(const std::string& key, bool otherwise) const {
  if (!has(key)) return otherwise;
  if (value(key).kind != Value::Kind::boolean) wrong(value(key), key, "true or false");
  return value(key).boolean;
}

double TableReader::number_of(const Value& found, const std::string& key) const {
  const bool is_number = found.kind == Value::Kind::integer || found.kind == Value::Kind::real;
  if (is_number && std::isfinite(found.number)) return found.number;
  if (is_number) throw ModelError(found.at, named(key) + ": a finite number is expected");
  if (found.kind != Value::Kind::text) wrong(found, key, "a number or an expression in quotes");
  return m_parameters->number(found.text, found.at);
}

double TableReader::number(const std::string& key) const { return number_of(value(key), key); }

double TableReader::number(const std::string& key, double otherwise) const {
  return has(key) ? number(key) : otherwise;
}

double TableReader::positive(const std::string& key) const {
  const double found = number(key);
  if (!(found > 0)) fail(key, "must be greater than 0, is " + number_text(found));
  return found;
}

double TableReader::positive(const std::string& key, double otherwise) const {
  return has(key) ? positive(key) : otherwise;
}

int TableReader::count(const std::string& key) const {
  constexpr double k_most = 1e9;
  const double found = number(key);
  if (!(found >= 1 && found <= k_most) || found != std::floor(found))
    fail(key, "must be a whole number, 1 or more, is " + number_text(found));
  return static_cast<int>(found);
}

const std::vector<Value>& TableReader::list(const std::string& key, const std::string& expected) const {
  if (value(key).kind != Value::Kind::list) wrong(value(key), key, expected);
  return value(key).list;
}

std::vector<double> TableReader::numbers(const std::string& key) const {
  std::vector<double> result;
  for (const Value& item : list(key, "a list of numbers")) result.push_back(number_of(item, key));
  return result;
}

std::vector<double> TableReader::numbers(const std::string& key, size_t length) const {
  const std::string expected = "a list of " + std::to_string(length) + " numbers";
  if (list(key, expected).size() != length) wrong(value(key), key, expected);
  return numbers(key);
}

Vec3 TableReader::vector3(const std::string& key) const {
  const std::vector<double> values = numbers(key, 3);
  return {values[0], values[1], values[2]};
}

Vec3 TableReader::vector3(const std::string& key, const Vec3& otherwise) const {
  return has(key) ? vector3(key) : otherwise;
}

std::vector<std::string> TableReader::texts(const std::string& key) const {
  std::vector<std::string> result;
  for (const Value& item : list(key, "a list of texts")) {
    if (item.kind != Value::Kind::text) wrong(item, key, "a list of texts");
    result.push_back(item.text);
  }
  return result;
}

std::string TableReader::choice(const std::string& key, const std::vector<std::string>& words) const {
  std::string word = text(key);
  if (std::find(words.begin(), words.end(), word) == words.end())
    fail(key, "'" + word + "' is not known; " + name_hint(word, words));
  return word;
}

Expression TableReader::expression_of(const Value& found, const std::string& key) const {
  if (found.kind == Value::Kind::text) return m_parameters->expression(found.text, found.at);
  return m_parameters->expression(number_text(number_of(found, key)), found.at);
}

Expression TableReader::expression(const std::string& key) const { return expression_of(value(key), key); }

Expression TableReader::state_expression_of(const Value& found, const std::string& key) const {
  if (found.kind == Value::Kind::text) return m_parameters->state_expression(found.text, found.at);
  return m_parameters->state_expression(number_text(number_of(found, key)), found.at);
}

Expression TableReader::state_expression(const std::string& key) const { return state_expression_of(value(key), key); }

TableReader TableReader::table(const std::string& key, std::vector<std::string> known) const {
  return TableReader(value(key), named(key), *m_parameters, std::move(known));
}

std::vector<TableReader> TableReader::tables(const std::string& key, const std::vector<std::string>& known) const {
  std::vector<TableReader> result;
  for (const Value& item : list(key, "a list of tables")) {
    const Value* name = item.find("name");
    const bool has_name = name != nullptr && name->kind == Value::Kind::text;
    const std::string label = has_name ? "'" + name->text + "'" : std::to_string(result.size() + 1);
    result.emplace_back(item, named(key) + " " + label, *m_parameters, known);
  }
  return result;
}

Rotation TableReader::rotation() const {
  if (has("angles") && has("angles_deg")) fail("angles_deg", "give either angles [rad] or angles_deg, not both");
  if (has("angles")) return body_fixed_xyz(vector3("angles"));
  Vec3 angles = vector3("angles_deg", {0, 0, 0});
  for (double& angle : angles) angle *= DTOR;
  return body_fixed_xyz(angles);
}

Rotation body_fixed_xyz(const Vec3& angles) {
  const double cx = std::cos(angles[0]), sx = std::sin(angles[0]);
  const double cy = std::cos(angles[1]), sy = std::sin(angles[1]);
  const double cz = std::cos(angles[2]), sz = std::sin(angles[2]);
  // Rx Ry Rz, written column by column.
  return {cy * cz,
          cx * sz + sx * sy * cz,
          sx * sz - cx * sy * cz,
          -cy * sz,
          cx * cz - sx * sy * sz,
          sx * cz + cx * sy * sz,
          sy,
          -sx * cy,
          cx * cy};
}

}  // namespace qvslv
