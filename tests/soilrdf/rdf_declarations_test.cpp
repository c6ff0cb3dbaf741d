#include <gtest/gtest.h>

#include <string>

#include "tests/soilrdf/read_text.h"

// Quoted lines: file type, units and method.
namespace {

using qvtest::read_text;
using qvtest::reading;
using qvtest::with_mesh;

void expect_refused(const std::string& line, const std::string& message) {
  const reading r = read_text(with_mesh(line + "\n"));
  EXPECT_FALSE(r.returned) << line;
  EXPECT_EQ(r.thrown, 1) << line;
  EXPECT_EQ(r.count, 1) << line;
  EXPECT_EQ(r.message, message) << line;
  EXPECT_TRUE(r.road.nodes.empty()) << line << ": the reader ends at once";
}

reading accepted(const std::string& lines) {
  const reading r = read_text(with_mesh(lines + "\n"));
  EXPECT_TRUE(r.returned) << lines << ": " << r.message;
  EXPECT_EQ(r.count, 0);
  EXPECT_EQ(r.message, "");
  return r;
}

TEST(RdfDeclarations, UnsupportedValuesAreRefusedToTheLetter) {
  struct {
    const char* line;
    const char* message;
  } const rows[] = {
      {"FILE_TYPE = 'XYZ'", " READ RDF ERROR : XYZ is an unsupported file type. \n"},
      {"LENGTH = 'MILLIMETER'", " READ RDF ERROR : MILLIMETER is an unsupported LENGTH UNIT. \n"},
      {"FORCE = 'MILLINEWTON'", " READ RDF ERROR : MILLINEWTON is an unsupported FORCE UNIT. \n"},
      {"ANGLE = 'GRAD'", " READ RDF ERROR : GRAD is an unsupported ANGLE UNIT. \n"},
      {"MASS = 'MILLIGRAM'", " READ RDF ERROR : MILLIGRAM is an unsupported MASS UNIT. \n"},
      {"TIME = 'DAY'", "READ RDF ERROR : DAY is an unsupported TIME UNIT."},
      {"TIME = 'MILLISECOND'", "READ RDF ERROR : MILLISECOND is an unsupported TIME UNIT."},
      {"METHOD = '2D_SOIL'", " READ RDF ERROR : 2D_SOIL is an unsupported METHOD. \n"},
  };
  for (const auto& row : rows) expect_refused(row.line, row.message);
}

TEST(RdfDeclarations, TheOffendingValueIsNamedInUpperCaseAndUntrimmed) {
  expect_refused("LENGTH = 'furlong'", " READ RDF ERROR : FURLONG is an unsupported LENGTH UNIT. \n");
  expect_refused("LENGTH = ' mm'", " READ RDF ERROR :  MM is an unsupported LENGTH UNIT. \n");
  expect_refused("LENGTH = 'mm '", " READ RDF ERROR : MM  is an unsupported LENGTH UNIT. \n");
  expect_refused("LENGTH = ''", " READ RDF ERROR :  is an unsupported LENGTH UNIT. \n");
  expect_refused("TIME = 'day'", "READ RDF ERROR : DAY is an unsupported TIME UNIT.");
}

TEST(RdfDeclarations, ValuesMayBeWrittenInLowerCase) {
  const reading r = accepted(
      "FILE_TYPE = 'rdf'\nLENGTH = 'mm'\nFORCE = 'kN'\nMASS = 'Lbm'\nTIME = 'hr'\nANGLE = 'deg'\nMETHOD = '3d_soil'");
  EXPECT_EQ(r.road.length_factor, 0.001);
  EXPECT_EQ(r.road.force_factor, 1000.0);
  EXPECT_EQ(r.road.mass_factor, 0.45359237);
  EXPECT_EQ(r.road.time_factor, 3600.0);
  EXPECT_EQ(r.road.angle_factor, 0.017453292519943295);
  EXPECT_EQ(r.road.angle_unit, "DEGREE");
  EXPECT_EQ(r.road.file_type, "RDF");
  EXPECT_EQ(r.road.method, "3D_SOIL");
}

TEST(RdfDeclarations, AnAngleLineSetsItsFactorAndOnlyDegreesTheUnit) {
  EXPECT_EQ(accepted("ANGLE = 'DEGREE'").road.angle_unit, "DEGREE");
  EXPECT_EQ(accepted("ANGLE = 'RADIAN'").road.angle_factor, 1.0);
  EXPECT_EQ(accepted("ANGLE = 'RAD'").road.angle_unit, "RADIAN");
  const reading both = accepted("ANGLE = 'DEG'\nANGLE = 'RAD'");
  EXPECT_EQ(both.road.angle_factor, 1.0);
  EXPECT_EQ(both.road.angle_unit, "DEGREE");
}

TEST(RdfDeclarations, UnitsScaleNothing) {
  const reading r = accepted("LENGTH = 'KM'\nFORCE = 'KN'\nCOHESION = 3\nWIDTH = 2");
  EXPECT_EQ(r.road.x_max, 10);
  EXPECT_EQ(r.road.wong.cohesion, 3);
  EXPECT_EQ(r.road.bekker.width, 2);
}

TEST(RdfDeclarations, WhatIsMissingKeepsItsDefault) {
  const reading r = accepted("a title");
  EXPECT_EQ(r.road.length_factor, 1.0);
  EXPECT_EQ(r.road.angle_unit, "RADIAN");
  EXPECT_EQ(r.road.soil_type, "");
  EXPECT_EQ(r.road.bekker.damp_ratio, 0.01);
  EXPECT_EQ(r.road.bekker.boundary_sinkage, 1.0);
  EXPECT_EQ(r.road.road_id, -16394);
}

TEST(RdfDeclarations, ALaterLineOverwritesAnEarlierOne) {
  EXPECT_EQ(accepted("LENGTH = 'MM'\nLENGTH = 'FT'").road.length_factor, 0.3048);
}

TEST(RdfDeclarations, TheFirstKeyFoundInTheLineDecides) {
  // LENGTH stands before FORCE and TIME, and FILE_TYPE before all.
  EXPECT_EQ(accepted("TIME_AND_LENGTH = 'MM'").road.length_factor, 0.001);
  EXPECT_EQ(accepted("TIME_AND_LENGTH = 'MM'").road.time_factor, 1.0);
  expect_refused("LENGTH FILE_TYPE = 'MM'", " READ RDF ERROR : MM is an unsupported file type. \n");
  expect_refused("TIME OF MASS = 'SEC'", " READ RDF ERROR : SEC is an unsupported MASS UNIT. \n");
  expect_refused("ANGLE FORCE = 'DEG'", " READ RDF ERROR : DEG is an unsupported FORCE UNIT. \n");
  expect_refused("METHOD IN TIME = '3D_SOIL'", "READ RDF ERROR : 3D_SOIL is an unsupported TIME UNIT.");
}

TEST(RdfDeclarations, AKeyIsFoundInsideAWordOrInTheValue) {
  EXPECT_EQ(accepted("WAVELENGTHS = 'MM'").road.length_factor, 0.001);
  expect_refused("REMARK = 'by LENGTH'", " READ RDF ERROR : BY LENGTH is an unsupported LENGTH UNIT. \n");
}

TEST(RdfDeclarations, KeysAreUpperCase) {
  EXPECT_EQ(accepted("length = 'MM'\nLength = 'no unit'").road.length_factor, 1.0);
}

TEST(RdfDeclarations, OtherQuotedLinesAreIgnored) {
  const reading r = accepted(
      "SOIL_TYPE = 'CONCRETE'\nNORMAL_PRESSURE = 'OTHER'\nSHEAR_PRESSURE = 'OTHER'\nCOHESION = '5'\nWIDTH = 5 '\n"
      "VERSION = '3'\nNUMBER_OF_NODES = '900'");
  EXPECT_EQ(r.road.soil_type, "");
  EXPECT_EQ(r.road.normal_pressure, "BEKKER");
  EXPECT_EQ(r.road.shear_pressure, "WONG");
  EXPECT_EQ(r.road.wong.cohesion, 0);
  EXPECT_EQ(r.road.bekker.width, 0);
  EXPECT_EQ(r.road.number_of_nodes, 4);
}

TEST(RdfDeclarations, UnitsWithoutQuotesAreIgnored) {
  EXPECT_EQ(accepted("LENGTH = MM\nFORCE=KN\nFILE_TYPE = XYZ").road.length_factor, 1.0);
}

TEST(RdfDeclarations, TheValueStandsBetweenTheFirstTwoQuotesOfTheFirstValueField) {
  EXPECT_EQ(accepted("LENGTH = 'MM' and 'KM'").road.length_factor, 0.001);
  EXPECT_EQ(accepted("LENGTH = 'MM' = 'KM'").road.length_factor, 0.001);
  EXPECT_EQ(accepted("LENGTH = 'MM").road.length_factor, 0.001);
  EXPECT_EQ(accepted("   LENGTH='MM'   ").road.length_factor, 0.001);
  expect_refused("LENGTH = = 'MM'", " READ RDF ERROR :  is an unsupported LENGTH UNIT. \n");
  expect_refused("LENGTH' = MM", " READ RDF ERROR :  is an unsupported LENGTH UNIT. \n");
}

TEST(RdfDeclarations, LinesWithoutAValueAreIgnored) {
  accepted("\n   \n$ remark\nLENGTH 'XX'\nLENGTH=\nFILE_TYPE=\n=\n{title}\n'");
}

}  // namespace
