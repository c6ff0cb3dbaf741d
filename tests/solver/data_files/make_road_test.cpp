#include "solver/data_files/make_road.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <locale>
#include <map>
#include <sstream>

#include "solver/data_files/road_check.h"
#include "tests/support/exact_text.h"

namespace {

namespace fs = std::filesystem;
using qvslv::RoadKind;
using qvslv::RoadSettings;

/// The road's text taken apart by plain stream reading, independent of the maker and of the product's readers.
struct ParsedRoad {
  std::map<std::string, std::string> keys;
  std::vector<std::array<double, 3>> nodes;
  std::vector<std::array<int, 3>> triangles;
};

ParsedRoad parsed(const std::string& text) {
  ParsedRoad road;
  std::istringstream stream(text);
  std::string line;
  const auto block_line = [&] {
    while (std::getline(stream, line) && line[0] == '{') {
    }
    std::istringstream fields(line);
    fields.imbue(std::locale::classic());
    return fields;
  };
  while (std::getline(stream, line)) {
    const size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string key = line.substr(0, line.find_first_of(" ="));
    road.keys[key] = line.substr(equals + 1);
    const int count = key.rfind("NUMBER_OF_", 0) == 0 ? std::stoi(road.keys[key]) : 0;
    for (int i = 0; i < count; ++i) {
      std::istringstream fields = block_line();
      if (key == "NUMBER_OF_NODES") {
        int number = 0;
        std::array<double, 3> p = {};
        fields >> number >> p[0] >> p[1] >> p[2];
        EXPECT_EQ(number, i + 1);
        road.nodes.push_back(p);
      } else {
        std::array<int, 3> t = {};
        double value = -1;
        fields >> t[0] >> t[1] >> t[2] >> value;
        EXPECT_FALSE(fields.fail());
        road.triangles.push_back(t);
      }
    }
    if (count > 0) {
      std::getline(stream, line);
      EXPECT_EQ(line, "") << "a block is followed by an empty line";
    }
  }
  return road;
}

RoadSettings settings(RoadKind kind) {
  RoadSettings s;
  s.kind = kind;
  s.size_x = 6;
  s.size_y = 3;
  s.corner_x = -2;
  s.corner_y = -1;
  s.spacing = 0.25;
  s.soil_name = "dry_sand";
  s.soil = qvslv::find_soil_preset("dry_sand")->soil;
  if (kind == RoadKind::slope) s.grade = 0.15;
  if (kind == RoadKind::sine || kind == RoadKind::rolling) {
    s.amplitude = 0.2;
    s.wavelength = 2;
  }
  return s;
}

constexpr RoadKind k_all_kinds[] = {RoadKind::flat, RoadKind::slope, RoadKind::sine, RoadKind::rolling};
constexpr double k_ten_digits = 1e-9;  // [m] coordinates of a few metres, written with ten digits

double plan_area(const ParsedRoad& road, const std::array<int, 3>& t) {
  const auto& a = road.nodes[static_cast<size_t>(t[0]) - 1];
  const auto& b = road.nodes[static_cast<size_t>(t[1]) - 1];
  const auto& c = road.nodes[static_cast<size_t>(t[2]) - 1];
  return 0.5 * ((b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1]));
}

TEST(MakeRoad, TrianglesCoverTheRectangleOnceAndFaceUp) {
  for (const RoadKind kind : k_all_kinds) {
    const ParsedRoad road = parsed(qvslv::road_text(settings(kind)));
    EXPECT_EQ(road.nodes.size(), 25u * 13u);
    EXPECT_EQ(road.triangles.size(), 2u * 24u * 12u);
    double area = 0;
    for (const auto& t : road.triangles) {
      const double its = plan_area(road, t);
      EXPECT_NEAR(its, 0.25 * 0.25 / 2, k_ten_digits);
      area += its;
    }
    EXPECT_NEAR(area, 18.0, 1e-6);
  }
}

