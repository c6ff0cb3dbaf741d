#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <limits>
#include <vector>

#include "common/kernels/kernels_kept.h"

// The m-by-n kernels against element-wise sums on integers (exact), and the shortcut over zeros.
namespace {

using numbers = std::vector<double>;

struct sizes {
  int m, k, n;
};

sizes draw_sizes() { return {*rc::gen::inRange(1, 7), *rc::gen::inRange(1, 7), *rc::gen::inRange(1, 7)}; }

numbers draw(int count) {
  const auto drawn = *rc::gen::container<std::vector<int>>(static_cast<size_t>(count), rc::gen::inRange(-5, 6));
  return {drawn.begin(), drawn.end()};
}

/// Element (i, j) of a matrix with `rows` rows, stored column by column.
double el(const numbers& A, int rows, int i, int j) { return A[static_cast<size_t>(i + rows * j)]; }

template <class Entry>
void expect_matrix(const numbers& got, int rows, int columns, Entry&& entry) {
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < columns; ++j) RC_ASSERT(el(got, rows, i, j) == entry(i, j));
  RC_ASSERT(got[static_cast<size_t>(rows * columns)] == 77.0);  // nothing written behind
}

numbers output(int count) { return numbers(static_cast<size_t>(count) + 1, 77.0); }

TEST(GeneralKernels, TransposeSwapsRowsAndColumns) {
  EXPECT_TRUE(rc::check([] {
    const auto [m, k, n] = draw_sizes();
    (void)k;
    const numbers A = draw(m * n);
    numbers B = output(m * n);
    qv::gmattr(A.data(), m, n, B.data());
    expect_matrix(B, n, m, [&, rows = m](int i, int j) { return el(A, rows, j, i); });
  }));
}

TEST(GeneralKernels, MatrixProductsSumOverTheInnerIndex) {
  EXPECT_TRUE(rc::check([] {
    const sizes s = draw_sizes();
    const numbers A = draw(s.m * s.k), B = draw(s.k * s.n);
    numbers C = output(s.m * s.n);
    const auto sum = [&](auto&& term) {
      double total = 0;
      for (int l = 0; l < s.k; ++l) total += term(l);
      return total;
    };
    qv::gmatgmat(A.data(), B.data(), s.m, s.k, s.n, C.data());
    expect_matrix(C, s.m, s.n,
                  [&](int i, int j) { return sum([&](int l) { return el(A, s.m, i, l) * el(B, s.k, l, j); }); });
    qv::gmattrgmat(A.data(), B.data(), s.m, s.k, s.n, C.data());
    expect_matrix(C, s.m, s.n,
                  [&](int i, int j) { return sum([&](int l) { return el(A, s.k, l, i) * el(B, s.k, l, j); }); });
    qv::gmatgmattr(A.data(), B.data(), s.m, s.k, s.n, C.data());
    expect_matrix(C, s.m, s.n,
                  [&](int i, int j) { return sum([&](int l) { return el(A, s.m, i, l) * el(B, s.n, j, l); }); });
  }));
}

TEST(GeneralKernels, MatrixVectorProductsSumOverTheVector) {
  EXPECT_TRUE(rc::check([] {
    const sizes s = draw_sizes();
    const numbers A = draw(s.m * s.n), x = draw(s.n);
    numbers y = output(s.m);
    const auto sum = [&](auto&& term) {
      double total = 0;
      for (int l = 0; l < s.n; ++l) total += term(l) * x[static_cast<size_t>(l)];
      return total;
    };
    qv::gmatgvec(A.data(), x.data(), s.m, s.n, y.data());
    expect_matrix(y, s.m, 1, [&](int i, int) { return sum([&](int l) { return el(A, s.m, i, l); }); });
    qv::gmattrgvec(A.data(), x.data(), s.m, s.n, y.data());
    expect_matrix(y, s.m, 1, [&](int i, int) { return sum([&](int l) { return el(A, s.n, l, i); }); });
  }));
}

