#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "tests/soilrdf/read_text.h"

// Files as users write them, in tests/data: good ones are read, broken ones are refused with the text beside them.
namespace {

using qvtest::read_name;
using qvtest::reading;

std::string content_of(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

template <class Check>
int for_each_road(const char* folder, Check&& check) {
  int count = 0;
  for (const auto& file : std::filesystem::directory_iterator(std::filesystem::path(QVTEST_DATA) / folder)) {
    if (file.path().extension() != ".rdf") continue;
    SCOPED_TRACE(file.path().filename().string());
    const std::string name = file.path().string();
    check(read_name({name.begin(), name.end()}, L""), file.path());
    ++count;
  }
  return count;
}

TEST(RdfCorpus, GoodAndOddFilesAreRead) {
  const int count = for_each_road("roads", [](const reading& r, const std::filesystem::path&) {
    EXPECT_TRUE(r.returned) << r.message;
    EXPECT_EQ(static_cast<size_t>(r.road.number_of_nodes), r.road.nodes.size());
    EXPECT_EQ(static_cast<size_t>(r.road.number_of_elements), r.road.elements.size());
    EXPECT_FALSE(r.road.cells.empty());
  });
  EXPECT_GE(count, 4);
}

TEST(RdfCorpus, BrokenFilesAreRefusedWithTheirMessage) {
  const int count = for_each_road("broken_roads", [](const reading& r, const std::filesystem::path& path) {
    EXPECT_EQ(r.thrown, 1);
    EXPECT_EQ(r.message, content_of(std::filesystem::path(path).replace_extension(".message")));
  });
  EXPECT_GE(count, 6);
}

}  // namespace
