#include "solver/model/c_locale.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

namespace {

locale_t c_locale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

void expect_as_the_c_library(const std::string& text) {
  char *end = nullptr, *expected_end = nullptr;
  const double value = qvslv::read_double(text.c_str(), &end),
               expected = strtod_l(text.c_str(), &expected_end, c_locale());
  EXPECT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << '"' << text << "\": " << value << ", not " << expected;
  EXPECT_EQ(end - text.c_str(), expected_end - text.c_str()) << '"' << text << '"';
}

TEST(ReadDouble, ReadsAsTheCLibraryDoes) {
  for (const char* text : {"",
                           " ",
                           "-",
                           "+",
                           ".",
                           "-.",
                           "- 1",
                           "0",
                           "-0",
                           "-0.0",
                           "+1",
                           "1.",
                           ".5",
                           "-.5",
                           "1..2",
                           "1.5.2",
                           "1,5",
                           "12abc",
                           "1e5",
                           "1E-5",
                           "1e",
                           "1e+",
                           "0x10",
                           "0X1p4",
                           "0x",
                           "inf",
                           "-inf",
                           "nan",
                           "  1",
                           "\t-1.5 2",
                           "\n1",
                           "\v1",
                           "123456789012345",
                           "1234567890123456",
                           "0.123456789012345",
                           "9007199254740993",
                           "0.1000000000000000055511151231",
                           "1e400",
                           "-1e-400",
                           "4.9e-324",
                           "1_000",
                           "1 000"})
    expect_as_the_c_library(text);
}

TEST(ReadDouble, RoundsToTheNearestNumberWhateverTheLengthOfTheText) {
  std::mt19937 random(1);
  const auto up_to = [&random](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
  for (int k = 0; k < 100'000; ++k) {
    std::string text = up_to(1) == 0 ? "" : "-";
    for (int digits = up_to(12); digits > 0; --digits) text += static_cast<char>('0' + up_to(9));
    if (up_to(3) != 0) text += '.';
    for (int digits = up_to(12); digits > 0; --digits) text += static_cast<char>('0' + up_to(9));
    expect_as_the_c_library(text);
  }
}

}  // namespace
