#pragma once

#include "common/kernels/kernels.h"

/// Kept: the rest of the documented kernels. No code here calls them; they stay because they are part of the library's
/// documented kernels. Storage and names are those of kernels.h.
namespace qv {

// Vectors.

/// c = (aT tilde(b))T = a x b
inline void vectrvectl(const double* a, const double* b, double* c) { vectlvec(a, b, c); }

/// M = a bT
inline void vecvectr(const double* a, const double* b, double* M) {
  for (int c = 0; c < 3; ++c)
    for (int r = 0; r < 3; ++r) M[r + 3 * c] = a[r] * b[c];
}

/// M = tilde(a) tilde(b) = b aT - (a . b) 1
inline void vectlvectl(const double* a, const double* b, double* M) {
  M[0] = -(a[2] * b[2] + a[1] * b[1]), M[1] = a[0] * b[1], M[2] = a[0] * b[2];
  M[3] = a[1] * b[0], M[4] = -(a[2] * b[2] + a[0] * b[0]), M[5] = a[1] * b[2];
  M[6] = a[2] * b[0], M[7] = a[2] * b[1], M[8] = -(a[1] * b[1] + a[0] * b[0]);
}

/// M = tilde(a x b)
inline void _vectlvec_tl(const double* a, const double* b, double* M) {
  double c[3];
  vectlvec(a, b, c);
  vectl(c, M);
}

/// d = a x (b x c)
inline void vectlvectlvec(const double* a, const double* b, const double* c, double* d) {
  double bc[3];
  vectlvec(b, c, bc);
  vectlvec(a, bc, d);
}

/// d = (a x b) x c, the row form aT tilde(b) tilde(c)
inline void vectrvectlvectl(const double* a, const double* b, const double* c, double* d) {
  double ab[3];
  vectlvec(a, b, ab);
  vectlvec(ab, c, d);
}

// 3x3 matrices.

/// B = s A
inline void scamat(double s, const double* A, double* B) {
  for (int i = 0; i < 9; ++i) B[i] = s * A[i];
}

/// C = A BT
inline void matmattr(const double* A, const double* B, double* C) {
  double Bt[9];
  mattr(B, Bt);
  matmat(A, Bt, C);
}

/// D = A B C
inline void matmatmat(const double* A, const double* B, const double* C, double* D) {
  double AB[9];
  matmat(A, B, AB);
  matmat(AB, C, D);
}

/// D = A B CT
inline void matmatmattr(const double* A, const double* B, const double* C, double* D) {
  double AB[9];
  matmat(A, B, AB);
  matmattr(AB, C, D);
}

/// D = A BT CT
inline void matmattrmattr(const double* A, const double* B, const double* C, double* D) {
  double ABt[9];
  matmattr(A, B, ABt);
  matmattr(ABt, C, D);
}

/// D = AT B C
inline void mattrmatmat(const double* A, const double* B, const double* C, double* D) {
  double AtB[9];
  mattrmat(A, B, AtB);
  matmat(AtB, C, D);
}

/// D = AT B CT
inline void mattrmatmattr(const double* A, const double* B, const double* C, double* D) {
  double AtB[9];
  mattrmat(A, B, AtB);
  matmattr(AtB, C, D);
}

/// D = A BT C
inline void matmattrmat(const double* A, const double* B, const double* C, double* D) {
  double ABt[9];
  matmattr(A, B, ABt);
  matmat(ABt, C, D);
}

/// B = inverse of A by cofactors over its determinant `det`, which is not tested: a singular matrix gives infinities
/// or NaN.
inline void matinv3det(const double* A, double* B, double& det) {
  matdet3(A, det);
  B[0] = (A[4] * A[8] - A[7] * A[5]) / det;
  B[1] = (A[7] * A[2] - A[1] * A[8]) / det;
  B[2] = (A[1] * A[5] - A[4] * A[2]) / det;
  B[3] = (A[6] * A[5] - A[3] * A[8]) / det;
  B[4] = (A[0] * A[8] - A[6] * A[2]) / det;
  B[5] = (A[3] * A[2] - A[0] * A[5]) / det;
  B[6] = (A[3] * A[7] - A[6] * A[4]) / det;
  B[7] = (A[6] * A[1] - A[0] * A[7]) / det;
  B[8] = (A[0] * A[4] - A[3] * A[1]) / det;
}

/// As above, for callers that do not need the determinant.
inline void matinv3(const double* A, double* B) {
  double det;
  matinv3det(A, B, det);
}

/// B = inverse of the 2x2 matrix A (four doubles, column by column). Its determinant is not tested either.
inline void matinv2(const double* A, double* B) {
  const double det = A[0] * A[3] - A[2] * A[1];
  B[0] = A[3] / det;
  B[1] = -A[1] / det;
  B[2] = -A[2] / det;
  B[3] = A[0] / det;
}

// Matrices, vectors and tilde matrices.

/// B = tilde(a) A
inline void vectlmat(const double* a, const double* A, double* B) {
  vectlvec(a, A, B);
  vectlvec(a, A + 3, B + 3);
  vectlvec(a, A + 6, B + 6);
}

/// b = (aT A)T = AT a
inline void vectrmat(const double* a, const double* A, double* b) { mattrvec(A, a, b); }

/// B = A tilde(a)
inline void matvectl(const double* A, const double* a, double* B) {
  double T[9];
  vectl(a, T);
  matmat(A, T, B);
}

/// B = AT tilde(a)
inline void mattrvectl(const double* A, const double* a, double* B) {
  double T[9];
  vectl(a, T);
  mattrmat(A, T, B);
}

/// b = A B a
inline void matmatvec(const double* A, const double* B, const double* a, double* b) {
  double Ba[3];
  matvec(B, a, Ba);
  matvec(A, Ba, b);
}

/// b = AT B a
inline void mattrmatvec(const double* A, const double* B, const double* a, double* b) {
  double Ba[3];
  matvec(B, a, Ba);
  mattrvec(A, Ba, b);
}

/// b = A BT a
inline void matmattrvec(const double* A, const double* B, const double* a, double* b) {
  double Bta[3];
  mattrvec(B, a, Bta);
  matvec(A, Bta, b);
}

/// b = AT BT a
inline void mattrmattrvec(const double* A, const double* B, const double* a, double* b) {
  double Bta[3];
  mattrvec(B, a, Bta);
  mattrvec(A, Bta, b);
}

/// d = A (a x (b x c))
inline void matvectlvectlvec(const double* A, const double* a, const double* b, const double* c, double* d) {
  double abc[3];
  vectlvectlvec(a, b, c, abc);
  matvec(A, abc, d);
}

/// c = A (a x b)
inline void matvectlvec(const double* A, const double* a, const double* b, double* c) {
  double ab[3];
  vectlvec(a, b, ab);
  matvec(A, ab, c);
}

/// c = AT (a x b)
inline void mattrvectlvec(const double* A, const double* a, const double* b, double* c) {
  double ab[3];
  vectlvec(a, b, ab);
  mattrvec(A, ab, c);
}

/// c = (aT tilde(b) A)T
inline void vectrvectlmat(const double* a, const double* b, const double* A, double* c) { mattrvectlvec(A, a, b, c); }

/// c = (aT A tilde(b))T
inline void vectrmatvectl(const double* a, const double* A, const double* b, double* c) {
  double Ata[3];
  mattrvec(A, a, Ata);
  vectlvec(Ata, b, c);
}

/// c = a x (A b)
inline void vectlmatvec(const double* a, const double* A, const double* b, double* c) {
  double Ab[3];
  matvec(A, b, Ab);
  vectlvec(a, Ab, c);
}

/// c = a x (AT b)
inline void vectlmattrvec(const double* a, const double* A, const double* b, double* c) {
  double Atb[3];
  mattrvec(A, b, Atb);
  vectlvec(a, Atb, c);
}

/// s = aT AT b
inline void vectrmattrvec(const double* a, const double* A, const double* b, double& s) {
  double Atb[3];
  mattrvec(A, b, Atb);
  vectrvec(a, Atb, s);
}

/// M = tilde(A a)
inline void _matvec_tl(const double* A, const double* a, double* M) {
  double Aa[3];
  matvec(A, a, Aa);
  vectl(Aa, M);
}

/// M = tilde(AT a)
inline void _mattrvec_tl(const double* A, const double* a, double* M) {
  double Ata[3];
  mattrvec(A, a, Ata);
  vectl(Ata, M);
}

/// M = tilde(AT B a)
inline void _mattrmatvec_tl(const double* A, const double* B, const double* a, double* M) {
  double AtBa[3];
  mattrmatvec(A, B, a, AtBa);
  vectl(AtBa, M);
}

/// M = AT B tilde(a)
inline void mattrmatvectl(const double* A, const double* B, const double* a, double* M) {
  double AtB[9];
  mattrmat(A, B, AtB);
  matvectl(AtB, a, M);
}

// General m-by-n matrices and vectors of n entries.

/// B (n-by-m) = AT for the m-by-n A
inline void gmattr(const double* A, int m, int n, double* B) {
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) B[j + n * i] = A[i + m * j];
}

