#include "common/data_file.h"

#include <gtest/gtest.h>

#include <string>

#include "support/scripted_host.h"
#include "support/temporary_folder.h"

namespace {

using qvtest::ScriptedHost;

std::string as_string(const qv::file_text& text) { return {text.data.data(), text.size}; }

TEST(DataFile, IsReadWholeAndUnchanged) {
  const qvtest::TemporaryFolder folder;
  std::string bytes = "line\r\nno end";
  for (int k = 0; k < 256; ++k) bytes.push_back(static_cast<char>(k));
  struct {
    const char* why;
    std::string content;
  } const rows[] = {{"empty", ""}, {"one byte", "x"}, {"every byte", bytes}, {"large", std::string(300000, '7') + "8"}};
  for (const auto& row : rows) {
    qv::file_text text;
    ASSERT_TRUE(qv::read_whole_file(folder.write("file", row.content), text)) << row.why;
    EXPECT_EQ(as_string(text), row.content) << row.why;
  }
}

TEST(DataFile, MissingIsNotReadAndAFolderReadsAsEmpty) {
  const qvtest::TemporaryFolder folder;
  qv::file_text text;
  EXPECT_FALSE(qv::read_whole_file(folder.path("missing"), text));
  ASSERT_TRUE(qv::read_whole_file(folder.path(""), text));
  EXPECT_EQ(text.size, 0u);
}

TEST(DataFile, WithoutASizeIsReadToItsEnd) {
  qv::file_text text;
  ASSERT_TRUE(qv::read_whole_file("/proc/self/status", text));  // says its size is 0
  EXPECT_NE(as_string(text).find("VmSize"), std::string::npos);
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
