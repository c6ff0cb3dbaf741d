#include "solver/model/state_expression.h"

#include <deque>
#include <limits>
#include <string>
#include <vector>

#include "solver/model/expression_parser.h"

namespace qvslv {

namespace {

constexpr const char* k_name_characters = "0123456789_abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ#";

double call_spline(void* spline, double x) { return (*static_cast<const AkimaSpline*>(spline))(x); }

/// A message of the parser in which the names of the translation are turned back into the author's.
std::string in_authors_words(std::string message, const TranslatedExpression& translated) {
  for (size_t k = translated.readings.size(); k-- > 0;) {
    const std::string name = "#" + std::to_string(k);
    for (size_t at = message.find(name); at != std::string::npos; at = message.find(name, at)) {
      message.replace(at, name.size(), translated.readings[k].text);
      at += translated.readings[k].text.size();
    }
  }
  for (size_t at = message.find("#s"); at != std::string::npos; at = message.find("#s")) {
    message.replace(at, message.find_first_not_of("0123456789", at + 2) - at, "spline");
  }
  return message;
}

}  // namespace

struct StateExpression::Compiled {
  struct Slot {
    StateReading reading;
    double value = 0;
  };

  mu::Parser parser;
  double time = 0;
  std::deque<Slot> slots;  ///< a deque, because the parser holds pointers to the values
  bool constant = false;
  double constant_value = 0;
};

StateExpression::StateExpression(const Expression& expression, const ExpressionScope& scope)
    : m_compiled(std::make_unique<Compiled>()) {
  const TranslatedExpression translated = translate(expression, scope);
  mu::Parser& parser = m_compiled->parser;
  try {
    parser.DefineNameChars(k_name_characters);
    define_common_names(parser, expression);
    parser.DefineVar("t", &m_compiled->time);
    for (const StateReading& reading : translated.readings) {
      const std::string name = "#" + std::to_string(m_compiled->slots.size());
      m_compiled->slots.push_back({reading, 0});
      parser.DefineVar(name, &m_compiled->slots.back().value);
    }
    for (size_t k = 0; k < translated.splines.size(); ++k) {
      // The parser passes user data as a pointer to void; nothing is written through it.
      auto* spline = const_cast<AkimaSpline*>(&scope.splines[translated.splines[k]]);
      parser.DefineFunUserData("#s" + std::to_string(k), call_spline, spline);
    }
    parser.SetExpr(translated.text);
    evaluate_once(parser, expression);
    m_compiled->constant = parser.GetUsedVar().empty();
    m_compiled->constant_value = parser.Eval();  // GetUsedVar threw the compiled code away; this compiles again
  } catch (const mu::Parser::exception_type& error) {
    throw ModelError(expression.at, parser_complaint(expression.text, in_authors_words(error.GetMsg(), translated),
                                                     in_authors_words(error.GetToken(), translated),
                                                     static_cast<int>(error.GetPos())));
  }
}

StateExpression::~StateExpression() = default;
StateExpression::StateExpression(StateExpression&&) noexcept = default;
StateExpression& StateExpression::operator=(StateExpression&&) noexcept = default;

double StateExpression::operator()(const StateReader& state) const {
  Compiled& compiled = *m_compiled;
  if (compiled.constant) return compiled.constant_value;
  compiled.time = state.time();
  for (Compiled::Slot& slot : compiled.slots) {
    const StateReading& reading = slot.reading;
    switch (reading.source) {
      case StateReading::Source::variable:
        slot.value = state.variable(reading.index);
        break;
      case StateReading::Source::equation:
        slot.value = state.equation(reading.index, reading.derivative);
        break;
      case StateReading::Source::quantity:
        slot.value = state.quantity(reading.quantity);
        break;
    }
  }
  try {
    return compiled.parser.Eval();
  } catch (const mu::Parser::exception_type&) {
    return std::numeric_limits<double>::quiet_NaN();  // a domain error of a function
  }
}

bool StateExpression::constant() const { return m_compiled->constant; }

std::vector<StateExpression> compile_variables(const Model& model, const std::vector<AkimaSpline>& splines) {
  std::vector<StateExpression> compiled;
  for (size_t i = 0; i < model.variables.size(); ++i) {
    compiled.emplace_back(model.variables[i].value, ExpressionScope{model, splines, i});
  }
  return compiled;
}

}  // namespace qvslv
