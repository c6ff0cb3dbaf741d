#include "solver/data_files/table_tokens.h"

#include <gtest/gtest.h>

#include <cstring>
#include <locale>
#include <random>
#include <sstream>

namespace {

using qvslv::TableTokens;

std::uint64_t bits(double value) {
  std::uint64_t pattern = 0;
  std::memcpy(&pattern, &value, sizeof value);
  return pattern;
}

/// Reads numbers and separators in turn, once as tokens and once from a stream, until one of them stops.
void expect_as_from_a_stream(const std::string& text) {
  SCOPED_TRACE("'" + text + "'");
  TableTokens tokens(text);
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  for (int k = 0; k < 20; ++k) {
    double expected = 0, value = 0;
    char separator = 0;
    stream >> expected;
    ASSERT_EQ(tokens.real(value), !stream.fail()) << "number " << k;
    if (stream.fail()) return;
    ASSERT_EQ(bits(value), bits(expected)) << "number " << k;
    const auto place = stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
    ASSERT_EQ(tokens.position(), static_cast<std::size_t>(place)) << "number " << k;
    stream >> separator;
    ASSERT_EQ(tokens.separator(), !stream.fail()) << "separator " << k;
    if (stream.fail()) return;
  }
}

TEST(TableTokens, ReadNumbersAsAStreamDoes) {
  for (const char* text : {"",
                           " ",
                           ",",
                           "1",
                           "1,2",
                           "1 , 2",
                           "-1.5e3,2\n",
                           "+5,+6",
                           ".5,5.,-.5,",
                           "1e,2",
                           "1e+,2",
                           "1-2,3",
                           "1.2.3,4",
                           "0x10,1",
                           "0x1p3,2",
                           "inf,1",
                           "nan,1",
                           "infinity",
                           "1e400,1",
                           "1e-400,1",
                           "4.9e-324,1",
                           "2e-320,1",
                           "-0,0",
                           "1d5,2",
                           "1;2;3",
                           "1,,2",
                           "1,a",
                           "--1,2",
                           "-,1",
                           "1\v2\f3\r\n4",
                           "0.1,0.2,0.30000000000000004,1e22,1e23",
                           "12345678901234567890,1",
                           "1e5e5,2",
                           "1_000,2",
                           "1'000,2"})
    expect_as_from_a_stream(text);
}

TEST(TableTokens, ReadAnyTextAsAStreamDoes) {
  std::mt19937 random(7);
  const std::string letters = "0123456789012345678901234567890123456789.....,,,,,,--+eE \n\txaf;";
  for (int k = 0; k < 20000; ++k) {
    std::string text;
    for (int n = static_cast<int>(random() % 24); n >= 0; --n) text += letters[random() % letters.size()];
    expect_as_from_a_stream(text);
  }
}

}  // namespace
