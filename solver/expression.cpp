#include "solver/expression.h"

#include <muParser.h>

#include <limits>

namespace qvslv {

namespace {

double cubic_step(double x, double x0, double h0, double x1, double h1) {
  if (x <= x0) return h0;
  if (x >= x1) return h1;
  const double s = (x - x0) / (x1 - x0);
  return h0 + (h1 - h0) * s * s * (3.0 - 2.0 * s);
}

std::string problem_text(const std::string& expression, const mu::Parser::exception_type& error) {
  std::string message = error.GetMsg();
  while (!message.empty() && (message.back() == '\n' || message.back() == '.')) message.pop_back();
  std::string text = "in the expression \"" + expression + "\": " + message;
  if (!error.GetToken().empty() && message.find(error.GetToken()) == std::string::npos) {
    text += " (at \"" + error.GetToken() + "\")";
  }
  return text;
}

}  // namespace

struct CompiledExpression::Compiled {
  mu::Parser parser;
  double time = 0;
  bool constant = false;
};

CompiledExpression::CompiledExpression(const Expression& expression) : m_compiled(std::make_unique<Compiled>()) {
  constexpr double k_probe_time = 0.0;
  mu::Parser& parser = m_compiled->parser;
  try {
    parser.DefineConst("pi", 3.141592653589793);
    parser.DefineFun("step", cubic_step);
    if (expression.parameters) {
      for (const auto& [name, value] : *expression.parameters) parser.DefineConst(name, value);
    }
    parser.DefineVar("t", &m_compiled->time);
    parser.SetExpr(expression.text);
    parser.Eval();  // the parser compiles, and so finds mistakes, at the first evaluation
    m_compiled->constant = parser.GetUsedVar().empty();
  } catch (const mu::Parser::exception_type& error) {
    throw ModelError(expression.at, problem_text(expression.text, error));
  }
  if (parser.GetNumResults() != 1) {
    throw ModelError(expression.at, "in the expression \"" + expression.text + "\": one value is needed, not " +
                                        std::to_string(parser.GetNumResults()) + " separated by commas");
  }
  if (expression.text.find('=') != std::string::npos) {
    // The parser knows assignments; to `t` they would change the clock. 12.5 is no value that a text can expect.
    m_compiled->time = 12.5;
    parser.Eval();
    if (m_compiled->time != 12.5) {
      throw ModelError(expression.at, "in the expression \"" + expression.text + "\": `t` cannot be assigned to");
    }
    m_compiled->time = k_probe_time;
  }
}

CompiledExpression::~CompiledExpression() = default;
CompiledExpression::CompiledExpression(CompiledExpression&&) noexcept = default;
CompiledExpression& CompiledExpression::operator=(CompiledExpression&&) noexcept = default;

double CompiledExpression::operator()(double time) const {
  m_compiled->time = time;
  try {
    return m_compiled->parser.Eval();
  } catch (const mu::Parser::exception_type&) {
    return std::numeric_limits<double>::quiet_NaN();  // a domain error of a function
  }
}

bool CompiledExpression::constant() const { return m_compiled->constant; }

}  // namespace qvslv