TEST(GeneralKernels, VectorFormsWorkEntryByEntry) {
  EXPECT_TRUE(rc::check([] {
    const int n = *rc::gen::inRange(1, 12);
    const numbers a = draw(n), b = draw(n);
    double dot = 0, s = 0;
    for (size_t i = 0; i < a.size(); ++i) dot += a[i] * b[i];
    qv::gvectrgvec(a.data(), b.data(), n, s);
    RC_ASSERT(s == dot);
    numbers M = output(n * n), v = output(n), I = output(n * n);
    qv::gvecgvectr(a.data(), b.data(), n, M.data());
    expect_matrix(M, n, n, [&](int i, int j) { return a[static_cast<size_t>(i)] * b[static_cast<size_t>(j)]; });
    qv::scagvec(-3.0, a.data(), n, v.data());
    expect_matrix(v, n, 1, [&](int i, int) { return -3.0 * a[static_cast<size_t>(i)]; });
    qv::assgvec(a.data(), n, v.data());
    expect_matrix(v, n, 1, [&](int i, int) { return a[static_cast<size_t>(i)]; });
    qv::identitygmat(I.data(), n);
    expect_matrix(I, n, n, [](int i, int j) { return i == j ? 1.0 : 0.0; });
  }));
}

constexpr double k_inf = std::numeric_limits<double>::infinity();

TEST(GeneralKernels, InfinityBehindALaterZeroIsSkipped) {
  const double A[4] = {1, 2, k_inf, -k_inf};  // 2x2, the second column is infinite
  const double x[2] = {3, 0};
  double y[2];
  qv::gmatgvec(A, x, 2, 2, y);
  EXPECT_EQ(y[0], 3);
  EXPECT_EQ(y[1], 6);
  const double B[4] = {3, 0, 5, -0.0};  // 2x2: the second row is 0
  double C[4];
  qv::gmatgmat(A, B, 2, 2, 2, C);
  EXPECT_EQ(C[0], 3);
  EXPECT_EQ(C[1], 6);
  EXPECT_EQ(C[2], 5);
  EXPECT_EQ(C[3], 10);
  const double Bt[4] = {3, 5, 0, -0.0};  // its transpose
  qv::gmatgmattr(A, Bt, 2, 2, 2, C);
  EXPECT_EQ(C[0], 3);
  EXPECT_EQ(C[1], 6);
  EXPECT_EQ(C[2], 5);
  EXPECT_EQ(C[3], 10);
}

TEST(GeneralKernels, FirstTermIsNeverSkipped) {
  const double A[4] = {k_inf, 2, 1, 1};
  const double x[2] = {0, 4};
  double y[2];
  qv::gmatgvec(A, x, 2, 2, y);
  EXPECT_TRUE(std::isnan(y[0]));
  EXPECT_EQ(y[1], 4);
  double C[2];
  qv::gmatgmat(A, x, 2, 2, 1, C);
  EXPECT_TRUE(std::isnan(C[0]));
  EXPECT_EQ(C[1], 4);
  qv::gmatgmattr(A, x, 2, 2, 1, C);
  EXPECT_TRUE(std::isnan(C[0]));
  EXPECT_EQ(C[1], 4);
}

TEST(GeneralKernels, ShortcutLooksAtTheRightHandOperandOnly) {
  const double A[2] = {1, 0};  // 1x2, a zero on the left meets an infinity on the right
  const double x[2] = {3, k_inf};
  double y[1];
  qv::gmatgvec(A, x, 1, 2, y);
  EXPECT_TRUE(std::isnan(y[0]));
}

TEST(GeneralKernels, TransposedProductsArePlainDotProducts) {
  const double A[2] = {1, k_inf};
  const double x[2] = {3, 0};
  double y[1];
  qv::gmattrgvec(A, x, 1, 2, y);
  EXPECT_TRUE(std::isnan(y[0]));
  qv::gmattrgmat(A, x, 1, 2, 1, y);
  EXPECT_TRUE(std::isnan(y[0]));
}

}  // namespace
