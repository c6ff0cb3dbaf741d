#include "solver/model/expression_scope.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <utility>

#include "solver/model/expression_parser.h"
#include "solver/model/nearest_name.h"
#include "solver/model/quotation.h"

namespace qvslv {

namespace {

using Kind = MarkerQuantity::Kind;

struct QuantityFunction {
  const char* name;
  Kind kind;
  int component;
};

constexpr QuantityFunction k_quantity_functions[] = {{"dx", Kind::displacement, 0},
                                                     {"dy", Kind::displacement, 1},
                                                     {"dz", Kind::displacement, 2},
                                                     {"dm", Kind::displacement, MarkerQuantity::k_magnitude},
                                                     {"vx", Kind::velocity, 0},
                                                     {"vy", Kind::velocity, 1},
                                                     {"vz", Kind::velocity, 2},
                                                     {"vm", Kind::velocity, MarkerQuantity::k_magnitude},
                                                     {"wx", Kind::angular_velocity, 0},
                                                     {"wy", Kind::angular_velocity, 1},
                                                     {"wz", Kind::angular_velocity, 2},
                                                     {"wm", Kind::angular_velocity, MarkerQuantity::k_magnitude},
                                                     {"roll", Kind::angle, 0},
                                                     {"pitch", Kind::angle, 1},
                                                     {"yaw", Kind::angle, 2}};

const QuantityFunction* find_quantity_function(const std::string& name) {
  for (const QuantityFunction& function : k_quantity_functions) {
    if (name == function.name) return &function;
  }
  return nullptr;
}

bool starts_name(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool continues_name(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool is_digit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }
bool is_blank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
bool is_plain(const std::string& name) { return std::all_of(name.begin(), name.end(), continues_name); }

/// Names of the parser's functions and of those that are made here.
std::vector<std::string> function_names() {
  mu::Parser parser;
  std::vector<std::string> names = {"step", "dif1", "dif2", "spline"};
  for (const auto& [name, function] : parser.GetFunDef()) names.push_back(name);
  for (const QuantityFunction& function : k_quantity_functions) names.emplace_back(function.name);
  return names;
}

template <class Things>
std::vector<std::string> names_of(const Things& things, size_t count) {
  std::vector<std::string> names;
  for (size_t i = 0; i < count; ++i) names.push_back(things[i].name);
  return names;
}

template <class Things>
std::vector<std::string> names_of(const Things& things) {
  return names_of(things, things.size());
}

/// Index of the thing with this name; k_none if there is none.
template <class Things>
int index_of(const Things& things, const std::string& name) {
  for (size_t i = 0; i < things.size(); ++i) {
    if (things[i].name == name) return static_cast<int>(i);
  }
  return k_none;
}

/// Markers that a model file names. Names that the reader makes up (of markers inside readable elements) hold a dot.
std::vector<std::string> marker_names(const Model& model) {
  std::vector<std::string> names;
  for (const Marker& marker : model.markers) {
    if (marker.name.find('.') == std::string::npos) names.push_back(marker.name);
  }
  return names;
}

/// Translates an expression in one pass over its text, from left to right.
class Translation {
public:
  Translation(const Expression& expression, const ExpressionScope& scope)
      : m_expression(expression), m_text(expression.text), m_scope(scope), m_model(scope.model) {
    m_out.text = m_text;
  }

  TranslatedExpression run() {
    if (m_text.find('#') != std::string::npos) fail("the character '#' has no meaning");
    while (m_at < m_text.size()) {
      if (starts_name(m_text[m_at])) {
        read_name();
      } else if (is_digit(m_text[m_at]) || m_text[m_at] == '.') {
        skip_number();
      } else {
        ++m_at;
      }
    }
    return std::move(m_out);
  }

private:
  [[noreturn]] void fail(const std::string& why) const {
    throw ModelError(m_expression.at, in_expression(m_text, m_at) + why);
  }

  /// A name such as `left-wheel` parses as a subtraction. If the text here matches such a name, says so instead of
  /// "unknown name".
  void check_unreadable(size_t at, const std::vector<std::string>& known) const {
    for (const std::string& name : known) {
      if (is_plain(name) || m_text.compare(at, name.size(), name) != 0) continue;
      fail("the name '" + name + "' cannot stand in an expression; there names consist of letters, digits and _");
    }
  }

  void skip_number() {
    while (m_at < m_text.size() && (is_digit(m_text[m_at]) || m_text[m_at] == '.')) ++m_at;
    if (m_at >= m_text.size() || (m_text[m_at] != 'e' && m_text[m_at] != 'E')) return;
    size_t exponent = m_at + 1;
    if (exponent < m_text.size() && (m_text[exponent] == '+' || m_text[exponent] == '-')) ++exponent;
    if (exponent >= m_text.size() || !is_digit(m_text[exponent])) return;
    m_at = exponent;
    while (m_at < m_text.size() && is_digit(m_text[m_at])) ++m_at;
  }

  void read_name() {
    const size_t first = m_at;
    while (m_at < m_text.size() && continues_name(m_text[m_at])) ++m_at;
    const std::string name = m_text.substr(first, m_at - first);
    size_t next = m_at;
    while (next < m_text.size() && is_blank(m_text[next])) ++next;
    if (next < m_text.size() && m_text[next] == '(') return read_call(name, first, next + 1);
    read_value(name, first);
  }

  void read_value(const std::string& name, size_t first) {
    const int variable = index_of(m_model.variables, name);
    const int equation = index_of(m_model.equations, name);
    const bool constant = name == "t" || name == "pi" || name == "_pi" || name == "_e" ||
                          (m_expression.parameters && m_expression.parameters->count(name) != 0);
    if ((variable != k_none) + (equation != k_none) + constant > 1) {
      fail("'" + name + "' means several things; variables, equations and parameters need names of their own");
    }
    if (constant) return;
    if (variable == k_none && equation == k_none) fail_unknown(name, first);
    if (variable != k_none && static_cast<size_t>(variable) >= m_scope.variables) {
      fail("the variable '" + name + "' cannot be read here: a variable reads only those that stand before it");
    }
    StateReading reading;
    reading.source = variable != k_none ? StateReading::Source::variable : StateReading::Source::equation;
    reading.index = variable != k_none ? variable : equation;
    replace(first, m_at, reading);
  }

  [[noreturn]] void fail_unknown(const std::string& name, size_t first) const {
    std::vector<std::string> known = names_of(m_model.variables, m_scope.variables);
    const std::vector<std::string> equations = names_of(m_model.equations);
    known.insert(known.end(), equations.begin(), equations.end());
    check_unreadable(first, known);
    if (m_expression.parameters) {
      for (const auto& [parameter, value] : *m_expression.parameters) known.push_back(parameter);
    }
    known.insert(known.end(), {"t", "pi"});
    const std::string what = "'" + quotation(name) + "' is no variable, equation, parameter or constant";
    if (index_of(m_model.markers, name) != k_none) {
      fail(what + "; it is a marker or body, of which dx(" + name + "), vx(" + name + ") and the like are numbers");
    }
    fail(what + "; " + name_hint(name, known));
  }

  void read_call(const std::string& name, size_t first, size_t arguments) {
    if (const QuantityFunction* function = find_quantity_function(name)) {
      return read_quantity(*function, first, arguments);
    }
    if (name == "dif1" || name == "dif2") return read_derivative(name, first, arguments);
    if (name == "spline") return read_spline(first, arguments);
    static const std::vector<std::string> s_known = function_names();
    if (std::find(s_known.begin(), s_known.end(), name) == s_known.end()) {
      fail("there is no function '" + quotation(name) + "'; " + name_hint(name, s_known));
    }
  }

  void read_quantity(const QuantityFunction& function, size_t first, size_t arguments) {
    const size_t most = function.kind == Kind::angle ? 2 : 3;
    const std::vector<std::string> names = read_names(arguments, function.name);
    if (names.empty() || names.size() > most) {
      fail(std::string(function.name) + " takes one to " + (most == 2 ? "two" : "three") +
           " names: the marker, the one it is measured from" + (most == 2 ? "" : ", the one whose axes count"));
    }
    StateReading reading;
    reading.source = StateReading::Source::quantity;
    reading.quantity.kind = function.kind;
    reading.quantity.component = function.component;
    const auto marker = [&](size_t k) {
      if (k >= names.size()) return k_none;
      return find(m_model.markers, marker_names(m_model), names[k], function.name, "marker or body");
    };
    reading.quantity.measured = marker(0);
    reading.quantity.reference = marker(1);
    reading.quantity.axes = marker(2);
    replace(first, m_at, reading);
  }

  void read_derivative(const std::string& function, size_t first, size_t arguments) {
    const std::vector<std::string> names = read_names(arguments, function);
    if (names.size() != 1) fail(function + " takes one name, that of an equation");
    StateReading reading;
    reading.source = StateReading::Source::equation;
    reading.index = find(m_model.equations, names_of(m_model.equations), names[0], function, "equation");
    reading.derivative = function == "dif1" ? 1 : 2;
    replace(first, m_at, reading);
  }

  /// Reads only the spline's name. The second argument is an expression like any other, so reading goes on at its
  /// start.
  void read_spline(size_t first, size_t arguments) {
    const size_t comma = m_text.find_first_of(",()", arguments);
    if (comma == std::string::npos || m_text[comma] != ',') {
      fail("spline takes two arguments: the name of a spline, and where it is asked");
    }
    const std::string name = trimmed(arguments, comma);
    const int spline = find(m_model.splines, names_of(m_model.splines), name, "spline", "spline");
    put(first, comma + 1, "#s" + std::to_string(m_out.splines.size()) + "(");
    m_out.splines.push_back(static_cast<size_t>(spline));
    m_at = comma + 1;
  }

  /// Reads the arguments of a call that takes names, from `first` behind its opening bracket to the closing one.
  std::vector<std::string> read_names(size_t first, const std::string& function) {
    const size_t end = m_text.find(')', first);
    if (end == std::string::npos) fail("the bracket of " + function + " is not closed");
    std::vector<std::string> names;
    for (size_t from = first; from <= end;) {
      const size_t to = std::min(m_text.find(',', from), end);
      names.push_back(trimmed(from, to));
      from = to + 1;
    }
    if (names.size() == 1 && names[0].empty()) names.clear();
    m_at = end + 1;
    return names;
  }

  template <class Things>
  int find(const Things& things, const std::vector<std::string>& known, const std::string& name,
           const std::string& function, const std::string& kind) const {
    const int index = index_of(things, name);
    if (index != k_none && is_plain(name)) return index;
    if (index != k_none) {
      fail("the name '" + name + "' cannot stand in an expression; there names consist of letters, digits and _");
    }
    fail(function + " needs the name of " + (kind[0] == 'e' ? "an " : "a ") + kind + "; '" + quotation(name) +
         "' is none, " + name_hint(name, known));
  }

  std::string trimmed(size_t from, size_t to) const {
    while (from < to && is_blank(m_text[from])) ++from;
    while (to > from && is_blank(m_text[to - 1])) --to;
    return m_text.substr(from, to - from);
  }

  void replace(size_t from, size_t to, StateReading reading) {
    put(from, to, "#" + std::to_string(m_out.readings.size()));
    reading.text = m_text.substr(from, to - from);
    m_out.readings.push_back(reading);
  }

  /// Writes a name over a stretch of the text and fills the rest of the stretch with blanks.
  void put(size_t from, size_t to, std::string name) {
    name.resize(std::max(name.size(), to - from), ' ');
    m_out.text.replace(from + m_shift, to - from, name);
    m_shift += name.size() - (to - from);
  }

  const Expression& m_expression;
  const std::string& m_text;
  const ExpressionScope& m_scope;
  const Model& m_model;
  TranslatedExpression m_out;
  size_t m_at = 0;
  size_t m_shift = 0;  ///< how much longer than the author's text the output is so far
};

}  // namespace

std::vector<AkimaSpline> make_splines(const Model& model) {
  std::vector<AkimaSpline> splines;
  for (const Spline& spline : model.splines) {
    try {
      splines.emplace_back(spline.x, spline.y);
    } catch (const std::invalid_argument& error) {
      throw ModelError(spline.at, "spline '" + spline.name + "': " + error.what());
    }
  }
  return splines;
}

TranslatedExpression translate(const Expression& expression, const ExpressionScope& scope) {
  refuse_assignment(expression);
  return Translation(expression, scope).run();
}

}  // namespace qvslv
