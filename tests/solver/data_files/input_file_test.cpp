#include "solver/data_files/input_file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

qvslv::InputFile input(const std::string& path) { return {"road", fs::path(path).filename().string(), path}; }

template <class Call>
std::string reason_of(Call&& call) {
  try {
    call();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

TEST(TakeDigests, TellsOfEachFileWhatIsInIt) {
  const qvtest::TemporaryFolder folder;
  const std::string long_text(300'000, 'x');
  const auto inputs = qvslv::take_digests({input(folder.write("a", "abc")), input(folder.write("b", long_text))}).get();
  ASSERT_EQ(inputs.size(), 2U);
  EXPECT_EQ(inputs[0].digest.sha256, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(inputs[0].digest.bytes, 3U);
  EXPECT_EQ(inputs[1].digest.sha256, qvslv::digest_of_text(long_text).sha256);
  EXPECT_EQ(inputs[1].digest.bytes, long_text.size());
  for (const qvslv::InputFile& taken : inputs) EXPECT_TRUE(qvslv::is_unchanged(taken));
}

TEST(TakeDigests, LeavesADigestThatIsThere) {
  qvslv::InputFile model = input("/nowhere/model.toml");
  model.digest = qvslv::digest_of_text("as it was read");
  const auto inputs = qvslv::take_digests({model}).get();
  EXPECT_EQ(inputs[0].digest.sha256, model.digest.sha256);
}

TEST(TakeDigests, FileThatCannotBeOpenedIsRefusedAtOnce) {
  EXPECT_EQ(reason_of([] { qvslv::take_digests({input("/proc/none")}); }),
            std::string("cannot read /proc/none: ") + std::strerror(ENOENT));
}

TEST(TakeDigests, FileThatCannotBeReadIsToldOfWithTheDigests) {
  const qvtest::TemporaryFolder folder;
  fs::create_directory(folder.path("dir"));
  auto digests = qvslv::take_digests({input(folder.path("dir"))});
  EXPECT_EQ(reason_of([&] { digests.get(); }),
            "cannot read " + folder.path("dir") + ": " + std::string(std::strerror(EISDIR)));
}

// However the reading and the renaming fall in time.
TEST(TakeDigests, MeansTheFilesThatBoreTheNamesAtTheCall) {
  const qvtest::TemporaryFolder folder;
  const std::string before(3'000'000, 'b'), after(before.size(), 'a'), path = folder.write("road", before);
  folder.write("other", after);
  auto digests = qvslv::take_digests({input(path)});
  fs::rename(folder.path("other"), path);
  const qvslv::InputFile taken = digests.get()[0];
  EXPECT_EQ(taken.digest.sha256, qvslv::digest_of_text(before).sha256);
  EXPECT_FALSE(qvslv::is_unchanged(taken));
}

TEST(IsUnchanged, OnlyTheContentsCount) {
  const qvtest::TemporaryFolder folder;
  const std::string path = folder.write("road", "abc");
  const qvslv::InputFile taken = qvslv::take_digests({input(path)}).get()[0];
  fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(5));
  EXPECT_TRUE(qvslv::is_unchanged(taken)) << "touched";
  std::ofstream(path, std::ios::app) << "d";
  fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(10));
  EXPECT_FALSE(qvslv::is_unchanged(taken)) << "longer";
  fs::remove(path);
  EXPECT_FALSE(qvslv::is_unchanged(taken)) << "gone";
}

TEST(IsUnchanged, FileThatWasWrittenToWhileItWasReadIsNot) {
  const qvtest::TemporaryFolder folder;
  qvslv::InputFile taken = qvslv::take_digests({input(folder.write("road", "abc"))}).get()[0];
  taken.changed_while_read = true;
  EXPECT_FALSE(qvslv::is_unchanged(taken));
}

}  // namespace
