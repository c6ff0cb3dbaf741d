#include <gtest/gtest.h>

#include <string>

#include "tests/soilrdf/read_text.h"

// Unquoted lines: versions, soil type, models and soil parameters.
namespace {

using qvsoilrdf::CRoad;
using qvtest::read_text;
using qvtest::reading;
using qvtest::with_mesh;

CRoad accepted(const std::string& lines) {
  const reading r = read_text(with_mesh(lines + "\n"));
  EXPECT_TRUE(r.returned) << lines << ": " << r.message;
  EXPECT_EQ(r.count, 0);
  return r.road;
}

void expect_refused(const std::string& line, const std::string& message) {
  const reading r = read_text(with_mesh(line + "\n"));
  EXPECT_FALSE(r.returned) << line;
  EXPECT_EQ(r.thrown, 1) << line;
  EXPECT_EQ(r.count, 1) << line;
  EXPECT_EQ(r.message, message) << line;
}

/// A number of the road and the key that sets it.
struct number_key {
  const char* key;
  double& (*of)(CRoad&);
};

const number_key k_number_keys[] = {
    {"FILE_VERSION", [](CRoad& r) -> double& { return r.file_version; }},
    {"VERSION", [](CRoad& r) -> double& { return r.version; }},
    {"COEFFICIENT_DS", [](CRoad& r) -> double& { return r.dynamic_sinkage.coefficient_ds; }},
    {"CRITICAL_PRESSUR", [](CRoad& r) -> double& { return r.dynamic_sinkage.critical_pressure; }},
    {"EXPONENT_PR", [](CRoad& r) -> double& { return r.dynamic_sinkage.exponent_pr; }},
    {"EXPONENT_SD", [](CRoad& r) -> double& { return r.dynamic_sinkage.exponent_sd; }},
    {"COHESIVE_COEFF", [](CRoad& r) -> double& { return r.bekker.cohesive_coeff; }},
    {"FRICTIONAL_COEFF", [](CRoad& r) -> double& { return r.bekker.frictional_coeff; }},
    {"SINKAGE_EXPONENT", [](CRoad& r) -> double& { return r.bekker.sinkage_exponent; }},
    {"WIDTH", [](CRoad& r) -> double& { return r.bekker.width; }},
    {"DAMP_RATIO", [](CRoad& r) -> double& { return r.bekker.damp_ratio; }},
    {"BOUNDARY_SINKAGE", [](CRoad& r) -> double& { return r.bekker.boundary_sinkage; }},
    {"COHESION", [](CRoad& r) -> double& { return r.wong.cohesion; }},
    {"SENSITIVITY", [](CRoad& r) -> double& { return r.wong.sensitivity; }},
    {"MAX_SHEAR_DISP", [](CRoad& r) -> double& { return r.wong.max_shear_disp; }},
};

TEST(RdfParameters, EveryKeySetsItsOwnNumberAndNoOther) {
  CRoad untouched = accepted("");
  for (const number_key& set : k_number_keys) {
    CRoad road = accepted(std::string(set.key) + " = 12.5");
    EXPECT_EQ(set.of(road), 12.5) << set.key;
    for (const number_key& other : k_number_keys) {
      if (other.key == set.key) continue;
      EXPECT_EQ(other.of(road), other.of(untouched)) << set.key << " touched " << other.key;
    }
    EXPECT_EQ(road.wong.friction_angle, 0) << set.key;
    EXPECT_EQ(road.soil_type, "") << set.key;
  }
}

TEST(RdfParameters, NumbersAreConvertedAsByAtof) {
  struct {
    const char* line;
    double value;
  } const rows[] = {
      {"WIDTH=3", 3},        {"WIDTH =  \t -3.5e2 mm", -350},
      {"WIDTH = abc", 0},    {"WIDTH = 0x10", 16},
      {"WIDTH = +.5", 0.5},  {"WIDTH = 1,5", 1},
      {"WIDTH = 5 = 6", 5},  {"WIDTH = 7\r", 7},
      {"WIDTH = 1e5e", 1e5}, {"the WIDTH of it = 4", 4},
      {"WIDTH = ", 0},
  };
  for (const auto& row : rows) EXPECT_EQ(accepted(row.line).bekker.width, row.value) << row.line;
}

TEST(RdfParameters, FrictionAngleIsInDegreesWhateverTheAngleUnitSays) {
  const double thirty = 0.5235987755982988;
  EXPECT_EQ(accepted("FRICTION_ANGLE = 30").wong.friction_angle, thirty);
  EXPECT_EQ(accepted("ANGLE = 'RADIAN'\nFRICTION_ANGLE = 30").wong.friction_angle, thirty);
  EXPECT_EQ(accepted("ANGLE = 'DEGREE'\nFRICTION_ANGLE = 30").wong.friction_angle, thirty);
  EXPECT_EQ(accepted("FRICTION_ANGLE = 30\nANGLE = 'DEGREE'").wong.friction_angle, thirty);
}

TEST(RdfParameters, FileVersionAndVersionAreToldApart) {
  const CRoad file = accepted("FILE_VERSION = 2");
  EXPECT_EQ(file.file_version, 2);
  EXPECT_EQ(file.version, 0);
  const CRoad road = accepted("VERSION = 3");
  EXPECT_EQ(road.file_version, 0);
  EXPECT_EQ(road.version, 3);
}

TEST(RdfParameters, SoilTypeIsKeptAsWritten) {
  EXPECT_EQ(accepted("SOIL_TYPE=CONCRETE").soil_type, "CONCRETE");
  EXPECT_EQ(accepted("SOIL_TYPE = CONCRETE").soil_type, " CONCRETE");
  EXPECT_EQ(accepted("SOIL_TYPE=Dry sand ").soil_type, "Dry sand ");
  EXPECT_EQ(accepted("SOIL_TYPE=a=b").soil_type, "a");
  EXPECT_EQ(accepted("SOIL_TYPE=CLAY\r").soil_type, "CLAY\r");
  EXPECT_EQ(accepted("SOIL_TYPE=CLAY\nSOIL_TYPE=SAND").soil_type, "SAND");
  EXPECT_EQ(accepted("SOIL_TYPE=CLAY\nSOIL_TYPE=").soil_type, "CLAY");
}

TEST(RdfParameters, ModelNamesMustBeWrittenWithoutABlank) {
  accepted("NORMAL_PRESSURE=BEKKER\nSHEAR_PRESSURE=WONG");
  expect_refused("NORMAL_PRESSURE = BEKKER", " READ RDF ERROR :  BEKKER is an unsupported NORMAL PRESSURE. \n");
  expect_refused("NORMAL_PRESSURE=bekker", " READ RDF ERROR : bekker is an unsupported NORMAL PRESSURE. \n");
  expect_refused("NORMAL_PRESSURE=BEKKER\r", " READ RDF ERROR : BEKKER\r is an unsupported NORMAL PRESSURE. \n");
  expect_refused("SHEAR_PRESSURE = WONG", " READ RDF ERROR :  WONG is an unsupported SHEAR PRESSURE. \n");
  expect_refused("SHEAR_PRESSURE=WONG ", " READ RDF ERROR : WONG  is an unsupported SHEAR PRESSURE. \n");
  expect_refused("SHEAR_PRESSURE=JANOSI", " READ RDF ERROR : JANOSI is an unsupported SHEAR PRESSURE. \n");
}

TEST(RdfParameters, TheFirstKeyOfTheOrderThatIsFoundDecides) {
  struct {
    const char* line;
    double& (*of)(CRoad&);
    const char* why;
  } const rows[] = {
      {"COHESION CONVERSION = 4", [](CRoad& r) -> double& { return r.version; }, "VERSION inside a word"},
      {"WIDTH = 4 VERSION", [](CRoad& r) -> double& { return r.version; }, "VERSION in the value"},
      {"SENSITIVITY COHESION = 4", [](CRoad& r) -> double& { return r.wong.cohesion; }, "before SENSITIVITY"},
      {"COHESION WIDTH = 4", [](CRoad& r) -> double& { return r.bekker.width; }, "WIDTH before COHESION"},
      {"EXPONENT_SD EXPONENT_PR = 4", [](CRoad& r) -> double& { return r.dynamic_sinkage.exponent_pr; }, "PR first"},
      {"CRITICAL_PRESSURE = 4", [](CRoad& r) -> double& { return r.dynamic_sinkage.critical_pressure; }, "with an E"},
      {"TRACKWIDTHS = 4", [](CRoad& r) -> double& { return r.bekker.width; }, "inside a word"},
  };
  for (const auto& row : rows) {
    CRoad road = accepted(row.line);
    EXPECT_EQ(row.of(road), 4) << row.why;
  }
  EXPECT_EQ(accepted("NORMAL_PRESSURE SOIL_TYPE=X").soil_type, "X");
}

TEST(RdfParameters, LowerCaseKeysAreNotFound) { EXPECT_EQ(accepted("width = 4").bekker.width, 0); }

TEST(RdfParameters, MayStandBehindTheMesh) {
  const reading r = read_text(std::string(qvtest::k_two_triangles) + "COHESION = 4\nLENGTH = 'MM'");
  ASSERT_TRUE(r.returned) << r.message;
  EXPECT_EQ(r.road.wong.cohesion, 4);
  EXPECT_EQ(r.road.length_factor, 0.001);
}

}  // namespace
