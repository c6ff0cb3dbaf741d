#pragma once

#include <cstring>

#include "common/kernels/vectors.h"

/// Rows of a block, and the ways between them and records in memory. Loops over rows are vectorised by the compiler;
/// it does not see by itself that a record is a column of several rows, so that is written out here.
namespace qvhydro {

constexpr int k_lanes = 4;  ///< doubles in the widest vector that loops over rows are compiled for

/// The count rounded up to whole vectors. Rows are padded to it, so that no loop over them has a rest that is worked
/// off one by one.
template <class Count>
constexpr Count whole_vectors(Count count) {
  constexpr auto lanes = static_cast<Count>(k_lanes);
  return (count + lanes - 1) / lanes * lanes;
}

/// Tells the compiler that the count is one of whole_vectors.
inline int in_whole_vectors(int count) {
  if (count % k_lanes != 0) __builtin_unreachable();
  return count;
}

/// A row of a block: one number of each of 64 corners or patches. Aligned, so that no vector lies across two lines of
/// the cache.
constexpr int k_row = 64;
struct alignas(64) row {
  double value[k_row];

  double& operator[](int i) { return value[i]; }
  double operator[](int i) const { return value[i]; }
};

/// Says of the loop behind it that the rows it works on are not the same, which the compiler cannot always see.
#if defined(__GNUC__) && !defined(__clang__)
#define QV_ROWS_APART _Pragma("GCC ivdep")
#else
#define QV_ROWS_APART
#endif

/// Two numbers that one instruction works on.
typedef double two_lanes __attribute__((vector_size(16)));

QV_IN_LOOPS two_lanes pair_at(const double* p) {
  two_lanes pair;
  std::memcpy(&pair, p, sizeof pair);
  return pair;
}
QV_IN_LOOPS void put(const two_lanes& pair, double* p) { std::memcpy(p, &pair, sizeof pair); }

/// Four numbers that one instruction works on, where the processor has such. A class, because how bare vectors of this
/// size are returned depends on the processor that a function is compiled for.
class four_lanes {
public:
  four_lanes() = default;
  QV_IN_LOOPS explicit four_lanes(const double* p) { std::memcpy(&m_lanes, p, sizeof m_lanes); }
  QV_IN_LOOPS four_lanes(const two_lanes& a, const two_lanes& b) : m_lanes(__builtin_shufflevector(a, b, 0, 1, 2, 3)) {}
  QV_IN_LOOPS void operator+=(const four_lanes& other) { m_lanes += other.m_lanes; }
  QV_IN_LOOPS void put(double* p) const { std::memcpy(p, &m_lanes, sizeof m_lanes); }

  /// From the even and the odd ones of four rows or records: sets `low` to the first and third number of both, taken in
  /// turn, and `high` to the second and fourth.
  QV_IN_LOOPS static void interleave(const four_lanes& even, const four_lanes& odd, four_lanes& low, four_lanes& high) {
    low.m_lanes = __builtin_shufflevector(even.m_lanes, odd.m_lanes, 0, 4, 2, 6);
    high.m_lanes = __builtin_shufflevector(even.m_lanes, odd.m_lanes, 1, 5, 3, 7);
  }

private:
  typedef double lanes __attribute__((vector_size(32)));
  lanes m_lanes;
};

/// Copies two neighbouring numbers of four records to two rows: record[j][at] to first[j], record[j][at + 1] to
/// second[j].
QV_IN_LOOPS void to_rows(const double* const record[4], int at, double* first, double* second) {
  const four_lanes even(pair_at(record[0] + at), pair_at(record[2] + at));
  const four_lanes odd(pair_at(record[1] + at), pair_at(record[3] + at));
  four_lanes x, y;
  four_lanes::interleave(even, odd, x, y);
  x.put(first);
  y.put(second);
}

/// What four rows hold at the places i and i + 1.
struct two_columns {
  four_lanes left, right;

  QV_IN_LOOPS two_columns(const row& a, const row& b, const row& c, const row& d, int i)
      : two_columns(&a.value[i], &b.value[i], &c.value[i], &d.value[i]) {}
  QV_IN_LOOPS two_columns(const double* a, const double* b, const double* c, const double* d) {
    const four_lanes even(pair_at(a), pair_at(c));
    const four_lanes odd(pair_at(b), pair_at(d));
    four_lanes::interleave(even, odd, left, right);
  }
};

}  // namespace qvhydro
