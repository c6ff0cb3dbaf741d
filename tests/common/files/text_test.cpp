#include "common/files/text.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using pieces = std::vector<std::string>;

TEST(SplitStr, CutsAtTheDelimiterWithoutTrimming) {
  struct {
    const char* text;
    pieces expected;
  } const rows[] = {
      {"A=B", {"A", "B"}},
      {"A = B", {"A ", " B"}},
      {"A=", {"A"}},
      {"=B", {"", "B"}},
      {"", {}},
      {"=", {""}},
      {"==", {"", ""}},
      {"A==B", {"A", "", "B"}},
      {"A=B=", {"A", "B"}},
      {"no delimiter", {"no delimiter"}},
      {" ", {" "}},
  };
  for (const auto& row : rows) EXPECT_EQ(splitStr(row.text, '='), row.expected) << '"' << row.text << '"';
}

TEST(SplitStr, SecondFormAppendsToTheCallersVectorAndReturnsIt) {
  pieces own = {"kept"};
  const pieces& returned = splitStr("a,b", ',', own);
  EXPECT_EQ(&returned, &own);
  EXPECT_EQ(own, (pieces{"kept", "a", "b"}));
}

TEST(SplitStr, YieldsWhatSuccessiveReadsUpToTheDelimiterYield) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *rc::gen::container<std::string>(rc::gen::element('=', 'a', ' ', '\n', '\'', '\0'));
    for (char delimiter : {'=', '\n', '\0'}) {
      std::istringstream stream(text);
      pieces expected;
      for (std::string piece; std::getline(stream, piece, delimiter);) expected.push_back(piece);
      RC_ASSERT(splitStr(text, delimiter) == expected);
    }
  }));
}

TEST(WideText, PlainAsciiGoesThereAndBackInTheDefaultLocale) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *rc::gen::container<std::string>(rc::gen::inRange<char>(1, 127));
    RC_ASSERT(qv::wcs_to_mbs(qv::mbs_to_wcs(text)) == text);
    RC_ASSERT(qv::mbs_to_wcs(text) == std::wstring(text.begin(), text.end()));
  }));
}

TEST(WideText, EmptyStaysEmpty) {
  EXPECT_EQ(qv::wcs_to_mbs(L""), "");
  EXPECT_EQ(qv::mbs_to_wcs(""), L"");
}

TEST(WideText, ACharacterWithoutANarrowFormThrowsOne) {
  for (const wchar_t* text : {L"stra\u00dfe.rdf", L"\u4e2d", L"a\U0001F600b"}) {
    try {
      qv::wcs_to_mbs(text, std::locale::classic());
      ADD_FAILURE() << "converted";
    } catch (int number) {
      EXPECT_EQ(number, 1);
    }
  }
}

/// A locale of UTF-8, as a user's environment would give.
bool utf8_locale(std::locale& found) {
  for (const char* name : {"C.utf8", "C.UTF-8", "en_US.UTF-8"}) {
    try {
      found = std::locale(name);
      return true;
    } catch (const std::runtime_error&) {
    }
  }
  return false;
}

TEST(WideText, AUtf8LocaleCarriesEveryCharacterThereAndBack) {
  std::locale utf8;
  if (!utf8_locale(utf8)) GTEST_SKIP() << "no UTF-8 locale on this machine";
  EXPECT_EQ(qv::wcs_to_mbs(L"gel\u00e4nde \u4e2d \U0001F600", utf8), "gel\xc3\xa4nde \xe4\xb8\xad \xf0\x9f\x98\x80");
  EXPECT_TRUE(rc::check([&utf8] {
    const auto drawn = *rc::gen::container<std::vector<int>>(rc::gen::inRange(1, 0x10FFFF));
    std::wstring text;
    for (int c : drawn) {
      if (c < 0xD800 || c > 0xDFFF) text.push_back(static_cast<wchar_t>(c));  // no lone surrogates
    }
    RC_ASSERT(qv::mbs_to_wcs(qv::wcs_to_mbs(text, utf8), utf8) == text);
  }));
}

TEST(WideText, BrokenNarrowTextThrowsOne) {
  std::locale utf8;
  if (!utf8_locale(utf8)) GTEST_SKIP() << "no UTF-8 locale on this machine";
  for (const char* text : {"\xff", "abc\xc3(", "\xe4\xb8z"}) {
    try {
      qv::mbs_to_wcs(text, utf8);
      ADD_FAILURE() << "converted";
    } catch (int number) {
      EXPECT_EQ(number, 1);
    }
  }
}

}  // namespace
