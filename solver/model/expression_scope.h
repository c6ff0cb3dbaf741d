#pragma once

#include <deque>
#include <string>
#include <vector>

#include "solver/model/akima.h"
#include "solver/model/marker_quantity.h"
#include "solver/model/model.h"

namespace qvslv {

/// The splines of a model, ready to be asked, in its order. Throws ModelError, at the spline, for points that make no
/// curve.
std::vector<AkimaSpline> make_splines(const Model& model);

/// What an expression of states may name. The model and the splines outlive the expressions compiled with this.
struct ExpressionScope {
  const Model& model;
  const std::vector<AkimaSpline>& splines;
  size_t variables;  ///< so many variables, counted from the first, may be read
};

/// One number that an expression reads from the state.
struct StateReading {
  enum class Source { variable, equation, quantity };
  Source source = Source::variable;
  int index = 0;       ///< into Model::variables or Model::equations
  int derivative = 0;  ///< of an equation
  MarkerQuantity quantity;
  std::string text;  ///< as it stands in the expression
};

/// An expression in which everything read from the state has become a name of the parser's: `#0`, `#1`, ... for
/// `readings`, and functions `#s0`, `#s1`, ... of one argument for splines. Blanks fill up what these are shorter, so
/// that positions in the parser's messages count in the author's text.
struct TranslatedExpression {
  std::string text;
  std::deque<StateReading> readings;
  std::vector<size_t> splines;  ///< indices into ExpressionScope::splines
};

/// Throws ModelError, at the expression, for names and calls that mean nothing, with the nearest known name.
TranslatedExpression translate(const Expression& expression, const ExpressionScope& scope);

}  // namespace qvslv
