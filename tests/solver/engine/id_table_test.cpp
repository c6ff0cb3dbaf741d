#include "solver/engine/id_table.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using qvslv::IdTable;
using qvslv::k_none;

struct Thing {
  int id;
};

TEST(IdTable, FindsCloseAndFarIdsAndNothingElse) {
  constexpr int k_largest = std::numeric_limits<int>::max();
  const std::vector<Thing> things = {{3}, {1}, {1'000'000}, {0}, {k_largest}, {-7}};
  const IdTable table(things);
  for (size_t i = 0; i < things.size(); ++i) EXPECT_EQ(table.find(things[i].id), static_cast<int>(i)) << things[i].id;
  for (const int id : {2, 4, -1, -8, 65'535, 65'536, 999'999, k_largest - 1, std::numeric_limits<int>::min()})
    EXPECT_EQ(table.find(id), k_none) << id;
}

TEST(IdTable, AnIdGivenTwiceStandsForTheFirst) {
  const IdTable table(std::vector<Thing>{{5}, {5}, {900'000}, {900'000}});
  EXPECT_EQ(table.find(5), 0);
  EXPECT_EQ(table.find(900'000), 2);
}

TEST(IdTable, AnEmptyOneFindsNothing) { EXPECT_EQ(IdTable().find(0), k_none); }

}  // namespace
