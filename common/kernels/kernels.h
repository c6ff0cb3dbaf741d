#pragma once

#include <cmath>

/// Small linear algebra of rigid-body contact. A 3-vector is three consecutive doubles, a 3x3 matrix nine, stored
/// column by column: element (row r, column c) is at r + 3 c; general m-by-n matrices likewise, (i, j) at i + m j.
///
/// A name is the product it computes, read left to right: `vec` a 3-vector, `mat` a 3x3 matrix, `tr` the transpose
/// of the operand just named, `tl` its tilde matrix (tilde(a) b = a x b), `sca` a scalar, `g` the general form; a
/// name `_..._tl` gives the tilde matrix of the product. Arguments are the operands in the order of the name, then
/// the output, which must not overlap an input. Nothing allocates, nothing keeps state; sums run left to right.
///
/// This header holds the kernels that the library calls; kernels_kept.h holds the rest of them.
namespace qv {

// Vectors.

/// M = tilde(a)
inline void vectl(const double* a, double* M) {
  M[0] = 0.0, M[1] = a[2], M[2] = -a[1];
  M[3] = -a[2], M[4] = 0.0, M[5] = a[0];
  M[6] = a[1], M[7] = -a[0], M[8] = 0.0;
}

/// b = s a
inline void scavec(double s, const double* a, double* b) {
  b[0] = s * a[0];
  b[1] = s * a[1];
  b[2] = s * a[2];
}

/// s = a . b
inline void vectrvec(const double* a, const double* b, double& s) { s = a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

/// c = a x b
inline void vectlvec(const double* a, const double* b, double* c) {
  c[0] = a[1] * b[2] - a[2] * b[1];
  c[1] = a[2] * b[0] - a[0] * b[2];
  c[2] = a[0] * b[1] - a[1] * b[0];
}

/// Scales `a` to unit length in place; `len` receives the length before. A squared length of exactly 0 (there is no
/// tolerance) leaves `a` as it is and sets ierr to 1, else ierr is 0.
inline void normalization_vec(double* a, double& len, int& ierr) {
  ierr = 0;
  len = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
  if (len == 0.0) {
    ierr = 1;
    return;
  }
  const double reciprocal = 1.0 / len;
  a[0] *= reciprocal;
  a[1] *= reciprocal;
  a[2] *= reciprocal;
}

/// As above, for callers that do not need the length.
inline void normalization_vec(double* a, int& ierr) {
  double len;
  normalization_vec(a, len, ierr);
}

// 3x3 matrices.

/// B = AT
inline void mattr(const double* A, double* B) {
  B[0] = A[0], B[1] = A[3], B[2] = A[6];
  B[3] = A[1], B[4] = A[4], B[5] = A[7];
  B[6] = A[2], B[7] = A[5], B[8] = A[8];
}

/// b = A a
inline void matvec(const double* A, const double* a, double* b) {
  b[0] = A[0] * a[0] + A[3] * a[1] + A[6] * a[2];
  b[1] = A[1] * a[0] + A[4] * a[1] + A[7] * a[2];
  b[2] = A[2] * a[0] + A[5] * a[1] + A[8] * a[2];
}

/// b = AT a
inline void mattrvec(const double* A, const double* a, double* b) {
  b[0] = A[0] * a[0] + A[1] * a[1] + A[2] * a[2];
  b[1] = A[3] * a[0] + A[4] * a[1] + A[5] * a[2];
  b[2] = A[6] * a[0] + A[7] * a[1] + A[8] * a[2];
}

/// C = A B
inline void matmat(const double* A, const double* B, double* C) {
  matvec(A, B, C);
  matvec(A, B + 3, C + 3);
  matvec(A, B + 6, C + 6);
}

/// C = AT B
inline void mattrmat(const double* A, const double* B, double* C) {
  mattrvec(A, B, C);
  mattrvec(A, B + 3, C + 3);
  mattrvec(A, B + 6, C + 6);
}

/// Determinant by the rule of Sarrus.
inline void matdet3(const double* A, double& det) {
  det = A[0] * A[4] * A[8] + A[3] * A[7] * A[2] + A[6] * A[1] * A[5] - A[6] * A[4] * A[2] - A[3] * A[1] * A[8] -
        A[0] * A[7] * A[5];
}

// Vectors of n entries.

/// b = a over n entries
inline void assgvec(const double* a, int n, double* b) {
  for (int i = 0; i < n; ++i) b[i] = a[i];
}

// Scalars.

/// 1 for x > 0, -1 for x < 0, else (zeros and NaN) 0
inline double fsign(double x) { return x > 0.0 ? 1.0 : x < 0.0 ? -1.0 : 0.0; }

}  // namespace qv
