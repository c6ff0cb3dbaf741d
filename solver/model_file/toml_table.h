#pragma once

#include <string>
#include <utility>
#include <vector>

#include "solver/model/number_text.h"
#include "solver/model_file/parameters.h"
#include "solver/model_file/toml_document.h"

namespace qvslv {

/// Name of the whole document in messages.
constexpr const char* k_root = "model";

/// Reads one table of a model file, key by key. Every complaint is a ModelError that names the table, the key and
/// what would be right. Wherever a number is expected, an expression in quotes will do.
class TableReader {
public:
  /// Throws at once if the table has a key that is not in `known`. `what` names the table in messages ("body 'wheel'").
  TableReader(const Value& table, std::string what, const Parameters& parameters, std::vector<std::string> known);

  const FilePosition& at() const { return m_table->at; }
  const std::string& what() const { return m_what; }
  bool has(const std::string& key) const { return m_table->find(key) != nullptr; }
  /// Throws when the key is missing.
  const Value& value(const std::string& key) const;
  const FilePosition& position(const std::string& key) const { return value(key).at; }

  std::string text(const std::string& key) const;
  std::string text(const std::string& key, const std::string& otherwise) const;
  bool flag(const std::string& key, bool otherwise) const;
  double number(const std::string& key) const;
  double number(const std::string& key, double otherwise) const;
  double positive(const std::string& key) const;
  double positive(const std::string& key, double otherwise) const;
  int count(const std::string& key) const;  ///< a whole number, 1 or more
  std::vector<double> numbers(const std::string& key) const;
  std::vector<double> numbers(const std::string& key, size_t length) const;
  Vec3 vector3(const std::string& key) const;
  Vec3 vector3(const std::string& key, const Vec3& otherwise) const;
  std::vector<std::string> texts(const std::string& key) const;
  /// A text that must be one of `words`.
  std::string choice(const std::string& key, const std::vector<std::string>& words) const;
  /// A number or a text, as an expression of time.
  Expression expression(const std::string& key) const;
  Expression expression_of(const Value& value, const std::string& key) const;
  /// A number or a text, as an expression that may read states too; it is not checked before the whole file is read.
  Expression state_expression(const std::string& key) const;
  Expression state_expression_of(const Value& value, const std::string& key) const;
  double number_of(const Value& value, const std::string& key) const;
  /// The table under a key, or the tables of a list of tables (called by their names in messages).
  TableReader table(const std::string& key, std::vector<std::string> known) const;
  std::vector<TableReader> tables(const std::string& key, const std::vector<std::string>& known) const;
  /// "angles" [rad] or "angles_deg", body-fixed x, y, z; the identity when neither is given.
  Rotation rotation() const;

  [[noreturn]] void fail(const std::string& text) const;                          ///< at the table
  [[noreturn]] void fail(const std::string& key, const std::string& text) const;  ///< at a key's value

private:
  std::string named(const std::string& key) const;  ///< the key with its table, for messages
  const std::vector<Value>& list(const std::string& key, const std::string& expected) const;
  [[noreturn]] void wrong(const Value& value, const std::string& key, const std::string& expected) const;

  const Value* m_table;
  std::string m_what;
  const Parameters* m_parameters;
  std::vector<std::string> m_known;
};

/// Rotation Rx Ry Rz, column by column: a turn about x, then about the new y, then about the new z [rad].
Rotation body_fixed_xyz(const Vec3& angles);

}  // namespace qvslv
