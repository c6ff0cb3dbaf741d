#include "solver/data_files/road_check.h"

#include <gmock/gmock.h>

namespace {

using testing::AnyOf;
using testing::HasSubstr;

const std::string k_good_road = R"(a remark
FILE_TYPE = 'RDF'
LENGTH = 'M'
FORCE = 'N'
METHOD = '3D_SOIL'
SOIL_TYPE=SAND
NORMAL_PRESSURE=BEKKER
FRICTIONAL_COEFF=1e6
SHEAR_PRESSURE=WONG
SENSITIVITY=1
MAX_SHEAR_DISP=0.01
NUMBER_OF_NODES=4
{ node x y z }
1 0 0 0
2 1 0 0
3 1 1 0.5
4 0 1 0

NUMBER_OF_ELEMENTS=2
1 2 3 0
1 3 4 0

)";

std::string spoilt(const std::string& from, const std::string& to) {
  std::string text = k_good_road;
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

std::string with_crlf(const std::string& text) {
  std::string result;
  for (const char c : text) result += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return result;
}

TEST(RoadCheck, GoodRoadHasNoFindingsAndIsCounted) {
  const qvslv::RoadCheck check = qvslv::check_road_text(k_good_road, "road.rdf");
  EXPECT_TRUE(check.found.empty());
  EXPECT_EQ(check.nodes, 4);
  EXPECT_EQ(check.elements, 2);
  EXPECT_DOUBLE_EQ(check.x_max, 1);
  EXPECT_DOUBLE_EQ(check.z_max, 0.5);
  EXPECT_EQ(check.soil_type, "SAND");
}

struct trap_case {
  const char* why;
  std::string text;
  bool refused;
  const char* finding;
};

const trap_case k_traps[] = {
    {"a blank before CONCRETE", spoilt("SOIL_TYPE=SAND", "SOIL_TYPE = CONCRETE"), false,
     "road.rdf:6: the value is 'CONCRETE' with blanks"},
    {"a blank before BEKKER", spoilt("NORMAL_PRESSURE=BEKKER", "NORMAL_PRESSURE = BEKKER"), true,
     "road.rdf:7: NORMAL_PRESSURE: the value is ' BEKKER', only 'BEKKER' is supported"},
    {"a soil type in quotes", spoilt("SOIL_TYPE=SAND", "SOIL_TYPE = 'CONCRETE'"), false,
     "road.rdf:6: SOIL_TYPE in quotes has no effect"},
    {"a unit without quotes", spoilt("LENGTH = 'M'", "LENGTH = M"), false,
     "road.rdf:3: LENGTH without quotes has no effect"},
    {"an unknown unit", spoilt("LENGTH = 'M'", "LENGTH = 'MILLIMETER'"), true,
     "road.rdf:3: LENGTH 'MILLIMETER' is no unit known here; did you mean 'MILIMETER'?"},
    {"another file type", spoilt("'RDF'", "'XYZ'"), true,
     "road.rdf:2: FILE_TYPE 'XYZ' is not supported: only 'RDF' is"},
    {"Windows line ends", with_crlf(k_good_road), true, "road.rdf:1: the lines end with CR LF"},
    {"a line of 640 characters", spoilt("a remark", std::string(640, 'x')), true,
     "road.rdf:1: the line has 640 characters"},
    {"a value without its closing quote", spoilt("FILE_TYPE = 'RDF'", "FILE_TYPE = 'RDF"), false,
     "road.rdf:2: FILE_TYPE: the closing quote is missing"},
    {"no spacer between the blocks", spoilt("4 0 1 0\n\nNUM", "4 0 1 0\nNUM"), true,
     "road.rdf:18: the line directly after a block is thrown away, and this one holds a keyword"},
    {"fewer nodes than declared", spoilt("NODES=4", "NODES=5"), true,
     "road.rdf:18: NUMBER_OF_NODES says 5, but only 4 lines of four numbers follow"},
    {"more nodes than declared", spoilt("NODES=4", "NODES=3"), true,
     "road.rdf:17: NUMBER_OF_NODES says 3, but 1 more such lines follow"},
    {"the file breaks off", k_good_road.substr(0, k_good_road.find("1 3 4 0")), false,
     "road.rdf:19: NUMBER_OF_ELEMENTS says 2, but the file ends after 1; the road is made of what is there"},
    {"an element with a node that is not there", spoilt("1 3 4 0", "1 3 9 0"), true,
     "road.rdf:21: the element names node 9, nodes are numbered 1 to 4"},
    {"no shear", spoilt("SENSITIVITY=1\n", ""), false,
     "road.rdf: SENSITIVITY is missing or 0: the soil carries no shear"},
    {"no stiffness", spoilt("FRICTIONAL_COEFF=1e6\n", ""), false,
     "road.rdf: COHESIVE_COEFF and FRICTIONAL_COEFF are missing or 0"},
    {"nothing in it", "", true, "road.rdf: the file holds no nodes"},
};

TEST(RoadCheck, EveryTrapIsFoundAtItsLine) {
  for (const trap_case& row : k_traps) {
    SCOPED_TRACE(row.why);
    const qvslv::RoadCheck check = qvslv::check_road_text(row.text, "road.rdf");
    EXPECT_THAT(finding_texts(check.found), testing::Contains(HasSubstr(row.finding)));
    EXPECT_EQ(any_error(check.found), row.refused);
  }
}

TEST(RoadCheck, ConcreteRoadNeedsNoSoilValues) {
  const std::string text = spoilt("SOIL_TYPE=SAND", "SOIL_TYPE=CONCRETE");
  std::string bare = text;
  for (const char* line : {"FRICTIONAL_COEFF=1e6\n", "SENSITIVITY=1\n", "MAX_SHEAR_DISP=0.01\n"})
    bare.erase(bare.find(line), std::string(line).size());
  EXPECT_TRUE(qvslv::check_road_text(bare, "road.rdf").found.empty());
}

TEST(RoadCheck, LineOf639CharactersIsStillRead) {
  EXPECT_TRUE(qvslv::check_road_text(spoilt("a remark", std::string(639, 'x')), "road.rdf").found.empty());
}

TEST(RoadCheck, ComparesTheUnitsWithTheModels) {
  qvslv::Units millimetres;
  millimetres.length = "MILIMETER";
  millimetres.length_factor = 0.001;
  const qvslv::RoadCheck check = qvslv::check_road_text(k_good_road, "road.rdf", &millimetres);
  ASSERT_EQ(check.found.size(), 1u);
  EXPECT_THAT(finding_text(check.found.front()), HasSubstr("road.rdf:3: LENGTH 'M' is not the model's unit"));
  EXPECT_FALSE(any_error(check.found));
}

}  // namespace
