#pragma once

#include <array>
#include <cmath>

/// Vectors and matrices of the reference, on their own: nothing here comes from the library under test. Sums run left
/// to right, so that a library that does the same gets the same bits.
namespace qvref {

using v3 = std::array<double, 3>;
using m33 = std::array<double, 9>;  ///< column by column: row r, column c is at r + 3 c

inline v3 operator+(const v3& a, const v3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline v3 operator-(const v3& a, const v3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline v3 operator*(double s, const v3& a) { return {s * a[0], s * a[1], s * a[2]}; }

inline double dot(const v3& a, const v3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

inline v3 cross(const v3& a, const v3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline v3 column(const m33& A, std::size_t c) { return {A[3 * c], A[3 * c + 1], A[3 * c + 2]}; }

inline m33 from_columns(const v3& a, const v3& b, const v3& c) {
  return {a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2]};
}

inline v3 operator*(const m33& A, const v3& v) {
  return {A[0] * v[0] + A[3] * v[1] + A[6] * v[2], A[1] * v[0] + A[4] * v[1] + A[7] * v[2],
          A[2] * v[0] + A[5] * v[1] + A[8] * v[2]};
}

inline m33 operator*(const m33& A, const m33& B) {
  return from_columns(A * column(B, 0), A * column(B, 1), A * column(B, 2));
}

inline m33 transpose(const m33& A) { return {A[0], A[3], A[6], A[1], A[4], A[7], A[2], A[5], A[8]}; }

/// tilde(a) b = a x b
inline m33 tilde(const v3& a) { return {0.0, a[2], -a[1], -a[2], 0.0, a[0], a[1], -a[0], 0.0}; }

/// Length of v, and v made unit length by the reciprocal of it; a vector of length 0 stays as it is.
inline double normalise(v3& v) {
  const double length = std::sqrt(dot(v, v));
  if (length != 0.0) v = (1.0 / length) * v;
  return length;
}

inline double sign(double x) { return x > 0.0 ? 1.0 : x < 0.0 ? -1.0 : 0.0; }

}  // namespace qvref
