#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/library/elf_file.h"

// What the compiler and the linker put around the code of the library, the solver and the command, read from the files.
namespace {

class Hardening : public testing::Test {
protected:
  void SetUp() override {
#if defined(QVTEST_INSTRUMENTED) || !defined(__x86_64__)
    GTEST_SKIP() << "not of an instrumented build, nor of another processor";
#endif
  }
};

std::vector<std::string> shipped() { return {QVTEST_SHIPPED}; }

TEST_F(Hardening, LeavesNothingToWriteToOnceALibraryIsBound) {
  for (const std::string& path : shipped()) {
    const qvtest::elf_file file = qvtest::read_elf(path);
    EXPECT_TRUE(file.has_relro) << path;
    EXPECT_TRUE(file.bind_now) << path << ": without it only part of the table of functions is read-only";
  }
}

TEST_F(Hardening, KeepsToAShadowStack) {
  for (const std::string& path : shipped()) EXPECT_TRUE(qvtest::read_elf(path).shadow_stack) << path;
}

TEST_F(Hardening, LooksForLibrariesInNoFolderThatTheUserHappensToBeIn) {
  for (const std::string& path : shipped()) {
    const std::string runpath = qvtest::read_elf(path).runpath.value_or("/");
    EXPECT_NE(runpath.back(), ':') << path << ": " << runpath << " ends in an empty entry, the current folder";
    std::istringstream entries(runpath);
    for (std::string entry; std::getline(entries, entry, ':');) {
      EXPECT_TRUE(entry.rfind('/', 0) == 0 || entry.rfind("$ORIGIN", 0) == 0) << path << ": " << runpath;
    }
  }
}

TEST_F(Hardening, BeginsEveryEntryPointWithALandingPlaceForIndirectCalls) {
  const auto functions = qvtest::read_elf(QVBRISK_LIBRARY).first_bytes;
  EXPECT_EQ(functions.size(), 13u);
  for (const auto& [name, bytes] : functions) EXPECT_EQ(bytes, "\xf3\x0f\x1e\xfa") << name << ": no endbr64";
}

TEST_F(Hardening, WatchesTheStackAndChecksTheLengthsOfBuffers) {
  for (const std::string& path : shipped()) {
    EXPECT_EQ(qvtest::read_elf(path).undefined.count("__stack_chk_fail"), 1u) << path;
  }
#ifdef QVTEST_OPTIMISED
  int checked = 0;
  for (const std::string& path : shipped()) {
    for (const std::string& name : qvtest::read_elf(path).undefined) {
      checked += name.size() > 4 && name.compare(name.size() - 4, 4, "_chk") == 0 ? 1 : 0;
    }
  }
  EXPECT_GT(checked, 0) << "no call of a function that knows the size of its buffer";
#endif
}

}  // namespace
