#include "solver/model_file/parameters.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "solver/model/expression.h"
#include "solver/model/expression_names.h"
#include "solver/model/nearest_name.h"
#include "solver/model/quotation.h"

namespace qvslv {

namespace {

/// Names that every expression knows besides the model's parameters.
const std::vector<std::string> k_reserved = {"t",     "pi",   "sin",  "cos",  "tan",   "asin",  "acos",  "atan",
                                             "atan2", "sinh", "cosh", "tanh", "asinh", "acosh", "atanh", "log2",
                                             "log10", "log",  "ln",   "exp",  "sqrt",  "sign",  "rint",  "abs",
                                             "min",   "max",  "sum",  "avg",  "step",  "_pi",   "_e"};

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

void check_parameter_name(const Value::Entry& entry) {
  const std::string& name = entry.key;
  if (name.empty() || !starts_name(name[0]) || !std::all_of(name.begin(), name.end(), continues_name))
    throw ModelError(entry.at, "parameter '" + name + "': a name is letters, digits and _, and starts with a letter");
  if (contains(k_reserved, name))
    throw ModelError(entry.at, "parameter '" + name + "': expressions use this name already; choose another");
}

/// Sorts the entries so that each expression names only earlier entries. Walks with a stack of its own: thousands of
/// parameters may each name the next one.
class DependencyOrder {
public:
  explicit DependencyOrder(const Value& table) {
    for (const Value::Entry& entry : table.table) m_places[entry.key] = {&entry, Mark::unseen};
    for (const Value::Entry& entry : table.table) {
      open(entry.key);
      while (!m_open.empty()) advance();
    }
  }
  std::vector<const Value::Entry*> order;

private:
  enum class Mark { unseen, open, done };
  struct Place {
    const Value::Entry* entry = nullptr;
    Mark mark = Mark::unseen;
  };
  struct Visit {
    Place* place;
    std::vector<std::string> names;  ///< that its expression uses
    size_t next = 0;
  };

  void open(const std::string& name) {
    const auto found = m_places.find(name);
    if (found == m_places.end() || found->second.mark == Mark::done) return;
    const Value::Entry& entry = *found->second.entry;
    if (found->second.mark == Mark::open)
      throw ModelError(entry.value.at, "parameter '" + name + "' depends on itself (" + listed(open_names()) + ")");
    found->second.mark = Mark::open;
    m_open.push_back({&found->second, names_in(entry.value.text)});
  }

  /// Goes on with the entry that was opened last.
  void advance() {
    Visit& last = m_open.back();
    if (last.next < last.names.size()) {
      const std::string name = last.names[last.next++];
      return open(name);  // may move `last`
    }
    last.place->mark = Mark::done;
    order.push_back(last.place->entry);
    m_open.pop_back();
  }

  std::vector<std::string> open_names() const {
    std::vector<std::string> names;
    for (const Visit& visit : m_open) names.push_back(visit.place->entry->key);
    return names;
  }

  std::unordered_map<std::string, Place> m_places;
  std::vector<Visit> m_open;
};

}  // namespace

Parameters::Parameters() : m_values(std::make_shared<std::map<std::string, double>>()) {}

Parameters::Parameters(const Value& table) : Parameters() {
  if (table.kind != Value::Kind::table)
    throw ModelError(table.at, "parameters: a table of named numbers is expected, not " + described(table));
  // Expressions of later parameters share this map while it grows: they name only what is in it already.
  const auto values = std::make_shared<std::map<std::string, double>>();
  m_values = values;
  for (const Value::Entry* entry : DependencyOrder(table).order) {
    check_parameter_name(*entry);
    const Value& value = entry->value;
    if (value.kind == Value::Kind::integer || value.kind == Value::Kind::real) {
      if (!std::isfinite(value.number))
        throw ModelError(value.at, "parameter '" + entry->key + "': a finite number is expected");
      (*values)[entry->key] = value.number;
    } else if (value.kind == Value::Kind::text) {
      (*values)[entry->key] = number(value.text, value.at);
    } else {
      throw ModelError(value.at, "parameter '" + entry->key +
                                     "': a number or an expression in quotes is expected, not " + described(value));
    }
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
  throw ModelError(at, in_expression(text, text.find(name)) + "'" + quotation(name) +
                           "' is no parameter, constant or function; " + hint);
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
    throw ModelError(at, in_expression(text) + "a number is expected here, it cannot depend on the time t");
  const double value = compiled(0.0);
  if (!std::isfinite(value)) throw ModelError(at, in_expression(text) + "the value is not a finite number");
  return value;
}

}  // namespace qvslv
