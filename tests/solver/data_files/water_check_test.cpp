#include "solver/data_files/water_check.h"

#include <gmock/gmock.h>

#include "tests/solver/data_files/water_library.h"
#include "tests/support/temporary_folder.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string k_good_wave = R"(3,2
0,10
0,0.1,0.2,0.01,0.02
1,0.3,0.4,0.03,0.04
2,0.5,0.6,0.05,0.06
a remark
)";

const std::string k_good_current = R"(2,0
-5,1
5,2
2,1
0,0.5
10,0.25
a remark
)";

std::string spoilt(const std::string& good, const std::string& from, const std::string& to) {
  std::string text = good;
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

std::string wave(const std::string& from, const std::string& to) { return spoilt(k_good_wave, from, to); }
std::string current(const std::string& from, const std::string& to) { return spoilt(k_good_current, from, to); }

/// "error|warning line: text"
std::vector<std::string> texts_of(const qvslv::Findings& found) {
  std::vector<std::string> texts;
  for (const qvslv::Finding& finding : found)
    texts.push_back(std::string(level_name(finding.level)) + " " + std::to_string(finding.at.line) + ": " +
                    finding.text);
  return texts;
}

TEST(WaterCheck, GoodFilesHaveNoFindings) {
  EXPECT_TRUE(qvslv::check_wave_text(k_good_wave).found.empty());
  EXPECT_TRUE(qvslv::check_current_text(k_good_current).found.empty());
}

TEST(WaterCheck, ForeignSeparatorsAndRemarksThatDoNoHarmAreNotComplainedOf) {
  std::string text = k_good_wave;
  for (char& c : text) c = c == ',' ? ';' : c;
  EXPECT_TRUE(qvslv::check_wave_text(text).found.empty());
  EXPECT_TRUE(qvslv::check_wave_text(wave("a remark\n", "")).found.empty());
  EXPECT_TRUE(qvslv::check_wave_text(wave("0.06\na remark\n", "0.06")).found.empty());
}

struct trap_case {
  const char* why;
  std::string text;
  const char* finding;
};

const trap_case k_wave_traps[] = {
    {"numbers parted by blanks alone", "2 12\n", "warning 1: '1' was taken for the separator between two numbers"},
    {"a decimal comma in a row", wave("0.1,0.2", "0,1,0,2"),
     "warning 3: ',0.01,0.02' cannot be read, but the counts promise more"},
    {"a unit behind a number", wave("0.3,", "0.3m,"), "warning 4: 'm' was taken for the separator"},
    {"a blank in place of a comma", wave("0.3,0.4", "0.3 0.4"), "warning 4: '0' was taken for the separator"},
    {"a word among the numbers", wave("0.3", "none"), "warning 4: 'none,0.4,0.03,0.04' cannot be read"},
    {"a heading", "time rows 3\n", "error 0: the number of times (T) is 0; it must be 1 or more"},
    {"no positions", wave("3,2", "3,0"), "error 0: the number of positions (X) is 0; it must be 1 or more"},
    {"a negative count", wave("3,2", "-3,2"), "error 0: the number of times (T) is -3; it must be 1 or more"},
    {"too many rows declared", wave("3,2", "4,2"), "warning 6: 'a' cannot be read, but the counts promise more"},
    {"a file that breaks off", k_good_wave.substr(0, k_good_wave.find("0.05")),
     "warning 5: the file ends here, but the counts promise more; all the rest stays 0"},
    {"too few rows declared", wave("3,2", "2,2"), "warning 5: more numbers follow than the counts promise"},
    {"a table that no file holds", "40000,40000\n0,1\n",
     "error 1: the counts declare a table of more than 1 GiB, which the file cannot fill"},
    {"times that go back", wave("2,0.5", "0.5,0.5"), "warning 0: the times must increase; number 3 is 0.5 after 1"},
    {"positions that stand still", wave("0,10", "10,10"),
     "warning 0: the positions must increase; number 2 is 10 after 10"},
    {"positions that begin beyond 0", wave("0,10", "5,10"),
     "warning 0: the positions begin at 5: between 0 and there the water stands at 0; let them begin at 0"},
    {"positions that begin below 0", wave("0,10", "-5,10"),
     "warning 0: the positions begin at -5: below 0 the table is not used, the water is level and there is no drag; "
     "move the water marker and begin at 0"},
    {"one position", "1,1\n0\n0,1,0\n", "warning 0: there is one position only"},
    {"an empty file", "", "error 0: the number of times (T) is 0; it must be 1 or more"},
};

const trap_case k_current_traps[] = {
    {"a key that goes back", current("5,2", "-7,2"),
     "warning 0: the keys of the table along x must increase; number 2 is -7 after -5"},
    {"an unknown mode", current("2,0", "2,3"),
     "warning 0: mode 3 of the table along x acts like 0 (over y); write 0, or 1 for a table over x"},
    {"one pair over x", current("2,1\n0,0.5\n", "1,1\n"),
     "warning 0: the table along y has one pair and mode 1: no position lies between two, the speed is 0"},
    {"an empty table", current("2,1\n0,0.5\n10,0.25", "0,1"),
     "error 0: the number of pairs of the table along y (C2) is 0; it must be 1 or more"},
    {"one table only", "2,0\n-5,1\n5,2\n", "error 0: the number of pairs of the table along y (C2) is 0"},
    {"too few pairs declared", current("2,1\n0", "1,1\n0"), "warning 6: more numbers follow than the counts promise"},
    {"too many pairs declared", current("2,1\n0", "3,1\n0"), "warning 7: 'a' cannot be read"},
    {"a blank in place of a comma", current("5,2", "5 2"), "warning 3: '2' was taken for the separator"},
    {"a table that no file holds", "2000000000,0\n1,1\n",
     "error 0: the table along x is of more than 1 GiB, which the file cannot fill"},
};

TEST(WaterCheck, EveryTrapIsFound) {
  for (const trap_case& row : k_wave_traps) {
    SCOPED_TRACE(row.why);
    EXPECT_THAT(texts_of(qvslv::check_wave_text(row.text).found), Contains(HasSubstr(row.finding)));
  }
  for (const trap_case& row : k_current_traps) {
    SCOPED_TRACE(row.why);
    EXPECT_THAT(texts_of(qvslv::check_current_text(row.text).found), Contains(HasSubstr(row.finding)));
  }
}

TEST(WaterCheck, IsRefusedHereExactlyWhereTheLibraryRefuses) {
  const qvtest::TemporaryFolder folder;
  std::string message;
  const auto refused = [](const qvslv::Findings& found) {
    for (const qvslv::Finding& finding : found)
      if (finding.level == qvslv::Level::error) return true;
    return false;
  };
  for (const trap_case& row : k_wave_traps) {
    SCOPED_TRACE(row.why);
    qvhydro::wave_table table;
    EXPECT_NE(qvtest::library_reads_wave(folder.write("a.wave", row.text), table, message),
              refused(qvslv::check_wave_text(row.text).found));
    EXPECT_EQ(qvslv::read_wave_text(row.text).has_value(), message.empty());
  }
  for (const trap_case& row : k_current_traps) {
    SCOPED_TRACE(row.why);
    qvhydro::current_table along_x, along_y;
    EXPECT_NE(qvtest::library_reads_current(folder.write("a.current", row.text), along_x, along_y, message),
              refused(qvslv::check_current_text(row.text).found));
  }
}

void expect_same(const std::vector<std::vector<double>>& mine, const qvhydro::number_table& library) {
  for (size_t i = 0; i < mine.size(); ++i)
    for (size_t j = 0; j < mine[i].size(); ++j) EXPECT_EQ(mine[i][j], library[static_cast<int>(i)][j]);
}

TEST(WaterCheck, OddFilesAreReadHereAsInTheLibrary) {
  const qvtest::TemporaryFolder folder;
  for (const trap_case& row : k_wave_traps) {
    SCOPED_TRACE(row.why);
    qvhydro::wave_table library;
    std::string message;
    if (!qvtest::library_reads_wave(folder.write("a.wave", row.text), library, message)) continue;
    const qvslv::WaveFile wave = *qvslv::read_wave_text(row.text);
    ASSERT_EQ(wave.time.size(), static_cast<size_t>(library.wave_rows));
    ASSERT_EQ(wave.x.size(), static_cast<size_t>(library.wave_cols));
    for (int i = 0; i < library.wave_rows; ++i) EXPECT_EQ(wave.time[static_cast<size_t>(i)], library.wave_time[i]);
    for (int j = 0; j < library.wave_cols; ++j) EXPECT_EQ(wave.x[static_cast<size_t>(j)], library.wave_x[j]);
    expect_same(wave.elevation, library.wave_elevation);
    expect_same(wave.velocity, library.wave_velocity);
  }
}

TEST(WaterCheck, WaveFileThatIsNotThereGivesNoTable) {
  EXPECT_FALSE(qvslv::read_wave_file("no_such.wave").has_value());
  EXPECT_FALSE(qvslv::read_wave_file(".").has_value());
}

}  // namespace