TEST(MakeRoad, SlopeRisesByItsGradeAndIsLevelWithTheHeightAtXZero) {
  RoadSettings s = settings(RoadKind::slope);
  s.height = 0.5;
  for (const auto& p : parsed(qvslv::road_text(s)).nodes) EXPECT_NEAR(p[2], 0.5 + 0.15 * p[0], k_ten_digits);
}

TEST(MakeRoad, SineIsASineAlongXAndConstantAcross) {
  for (const auto& p : parsed(qvslv::road_text(settings(RoadKind::sine))).nodes)
    EXPECT_NEAR(p[2], 0.2 * std::sin(3.141592653589793 * p[0]), k_ten_digits);
}

TEST(MakeRoad, RollingGroundHasTheRmsHeightOfASineOfItsAmplitude) {
  RoadSettings s = settings(RoadKind::rolling);
  s.size_x = s.size_y = 60;  // thirty wavelengths each way: the sample mean comes near the mean over the plane
  s.corner_x = s.corner_y = -30;
  double sum = 0, squares = 0;
  const ParsedRoad road = parsed(qvslv::road_text(s));
  for (const auto& p : road.nodes) {
    sum += p[2];
    squares += p[2] * p[2];
  }
  const double count = static_cast<double>(road.nodes.size());
  EXPECT_NEAR(sum / count, 0.0, 0.02);
  EXPECT_NEAR(std::sqrt(squares / count), 0.2 / std::sqrt(2.0), 0.02);
}

TEST(MakeRoad, SameSeedGivesTheSameBytesAndAnotherSeedAnotherGround) {
  RoadSettings s = settings(RoadKind::rolling);
  s.seed = 7;
  const std::string text = qvslv::road_text(s);
  EXPECT_EQ(text, qvslv::road_text(s));
  s.seed = 8;
  EXPECT_NE(parsed(text).nodes, parsed(qvslv::road_text(s)).nodes);
}

TEST(MakeRoad, SpacingIsRoundedSoThatWholeSquaresFit) {
  RoadSettings s = settings(RoadKind::flat);
  s.spacing = 0.7;
  const ParsedRoad road = parsed(qvslv::road_text(s));
  EXPECT_EQ(road.nodes.size(), 10u * 5u);  // 6 / 0.7 is nearest to 9 squares, 3 / 0.7 to 4
  EXPECT_EQ(qvslv::triangle_count(s), 72);
  EXPECT_DOUBLE_EQ(road.nodes.back()[0], 4.0);
  EXPECT_DOUBLE_EQ(road.nodes.back()[1], 2.0);
}

TEST(MakeRoad, ValuesThatAreComparedAsWrittenCarryNoBlanks) {
  const ParsedRoad road = parsed(qvslv::road_text(settings(RoadKind::flat)));
  EXPECT_EQ(road.keys.at("NORMAL_PRESSURE"), "BEKKER");
  EXPECT_EQ(road.keys.at("SHEAR_PRESSURE"), "WONG");
  EXPECT_DOUBLE_EQ(qvtest::number_in(road.keys.at("SINKAGE_EXPONENT")), 1.1);
  EXPECT_DOUBLE_EQ(qvtest::number_in(road.keys.at("FRICTION_ANGLE")), 28);
  EXPECT_DOUBLE_EQ(qvtest::number_in(road.keys.at("MAX_SHEAR_DISP")), 0.025);
}

TEST(MakeRoad, EveryKindPassesTheRoadCheckWithoutAFinding) {
  for (const RoadKind kind : k_all_kinds) {
    const qvslv::RoadCheck check = qvslv::check_road_text(qvslv::road_text(settings(kind)), "made.rdf");
    EXPECT_THAT(finding_texts(check.found), testing::IsEmpty());
    EXPECT_EQ(check.nodes, 325);
    EXPECT_EQ(check.elements, 576);
  }
}

TEST(MakeRoad, SettingsLineIsARemarkToReadersAndShorterThanTheirLimit) {
  RoadSettings s = settings(RoadKind::rolling);
  s.corner_x = -1.0 / 3;
  s.soil.cohesive_coeff = 1.0 / 7;
  EXPECT_EQ(qvslv::settings_line(s).find('='), std::string::npos);
  EXPECT_LT(qvslv::settings_line(s).size(), 640u);
}

