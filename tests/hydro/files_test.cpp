#include "hydro/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <locale>
#include <sstream>

#include "qvbrisk/subroutines.h"
#include "tests/hydro/hydro_scene.h"
#include "tests/hydro/module_state.h"
#include "tests/support/temporary_folder.h"

// WAVE and CURRENT files: what is read, compared with formatted stream extraction; what is refused; where the files are
// looked for.

namespace qvtest {
namespace {

using testing::ElementsAre;

/// Runs `read` and returns its message. It must store exactly one and throw the integer 1.
template <class Read>
std::string fault_of(Read&& read) {
  int ierr = 0;
  char* msg[5] = {};
  int thrown = 0;
  try {
    read(qv::fault_channel{"PREFIX : ", ierr, msg});
  } catch (int code) {
    thrown = code;
  }
  std::string message = msg[0] != nullptr ? msg[0] : "";
  delete[] msg[0];
  EXPECT_EQ(thrown, message.empty() ? 0 : 1);
  EXPECT_EQ(ierr, message.empty() ? 0 : 1);
  return message;
}

struct wave_reading {
  std::string message;
  qvhydro::wave_table wave;
};

std::string written(const std::string& text) { return write_file("table.txt", text); }

wave_reading read_wave_text(const std::string& text) {
  wave_reading r;
  qvhydro::named_file file;
  file.name = L"sea.txt";
  EXPECT_TRUE(file.data.open(written(text)));
  r.message = fault_of([&](const qv::fault_channel& channel) { qvhydro::read_wave_file(file, r.wave, channel); });
  return r;
}

struct current_reading {
  std::string message;
  qvhydro::current_table first, second;
};

current_reading read_current_text(const std::string& text) {
  current_reading r;
  qvhydro::named_file file;
  file.name = L"flow.txt";
  EXPECT_TRUE(file.data.open(written(text)));
  r.message =
      fault_of([&](const qv::fault_channel& channel) { qvhydro::read_current_file(file, r.first, r.second, channel); });
  return r;
}

std::vector<double> values(const qvhydro::interval_axis& axis) {
  std::vector<double> all;
  for (int i = 0; i <= axis.count(); ++i) all.push_back(axis[i]);
  return all;
}

std::vector<double> row(const qvhydro::number_table& table, int i, int cols) { return {table[i], table[i] + cols + 1}; }

void expect_same(const qvhydro::wave_table& wave, const qvref::wave_file& expected, const std::string& text) {
  SCOPED_TRACE(text.substr(0, 300));
  ASSERT_EQ(wave.wave_rows, expected.rows);
  ASSERT_EQ(wave.wave_cols, expected.cols);
  EXPECT_EQ(values(wave.wave_time), expected.time);
  EXPECT_EQ(values(wave.wave_x), expected.x);
  for (int i = 0; i <= expected.rows; ++i) {
    EXPECT_EQ(row(wave.wave_elevation, i, expected.cols), expected.elevation[static_cast<std::size_t>(i)]) << i;
    EXPECT_EQ(row(wave.wave_velocity, i, expected.cols), expected.velocity[static_cast<std::size_t>(i)]) << i;
  }
}

/// Reads the text by the library and by the reference: the library must refuse a count below 1, and both must read
/// everything else alike.
void compare_wave(const std::string& text) {
  std::istringstream stream(text);
  const qvref::wave_file expected = qvref::read_wave(stream);
  const wave_reading r = read_wave_text(text);
  if (expected.rows <= 0 || expected.cols <= 0) {
    const bool rows = expected.rows <= 0;
    EXPECT_EQ(r.message, "PREFIX : The WAVE file sea.txt declares " +
                             std::to_string(rows ? expected.rows : expected.cols) +
                             (rows ? " time rows" : " positions") + "; it must declare 1 or more.")
        << text;
    return;
  }
  EXPECT_EQ(r.message, "");
  expect_same(r.wave, expected, text);
}

TEST(WaveFile, HoldsAxesElevationsAndVelocitiesAndOneEntryMoreOfEach) {
  const wave_reading r = read_wave_text("2,3\n0,10,20\n0.5,1,2,3,4,5,6\n1.5,7,8,9,10,11,12\n");
  EXPECT_EQ(r.message, "");
  EXPECT_EQ(r.wave.wave_rows, 2);
  EXPECT_EQ(r.wave.wave_cols, 3);
  EXPECT_THAT(values(r.wave.wave_x), ElementsAre(0, 10, 20, 20));
  EXPECT_THAT(values(r.wave.wave_time), ElementsAre(0.5, 1.5, 1.5));
  EXPECT_THAT(row(r.wave.wave_elevation, 0, 3), ElementsAre(1, 2, 3, 3));
  EXPECT_THAT(row(r.wave.wave_velocity, 0, 3), ElementsAre(4, 5, 6, 6));
  EXPECT_THAT(row(r.wave.wave_elevation, 1, 3), ElementsAre(7, 8, 9, 9));
  EXPECT_THAT(row(r.wave.wave_velocity, 1, 3), ElementsAre(10, 11, 12, 12));
  EXPECT_THAT(row(r.wave.wave_elevation, 2, 3), ElementsAre(7, 8, 9, 9));
  EXPECT_THAT(row(r.wave.wave_velocity, 2, 3), ElementsAre(10, 11, 12, 12));
}

TEST(WaveFile, TakesAnyCharacterAsSeparatorAndAnyBlanksBetween) {
  const wave_reading plain = read_wave_text("2,2\n0,10\n0,1,2,3,4\n1,5,6,7,8\n");
  for (const char* text :
       {"2;2 0;10 0;1;2;3;4 1;5;6;7;8", "2 x\n\n 2 0 # 10\t0 | 1 : 2 / 3 ! 4\r\n\v1\f, 5 , 6 , 7 , 8 and the rest",
        "2-2 0,10 0,1,2,3,4 1,5,6,7,8", "+2,+2 +0.0,1e1 -0,1.,2.0,30e-1,.4e1 1,5,6,7,8"}) {
    const wave_reading r = read_wave_text(text);
    EXPECT_EQ(r.message, "");
    EXPECT_EQ(values(r.wave.wave_x), values(plain.wave.wave_x)) << text;
    EXPECT_EQ(values(r.wave.wave_time), values(plain.wave.wave_time)) << text;
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(row(r.wave.wave_elevation, i, 2), row(plain.wave.wave_elevation, i, 2)) << text;
      EXPECT_EQ(row(r.wave.wave_velocity, i, 2), row(plain.wave.wave_velocity, i, 2)) << text;
    }
  }
}

TEST(WaveFile, ThatIsCutAnywhereLeavesZerosBehind) {
  const std::string whole_text = "2,3\n0,10,20\n0.5,1,2,3,4,5,6\n1.5,7,8,9,-10.25,11e1,12\n";
  for (std::size_t size = 0; size <= whole_text.size(); ++size) compare_wave(whole_text.substr(0, size));
}

TEST(WaveFile, WithSomethingThatIsNoNumberLeavesZerosFromThereOn) {
  const wave_reading r = read_wave_text("2,2\n0,10\n0,1,two,3,4\n1,5,6,7,8\n");
  EXPECT_EQ(r.message, "");
  EXPECT_THAT(row(r.wave.wave_elevation, 0, 2), ElementsAre(1, 0, 0));
  EXPECT_THAT(row(r.wave.wave_velocity, 0, 2), ElementsAre(0, 0, 0));
  EXPECT_THAT(values(r.wave.wave_time), ElementsAre(0, 0, 0));
  for (const char* odd : {"nan", "inf", "1e999", "1e", ".", "-", "--1", "0x10", "1e5e5", "1.2.3", "1,,2", "\xff"}) {
    compare_wave("2,2\n0,10\n0,1," + std::string(odd) + ",3,4\n1,5,6,7,8\n");
    compare_wave("2,2\n0," + std::string(odd) + "\n0,1,2,3,4\n1,5,6,7,8\n");
    compare_wave(std::string(odd) + ",2\n0,10\n0,1,2,3,4\n1,5,6,7,8\n");
    compare_wave("2," + std::string(odd) + "\n0,10\n0,1,2,3,4\n1,5,6,7,8\n");
  }
}

TEST(WaveFile, OfRandomPiecesIsReadAsFormattedStreamsDo) {
  random_source random(7);
  const char* const pieces[] = {"1",     "2",  "3",    ",",       ",",       ",",    ";",     " ",     "\n",    "\t",
                                "0",     "-",  "+",    ".",       "5",       "e",    "E",     "1e3",   "-0.25", "x",
                                "12.75", "99", "1e-3", "0,1,2,3", "4,5,6,7", "\r\n", "1e400", "1e-400"};
  for (int i = 0; i < 4000; ++i) {
    std::string text = i % 2 == 0 ? "2,2\n" : "";
    for (int k = whole(random, 0, 40); k > 0; --k) text += pieces[whole(random, 0, 27)];
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    int rows = 0, cols = 0;
    char separator;
    stream >> rows >> separator >> cols;
    if (rows < 1000 && cols < 1000) compare_wave(text);  // the reference would take memory for them
  }
}

TEST(WaveFile, LargerThanTheReadersBufferIsReadAsFormattedStreamsDo) {
  random_source random(8);
  for (const char* separator : {",", " , ", "\n,\n\n"}) {
    qvref::wave_file wave;
    wave.rows = 40, wave.cols = 500;
    for (int i = 0; i < wave.rows; ++i) wave.time.push_back(i * 0.1);
    for (int j = 0; j < wave.cols; ++j) wave.x.push_back(j * 0.37);
    for (auto* table : {&wave.elevation, &wave.velocity}) {
      table->assign(40, std::vector<double>(500));
      for (auto& r : *table)
        for (double& v : r) v = whole(random, 0, 1) == 0 ? whole(random, -9999, 9999) / 100.0 : uniform(random, -1, 1);
    }
    const std::string text = wave_text(wave, separator);
    EXPECT_GT(text.size(), 500000U);
    compare_wave(text);
    compare_wave(text.substr(0, text.size() / 2));
  }
}

TEST(CurrentFile, HoldsTwoTablesAndOneEntryMoreOfEach) {
  const current_reading r = read_current_text("2,1\n0,5\n10,6\n3,0\n-1,7\n2,8\n5,9\n");
  EXPECT_EQ(r.message, "");
  EXPECT_EQ(r.first.mode, 1);
  EXPECT_EQ(r.second.mode, 0);
  EXPECT_THAT(values(r.first.key), ElementsAre(0, 10, 10));
  EXPECT_THAT(r.first.value, ElementsAre(5, 6, 6));
  EXPECT_THAT(values(r.second.key), ElementsAre(-1, 2, 5, 5));
  EXPECT_THAT(r.second.value, ElementsAre(7, 8, 9, 9));
}

void compare_current(const std::string& text) {
  std::istringstream stream(text);
  const qvref::current_file expected = qvref::read_current(stream);
  const current_reading r = read_current_text(text);
  SCOPED_TRACE(text);
  for (const auto* table : {&expected.first, &expected.second}) {
    if (table->count > 0) continue;
    EXPECT_EQ(r.message, "PREFIX : The CURRENT file flow.txt declares " + std::to_string(table->count) +
                             " keys; it must declare 1 or more.");
    return;
  }
  EXPECT_EQ(r.message, "");
  EXPECT_EQ(r.first.mode, expected.first.mode);
  EXPECT_EQ(r.second.mode, expected.second.mode);
  EXPECT_EQ(values(r.first.key), expected.first.key);
  EXPECT_EQ(values(r.second.key), expected.second.key);
  EXPECT_EQ(r.first.value, expected.first.value);
  EXPECT_EQ(r.second.value, expected.second.value);
}

TEST(CurrentFile, ThatIsCutAnywhereLeavesZerosBehindOrLacksATable) {
  const std::string whole_text = "2,1\n0,5\n10,6\n3,-1\n-1,7\n2,8.5\n5,9e0\n";
  for (std::size_t size = 0; size <= whole_text.size(); ++size) compare_current(whole_text.substr(0, size));
}

TEST(CurrentFile, OfRandomPiecesIsReadAsFormattedStreamsDo) {
  random_source random(9);
  const char* const pieces[] = {"1", "2", ",", ",",   ",",     ";", " ",     "\n",   "0",   "-",
                                ".", "5", "e", "1e3", "-0.25", "x", "12.75", "1e-3", "1,2", "4,5"};
  for (int i = 0; i < 4000; ++i) {
    std::string text = i % 2 == 0 ? "2,1\n" : "";
    for (int k = whole(random, 0, 30); k > 0; --k) text += pieces[whole(random, 0, 19)];
    std::istringstream stream(text);
    const current_reading r = read_current_text(text);
    if (r.first.key.count() < 1000 && r.message.find("more than") == std::string::npos) compare_current(text);
  }
}

// --- what is refused ---------------------------------------------------------------------------------------------

struct refusal_case {
  const char* text;
  const char* message;
};

const refusal_case k_refused_waves[] = {
    {"", "PREFIX : The WAVE file sea.txt declares 0 time rows; it must declare 1 or more."},
    {"none", "PREFIX : The WAVE file sea.txt declares 0 time rows; it must declare 1 or more."},
    {"0,5", "PREFIX : The WAVE file sea.txt declares 0 time rows; it must declare 1 or more."},
    {"-3,5", "PREFIX : The WAVE file sea.txt declares -3 time rows; it must declare 1 or more."},
    {"3", "PREFIX : The WAVE file sea.txt declares 0 positions; it must declare 1 or more."},
    {"3,0", "PREFIX : The WAVE file sea.txt declares 0 positions; it must declare 1 or more."},
    {"3,-1", "PREFIX : The WAVE file sea.txt declares -1 positions; it must declare 1 or more."},
    {"3 3", "PREFIX : The WAVE file sea.txt declares 0 positions; it must declare 1 or more."},
    {"99999999999,3", "PREFIX : The WAVE file sea.txt declares 0 time rows; it must declare 1 or more."},
    {"2147483647,2147483647",
     "PREFIX : The WAVE file sea.txt declares 2147483647 time rows of 2147483647 positions, which are more than the "
     "file holds."},
    {"2147483647,1\n0\n",
     "PREFIX : The WAVE file sea.txt declares 2147483647 time rows of 1 positions, which are more than the file "
     "holds."},
    {"1,70000000\n0,1,2,3,4,5\n",
     "PREFIX : The WAVE file sea.txt declares 1 time rows of 70000000 positions, which are more than the file holds."},
};

TEST(WaveFile, DeclaringNothingOrMoreThanAGigabyteItDoesNotHoldIsRefused) {
  for (const refusal_case& row : k_refused_waves) EXPECT_EQ(read_wave_text(row.text).message, row.message) << row.text;
}

const refusal_case k_refused_currents[] = {
    {"", "PREFIX : The CURRENT file flow.txt declares 0 keys; it must declare 1 or more."},
    {"-2,1", "PREFIX : The CURRENT file flow.txt declares -2 keys; it must declare 1 or more."},
    {"1,1\n0,0\n", "PREFIX : The CURRENT file flow.txt declares 0 keys; it must declare 1 or more."},
    {"1,1\n0,0\n-7,1\n", "PREFIX : The CURRENT file flow.txt declares -7 keys; it must declare 1 or more."},
    {"2000000000,1\n0,0\n",
     "PREFIX : The CURRENT file flow.txt declares 2000000000 keys, which are more than the file holds."},
    {"1,1\n0,0\n2147483647,1\n0,0\n",
     "PREFIX : The CURRENT file flow.txt declares 2147483647 keys, which are more than the file holds."},
};

TEST(CurrentFile, DeclaringNothingOrMoreThanAGigabyteItDoesNotHoldIsRefused) {
  for (const refusal_case& row : k_refused_currents) {
    EXPECT_EQ(read_current_text(row.text).message, row.message) << row.text;
  }
}

// --- where files are looked for ----------------------------------------------------------------------------------

/// A scene whose files lie in a folder that only the path of the model file names.
struct scene_elsewhere {
  TemporaryFolder folder;
  HydroScene scene{box_hull(2, 2, 2)};

