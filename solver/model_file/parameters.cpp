#include "solver/model_file/parameters.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "solver/model/expression.h"
#include "solver/model/nearest_name.h"

namespace qvslv {

namespace {

/// Names that every expression knows besides the model's parameters.
const std::vector<std::string> k_reserved = {"t",     "pi",   "sin",  "cos",  "tan",   "asin",  "acos",  "atan",
                                             "atan2", "sinh", "cosh", "tanh", "asinh", "acosh", "atanh", "log2",
                                             "log10", "log",  "ln",   "exp",  "sqrt",  "sign",  "rint",  "abs",
                                             "min",   "max",  "sum",  "avg",  "step",  "_pi",   "_e"};

bool starts_name(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool continues_name(char c) { return starts_name(c) || std::isdigit(static_cast<unsigned char>(c)) != 0; }
bool in_number(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '.'; }

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// The names an expression uses; the e of 2e-3 is none.
std::vector<std::string> names_in(const std::string& text) {
  std::vector<std::string> names;
  for (size_t i = 0; i < text.size();) {
    if (in_number(text[i])) {
      while (i < text.size() && in_number(text[i])) ++i;
      const bool exponent = i + 1 < text.size() && (text[i] == 'e' || text[i] == 'E') &&
                            (in_number(text[i + 1]) || text[i + 1] == '-' || text[i + 1] == '+');
      if (exponent) i += 2;
    } else if (starts_name(text[i])) {
      size_t end = i;
      while (end < text.size() && continues_name(text[end])) ++end;
      names.push_back(text.substr(i, end - i));
      i = end;
    } else {
      ++i;
    }
  }
  return names;
}

void check_parameter_name(const Value::Entry& entry) {
  const std::string& name = entry.key;
  if (name.empty() || !starts_name(name[0]) || !std::all_of(name.begin(), name.end(), continues_name))
    throw ModelError(entry.at, "parameter '" + name + "': a name is letters, digits and _, and starts with a letter");
  if (contains(k_reserved, name))
    throw ModelError(entry.at, "parameter '" + name + "': expressions use this name already; choose another");
}

/// Sorts the entries so that each expression names only earlier entries.
class DependencyOrder {
public:
  explicit DependencyOrder(const Value& table) : m_table(table) {
    for (const Value::Entry& entry : m_table.table) visit(entry);
  }
  std::vector<const Value::Entry*> order;

private:
  void visit(const Value::Entry& entry) {
    if (std::find(order.begin(), order.end(), &entry) != order.end()) return;
    if (contains(m_open, entry.key))
      throw ModelError(entry.value.at, "parameter '" + entry.key + "' depends on itself (" + listed(m_open) + ")");
    m_open.push_back(entry.key);
    for (const std::string& name : names_in(entry.value.text))
      for (const Value::Entry& other : m_table.table)
        if (other.key == name) visit(other);
    m_open.pop_back();
    order.push_back(&entry);
  }

  const Value& m_table;
  std::vector<std::string> m_open;
};

}  // namespace

Parameters::Parameters() : m_values(std::make_shared<std::map<std::string, double>>()) {}

Parameters::Parameters(const Value& table) : Parameters() {
  if (table.kind != Value::Kind::table)
    throw ModelError(table.at, "parameters: a table of named numbers is expected, not " + described(table));
  for (const Value::Entry* entry : DependencyOrder(table).order) {
    check_parameter_name(*entry);
    const Value& value = entry->value;
    auto extended = std::make_shared<std::map<std::string, double>>(*m_values);
    if (value.kind == Value::Kind::integer || value.kind == Value::Kind::real) {
      if (!std::isfinite(value.number))
        throw ModelError(value.at, "parameter '" + entry->key + "': a finite number is expected");
      (*extended)[entry->key] = value.number;
    } else if (value.kind == Value::Kind::text) {
      (*extended)[entry->key] = number(value.text, value.at);
    } else {
      throw ModelError(value.at, "parameter '" + entry->key +
                                     "': a number or an expression in quotes is expected, not " + described(value));
    }
    m_values = std::move(extended);
  }
}

void Parameters::check_names(const std::string& text, const FilePosition& at) const {
  for (const std::string& name : names_in(text))
    if (!contains(k_reserved, name) && m_values->count(name) == 0) unknown_name(name, text, at);
}

void Parameters::unknown_name(const std::string& name, const std::string& text, const FilePosition& at) const {
  std::vector<std::string> parameters;
  for (const auto& [parameter, value] : *m_values) parameters.push_back(parameter);
  std::vector<std::string> known = parameters;
  known.insert(known.end(), k_reserved.begin(), k_reserved.end());
  const std::string nearest = nearest_name(name, known);
  std::string hint = "the model has no [parameters]";
  if (!nearest.empty()) {
    hint = "did you mean '" + nearest + "'?";
  } else if (!parameters.empty()) {
    hint = "parameters: " + listed(parameters);
  }
  throw ModelError(at,
                   "in the expression \"" + text + "\": '" + name + "' is no parameter, constant or function; " + hint);
}

Expression Parameters::expression(const std::string& text, const FilePosition& at) const {
  check_names(text, at);
  Expression expression = state_expression(text, at);
  CompiledExpression checked(expression);
  return expression;
}

Expression Parameters::state_expression(const std::string& text, const FilePosition& at) const {
  Expression expression;
  expression.text = text;
  expression.at = at;
  expression.parameters = m_values;
  return expression;
}

void Parameters::check_name_is_free(const std::string& name, const std::string& what, const FilePosition& at) const {
  if (contains(k_reserved, name))
    throw ModelError(at, what + " '" + name + "': expressions use this name already; choose another");
  if (m_values->count(name) != 0)
    throw ModelError(at, what + " '" + name + "': a parameter has this name; choose another");
}

double Parameters::number(const std::string& text, const FilePosition& at) const {
  const CompiledExpression compiled(expression(text, at));
  if (!compiled.constant())
    throw ModelError(at,
                     "in the expression \"" + text + "\": a number is expected here, it cannot depend on the time t");
  const double value = compiled(0.0);
  if (!std::isfinite(value))
    throw ModelError(at, "in the expression \"" + text + "\": the value is not a finite number");
  return value;
}

}  // namespace qvslv
