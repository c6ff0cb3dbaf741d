#include "common/files/data_file.h"

#include <gtest/gtest.h>

#include <charconv>
#include <string>
#include <vector>

#include "tests/support/scripted_host.h"
#include "tests/support/temporary_folder.h"

namespace {

using qvtest::ScriptedHost;

/// All lines of a file, each with its number before it.
std::vector<std::string> lines_of(qv::data_file& file) {
  std::vector<std::string> lines;
  qv::line_source source(file);
  for (qv::text_line line; source.next(line);) {
    lines.push_back(std::to_string(line.number) + ":" + std::string(line.begin, line.end));
  }
  return lines;
}

TEST(DataFile, ComesLineByLineAndUnchanged) {
  const qvtest::TemporaryFolder folder;
  std::string bytes;
  for (int k = 0; k < 256; ++k) bytes.push_back(static_cast<char>(k));  // a line end among them
  const std::string wide(700000, '7');                                  // longer than any buffer to begin with
  struct {
    const char* why;
    std::string content;
    std::vector<std::string> lines;
  } const rows[] = {{"empty", "", {}},
                    {"an empty line", "\n", {"1:"}},
                    {"without an end", "a\nb", {"1:a", "2:b"}},
                    {"with an end", "a\r\n\nb\n", {"1:a\r", "2:", "3:b"}},
                    {"every byte", bytes, {"1:" + bytes.substr(0, 10), "2:" + bytes.substr(11)}},
                    {"long lines", wide + "\nx\n" + wide, {"1:" + wide, "2:x", "3:" + wide}}};
  for (const auto& row : rows) {
    qv::data_file file;
    ASSERT_TRUE(file.open(folder.write("file", row.content))) << row.why;
    EXPECT_EQ(file.bytes_left(), row.content.size()) << row.why;
    EXPECT_EQ(lines_of(file), row.lines) << row.why;
    EXPECT_EQ(file.bytes_left(), 0U) << row.why;
  }
}

TEST(DataFile, LinesAcrossTheBuffersEndsAreWhole) {
  const qvtest::TemporaryFolder folder;
  std::string content;
  std::vector<std::string> expected;
  for (int k = 0; k < 60000; ++k) {
    const std::string line(static_cast<std::size_t>(k % 37), static_cast<char>('a' + k % 26));
    content += line + "\n";
    expected.push_back(std::to_string(k + 1) + ":" + line);
  }
  qv::data_file file;
  ASSERT_TRUE(file.open(folder.write("file", content)));
  EXPECT_EQ(lines_of(file), expected);
}

TEST(DataFile, NumbersComeByTheLineWhereverTheBufferEnds) {
  const qvtest::TemporaryFolder folder;
  std::string content;
  for (int k = 1; k <= 40000; ++k) {
    content += std::to_string(k) + " " + std::to_string(k / 2) + (k % 2 == 0 ? ".0" : ".5") +
               std::string(static_cast<std::size_t>(k % 5), ' ') + (k % 7 == 0 ? " 3 behind\n" : "\n");
  }
  content += "1\n40002 20001";  // a line with too few numbers, and one without an end
  qv::data_file file;
  ASSERT_TRUE(file.open(folder.write("file", content)));
  qv::line_source source(file);
  double numbers[2] = {};
  EXPECT_FALSE(source.next_numbers(numbers)) << "nothing is at hand yet";
  int by_numbers = 0;
  for (int k = 1; k <= 40002; ++k) {
    if (source.next_numbers(numbers)) {
      ++by_numbers;
    } else {
      qv::text_line line;
      ASSERT_TRUE(source.next(line)) << k;
      ASSERT_EQ(line.number, k);
      if (k == 40001) continue;
      const char* at = std::from_chars(line.begin, line.end, numbers[0]).ptr;
      ASSERT_EQ(std::from_chars(at + 1, line.end, numbers[1]).ec, std::errc()) << k;
    }
    ASSERT_EQ(source.number(), k);
    ASSERT_EQ(numbers[0], k);
    ASSERT_EQ(numbers[1], 0.5 * k);
  }
  EXPECT_GT(by_numbers, 39000) << "lines across the buffer's ends, and those at the end, are left to next()";
  EXPECT_FALSE(source.next_numbers(numbers));
}

TEST(DataFile, MissingIsNotOpenedAndAFolderReadsAsEmpty) {
  const qvtest::TemporaryFolder folder;
  qv::data_file file;
  EXPECT_FALSE(file.open(folder.path("missing")));
  ASSERT_TRUE(file.open(folder.path("")));
  EXPECT_TRUE(lines_of(file).empty());
}

TEST(DataFile, WithoutASizeIsReadToItsEnd) {
  qv::data_file file;
  ASSERT_TRUE(file.open("/proc/self/status"));  // says its size is 0
  EXPECT_GT(lines_of(file).size(), 20U);
}

TEST(StringEntity, IsFetchedWithItsLength) {
  ScriptedHost host;
  host.strings[4] = L"road.rdf";
  std::wstring text;
  int length = 99;
  ASSERT_TRUE(qv::fetch_string(host.handle(), 4, text, length));
  EXPECT_EQ(text, L"road.rdf");
  EXPECT_EQ(length, 8);
}

TEST(StringEntity, MissingGivesAnEmptyText) {
  ScriptedHost host;
  std::wstring text = L"old";
  int length = 99;
  ASSERT_TRUE(qv::fetch_string(host.handle(), 4, text, length));
  EXPECT_EQ(text, L"");
  EXPECT_EQ(length, 0);
}

TEST(StringEntity, OfTheLongestNameThatFitsArrivesWhole) {
  ScriptedHost host;
  host.strings[1] = std::wstring(1023, L'n');
  std::wstring text;
  int length = 0;
  ASSERT_TRUE(qv::fetch_string(host.handle(), 1, text, length));
  EXPECT_EQ(text, host.strings[1]);
}

}  // namespace
