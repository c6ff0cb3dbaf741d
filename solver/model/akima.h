#pragma once

#include <vector>

namespace qvslv {

/// A curve through points, made of cubics whose slope at a point weighs the four slopes around it.
///
///   t_i = (|m_{i+1} - m_i| m_{i-1} + |m_{i-1} - m_{i-2}| m_i) / (|m_{i+1} - m_i| + |m_{i-1} - m_{i-2}|)
///
/// with m_i the slope from point i to i + 1; if both weights vanish, t_i is the mean of m_{i-1} and m_i. Two slopes are
/// added at either end; they continue the change from the last but one slope to the last.
/// Source: H. Akima, A new method of interpolation and smooth curve fitting based on local procedures, J. ACM 17
/// (1970).
///
/// The curve and its slope are continuous; the second derivative jumps at the points. Beyond its ends the curve goes on
/// as a straight line. Two points make a line.
class AkimaSpline {
public:
  /// @param x  increases strictly; at least two points, as many as `y`; all finite
  /// Throws std::invalid_argument, with a text that says which rule is broken.
  AkimaSpline(std::vector<double> x, std::vector<double> y);

  /// The value (order 0), first (1) or second (2) derivative at x. At a point the second derivative is that of the
  /// piece that begins there, at the last point that of the piece that ends there. A NaN in x gives a NaN value. Throws
  /// nothing.
  double operator()(double x, int order = 0) const;

private:
  std::vector<double> m_x, m_y;
  std::vector<double> m_slope;  ///< slope of the curve at each point
};

}  // namespace qvslv