  scene_elsewhere() {
    folder.write("sea.wave", wave_text(calm_water()));
    folder.write("flow.current", current_text(steady_current()));
    scene.host.log = true;
  }
  std::string call() {
    scene.host.requests.clear();
    scene.call();
    return scene.take_report();
  }
  const qvhydro::Chydro_force& element() const { return element_of(scene.parameters.id); }
  long paths_asked() const {
    return std::count(scene.host.requests.begin(), scene.host.requests.end(), std::string("path"));
  }
  std::string wave_message() const {
    return "HYDRO FORCE ERROR : Failded to open WAVE file. HYDRO FORCE ID = " + std::to_string(scene.parameters.id);
  }
  std::string current_message() const {
    return "HYDRO FORCE ERROR : Failded to open CURREWNT file. HYDRO FORCE ID = " + std::to_string(scene.parameters.id);
  }
};

TEST(FilesThatOpenAsNamed, LeaveNoPathAndAskForNone) {
  scene_elsewhere s;
  s.scene.host.strings[k_wave_string] = s.folder.wide_path("sea.wave");
  s.scene.host.strings[k_current_string] = s.folder.wide_path("flow.current");
  s.scene.host.path = s.folder.wide_path("model.x");
  EXPECT_EQ(s.call(), "");
  EXPECT_EQ(s.element().wave_path, L"");
  EXPECT_EQ(s.element().current_path, L"");
  EXPECT_EQ(s.paths_asked(), 0);
}

TEST(FilesBesideTheModel, AreFoundThereBoth) {
  scene_elsewhere s;
  s.scene.host.strings[k_wave_string] = L"sea.wave";
  s.scene.host.strings[k_current_string] = L"flow.current";
  s.scene.host.path = s.folder.wide_path("model.x");
  EXPECT_EQ(s.call(), "");
  EXPECT_EQ(s.element().wave_path, s.folder.wide_path("sea.wave"));
  EXPECT_EQ(s.element().current_path, s.folder.wide_path("flow.current"));
  EXPECT_EQ(s.paths_asked(), 1) << "the CURRENT file uses the answer that the WAVE file got";
}

TEST(FilesBesideTheModel, ACurrentFileIsNotFoundThereWhenTheWaveFileOpenedAsNamed) {
  scene_elsewhere s;
  s.scene.host.strings[k_wave_string] = s.folder.wide_path("sea.wave");
  s.scene.host.strings[k_current_string] = L"flow.current";
  s.scene.host.path = s.folder.wide_path("model.x");
  EXPECT_EQ(s.call(), s.current_message());
  EXPECT_EQ(s.paths_asked(), 0);
}

TEST(FilesBesideTheModel, AWaveFileMayBeThereWhileTheCurrentFileOpensAsNamed) {
  scene_elsewhere s;
  s.scene.host.strings[k_wave_string] = L"sea.wave";
  s.scene.host.strings[k_current_string] = s.folder.wide_path("flow.current");
  s.scene.host.path = s.folder.wide_path("model.x");
  EXPECT_EQ(s.call(), "");
  EXPECT_EQ(s.element().wave_path, s.folder.wide_path("sea.wave"));
  EXPECT_EQ(s.element().current_path, L"");
}

TEST(ModelPath, WithoutASlashOrEndingInOneAllowsNoSecondAttempt) {
  for (const std::wstring& path :
       {std::wstring(), std::wstring(L"model.x"), std::wstring(L"/tmp/"), std::wstring(L"/")}) {
    scene_elsewhere s;
    s.scene.host.strings[k_wave_string] = L"sea.wave";
    s.scene.host.path = path == L"/tmp/" ? s.folder.wide_path("") : path;
    EXPECT_EQ(s.call(), s.wave_message());
    EXPECT_EQ(s.paths_asked(), 1);
  }
}

TEST(ModelPath, UpToItsLastSlashIsWhereFilesAreLookedFor) {
  scene_elsewhere s;
  std::filesystem::create_directory(s.folder.path("deeper"));
  s.folder.write("deeper/sea.wave", wave_text(calm_water(200, 0.5)));
  s.scene.host.strings[k_wave_string] = L"deeper/sea.wave";
  s.scene.host.strings[k_current_string] = L"flow.current";
  s.scene.host.path = s.folder.wide_path("model.x");
  EXPECT_EQ(s.call(), "");
  EXPECT_EQ(s.element().wave_path, s.folder.wide_path("deeper/sea.wave"));
}

TEST(FilesThatAreNowhere, AreNamedByTheElement) {
  scene_elsewhere s;
  s.scene.host.strings[k_wave_string] = L"no such file";
  s.scene.host.path = s.folder.wide_path("model.x");
  EXPECT_EQ(s.call(), s.wave_message());
  scene_elsewhere t;
  t.scene.host.strings[k_wave_string] = L"sea.wave";
  t.scene.host.strings[k_current_string] = L"no such file";
  t.scene.host.path = t.folder.wide_path("model.x");
  EXPECT_EQ(t.call(), t.current_message());
}

TEST(AFolderInPlaceOfAFile, OpensAndDeclaresNothing) {
  scene_elsewhere s;
  s.scene.host.strings[k_wave_string] = s.folder.wide_path("");
  const std::string folder = s.folder.path("");
  EXPECT_EQ(s.call(),
            "HYDRO FORCE ERROR : The WAVE file " + folder + " declares 0 time rows; it must declare 1 or more.");
}

TEST(FileNames, ThatHaveNoNarrowFormAreReportedWithoutAText) {
  scene_elsewhere s;
  s.scene.host.strings[k_wave_string] = L"\xd800.wave";
  s.scene.call();
  ASSERT_EQ(s.scene.host.reports.size(), 1U);
  EXPECT_TRUE(s.scene.host.reports[0].messages.empty());
}

}  // namespace
}  // namespace qvtest
