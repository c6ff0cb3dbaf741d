#include "solver/data_files/made_file.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "solver/data_files/file_digest.h"
#include "solver/data_files/make_current.h"
#include "solver/data_files/make_road.h"
#include "solver/data_files/make_wave.h"
#include "tests/support/temporary_folder.h"

namespace {

std::string text_of(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

// Published: FIPS 180-2, appendix B; the digest of no bytes is well known.
TEST(FileDigest, IsThatOfThePublishedExamples) {
  EXPECT_EQ(qvslv::digest_of_text("abc").sha256, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(qvslv::digest_of_text("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq").sha256,
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(qvslv::digest_of_text("").sha256, "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  const qvtest::TemporaryFolder folder;
  const std::string million(1'000'000, 'a');
  const qvslv::FileDigest digest = qvslv::digest_of_file(folder.write("a", million));
  EXPECT_EQ(digest.sha256, "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
  EXPECT_EQ(digest.bytes, million.size());
}

TEST(FileDigest, OfAFileThatIsNotThereGivesTheSystemsReason) {
  try {
    qvslv::digest_of_file("/proc/none");
    FAIL() << "no reason given";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(error.what(), std::string("cannot read /proc/none: ") + std::strerror(ENOENT));
  }
}

TEST(MadePath, DiffersForOtherSettingsAndStaysForTheSame) {
  const std::string path = qvslv::made_path("/cache", "roads/field.rdf", "settings A");
  EXPECT_THAT(path, testing::MatchesRegex("/cache/field-[0-9a-f]+\\.rdf"));
  EXPECT_EQ(path, qvslv::made_path("/cache", "roads/field.rdf", "settings A"));
  EXPECT_NE(path, qvslv::made_path("/cache", "roads/field.rdf", "settings B"));
}

TEST(WriteFileWhole, ManyWritersAndAReaderAlwaysSeeAWholeFile) {
  const qvtest::TemporaryFolder folder;
  const std::string path = folder.path("made"), text(300'000, 'x');
  qvslv::write_file_whole(text, path);
  std::vector<std::thread> writers;
  for (int i = 0; i < 4; ++i)
    writers.emplace_back([&] {
      for (int k = 0; k < 20; ++k) qvslv::write_file_whole(text, path);
    });
  for (int k = 0; k < 200; ++k) EXPECT_EQ(text_of(path).size(), text.size());
  for (std::thread& writer : writers) writer.join();
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(std::filesystem::path(path).parent_path()), {}), 1);
}

// A cache is shared by versions of this program. If these fail because a maker writes other bytes on purpose, raise
// k_maker_version and put the new digests here.
TEST(MakerVersion, BelongsToTheBytesThatTheMakersWrite) {
  qvslv::RoadSettings road;
  road.kind = qvslv::RoadKind::rolling;
  road.size_x = road.size_y = 4;
  road.spacing = 0.5;
  road.amplitude = 0.1;
  road.wavelength = 2;
  qvslv::WaveSettings wave;
  wave.kind = qvslv::WaveKind::jonswap;
  wave.height = 1;
  wave.period = 5;
  wave.duration = 2;
  wave.extent = 10;
  wave.gravity = 9.81;
  wave = qvslv::completed(wave);
  const qvtest::TemporaryFolder folder;
  qvslv::write_road_file(road, folder.path("a.rdf"));
  qvslv::write_wave_file(wave, folder.path("a.wave"));
  qvslv::write_current_file({qvslv::parse_profile("power:1.5@y:0:40"), {}}, folder.path("a.current"));
  ASSERT_EQ(qvslv::k_maker_version, 1);
  EXPECT_EQ(qvslv::digest_of_file(folder.path("a.rdf")).sha256,
            "8e758d5e5a37b78d4b801f4dcd70e751fd5c9ff53fd6a66cf92fc0ab1ca0e0c4");
  EXPECT_EQ(qvslv::digest_of_file(folder.path("a.wave")).sha256,
            "9cd6b08b0ba29d0f43f58f59f4ef81e38760a61b883a63840358a6bd1cb9db22");
  EXPECT_EQ(qvslv::digest_of_file(folder.path("a.current")).sha256,
            "defe71b5b44ebddc12fba0ed2e56eff515aa0f0d9f8b48d714d453bac4bb50d7");
}

}  // namespace
