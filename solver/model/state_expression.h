#pragma once

#include <memory>
#include <vector>

#include "solver/model/akima.h"
#include "solver/model/expression_scope.h"
#include "solver/model/marker_quantity.h"
#include "solver/model/model.h"

namespace qvslv {

/// What expressions read from: the state of the evaluation that is under way, in model units and radians.
class StateReader {
public:
  virtual ~StateReader() = default;
  virtual double time() const = 0;
  /// @param index  into Model::variables
  virtual double variable(int index) const = 0;
  /// @param index       into Model::equations
  /// @param derivative  0 y, 1 y', 2 y''
  virtual double equation(int index, int derivative) const = 0;
  /// A number of a marker, as MarkerQuantity says.
  virtual double quantity(const MarkerQuantity& wanted) const = 0;
};

/// An expression of the state, compiled. Variables, equations and applied forces are made of these.
///
/// The text may hold everything that CompiledExpression knows, and
///
///   name                  a variable of the scope, or an equation: its value y
///   dif1(e), dif2(e)      first and second derivative of the equation e
///   spline(s, x)          the spline s at x, which is an expression
///   dx dy dz dm(m, r, a)  way from marker r to marker m in the axes of marker a, and its length
///   vx vy vz vm(m, r, a)  velocity of m minus that of r, as seen from the ground
///   wx wy wz wm(m, r, a)  angular velocity of m minus that of r
///   roll pitch yaw(m, r)  turning angles [rad] of m's axes seen in r's: yaw about z, pitch about the new y, roll about
///                         the new x
///
/// m, r and a are markers or bodies (their centres of mass and axes); r and a are the ground when left out. Names in
/// expressions consist of letters, digits and underscores.
class StateExpression {
public:
  /// Throws ModelError at the expression's position if the text is no such expression.
  StateExpression(const Expression& expression, const ExpressionScope& scope);
  ~StateExpression();
  StateExpression(StateExpression&&) noexcept;
  StateExpression& operator=(StateExpression&&) noexcept;

  /// The value at a state; not finite if the expression has no value there. Throws nothing.
  double operator()(const StateReader& state) const;

  /// True if the value depends neither on time nor on the state.
  bool constant() const;

private:
  struct Compiled;
  std::unique_ptr<Compiled> m_compiled;
};

/// Compiles the expressions of a model's variables, each of which may read only variables before it. Throws ModelError.
std::vector<StateExpression> compile_variables(const Model& model, const std::vector<AkimaSpline>& splines);

}  // namespace qvslv
