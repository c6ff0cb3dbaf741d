#pragma once

#include <vector>

namespace qvslv {

/// A curve through points, made of cubics whose slope at a point weighs the four slopes around it.
///
///   t_i = (|m_{i+1} - m_i| m_{i-1} + |m_{i-1} - m_{i-2}| m_i) / (|m_{i+1} - m_i| + |m_{i-1} - m_{i-2}|)
///
/// with m_i the slope from point i to i + 1; where both weights vanish, t_i is the mean of m_{i-1} and m_i. Two slopes
/// are put on at either end, each as far from its neighbour as that one from the next.
/// Source: H. Akima, A new method of interpolation and smooth curve fitting based on local procedures, J. ACM 17
/// (1970).
///
/// The curve and its slope are continuous, the second derivative jumps at points. Beyond its ends the curve goes on
/// straight. Two points make a line.
class AkimaSpline {
public:
  /// @param x  increases strictly; at least two points, as many as `y`; all finite
  /// Throws std::invalid_argument, with a text that says which rule is broken.
  AkimaSpline(std::vector<double> x, std::vector<double> y);

  /// The value (order 0), first (1) or second (2) derivative at x. At a point the second derivative is that of the
  /// piece behind it, at the last point of the piece before. A NaN in x gives a NaN value. Throws nothing.
  double operator()(double x, int order = 0) const;

private:
  std::vector<double> m_x, m_y;
  std::vector<double> m_slope;  ///< at the points
};

}  // namespace qvslv
