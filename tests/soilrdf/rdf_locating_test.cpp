#include <gtest/gtest.h>

#include <filesystem>
#include <locale>
#include <stdexcept>
#include <string>

#include "tests/soilrdf/read_text.h"
#include "tests/support/temporary_folder.h"

namespace {

using qvtest::read_name;
using qvtest::reading;
using qvtest::TemporaryFolder;

const char* const k_not_opened = "READ RDF ERROR : FAILED TO OPEN RDF FILE. ";

void expect_not_opened(const reading& r) {
  EXPECT_FALSE(r.returned);
  EXPECT_EQ(r.thrown, 1);
  EXPECT_EQ(r.count, 1);
  EXPECT_EQ(r.message, k_not_opened);
}

TEST(RdfLocating, TheNameAsGivenIsTriedFirstAndTheHostNotAsked) {
  const TemporaryFolder folder;
  folder.write("road.rdf", qvtest::k_two_triangles);
  const reading r = read_name(folder.wide_path("road.rdf"), folder.wide_path("elsewhere/model.x"));
  EXPECT_TRUE(r.returned);
  EXPECT_EQ(r.path_requests, 0);
}

TEST(RdfLocating, AFileBesideTheModelIsFoundBySecondAttempt) {
  const TemporaryFolder folder;
  folder.write("road.rdf", qvtest::k_two_triangles);
  std::filesystem::create_directory(folder.path("sub"));
  folder.write("sub/other.rdf", qvtest::k_two_triangles);
  for (const char* name : {"road.rdf", "sub/other.rdf", "./road.rdf", "sub/../road.rdf"}) {
    const std::string narrow = name;
    const reading r = read_name({narrow.begin(), narrow.end()}, folder.wide_path("model.x"));
    EXPECT_TRUE(r.returned) << name << ": " << r.message;
    EXPECT_EQ(r.path_requests, 1) << name;
  }
}

TEST(RdfLocating, AModelPathWithoutAFileNameGivesNoSecondAttempt) {
  const TemporaryFolder folder;
  folder.write("road.rdf", qvtest::k_two_triangles);
  for (const std::wstring& path : {folder.wide_path(""), std::wstring()}) {
    const reading r = read_name(L"road.rdf", path);
    expect_not_opened(r);
    EXPECT_EQ(r.path_requests, 1);
  }
}

/// The working folder of the process, put back afterwards.
class working_folder {
public:
  explicit working_folder(const std::string& path) : m_before(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  ~working_folder() { std::filesystem::current_path(m_before); }

private:
  std::filesystem::path m_before;
};

TEST(RdfLocating, AModelPathWithoutAFolderIsTheWorkingFolder) {
  const TemporaryFolder folder;
  const working_folder inside(folder.path(""));
  expect_not_opened(read_name(L"road.rdf", L"model.x"));
  folder.write("road.rdf", qvtest::k_two_triangles);
  EXPECT_TRUE(read_name(L"road.rdf", L"model.x").returned);
}

TEST(RdfLocating, AMissingFileIsReportedOnce) {
  const TemporaryFolder folder;
  expect_not_opened(read_name(folder.wide_path("none.rdf"), folder.wide_path("model.x")));
  expect_not_opened(read_name(L"", L""));
  expect_not_opened(read_name(L"none.rdf", std::wstring(1023, L'p')));
}

TEST(RdfLocating, APathLongerThanTheHostsBufferIsNoPath) {
  expect_not_opened(read_name(L"none.rdf", L"/tmp/" + std::wstring(2000, L'p')));
}

TEST(RdfLocating, AFolderReadsAsAnEmptyFile) {
  const TemporaryFolder folder;
  const reading r = read_name(folder.wide_path(""), L"");
  EXPECT_EQ(r.thrown, 1);
  EXPECT_NE(r.message.find("THE LONGITUDINAL DIRECTION"), std::string::npos) << r.message;
}

TEST(RdfLocating, AnEmptyNameBesideAModelIsTheModelsFolder) {
  const TemporaryFolder folder;
  const reading r = read_name(L"", folder.wide_path("model.x"));
  EXPECT_NE(r.message.find("THE LONGITUDINAL DIRECTION"), std::string::npos) << r.message;
}

TEST(RdfLocating, ANameWithoutANarrowFormThrowsOneWithoutAMessage) {
  const reading r = read_name(L"road\xd800.rdf", L"/tmp/model.x");
  EXPECT_EQ(r.thrown, 1);
  EXPECT_EQ(r.count, 0);
  EXPECT_EQ(r.message, "");
  EXPECT_EQ(r.path_requests, 0);
}

TEST(RdfLocating, AModelPathWithoutANarrowFormThrowsOneWithoutAMessage) {
  const reading r = read_name(L"none.rdf", L"/tmp/\xd800/model.x");
  EXPECT_EQ(r.thrown, 1);
  EXPECT_EQ(r.count, 0);
  EXPECT_EQ(r.message, "");
}

TEST(RdfLocating, InAUtf8LocaleANameOutsideAsciiIsFound) {
  std::locale utf8;
  try {
    utf8 = std::locale("C.UTF-8");
  } catch (const std::runtime_error&) {
    GTEST_SKIP() << "no UTF-8 locale on this machine";
  }
  const TemporaryFolder folder;
  folder.write("gel\xc3\xa4nde.rdf", qvtest::k_two_triangles);
  const std::locale before = std::locale::global(utf8);
  const reading beside = read_name(L"gel\u00e4nde.rdf", folder.wide_path("model.x"));
  std::locale::global(before);
  EXPECT_TRUE(beside.returned) << beside.message;
}

}  // namespace
