#include "common/files/token_source.h"

#include <gtest/gtest.h>

#include <cmath>
#include <locale>
#include <random>
#include <sstream>

#include "fuzz/memory_file.h"

// The tokens of a file against formatted stream extraction: the same values, the same end, and nothing after the first
// token that is not what was asked for.
namespace {

class Tokens {
public:
  explicit Tokens(const std::string& text) : m_stream(text), m_source(m_file) {
    m_stream.imbue(std::locale::classic());
    m_memory.write(text.data(), text.size());
    const std::wstring path = m_memory.path();
    EXPECT_TRUE(m_file.open(std::string(path.begin(), path.end())));
  }

  /// Asks both for the next token of a kind; false when they differ.
  bool integer() {
    int value = 77, expected = 77, extracted = 0;
    const bool got = m_source.integer(value);
    if (m_stream >> extracted) expected = extracted;
    return got == static_cast<bool>(m_stream) && value == expected;
  }
  bool real() {
    double value = 77, expected = 77, extracted = 0;
    const bool got = m_source.real(value);
    if (m_stream >> extracted) expected = extracted;
    return got == static_cast<bool>(m_stream) && value == expected && std::signbit(value) == std::signbit(expected);
  }
  bool separator() {
    char unused;
    const bool got = m_source.separator();
    return got == static_cast<bool>(m_stream >> unused);
  }
  qv::token_source& source() { return m_source; }

private:
  memory_file m_memory;
  qv::data_file m_file;
  std::istringstream m_stream;
  qv::token_source m_source;
};

const char* const k_texts[] = {"",
                               " ",
                               "\n\n",
                               "1",
                               "-1",
                               "+1",
                               "+-1",
                               "1.5",
                               "1.5 ",
                               "1e5",
                               "1e",
                               "1e+",
                               ".",
                               "-.5",
                               "1.2.3",
                               "12,34",
                               "12 , 34",
                               "0x1F",
                               "1e999",
                               "-1e999 1",
                               "1e-999",
                               "nan",
                               "inf 1",
                               "a",
                               ",,,",
                               "1\t\v2",
                               "1\f\r\n2",
                               "2147483647",
                               "-2147483648",
                               "2147483648 5",
                               "1- 2",
                               "1-2",
                               "00012",
                               "1.7976931348623157e308",
                               "4.9e-324",
                               "123456789012345678901234567890",
                               "0.1000000000000000055511151231257827"};

TEST(TokenSource, ReadsWhatAStreamReadsInAnyOrderOfKinds) {
  for (const char* text : k_texts) {
    for (int order = 0; order < 81; ++order) {
      Tokens tokens(text);
      for (int i = 0, kinds = order; i < 4; ++i, kinds /= 3) {
        const bool same = kinds % 3 == 0 ? tokens.integer() : kinds % 3 == 1 ? tokens.real() : tokens.separator();
        ASSERT_TRUE(same) << '"' << text << "\", order " << order << ", token " << i;
      }
    }
  }
}

TEST(TokenSource, ReadsTokensOverTheEdgesOfItsBuffer) {
  constexpr std::size_t k_chunk = 1 << 18;  // what the source reads at a time
  for (const char* text : {"-123.456e-7,8 9", "1234567,+5", "1e", "1.5", "1,2", "7"}) {
    for (std::size_t before = 0; before <= 16; ++before) {
      for (const char* padding : {" ", "0"}) {
        std::string padded;
        while (padded.size() < 2 * k_chunk - before) padded += padding[0];
        if (padding[0] == '0') padded[k_chunk] = ' ';
        Tokens tokens(padded + text);
        for (int i = 0; i < 6; ++i) {
          ASSERT_TRUE(i % 2 == 0 ? tokens.real() : tokens.separator())
              << text << ", " << before << " before, token " << i;
        }
      }
    }
  }
}

TEST(TokenSource, ReadsRandomTextsAsStreamsDo) {
  std::mt19937 random(3);
  const std::string letters = "0123456789.,-+eE \n;x";
  for (int i = 0; i < 5000; ++i) {
    std::string text;
    for (auto k = random() % 30; k > 0; --k) text += letters[random() % letters.size()];
    Tokens tokens(text);
    for (int token = 0; token < 8; ++token) {
      const auto kind = random() % 3;
      ASSERT_TRUE(kind == 0   ? tokens.integer()
                  : kind == 1 ? tokens.real()
                              : tokens.separator())
          << '"' << text << "\", token " << token << " of kind " << kind;
    }
  }
}

TEST(TokenSource, GivesNothingMoreAfterATokenThatIsNotWhatWasAskedFor) {
  Tokens tokens("1 x 2 3");
  double value = 77;
  int count = 77;
  EXPECT_TRUE(tokens.source().real(value));
  EXPECT_EQ(value, 1);
  EXPECT_FALSE(tokens.source().real(value));
  EXPECT_FALSE(tokens.source().separator());
  EXPECT_FALSE(tokens.source().real(value));
  EXPECT_FALSE(tokens.source().integer(count));
  EXPECT_EQ(value, 1);
  EXPECT_EQ(count, 77);
}

TEST(TokenSource, KnowsWhatIsLeft) {
  Tokens tokens("12, 3456");
  int count = 0;
  EXPECT_TRUE(tokens.source().integer(count));
  EXPECT_EQ(tokens.source().bytes_left(), 6U);
  EXPECT_TRUE(tokens.source().separator());
  EXPECT_TRUE(tokens.source().integer(count));
  EXPECT_EQ(count, 3456);
  EXPECT_EQ(tokens.source().bytes_left(), 0U);
}

}  // namespace
