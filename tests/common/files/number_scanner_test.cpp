#include "common/files/number_scanner.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

// The scanner against formatted stream input: the same numbers to the bit, and after each the same place in the text.
namespace {

struct number {
  std::uint64_t bits;
  long stop;  // characters read so far
  bool operator==(const number& other) const { return bits == other.bits && stop == other.stop; }
};

void showValue(const number& n, std::ostream& out) { out << std::hex << n.bits << std::dec << " @" << n.stop; }

[[maybe_unused]] std::ostream& operator<<(std::ostream& out, const number& n) {
  showValue(n, out);
  return out;
}

std::uint64_t bits_of(double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

std::vector<number> by_stream(const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  std::vector<number> numbers;
  for (double value; stream >> value;) {
    const auto place = stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
    numbers.push_back({bits_of(value), static_cast<long>(place)});
  }
  return numbers;
}

std::vector<number> by_scanner(const std::string& text) {
  const std::vector<char> exact(text.begin(), text.end());  // no terminator behind: reads beyond show under asan
  const char* at = exact.data();
  const char* const end = exact.data() + exact.size();
  std::vector<number> numbers;
  double value = 0;
  while (qv::scan_number(at, end, value)) numbers.push_back({bits_of(value), at - exact.data()});
  return numbers;
}

/// The same of a text that a line end ends.
std::vector<number> by_line_scanner(const std::string& text) {
  const std::string line = text + '\n';
  const std::vector<char> exact(line.begin(), line.end());
  const char* at = exact.data();
  const char* const end = exact.data() + text.size();
  std::vector<number> numbers;
  double value = 0;
  while (qv::scan_number_of_line(at, end, value)) numbers.push_back({bits_of(value), at - exact.data()});
  return numbers;
}

TEST(NumberScanner, ReadsWhatAStreamReads) {
  const char* const texts[] = {
      "1 2 3",
      "+1",
      "1e",
      "1e+",
      "1e-",
      "1e5e",
      "1e5e5",
      "inf",
      "-inf",
      "infinity",
      "nan",
      "NAN",
      "0x10",
      "0x",
      "0X1p3",
      ".5",
      "5.",
      ".",
      "-.",
      "+.",
      "+.5",
      "-.5",
      "5.e3",
      ".e3",
      "1-2",
      "1+2",
      "--1",
      "+-1",
      "-+1",
      "++1",
      "+ 1",
      "- 1",
      "1e999",
      "-1e999",
      "1e-400",
      "-1e-400",
      "1e400 5",
      "4.9e-324",
      "2e-324",
      "3e-324",
      "2.2250738585072011e-308",
      "2.2250738585072014e-308",
      "1.7976931348623157e308",
      "1.7976931348623159e308",
      "12345678901234567890",
      "123456789012345678901234567890",
      "0.1234567890123456789012345",
      "9007199254740993",
      "9007199254740992.5",
      "900719925474099.3",
      "100000000000000000000",
      "999999999999999",
      "9999999999999999",
      "0.00000000000001",
      "0.000000000000001",
      "0.0000000000000001",
      "00000000000000000001",
      "0000000000000000000000000.5000000000000000000000",
      "\t1\t2",
      "1\r",
      "1 2\r",
      "1\v2\f3",
      "\n1\n",
      "",
      " ",
      "\r",
      "1,2",
      "1;2",
      "1.2.3",
      "1e5.5",
      "1E5",
      "1E+05",
      "1e05",
      "1e-05",
      "1e0005",
      "1d5",
      "1f",
      "1L",
      "1 abc 2",
      "abc",
      "1abc",
      "e5",
      "0",
      "-0",
      "+0",
      "0.0",
      "-0.0",
      "-0e5",
      "0e999",
      "0e-999",
      "0.0e999999",
      "1e99999999999999999999",
      "1e-99999999999999999999",
      "(1)",
      "1_000",
      "\"1\"",
      "1 2 3 4 5 6 7 8",
      "1e1 2e2",
      "1ee5",
      "1e+-5",
      "1 . 2",
      "1..2",
      "1 +2 -3",
  };
  for (const char* text : texts) {
    EXPECT_EQ(by_scanner(text), by_stream(text)) << '"' << text << '"';
    if (std::strchr(text, '\n') != nullptr) continue;
    EXPECT_EQ(by_line_scanner(text), by_stream(text)) << '"' << text << '"';
  }
}

TEST(NumberScanner, ReadsAnyMixOfItsCharactersAsAStreamDoes) {
  EXPECT_TRUE(rc::check([] {
    const auto texts = *rc::gen::container<std::vector<std::string>>(
        50, rc::gen::container<std::string>(
                rc::gen::element('0', '1', '5', '9', '.', '-', '+', 'e', 'E', ' ', '\t', '\r', 'x', 'n', ',')));
    for (const std::string& text : texts) {
      RC_ASSERT(by_scanner(text) == by_stream(text));
      RC_ASSERT(by_line_scanner(text) == by_stream(text));
    }
  }));
}

/// A number as a file would have it: sign, digits, fraction and exponent, each perhaps absent.
rc::Gen<std::string> number_text() {
  const auto digits = rc::gen::container<std::string>(rc::gen::inRange('0', static_cast<char>('9' + 1)));
  return rc::gen::map(
      rc::gen::tuple(rc::gen::element<std::string>("", "-", "+"), digits, rc::gen::element<std::string>("", "."),
                     digits, rc::gen::element<std::string>("", "", "e", "E-", "e+"), rc::gen::inRange(0, 400)),
      [](const auto& parts) {
        const auto& [sign, whole, point, fraction, e, exponent] = parts;
        return sign + whole + point + fraction + e + (e.empty() ? "" : std::to_string(exponent));
      });
}

TEST(NumberScanner, ReadsNumbersOfAnyLengthAndSizeToTheBit) {
  EXPECT_TRUE(rc::check([] {
    std::string line;
    const auto texts = *rc::gen::container<std::vector<std::string>>(100, number_text());
    for (const std::string& text : texts) {
      line += text + *rc::gen::element<std::string>(" ", "\t", "  ", "\r", "\v");
    }
    RC_ASSERT(by_scanner(line) == by_stream(line));
    RC_ASSERT(by_line_scanner(line) == by_stream(line));
    for (const std::string& text : texts) RC_ASSERT(by_scanner(text) == by_stream(text));
  }));
}

TEST(NumberScanner, ReadsPrintedDoublesBackToTheBit) {
  EXPECT_TRUE(rc::check([] {
    double value;  // any bit pattern, so every size of number
    const auto bits = *rc::gen::resize(1000, rc::gen::arbitrary<std::uint64_t>());
    std::memcpy(&value, &bits, sizeof value);
    const int digits = *rc::gen::inRange(1, 25);
    char text[500];
    for (const char* format : {"%.*g", "%.*f", "%.*e"}) {
      std::snprintf(text, sizeof text, format, digits, value);
      RC_ASSERT(by_scanner(text) == by_stream(text));
    }
  }));
}

TEST(NumberScanner, OfALineStopsAtTheLinesEnd) {
  const std::string text = "1 2 \n3\n";
  const char* at = text.data();
  const char* const end = text.data() + text.size() - 1;
  double value = 0;
  EXPECT_TRUE(qv::scan_number_of_line(at, end, value));
  EXPECT_TRUE(qv::scan_number_of_line(at, end, value));
  EXPECT_FALSE(qv::scan_number_of_line(at, end, value)) << "3 is on the next line";
  EXPECT_EQ(value, 2);
}

TEST(NumberScanner, StaysWhereItIsWhenThereIsNoNumber) {
  const std::string text = "   abc";
  const char* at = text.data() + 3;
  double value = 7;
  EXPECT_FALSE(qv::scan_number(at, text.data() + text.size(), value));
  EXPECT_EQ(at, text.data() + 3);
  EXPECT_EQ(value, 7);
}

}  // namespace