/// y (m) = A (m-by-n) x (n). Entries of x that are exactly 0 after the first are skipped, so that a row of zeros
/// costs nothing (and an infinity in A behind such a zero does not turn into a NaN).
inline void gmatgvec(const double* A, const double* x, int m, int n, double* y) {
  for (int i = 0; i < m; ++i) y[i] = n > 0 ? A[i] * x[0] : 0.0;
  for (int j = 1; j < n; ++j) {
    if (x[j] == 0.0) continue;
    for (int i = 0; i < m; ++i) y[i] += A[i + m * j] * x[j];
  }
}

/// C (m-by-n) = A (m-by-k) B (k-by-n), with the shortcut of gmatgvec on the entries of B
inline void gmatgmat(const double* A, const double* B, int m, int k, int n, double* C) {
  for (int j = 0; j < n; ++j) gmatgvec(A, B + k * j, m, k, C + m * j);
}

/// C (m-by-n) = AT B, with A k-by-m and B k-by-n; each entry is a plain dot product
inline void gmattrgmat(const double* A, const double* B, int m, int k, int n, double* C) {
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < m; ++i) {
      double sum = 0.0;
      for (int l = 0; l < k; ++l) sum += A[l + k * i] * B[l + k * j];
      C[i + m * j] = sum;
    }
  }
}

