#include "solver/model/expression.h"

#include <limits>
#include <string>

#include "solver/model/expression_names.h"
#include "solver/model/expression_parser.h"
#include "solver/model/quotation.h"

namespace qvslv {

namespace {

double cubic_step(double x, double x0, double h0, double x1, double h1) {
  if (x <= x0) return h0;
  if (x >= x1) return h1;
  const double s = (x - x0) / (x1 - x0);
  return h0 + (h1 - h0) * s * s * (3.0 - 2.0 * s);
}

}  // namespace

void define_common_names(mu::Parser& parser, const Expression& expression) {
  parser.DefineConst("pi", 3.141592653589793);
  parser.DefineFun("step", cubic_step);
  if (!expression.parameters) return;
  // Only what the text names: a model may have thousands of parameters and of expressions.
  for (const std::string& name : names_in(expression.text)) {
    const auto found = expression.parameters->find(name);
    if (found != expression.parameters->end()) parser.DefineConst(name, found->second);
  }
}

void refuse_assignment(const Expression& expression) {
  const std::string& text = expression.text;
  const std::string comparing = "=<>!";
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '=') continue;
    const bool behind = i > 0 && comparing.find(text[i - 1]) != std::string::npos;
    const bool before = i + 1 < text.size() && text[i + 1] == '=';
    if (behind || before) continue;
    throw ModelError(expression.at,
                     in_expression(text, i) + "nothing can be assigned to, not even `t`; equality is ==");
  }
}

void evaluate_once(mu::Parser& parser, const Expression& shown) {
  parser.Eval();
  if (parser.GetNumResults() == 1) return;
  throw ModelError(shown.at, in_expression(shown.text, shown.text.find(',')) + "one value is needed, not " +
                                 std::to_string(parser.GetNumResults()) + " separated by commas");
}

std::string parser_complaint(const std::string& expression, const std::string& message, const std::string& token,
                             int place) {
  std::string said = message;
  while (!said.empty() && (said.back() == '\n' || said.back() == '.')) said.pop_back();
  if (said.rfind("Internal error", 0) == 0) said = "this is no whole expression";  // of the parser, for a lone sign
  const size_t quoted = token.empty() ? std::string::npos : said.find(token);
  if (quoted != std::string::npos) said.replace(quoted, token.size(), quotation(token));
  std::string text = in_expression(expression, place < 0 ? 0 : static_cast<size_t>(place)) + said;
  if (!token.empty() && quoted == std::string::npos) text += " (at \"" + quotation(token) + "\")";
  return text;
}

struct CompiledExpression::Compiled {
  mu::Parser parser;
  double time = 0;
  bool constant = false;
};

CompiledExpression::CompiledExpression(const Expression& expression) : m_compiled(std::make_unique<Compiled>()) {
  mu::Parser& parser = m_compiled->parser;
  refuse_assignment(expression);
  try {
    define_common_names(parser, expression);
    parser.DefineVar("t", &m_compiled->time);
    parser.SetExpr(expression.text);
    evaluate_once(parser, expression);
    m_compiled->constant = parser.GetUsedVar().empty();
  } catch (const mu::Parser::exception_type& error) {
    throw ModelError(expression.at, parser_complaint(expression.text, error.GetMsg(), error.GetToken(),
                                                     static_cast<int>(error.GetPos())));
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
