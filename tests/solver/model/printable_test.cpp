#include "solver/model/printable.h"

#include <gtest/gtest.h>

namespace {

using qvslv::is_printable_line;
using qvslv::printable;

struct text_case {
  const char* why;
  std::string text;
  const char* shown;
};

TEST(Printable, WhatATerminalWouldObeyIsShownAsAnEscape) {
  const text_case cases[] = {
      {"plain text", "wheel [m/s^2]", "wheel [m/s^2]"},
      {"other writings and signs",
       "r\xc3\xa4"
       "der \xe8\xbd\xae \xf0\x9f\x9a\x97",
       "r\xc3\xa4"
       "der \xe8\xbd\xae \xf0\x9f\x9a\x97"},
      {"a backslash of the text's own", "C:\\x1b", "C:\\x1b"},
      {"the start of a terminal's command", "a\x1b[2Jb", "a\\x1b[2Jb"},
      {"the title of the window", "\x1b]0;t\x07", "\\x1b]0;t\\x07"},
      {"the same in one character (C1)",
       "\xc2\x9b"
       "2J",
       "\\x9b2J"},
      {"a bare byte of C1",
       "\x9b"
       "2J",
       "\\x9b2J"},
      {"a carriage return that hides the line before", "ok\rno", "ok\\rno"},
      {"a tabulator", "a\tb", "a\\tb"},
      {"delete", "a\x7f", "a\\x7f"},
      {"a zero", std::string("a\0b", 3), "a\\x00b"},
      {"writing from right to left",
       "a\xe2\x80\xae"
       "b",
       "a\\u202eb"},
      {"an isolated direction", "\xe2\x81\xa6", "\\u2066"},
      {"a character cut off", "a\xe8\xbd", "a\\xe8\\xbd"},
      {"a slash in too many bytes", "\xc0\xaf", "\\xc0\\xaf"},
      {"half of a pair", "\xed\xa0\x80", "\\xed\\xa0\\x80"},
      {"lines stay lines", "a\nb\n", "a\nb\n"},
  };
  for (const text_case& row : cases) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(printable(row.text), row.shown);
    EXPECT_EQ(is_printable_line(row.text), row.text == row.shown && row.text.find('\n') == std::string::npos);
  }
}

}  // namespace
