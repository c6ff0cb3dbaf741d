#pragma once

#include <memory>

#include "solver/model/model.h"

namespace qvslv {

/// An expression of time, compiled.
///
/// The text is an arithmetic expression of `t`: the operators + - * / ^, comparisons, `a ? b : c`, sin, cos, tan, asin,
/// acos, atan, atan2, sinh, cosh, tanh, exp, ln, log10, log2, sqrt, abs, sign, rint, min, max, the constant `pi`,
/// the model's parameters, and
///
///   step(t, t0, h0, t1, h1) = h0 before t0, h1 after t1, between them h0 + (h1 - h0) s^2 (3 - 2 s)
///                             with s = (t - t0)/(t1 - t0)
class CompiledExpression {
public:
  /// Throws ModelError at the expression's position if the text is no such expression.
  explicit CompiledExpression(const Expression& expression);
  ~CompiledExpression();
  CompiledExpression(CompiledExpression&&) noexcept;
  CompiledExpression& operator=(CompiledExpression&&) noexcept;

  /// The value at `time`; not finite if the expression has no value there. Throws nothing.
  double operator()(double time) const;

  /// True when the value does not depend on time (the text does not use `t`).
  bool constant() const;

private:
  struct Compiled;
  std::unique_ptr<Compiled> m_compiled;
};

}  // namespace qvslv
