#pragma once

#include <deque>
#include <string>
#include <vector>

#include "solver/model/akima.h"
#include "solver/model/marker_quantity.h"
#include "solver/model/model.h"

namespace qvslv {

/// Makes the curves of a model's splines, in the order of Model::splines. Throws ModelError, at the spline, for points
/// that make no curve.
std::vector<AkimaSpline> make_splines(const Model& model);

/// What an expression of states may name. The model and the splines must outlive expressions that are compiled with it.
struct ExpressionScope {
  const Model& model;
  const std::vector<AkimaSpline>& splines;
  size_t variables;  ///< number of variables, counted from the first, that may be read
};

/// One number that an expression reads from the state.
struct StateReading {
  enum class Source { variable, equation, quantity };
  Source source = Source::variable;
  int index = 0;       ///< into Model::variables or Model::equations
  int derivative = 0;  ///< of an equation: 0 y, 1 y', 2 y''
  MarkerQuantity quantity;
  std::string text;  ///< the reading as it stands in the expression
};

/// An expression in which the parser's own names replace everything that is read from the state: `#0`, `#1`, ... stand
/// for `readings`, and the functions `#s0`, `#s1`, ... of one argument for splines. Blanks make up the difference in
/// length, so that positions in the parser's messages are positions in the author's text.
struct TranslatedExpression {
  std::string text;
  std::deque<StateReading> readings;
  std::vector<size_t> splines;  ///< indices into ExpressionScope::splines
};

/// Replaces what an expression reads from the state. Throws ModelError, at the expression and with the nearest known
/// name, for names and calls that mean nothing.
TranslatedExpression translate(const Expression& expression, const ExpressionScope& scope);

}  // namespace qvslv
