#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <limits>
#include <string>
#include <variant>
#include <vector>

#include "common/kernels/kernels_kept.h"

// The 3x3 and 3-vector kernels are named by the product they compute. Here the name itself is read, token by token,
// and the product formed by a general triple loop over dense matrices: nothing is shared with the kernels.
namespace {

struct dense {  // column by column
  int rows = 0;
  int columns = 0;
  std::vector<long double> at;

  dense(int r, int c) : rows(r), columns(c), at(static_cast<size_t>(r * c)) {}
  long double& operator()(int r, int c) { return at[static_cast<size_t>(r + rows * c)]; }
  long double operator()(int r, int c) const { return at[static_cast<size_t>(r + rows * c)]; }
};

dense times(const dense& A, const dense& B) {
  dense C(A.rows, B.columns);
  for (int i = 0; i < A.rows; ++i)
    for (int j = 0; j < B.columns; ++j)
      for (int l = 0; l < A.columns; ++l) C(i, j) += A(i, l) * B(l, j);
  return C;
}

dense transposed(const dense& A) {
  dense T(A.columns, A.rows);
  for (int i = 0; i < A.rows; ++i)
    for (int j = 0; j < A.columns; ++j) T(j, i) = A(i, j);
  return T;
}

/// The matrix whose product with b is a x b, from the rule of the permutation signs.
dense tilde(const dense& a) {
  dense T(3, 3);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      for (int l = 0; l < 3; ++l)
        T(i, l) += a.at[static_cast<size_t>(j)] * static_cast<long double>((i - j) * (j - l) * (l - i)) / 2;
  return T;
}

dense magnitudes(dense A) {
  for (long double& entry : A.at) entry = std::fabs(entry);
  return A;
}

bool take(std::string& name, const char* token) {
  const std::string text = token;
  if (name.compare(0, text.size(), text) != 0) return false;
  name.erase(0, text.size());
  return true;
}

/// What a name says: the product of the operands, each made of the next numbers.
struct reading {
  dense product{1, 1};
  dense magnitude{1, 1};
  int operands = 0;
};

reading read_name(std::string name, const std::vector<std::vector<double>>& operands) {
  const bool tilde_of_all = take(name, "_");
  if (tilde_of_all) name.erase(name.size() - 3);  // "_tl"
  reading r;
  bool first = true;
  while (!name.empty()) {
    const std::vector<double>& numbers = operands[static_cast<size_t>(r.operands++)];
    dense factor(1, 1);
    if (take(name, "vec"))
      factor = dense(3, 1);
    else if (take(name, "mat"))
      factor = dense(3, 3);
    else if (!take(name, "sca"))
      throw std::logic_error("token of " + name);
    for (size_t k = 0; k < factor.at.size(); ++k) factor.at[k] = static_cast<long double>(numbers[k]);
    if (take(name, "tr"))
      factor = transposed(factor);
    else if (take(name, "tl"))
      factor = tilde(factor);
    if (first || (r.product.rows == 1 && r.product.columns == 1 && factor.rows != 1)) {
      const long double scale = first ? 1.0L : r.product.at[0];
      for (long double& entry : factor.at) entry *= scale;
      r.product = factor;
      r.magnitude = magnitudes(factor);
    } else {
      r.magnitude = times(r.magnitude, magnitudes(factor));
      r.product = times(r.product, factor);
    }
    first = false;
  }
  if (tilde_of_all) {
    r.product = tilde(r.product);
    r.magnitude = magnitudes(tilde(r.magnitude));
  }
  return r;
}

using in = const double*;
using kernel = std::variant<void (*)(in, double*), void (*)(in, in, double*), void (*)(in, in, in, double*),
                            void (*)(in, in, in, in, double*), void (*)(double, in, double*), void (*)(in, in, double&),
                            void (*)(in, in, in, double&)>;

struct caller {
  const std::vector<std::vector<double>>& o;
  double* out;
  void operator()(void (*f)(in, double*)) const { f(o[0].data(), out); }
  void operator()(void (*f)(in, in, double*)) const { f(o[0].data(), o[1].data(), out); }
  void operator()(void (*f)(in, in, in, double*)) const { f(o[0].data(), o[1].data(), o[2].data(), out); }
  void operator()(void (*f)(in, in, in, in, double*)) const {
    f(o[0].data(), o[1].data(), o[2].data(), o[3].data(), out);
  }
  void operator()(void (*f)(double, in, double*)) const { f(o[0][0], o[1].data(), out); }
  void operator()(void (*f)(in, in, double&)) const { f(o[0].data(), o[1].data(), *out); }
  void operator()(void (*f)(in, in, in, double&)) const { f(o[0].data(), o[1].data(), o[2].data(), *out); }
};

struct named_kernel {
  const char* name;
  kernel function;
};

#define KERNEL(name) \
  named_kernel { #name, &qv::name }
const std::vector<named_kernel> k_kernels = {
    KERNEL(vectl),         KERNEL(scavec),           KERNEL(vectrvec),      KERNEL(vectlvec),
    KERNEL(vectrvectl),    KERNEL(vectlvectl),       KERNEL(_vectlvec_tl),  KERNEL(vecvectr),
    KERNEL(vectlvectlvec), KERNEL(vectrvectlvectl),  KERNEL(mattr),         KERNEL(scamat),
    KERNEL(mattrmat),      KERNEL(matmat),           KERNEL(matmattr),      KERNEL(matmatmat),
    KERNEL(matmatmattr),   KERNEL(matmattrmattr),    KERNEL(mattrmatmat),   KERNEL(mattrmatmattr),
    KERNEL(matmattrmat),   KERNEL(matvec),           KERNEL(mattrvec),      KERNEL(vectlmat),
    KERNEL(vectrmat),      KERNEL(matvectl),         KERNEL(mattrvectl),    KERNEL(matmatvec),
    KERNEL(mattrmatvec),   KERNEL(matvectlvectlvec), KERNEL(matmattrvec),   KERNEL(mattrmattrvec),
    KERNEL(matvectlvec),   KERNEL(mattrvectlvec),    KERNEL(vectrvectlmat), KERNEL(vectrmatvectl),
    KERNEL(vectlmatvec),   KERNEL(vectlmattrvec),    KERNEL(vectrmattrvec), KERNEL(_matvec_tl),
    KERNEL(_mattrvec_tl),  KERNEL(_mattrmatvec_tl),  KERNEL(mattrmatvectl)};
#undef KERNEL

constexpr double k_untouched = 1234.5;

/// Calls the kernel on `operands` and hands every entry of its output with the expected one to `compare`.
template <class Compare>
void check_kernel(const named_kernel& row, const std::vector<std::vector<double>>& operands, Compare&& compare) {
  const std::vector<std::vector<double>> before = operands;
  std::vector<double> out(10, k_untouched);
  std::visit(caller{operands, out.data()}, row.function);
  const reading expected = read_name(row.name, operands);
  for (size_t k = 0; k < out.size(); ++k) {
    if (k < expected.product.at.size()) {
      compare(k, out[k], expected);
    } else if (out[k] != k_untouched) {
      RC_FAIL(std::string(row.name) + " wrote behind its output");
    }
  }
  RC_ASSERT(operands == before);
}

template <class Number>
std::vector<std::vector<double>> four_operands(const rc::Gen<Number>& number) {
  std::vector<std::vector<double>> operands;
  for (int k = 0; k < 4; ++k) {
    const auto drawn = *rc::gen::container<std::vector<Number>>(9, number);
    operands.emplace_back(drawn.begin(), drawn.end());
  }
  return operands;
}

TEST(KernelProducts, NameSaysTheProductAndIntegersComeOutExact) {
  for (const named_kernel& row : k_kernels) {
    SCOPED_TRACE(row.name);
    EXPECT_TRUE(rc::check(row.name, [&row] {
      check_kernel(row, four_operands(rc::gen::inRange(-9, 10)), [&](size_t k, double got, const reading& expected) {
        RC_ASSERT(static_cast<long double>(got) == expected.product.at[k]);
      });
    }));
  }
}

TEST(KernelProducts, RealOperandsLoseOnlyTheRoundingsOfTheSum) {
  // Three operations per factor, at most four factors; each rounds by half an epsilon of the sum of magnitudes.
  constexpr long double k_roundings = 12;
  const auto number = rc::gen::map(rc::gen::inRange(-1000000, 1000001), [](int k) { return k / 997.0; });
  for (const named_kernel& row : k_kernels) {
    SCOPED_TRACE(row.name);
    EXPECT_TRUE(rc::check(row.name, [&] {
      check_kernel(row, four_operands(number), [&](size_t k, double got, const reading& expected) {
        const long double slack = k_roundings * static_cast<long double>(std::numeric_limits<double>::epsilon()) / 2 *
                                  expected.magnitude.at[k];
        RC_ASSERT(std::fabs(static_cast<long double>(got) - expected.product.at[k]) <= slack);
      });
    }));
  }
}

TEST(KernelProducts, TildeTurnsAVectorIntoItsCrossProduct) {
  const double a[3] = {1, 2, 3};
  double M[9];
  qv::vectl(a, M);
  const double stored[9] = {0, 3, -2, -3, 0, 1, 2, -1, 0};
  for (int k = 0; k < 9; ++k) EXPECT_EQ(M[k], stored[k]) << k;
}

TEST(KernelProducts, MatrixTimesTheFirstAxisIsTheFirstStoredColumn) {
  const double A[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  const double axes[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  for (int c = 0; c < 3; ++c) {
    double column[3], row[3];
    qv::matvec(A, axes[c], column);
    qv::mattrvec(A, axes[c], row);
    for (int r = 0; r < 3; ++r) {
      EXPECT_EQ(column[r], A[r + 3 * c]);
      EXPECT_EQ(row[r], A[c + 3 * r]);
    }
  }
}

TEST(KernelProducts, CrossProductOfParallelVectorsVanishesAndIsNormalToBoth) {
  EXPECT_TRUE(rc::check([] {
    const auto operands = four_operands(rc::gen::inRange(-1000, 1001));
    const double *a = operands[0].data(), *b = operands[1].data();
    double c[3], parallel[3], twice[3], along_a, along_b;
    qv::vectlvec(a, b, c);
    qv::vectrvec(a, c, along_a);
    qv::vectrvec(b, c, along_b);
    RC_ASSERT(along_a == 0.0 && along_b == 0.0);
    qv::scavec(2.0, a, twice);
    qv::vectlvec(a, twice, parallel);
    RC_ASSERT(parallel[0] == 0.0 && parallel[1] == 0.0 && parallel[2] == 0.0);
  }));
}

}  // namespace
