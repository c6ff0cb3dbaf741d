#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "common/call/parameters.h"
#include "common/files/number_scanner.h"
#include "tests/soilrdf/read_text.h"
#include "tests/support/foreign_locale.h"

// The library in a host whose locale writes numbers in another way: what it reads and what it says stay the same.
namespace {

using qvtest::ForeignLocale;
using qvtest::k_german;
using qvtest::k_turkish;

std::uint64_t bits_of(double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

/// What `compute` gives in the locale of this name.
template <class Compute>
auto in_locale(const char* name, Compute&& compute) {
  const ForeignLocale locale(name);
  return compute();
}

TEST(HostLocale, ChangesHowTheCLibraryReadsAndWrites) {
  const ForeignLocale german(k_german);
  EXPECT_EQ(std::atof("1.5"), 1.0);
  EXPECT_EQ(std::to_string(1.5), "1,500000");
}

TEST(HostLocale, ANumberIsReadAsAtofReadsItInTheCLocale) {
  for (const char* text : {"1.1",
                           " 1.1",
                           "\t-2.5e-3 kPa",
                           "+.5",
                           "5.",
                           ".",
                           "1,5",
                           "1.234,5",
                           "1.2.3",
                           "1e5",
                           "1e",
                           "1e+",
                           "1.e",
                           "0x1.8p3",
                           "0x",
                           "0x1.8",
                           "-0x.8P-1",
                           "inf",
                           "-Infinity",
                           "infinit",
                           "nan",
                           "NAN(12)",
                           "-nan",
                           "abc",
                           "",
                           " ",
                           "--1",
                           "1e999",
                           "-1.5e999",
                           "1.5e-400",
                           "4.9e-324",
                           "2.2250738585072011e-308",
                           "0.1234567890123456789012345678901234567890",
                           "9007199254740993.0000000000000000000000001",
                           "1 000.5",
                           "1'000.5",
                           "\v\f\r\n1.5",
                           "\xc2\xa0"
                           "1.5"}) {
    const double expected = in_locale("C", [&] { return std::atof(text); });
    const double read = in_locale(k_german, [&] { return qv::read_number(text); });
    EXPECT_EQ(bits_of(read), bits_of(expected)) << '"' << text << '"';
  }
}

TEST(HostLocale, ANumberBeyondDoublesIsRefusedAndOneBelowThemIsSmall) {
  const ForeignLocale german(k_german);
  for (const char* text : {"1.5e999", "-1.5e999", "0.5e400"}) {
    const char* at = text;
    double value = 7.0;
    EXPECT_FALSE(qv::scan_number(at, text + std::strlen(text), value)) << text << " was read as " << value;
  }
  const char* const small = "1.5e-310";
  const char* at = small;
  double value = 7.0;
  EXPECT_TRUE(qv::scan_number(at, small + std::strlen(small), value));
  EXPECT_EQ(value, 1.5e-310);
}

/// A road line of this key, a mesh behind it.
qvtest::reading read_line(const std::string& line) { return qvtest::read_text(qvtest::with_mesh(line + "\n")); }

TEST(HostLocale, RoadParametersKeepTheirDecimals) {
  const ForeignLocale german(k_german);
  EXPECT_EQ(read_line("SINKAGE_EXPONENT=1.1").road.bekker.sinkage_exponent, 1.1);
  EXPECT_EQ(read_line("COHESION=1.04e3").road.wong.cohesion, 1040.0);
  EXPECT_EQ(read_line("COHESION=1,04").road.wong.cohesion, 1.0);  // as everywhere: a comma ends the number
  const qvsoilrdf::CRoad road =
      qvtest::read_text(
          "NUMBER_OF_NODES=3.9\n1 0.25 0.5 0.125\n2 1.5 0.5 0\n3 1.5 2.75 0\n\nNUMBER_OF_ELEMENTS=1\n1 2 3 0.5\n")
          .road;
  ASSERT_EQ(road.nodes.size(), 3u);
  EXPECT_EQ(road.nodes[0].z, 0.125);
  EXPECT_EQ(road.y_max, 2.75);
  EXPECT_EQ(road.element(0).value, 0.5);
}

TEST(HostLocale, UnitNamesAreFoundInAnyCase) {
  const ForeignLocale turkish(k_turkish);
  EXPECT_TRUE(read_line("LENGTH='milimeter'").returned);
  EXPECT_EQ(read_line("TIME='week with \xc3\xa4'").message,
            "READ RDF ERROR : WEEK WITH \xc3\xa4 is an unsupported TIME UNIT.");
}

TEST(HostLocale, MessagesWriteNumbersWithAPoint) {
  const ForeignLocale german(k_german);
  EXPECT_EQ(qv::number_text(2.5), "2.5");
  EXPECT_EQ(qv::number_text(123456789.25), "123456789.25");
  EXPECT_EQ(qv::fixed_text(-1234.5), "-1234.500000");
  EXPECT_EQ(read_line("NUMBER_OF_NODES=-1.5").message.substr(0, 43), "READ RDF ERROR : NUMBER_OF_NODES is -1.5 in");
}

TEST(HostLocale, TextsOfNumbersAreThoseOfPrintfInTheCLocale) {
  const ForeignLocale c("C");
  EXPECT_TRUE(rc::check([] {
    double value;  // any bit pattern, so every size of number, infinities and NaNs too
    const auto bits = *rc::gen::resize(1000, rc::gen::arbitrary<std::uint64_t>());
    std::memcpy(&value, &bits, sizeof value);
    RC_ASSERT(qv::fixed_text(value) == std::to_string(value));
    char text[40];
    for (int digits = 6; digits <= 17; ++digits) {
      std::snprintf(text, sizeof text, "%.*g", digits, value);
      if (std::strtod(text, nullptr) == value) break;
    }
    RC_ASSERT(qv::number_text(value) == text);
  }));
  for (double value : {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN(), 5e-324,
                       -0.0, -std::numeric_limits<double>::infinity(), 1e22, 1e5, 999999.5, 0.0001, 0.00001}) {
    EXPECT_EQ(qv::fixed_text(value), std::to_string(value));
    char text[40];
    std::snprintf(text, sizeof text, "%g", value);
    EXPECT_EQ(qv::number_text(value), value == 999999.5 ? "999999.5" : text);
  }
}

}  // namespace
