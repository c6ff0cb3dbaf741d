#include "common/call/parameters.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <climits>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

namespace {

/// The message that a guard leaves; "" when it lets the value pass.
template <class Guard>
std::string refusal(Guard&& guard) {
  int count = 0;
  char* slots[5] = {};
  const qv::fault_channel channel{"SOIL ERROR : ", count, slots};
  try {
    guard(channel);
  } catch (int number) {
    EXPECT_EQ(number, 1);
    EXPECT_EQ(count, 1);
    const std::string text = slots[0];
    delete[] slots[0];
    return text;
  }
  EXPECT_EQ(count, 0);
  return "";
}

std::string int_refusal(double value) {
  return refusal([&](const qv::fault_channel& c) { qv::to_int(value, "marker id", c); });
}

std::string count_refusal(double value) {
  return refusal([&](const qv::fault_channel& c) { qv::to_count(value, "number of rows", c); });
}

std::string index_refusal(int index, size_t size) {
  return refusal([&](const qv::fault_channel& c) { qv::check_index(index, size, "road index", c); });
}

TEST(Parameters, IntegersAreTruncatedTowardZero) {
  int count = 0;
  char* slots[5] = {};
  const qv::fault_channel c{"", count, slots};
  struct {
    double value;
    int truncated;
  } const rows[] = {{0.0, 0},
                    {-0.0, 0},
                    {2.9, 2},
                    {-2.9, -2},
                    {-0.99, 0},
                    {1e-300, 0},
                    {2147483647.9, INT_MAX},
                    {-2147483648.9, INT_MIN},
                    {12, 12},
                    {11.999999999, 11}};
  for (const auto& row : rows) EXPECT_EQ(qv::to_int(row.value, "id", c), row.truncated) << row.value;
  EXPECT_EQ(qv::to_count(3.7, "count", c), 3);
  EXPECT_EQ(qv::to_count(-0.5, "count", c), 0);
}

TEST(Parameters, AnEntryOfAListIsNamedWithItsPosition) {
  const double par[] = {2.9, 3e9, -1.0};
  EXPECT_EQ(refusal([&](const qv::fault_channel& c) { EXPECT_EQ(qv::to_int(par, {0, "marker id"}, c), 2); }), "");
  EXPECT_EQ(refusal([&](const qv::fault_channel& c) { EXPECT_EQ(qv::to_count(par, {0, "count"}, c), 2); }), "");
  EXPECT_EQ(
      refusal([&](const qv::fault_channel& c) {
        qv::to_int(par, {1, "marker id"}, c);
      }),
      "SOIL ERROR : The marker id (parameter 1) is 3e+09; it must be a number between -2147483648 and 2147483647.");
  EXPECT_EQ(refusal([&](const qv::fault_channel& c) {
              qv::to_count(par, {2, "number of rows"}, c);
            }),
            "SOIL ERROR : The number of rows (parameter 2) is -1; it must not be negative.");
  EXPECT_EQ(refusal([&](const qv::fault_channel& c) {
              qv::check_index(8, 8, qv::parameter{3, "road index"}, c);
            }),
            "SOIL ERROR : The road index (parameter 3) is 8; it must lie between 0 and 7.");
  EXPECT_EQ(refusal([&](const qv::fault_channel& c) { qv::check_index(7, 8, qv::parameter{3, "road index"}, c); }), "");
}

TEST(Parameters, AValueThatNoIntHoldsIsRefusedByName) {
  const std::string tail = "; it must be a number between -2147483648 and 2147483647.";
  EXPECT_EQ(int_refusal(std::nan("")), "SOIL ERROR : The marker id is nan" + tail);
  EXPECT_EQ(int_refusal(3e9), "SOIL ERROR : The marker id is 3e+09" + tail);
  EXPECT_EQ(int_refusal(-3e9), "SOIL ERROR : The marker id is -3e+09" + tail);
  EXPECT_EQ(int_refusal(2147483648.0), "SOIL ERROR : The marker id is 2147483648" + tail);
  EXPECT_EQ(int_refusal(-2147483649.0), "SOIL ERROR : The marker id is -2147483649" + tail);
  EXPECT_EQ(int_refusal(std::numeric_limits<double>::infinity()), "SOIL ERROR : The marker id is inf" + tail);
  EXPECT_EQ(count_refusal(std::nan("")), "SOIL ERROR : The number of rows is nan" + tail);
}

TEST(Parameters, ANegativeCountIsRefusedByName) {
  EXPECT_EQ(count_refusal(-1), "SOIL ERROR : The number of rows is -1; it must not be negative.");
  EXPECT_EQ(count_refusal(-7.9), "SOIL ERROR : The number of rows is -7; it must not be negative.");
  EXPECT_EQ(count_refusal(0), "");
}

TEST(Parameters, AnIndexOutsideItsContainerIsRefusedWithItsRange) {
  EXPECT_EQ(index_refusal(-1, 3), "SOIL ERROR : The road index is -1; it must lie between 0 and 2.");
  EXPECT_EQ(index_refusal(3, 3), "SOIL ERROR : The road index is 3; it must lie between 0 and 2.");
  EXPECT_EQ(index_refusal(INT_MAX, 3), "SOIL ERROR : The road index is 2147483647; it must lie between 0 and 2.");
  EXPECT_EQ(index_refusal(0, 0), "SOIL ERROR : The road index is 0; it must lie between 0 and -1.");
  EXPECT_EQ(index_refusal(0, 1), "");
  EXPECT_EQ(index_refusal(2, 3), "");
}

TEST(Parameters, NumberTextsReadBackAsTheSameNumber) {
  EXPECT_TRUE(rc::check([] {
    const double value = *rc::gen::arbitrary<double>();
    std::istringstream text(qv::number_text(value));
    text.imbue(std::locale::classic());
    double read = 0.0;
    text >> read;
    RC_ASSERT(read == value);
  }));
  EXPECT_EQ(qv::number_text(0.1), "0.1");
  EXPECT_EQ(qv::number_text(-2.5), "-2.5");
  EXPECT_EQ(qv::number_text(1.0 / 3.0), "0.3333333333333333");
}

}  // namespace
