#include "hydro/lanes.h"

#include <gtest/gtest.h>

namespace qvtest {
namespace {

using namespace qvhydro;

TEST(WholeVectors, HoldTheCountAndNoFurtherVector) {
  for (int count = 0; count < 3 * k_lanes; ++count) {
    const int padded = whole_vectors(count);
    EXPECT_GE(padded, count);
    EXPECT_LT(padded, count + k_lanes);
    EXPECT_EQ(padded % k_lanes, 0);
  }
  EXPECT_EQ(k_row % k_lanes, 0) << "a full row has no place for padding";
}

TEST(Records, BecomeRowsNumberByNumber) {
  double records[4][6];
  const double* record[4];
  for (int j = 0; j < 4; ++j) {
    for (int k = 0; k < 6; ++k) records[j][k] = 10.0 * j + k;
    record[j] = records[j];
  }
  for (const int at : {0, 1, 4}) {
    double first[4], second[4];
    to_rows(record, at, first, second);
    for (int j = 0; j < 4; ++j) {
      EXPECT_EQ(first[j], records[j][at]);
      EXPECT_EQ(second[j], records[j][at + 1]);
    }
  }
}

TEST(TwoColumns, HoldWhatFourRowsHaveAtAPlaceAndTheNext) {
  row rows[4];
  for (int r = 0; r < 4; ++r)
    for (int i = 0; i < k_row; ++i) rows[r][i] = 100.0 * r + i;
  for (const int i : {0, 5, k_row - 2}) {
    const two_columns columns(rows[0], rows[1], rows[2], rows[3], i);
    double left[4], right[4];
    columns.left.put(left);
    columns.right.put(right);
    for (int r = 0; r < 4; ++r) {
      EXPECT_EQ(left[r], rows[r][i]);
      EXPECT_EQ(right[r], rows[r][i + 1]);
    }
  }
}

}  // namespace
}  // namespace qvtest
