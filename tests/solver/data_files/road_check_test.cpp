#include "solver/data_files/road_check.h"

#include <gmock/gmock.h>

#include "solver/data_files/make_road.h"
#include "solver/data_files/soil_presets.h"
#include "solver/model/units.h"
#include "tests/support/foreign_locale.h"

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

SINKAGE_EXPONENT=1
COHESION=1000
DAMP_RATIO=0.01
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

TEST(RoadCheck, InAProcessWithADecimalCommaReadsTheSameNumbers) {
  const qvtest::ForeignLocale german(qvtest::k_german);
  const qvslv::RoadCheck check = qvslv::check_road_text(k_good_road, "road.rdf");
  EXPECT_TRUE(check.found.empty());
  EXPECT_EQ(check.z_max, 0.5);
  EXPECT_THAT(check.values, testing::Contains(testing::Pair("MAX_SHEAR_DISP", 0.01)));
  EXPECT_THAT(qvslv::soil_preset_table(), HasSubstr("damping ratio 0.01 s"));
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
    {"a decimal comma", spoilt("COHESION=1000", "COHESION=1,5"), false,
     "road.rdf:24: COHESION: '1,5' is read as 1; the decimal sign is a point"},
    {"a word for a number", spoilt("COHESION=1000", "COHESION=none"), false,
     "road.rdf:24: COHESION: 'none' is no number and counts as 0"},
    {"a misspelt key", spoilt("COHESION=1000", "COHESSION=1000"), false,
     "road.rdf:24: 'COHESSION' is no key, so the line is passed over; did you mean 'COHESION'?"},
    {"a misspelt key of a text", spoilt("LENGTH = 'M'", "LENGHT = 'M'"), false,
     "road.rdf:3: 'LENGHT' is no key, so the line is passed over; did you mean 'LENGTH'?"},
    {"a key in small letters", spoilt("COHESION=1000", "cohesion = 1000"), false,
     "road.rdf:24: 'cohesion' is no key, so the line is passed over; keys are in capitals: COHESION"},
    {"an empty value", spoilt("COHESION=1000", "COHESION="), false,
     "road.rdf:24: COHESION has no value, so the line is passed over; write one behind the equals sign"},
    {"a blank value", spoilt("COHESION=1000", "COHESION= "), false,
     "road.rdf:24: COHESION: '' is no number and counts as 0"},
    {"too steep a friction angle", spoilt("COHESION=1000", "FRICTION_ANGLE=61"), false,
     "road.rdf:24: FRICTION_ANGLE is 61 degrees; it must lie between 0 and 60"},
    {"a negative friction angle", spoilt("COHESION=1000", "FRICTION_ANGLE=-1"), false,
     "road.rdf:24: FRICTION_ANGLE is -1 degrees; it must lie between 0 and 60"},
    {"a friction angle in radians", spoilt("COHESION=1000", "FRICTION_ANGLE=0.5"), false,
     "road.rdf:24: FRICTION_ANGLE is 0.5 degrees, less than any soil's; it is in degrees whatever ANGLE says, and this "
     "looks like radians (28.6 degrees)"},
    {"a negative modulus", spoilt("FRICTIONAL_COEFF=1e6", "FRICTIONAL_COEFF=-1e6"), false,
     "road.rdf:8: FRICTIONAL_COEFF is -1e+06; it must not be negative"},
    {"a modulus that no soil comes near to", spoilt("FRICTIONAL_COEFF=1e6", "FRICTIONAL_COEFF=400"), false,
     "road.rdf:8: FRICTIONAL_COEFF is 400, and known soils have 4.31e+04 to 5.88e+06 [force/length^(n+2)] in the "
     "file's "
     "units; check the units"},
    {"a modulus beyond all soils", spoilt("FRICTIONAL_COEFF=1e6", "FRICTIONAL_COEFF=6e8"), false,
     "road.rdf:8: FRICTIONAL_COEFF is 6e+08, and known soils have"},
    {"a shear displacement in millimetres", spoilt("MAX_SHEAR_DISP=0.01", "MAX_SHEAR_DISP=10"), false,
     "road.rdf:11: MAX_SHEAR_DISP is 10, and known soils have 0.006 to 0.03 [length]"},
    {"values in metres under another unit", spoilt("LENGTH = 'M'", "LENGTH = 'MM'"), false,
     "road.rdf:8: FRICTIONAL_COEFF is 1e+06, and known soils have"},
    {"no sinkage exponent", spoilt("SINKAGE_EXPONENT=1\n", ""), false,
     "road.rdf: SINKAGE_EXPONENT is missing or 0: the pressure is the same at every depth"},
    {"a sinkage exponent beyond all soils", spoilt("SINKAGE_EXPONENT=1", "SINKAGE_EXPONENT=11"), false,
     "road.rdf:23: SINKAGE_EXPONENT is 11; soils have 0.1 to 1.6"},
    {"no damping", spoilt("DAMP_RATIO=0.01\n", ""), false,
     "road.rdf: DAMP_RATIO is missing: 0.01 units of time are taken; write the value that is meant"},
    {"an element with a corner twice", spoilt("1 3 4 0", "1 3 3 0"), false,
     "road.rdf:21: the element of the nodes 1, 3 and 3 has no area: its corners are repeated or lie on one line"},
    {"an element whose corners lie on one line", spoilt("4 0 1 0", "4 2 2 1"), false,
     "road.rdf:21: the element of the nodes 1, 3 and 4 has no area"},
    {"a mesh with y and z swapped", spoilt("3 1 1 0.5\n4 0 1 0", "3 1 0.5 1\n4 0 0 1"), false,
     "road.rdf: the road stands upright: its plan has only 0.22 of its area. z is up; are y and z swapped?"},
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

struct quiet_case {
  const char* why;
  std::string text;
};

const quiet_case k_quiet[] = {
    {"the largest friction angle", spoilt("COHESION=1000", "FRICTION_ANGLE=60")},
    {"a soil without friction", spoilt("COHESION=1000", "FRICTION_ANGLE=0")},
    {"a hundredth of the softest known soil", spoilt("FRICTIONAL_COEFF=1e6", "FRICTIONAL_COEFF=440")},
    {"a hundred times the stiffest known soil", spoilt("FRICTIONAL_COEFF=1e6", "FRICTIONAL_COEFF=5.8e8")},
    {"a unit or a remark behind a number", spoilt("COHESION=1000", "COHESION=1000 Pa, by Smith")},
    {"a remark with an equals sign", spoilt("a remark", "author = me, e=mc2")},
    {"a slope of 45 degrees", spoilt("3 1 1 0.5\n4 0 1 0", "3 1 1 1\n4 0 1 1")},
};

TEST(RoadCheck, WhatIsUnusualButSoundIsLeftInPeace) {
  for (const quiet_case& row : k_quiet) {
    SCOPED_TRACE(row.why);
    EXPECT_THAT(finding_texts(qvslv::check_road_text(row.text, "road.rdf").found), testing::IsEmpty());
  }
}

TEST(RoadCheck, EverySoilPresetIsQuietInEveryUnitOfLength) {
  for (const qvslv::SoilPreset& preset : qvslv::soil_presets())
    for (const qvslv::UnitName& unit : qvslv::unit_names(qvslv::UnitQuantity::length)) {
      SCOPED_TRACE(std::string(preset.name) + " in " + unit.name);
      qvslv::RoadSettings settings;
      settings.spacing = 5;
      settings.soil_name = preset.name;
      settings.units.length = unit.name;
      settings.units.length_factor = unit.factor;
      settings.soil = soil_in_units(preset, settings.units);
      EXPECT_THAT(finding_texts(qvslv::check_road_text(road_text(settings), "road.rdf").found), testing::IsEmpty());
    }
}

TEST(RoadCheck, HandsOnTheMeshThatTheFileHolds) {
  const qvslv::TriangleMesh mesh = qvslv::check_road_text(k_good_road, "road.rdf").mesh;
  ASSERT_EQ(mesh.points.size(), 4u);
  EXPECT_EQ(mesh.points[2], (qvslv::Vec3{1, 1, 0.5}));
  EXPECT_THAT(mesh.triangles, testing::ElementsAre(std::array<int, 3>{0, 1, 2}, std::array<int, 3>{0, 2, 3}));
}

TEST(RoadCheck, LineOf639CharactersIsStillRead) {
  EXPECT_TRUE(qvslv::check_road_text(spoilt("a remark", std::string(639, 'x')), "road.rdf").found.empty());
}

TEST(RoadCheck, ComparesTheUnitsWithTheModels) {
  qvslv::Units millimetres;
  millimetres.length = "MILIMETER";
  millimetres.length_factor = 0.001;
  const qvslv::RoadCheck check = qvslv::check_road_text(k_good_road, "road.rdf", &millimetres);
  ASSERT_GE(check.found.size(), 1u);
  EXPECT_THAT(finding_text(check.found.front()), HasSubstr("road.rdf:3: LENGTH 'M' is not the model's unit"));
  EXPECT_FALSE(any_error(check.found));
}

}  // namespace
