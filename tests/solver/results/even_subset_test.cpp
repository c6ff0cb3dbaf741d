#include "solver/results/even_subset.h"

#include <gmock/gmock.h>

namespace {

using qvslv::EvenSubset;
using testing::ElementsAre;

TEST(EvenSubset, KeepsEverythingThatFits) {
  EvenSubset subset(30);
  std::vector<int> items;
  for (int k = 0; k < 3; ++k) subset.add(items, k, 10);
  EXPECT_THAT(items, ElementsAre(0, 1, 2));
  EXPECT_EQ(subset.count(), 3u);
}

TEST(EvenSubset, ThinsEvenlyAndKeepsTheLastItem) {
  EvenSubset subset(40);
  std::vector<int> items;
  for (int k = 0; k < 5; ++k) subset.add(items, k, 10);
  EXPECT_THAT(items, ElementsAre(0, 2, 4));
  subset.add(items, 5, 10);
  EXPECT_THAT(items, ElementsAre(0, 2, 4, 5));
  subset.add(items, 6, 10);
  EXPECT_THAT(items, ElementsAre(0, 2, 4, 6)) << "5 was there only as the last one";
  subset.add(items, 7, 10);
  EXPECT_THAT(items, ElementsAre(0, 4, 7));
  EXPECT_EQ(subset.count(), 8u);
}

TEST(EvenSubset, HoldsForAnyNumberOfItems) {
  constexpr size_t k_most = 100;
  EvenSubset subset(k_most * sizeof(long));
  std::vector<long> items;
  for (long k = 0; k < 20000; ++k) {
    subset.add(items, k, sizeof(long));
    ASSERT_LE(items.size(), k_most);
    ASSERT_EQ(items.front(), 0);
    ASSERT_EQ(items.back(), k);
    const long stride = items.size() > 1 ? items[1] - items[0] : 1;
    for (size_t i = 1; i + 1 < items.size(); ++i) ASSERT_EQ(items[i] - items[i - 1], stride) << "of " << k;
    ASSERT_LE(items.back() - items[items.size() > 1 ? items.size() - 2 : 0], stride);
    if (k > 4 * static_cast<long>(k_most)) {
      ASSERT_GE(items.size(), k_most / 2);
    }
  }
}

TEST(EvenSubset, ItemsLargerThanTheBoundLeaveTheFirstAndTheLast) {
  EvenSubset subset(1);
  std::vector<int> items;
  for (int k = 0; k < 9; ++k) subset.add(items, k, 10);
  EXPECT_THAT(items, ElementsAre(0, 8));
}

}  // namespace