/// C (m-by-n) = A BT, with A m-by-k and B n-by-k, with the shortcut of gmatgvec on the entries of B
inline void gmatgmattr(const double* A, const double* B, int m, int k, int n, double* C) {
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < m; ++i) C[i + m * j] = k > 0 ? A[i] * B[j] : 0.0;
    for (int l = 1; l < k; ++l) {
      const double b = B[j + n * l];
      if (b == 0.0) continue;
      for (int i = 0; i < m; ++i) C[i + m * j] += A[i + m * l] * b;
    }
  }
}

/// y (m) = AT x, with A n-by-m and x of length n; each entry is a plain dot product
inline void gmattrgvec(const double* A, const double* x, int m, int n, double* y) {
  for (int i = 0; i < m; ++i) {
    double sum = 0.0;
    for (int j = 0; j < n; ++j) sum += A[j + n * i] * x[j];
    y[i] = sum;
  }
}

/// s = a . b over n entries
inline void gvectrgvec(const double* a, const double* b, int n, double& s) {
  s = 0.0;
  for (int i = 0; i < n; ++i) s += a[i] * b[i];
}

/// M (n-by-n) = a bT
inline void gvecgvectr(const double* a, const double* b, int n, double* M) {
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) M[i + n * j] = a[i] * b[j];
}

/// b = s a over n entries
inline void scagvec(double s, const double* a, int n, double* b) {
  for (int i = 0; i < n; ++i) b[i] = s * a[i];
}

/// M = n-by-n identity
inline void identitygmat(double* M, int n) {
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) M[i + n * j] = i == j ? 1.0 : 0.0;
}

// Scalars.

/// Smallest and largest of n entries; with n of 0 or less both are the first entry.
inline void minmax_vec(const double* a, int n, double& min, double& max) {
  min = max = a[0];
  for (int i = 0; i < n; ++i) {
    if (a[i] > max) {
      max = a[i];
    } else if (a[i] < min) {
      min = a[i];
    }
  }
}

/// p = order of magnitude of a positive x, 10^floor(log10 x), by repeated multiplication.
/// Kept: the products carry their rounding (10 gives 9.999999999999998), so a logarithm must not replace them.
/// Precondition: x > 0. At 0 or below the last loop would never end.
inline void com_chiper(double x, double& p) {
  if (x >= 10.0) {
    double factor = 0.1;
    double y = 0.1 * x;
    while (y >= 1.0) {
      factor *= 0.1;
      y *= 0.1;
    }
    p = 0.1 / factor;
  } else if (x >= 1.0) {
    p = 1.0;
  } else {
    double divisor = 10.0;
    double y = 10.0 * x;
    while (y < 10.0) {
      divisor *= 10.0;
      y *= 10.0;
    }
    p = 10.0 / divisor;
  }
}

/// Compliant contact with friction between two bodies that overlap by d.
///
///   fn = k |d|^e - c(|d|) v[1]      c(|d|): the host's cubic STEP from (-dmax, -c) to (dmax, c)
///   ff = -mu(v[0]) |fn|             mu(u): STEP from (-vs, -mu_s) to (vs, mu_s) while |u| < vd and |u| <= vs, from
///                                   (vs, mu_s) to (vd, mu_d) up to vd, mu_d from there on; it has the sign of u
///
/// @param par  stiffness k, exponent e, damping c, penetration of full damping dmax, dynamic and static friction
///             coefficients mu_d and mu_s, friction and stiction transition velocities vd and vs
/// @param d    penetration [length]; only |d| counts
/// @param v    sliding and penetrating velocity [length / time]
/// @param fn   receives the normal force; 0 for d = 0 with k not 0 and e > 0
/// @param ff   receives the friction force, against the sliding; 0 for v[0] or mu_d of exactly 0
void get_contact_force(const double* par, double d, const double* v, double& fn, double& ff);

}  // namespace qv
