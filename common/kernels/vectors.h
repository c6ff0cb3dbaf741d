#pragma once

#include <cmath>

namespace qv {

// Marks functions that loop over a block: they are also compiled for processors with 256-bit vectors. Both versions
// round every operation alike (no fused multiply-add), so the numbers are the same. Sanitizers and clang cannot handle
// the choice between them at load time.
#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !defined(__clang__)
#define QV_WIDE_VECTORS __attribute__((target_clones("avx2", "default")))
#else
#define QV_WIDE_VECTORS
#endif

/// Marks functions of one point that such loops call. They have to be inlined, or the loop is not vectorised.
#define QV_IN_LOOPS [[gnu::always_inline]] inline

constexpr int k_block = 64;  ///< how many vectors one loop works on

/// The vectors of a block, component by component, so that a loop can work on several of them at a time. The functions
/// below do the same operations in the same order as the kernels of one vector.
struct vectors {
  double x[k_block];
  double y[k_block];
  double z[k_block];
};

/// qv::normalization_vec of each vector; a vector of length 0 stays as it is.
inline void normalise(vectors& v, int count) {
  for (int i = 0; i < count; ++i) {
    const double length = std::sqrt(v.x[i] * v.x[i] + v.y[i] * v.y[i] + v.z[i] * v.z[i]);
    const double reciprocal = 1.0 / (length == 0.0 ? 1.0 : length);
    v.x[i] *= reciprocal;
    v.y[i] *= reciprocal;
    v.z[i] *= reciprocal;
  }
}

/// qv::matvec of each vector: b = A a
inline void rotate(const double* A, const vectors& a, vectors& b, int count) {
  for (int i = 0; i < count; ++i) {
    b.x[i] = A[0] * a.x[i] + A[3] * a.y[i] + A[6] * a.z[i];
    b.y[i] = A[1] * a.x[i] + A[4] * a.y[i] + A[7] * a.z[i];
    b.z[i] = A[2] * a.x[i] + A[5] * a.y[i] + A[8] * a.z[i];
  }
}

/// Copies vector i to `to`.
inline void take(const vectors& v, int i, double* to) {
  to[0] = v.x[i];
  to[1] = v.y[i];
  to[2] = v.z[i];
}

/// Copies a vector to place i of v.
QV_IN_LOOPS void put(const double* from, vectors& v, int i) {
  v.x[i] = from[0];
  v.y[i] = from[1];
  v.z[i] = from[2];
}

/// Copies vector `from` of a to place `to` of b.
QV_IN_LOOPS void copy_vector(const vectors& a, int from, vectors& b, int to) {
  b.x[to] = a.x[from];
  b.y[to] = a.y[from];
  b.z[to] = a.z[from];
}

}  // namespace qv