class RoadFile : public testing::Test {
protected:
  void SetUp() override {
    m_folder = fs::path(testing::TempDir()) /
               ("road_file_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(m_folder);
    fs::create_directories(m_folder);
  }
  fs::path m_folder;
};

TEST_F(RoadFile, KnowsWhetherItWasMadeWithTheseSettings) {
  const std::string path = (m_folder / "a.rdf").string();
  RoadSettings s = settings(RoadKind::rolling);
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::missing);
  qvslv::write_road_file(s, path);
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::current);
  s.seed = 99;
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::outdated);
  std::ofstream(path) << "FILE_TYPE = 'RDF'\n";
  EXPECT_EQ(qvslv::made_file_state(path, s), qvslv::MadeFileState::foreign);
}

TEST_F(RoadFile, AppearsWholeAndLeavesNothingElseBehind) {
  qvslv::write_road_file(settings(RoadKind::flat), (m_folder / "a.rdf").string());
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(m_folder)) names.push_back(entry.path().filename().string());
  EXPECT_EQ(names, std::vector<std::string>{"a.rdf"});
}

TEST_F(RoadFile, CannotBeWrittenIntoAFolderThatIsNotThere) {
  try {
    qvslv::write_road_file(settings(RoadKind::flat), (m_folder / "none" / "a.rdf").string());
    FAIL() << "written";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find(std::strerror(ENOENT)), std::string::npos) << error.what();
  }
}

struct mistake_case {
  const char* why;
  void (*spoil)(RoadSettings& s);
  const char* text;
};
const mistake_case k_mistakes[] = {
    {"no extent", [](RoadSettings& s) { s.size_x = 0; }, "the size must be two lengths greater than 0"},
    {"no spacing", [](RoadSettings& s) { s.spacing = 0; }, "the spacing must be greater than 0"},
    {"spacing not a number", [](RoadSettings& s) { s.spacing = std::nan(""); }, "the spacing must be greater than 0"},
    {"spacing above the size", [](RoadSettings& s) { s.spacing = 4; }, "the spacing is larger than the road"},
    {"too many triangles", [](RoadSettings& s) { s.spacing = 1e-4; },
     "this makes more than 20 million triangles; widen the spacing"},
    {"waves the mesh cannot show", [](RoadSettings& s) { s.wavelength = 0.3; },
     "the wavelength is below twice the spacing: the mesh cannot show it"},
    {"waves without height", [](RoadSettings& s) { s.amplitude = 0; }, "a rolling road needs an amplitude"},
    {"waves without length", [](RoadSettings& s) { s.wavelength = 0; }, "a rolling road needs a wavelength"},
    {"a grade without a slope", [](RoadSettings& s) { s.grade = 0.1; }, "a rolling road has no grade"},
};

TEST(MakeRoad, MistakenSettingsAreNamed) {
  EXPECT_EQ(qvslv::mistake_in(settings(RoadKind::rolling)), "");
  for (const mistake_case& row : k_mistakes) {
    SCOPED_TRACE(row.why);
    RoadSettings s = settings(RoadKind::rolling);
    row.spoil(s);
    EXPECT_EQ(qvslv::mistake_in(s), row.text);
    EXPECT_THROW(qvslv::road_text(s), std::invalid_argument);
  }
}

TEST(SoilPresets, AllCarryLoadAndShear) {
  for (const qvslv::SoilPreset& preset : qvslv::soil_presets()) {
    SCOPED_TRACE(preset.name);
    EXPECT_GT(preset.soil.sinkage_exponent, 0);
    EXPECT_GT(preset.soil.cohesive_coeff / 0.3 + preset.soil.frictional_coeff, 0);
    EXPECT_GT(preset.soil.friction_angle, 0);
    EXPECT_LT(preset.soil.friction_angle, 45);
    EXPECT_GT(preset.soil.shear_displacement, 0);
    EXPECT_GT(preset.soil.sensitivity, 0);
  }
}

}  // namespace
