#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/soilrdf/read_text.h"

// Node and element blocks.
namespace {

using qvsoilrdf::CRoad;
using qvtest::read_text;
using qvtest::reading;

const std::string k_elements = "NUMBER_OF_ELEMENTS = 2\n1 2 3 0\n1 3 4 0\n\n";
const std::string k_nodes = "NUMBER_OF_NODES = 4\n1 0 0 0\n2 10 0 0\n3 10 4 0\n4 0 4 0\n\n";

CRoad accepted(const std::string& content) {
  const reading r = read_text(content);
  EXPECT_TRUE(r.returned) << content << r.message;
  return r.road;
}

/// The road of a text that ends in a refusal, as far as it was filled.
CRoad broken_off(const std::string& content) {
  const reading r = read_text(content);
  EXPECT_EQ(r.thrown, 1);
  return r.road;
}

void expect_the_two_triangles(const CRoad& road, const char* why) {
  ASSERT_EQ(road.nodes.size(), 4u) << why;
  ASSERT_EQ(road.elements.size(), 2u) << why;
  const double x[4] = {0, 10, 10, 0}, y[4] = {0, 0, 4, 4};
  const int corner[2][3] = {{1, 2, 3}, {1, 3, 4}};
  for (int k = 0; k < 4; ++k) {
    EXPECT_EQ(road.nodes[static_cast<size_t>(k)].x, x[k]) << why;
    EXPECT_EQ(road.nodes[static_cast<size_t>(k)].y, y[k]) << why;
    EXPECT_EQ(road.nodes[static_cast<size_t>(k)].z, 0) << why;
    EXPECT_EQ(road.nodes[static_cast<size_t>(k)].id, k + 1) << why;
  }
  for (int e = 0; e < 2; ++e) {
    for (int c = 0; c < 3; ++c) EXPECT_EQ(road.elements[static_cast<size_t>(e)].node[c], corner[e][c]) << why;
    EXPECT_EQ(road.element(static_cast<size_t>(e)).id, e + 1) << why;
  }
  EXPECT_EQ(road.number_of_nodes, 4) << why;
  EXPECT_EQ(road.number_of_elements, 2) << why;
  EXPECT_EQ(road.nx, 2) << why;
  EXPECT_EQ(road.ny, 2) << why;
}

TEST(RdfBlocks, ReadTheSameInEveryAcceptedForm) {
  struct {
    const char* why;
    std::string content;
  } const rows[] = {
      {"plain", k_nodes + k_elements},
      {"column headers",
       "NUMBER_OF_NODES = 4\n{ ID X Y Z }\n1 0 0 0\n2 10 0 0\n{ }\n3 10 4 0\n4 0 4 0\n{ end }\n\n"
       "NUMBER_OF_ELEMENTS = 2\n{ K L M V }\n1 2 3 0\n{\n1 3 4 0\n{\n\n"},
      {"elements before nodes", k_elements + k_nodes},
      {"carriage returns",
       "NUMBER_OF_NODES = 4\r\n1 0 0 0\r\n2 10 0 0\r\n3 10 4 0\r\n4 0 4 0\r\n\r\nNUMBER_OF_ELEMENTS = 2\r\n"
       "1 2 3 0\r\n1 3 4 0\r\n\r\n"},
      {"no newline at the end", k_nodes + "NUMBER_OF_ELEMENTS = 2\n1 2 3 0\n1 3 4 0"},
      {"tabs and blanks", "NUMBER_OF_NODES=4\n\t1\t0  0\t0\n 2 10 0 0 \n3\v10\f4 0\n4 0 4 0\n\n" + k_elements},
      {"numbers in other notations",
       "NUMBER_OF_NODES = 4.9\n9 0. 0e5 -0\n9 1e1 +0 .0\n9 10.0 40e-1 0\n9 0 4 0\n\n"
       "NUMBER_OF_ELEMENTS = 2.5\n1.9 2.0 3e0 0\n1 3 4.5 0\n\n"},
      {"numbers behind the fourth",
       "NUMBER_OF_NODES = 4\n1 0 0 0 7 8\n2 10 0 0 text\n3 10 4 0 {\n4 0 4 0,5\n\nNUMBER_OF_ELEMENTS = 2\n1 2 3 0 7\n"
       "1 3 4 0x\n\n"},
      {"the file's own numbers", "NUMBER_OF_NODES = 4\n7 0 0 0\n-3 10 0 0\n0.5 10 4 0\n1e300 0 4 0\n\n" + k_elements},
      {"a spacer that is a remark", "NUMBER_OF_NODES = 4\n1 0 0 0\n2 10 0 0\n3 10 4 0\n4 0 4 0\n$ ---\n" + k_elements},
      {"a spacer that is a record",
       "NUMBER_OF_NODES = 4\n1 0 0 0\n2 10 0 0\n3 10 4 0\n4 0 4 0\n5 99 99 99\n" + k_elements},
  };
  for (const auto& row : rows) expect_the_two_triangles(accepted(row.content), row.why);
}

TEST(RdfBlocks, AKeywordDirectlyBehindTheLastRecordIsLost) {
  const std::string nodes = "NUMBER_OF_NODES = 4\n1 0 0 0\n2 10 0 0\n3 10 4 0\n4 0 4 0\n";
  const CRoad lost = accepted(nodes + "COHESION = 5\n" + k_elements);
  EXPECT_EQ(lost.wong.cohesion, 0);
  const CRoad kept = accepted(nodes + "\nCOHESION = 5\n" + k_elements);
  EXPECT_EQ(kept.wong.cohesion, 5);
  // Header lines do not count as the line behind the block.
  EXPECT_EQ(accepted(nodes + "{\n{\nCOHESION = 5\n" + k_elements).wong.cohesion, 0);
  // Without a spacer the element block's own keyword is lost, and with it the elements.
  const CRoad no_elements = broken_off(nodes + k_elements);
  EXPECT_EQ(no_elements.nodes.size(), 4u);
  EXPECT_TRUE(no_elements.elements.empty());
}

TEST(RdfBlocks, AnEmptyBlockStillConsumesALine) {
  const CRoad road = broken_off("NUMBER_OF_NODES = 0\nCOHESION = 5\nSENSITIVITY = 6\n");
  EXPECT_EQ(road.wong.cohesion, 0);
  EXPECT_EQ(road.wong.sensitivity, 6);
  EXPECT_EQ(road.number_of_nodes, 0);
}

TEST(RdfBlocks, ABlockCutShortByTheEndOfTheFileKeepsWhatItHas) {
  const CRoad road = broken_off("NUMBER_OF_NODES = 900\n1 1 2 3\n2 4 5 6\n");
  EXPECT_EQ(road.number_of_nodes, 900);
  ASSERT_EQ(road.nodes.size(), 2u);
  EXPECT_EQ(road.nodes[1].z, 6);
  expect_the_two_triangles(accepted(k_nodes + "NUMBER_OF_ELEMENTS = 2\n1 2 3 0\n1 3 4 0\n"), "no spacer at the end");
  const CRoad fewer = accepted(k_nodes + "NUMBER_OF_ELEMENTS = 77\n1 2 3 0\n");
  EXPECT_EQ(fewer.number_of_elements, 77);
  EXPECT_EQ(fewer.elements.size(), 1u);
}

TEST(RdfBlocks, ASecondNodeBlockReplacesTheFirstAndItsBounds) {
  const CRoad road = accepted("NUMBER_OF_NODES = 3\n1 -900 -900 0\n2 900 900 0\n3 7 7 7\n\n" + k_nodes + k_elements);
  expect_the_two_triangles(road, "second block");
  EXPECT_EQ(road.x_min, 0);
  EXPECT_EQ(road.x_max, 10);
  EXPECT_EQ(road.y_min, 0);
  EXPECT_EQ(road.y_max, 4);
}

TEST(RdfBlocks, ASecondElementBlockReplacesTheFirst) {
  const CRoad road = accepted(k_nodes + "NUMBER_OF_ELEMENTS = 1\n4 3 2 5\n\n" + k_elements);
  expect_the_two_triangles(road, "second block");
}

TEST(RdfBlocks, TheFourthNumberOfAnElementIsKept) {
  const CRoad road = accepted(k_nodes + "NUMBER_OF_ELEMENTS = 2\n1 2 3 -7.25\n1 3 4 1e10\n");
  EXPECT_EQ(road.element(0).value, -7.25);
  EXPECT_EQ(road.element(1).value, 1e10);
}

TEST(RdfBlocks, CoordinatesNearerToZeroThanTheLimitBecomeZero) {
  const CRoad road = accepted(
      "NUMBER_OF_NODES = 5\n1 5e-09 -5e-09 9.99e-09\n2 10 -0.0 1e-300\n3 10 4 1e-08\n4 0 4 -1e-08\n5 1.1e-08 1 "
      "-1.1e-08\n\n" +
      k_elements);
  EXPECT_EQ(road.nodes[0].x, 0);
  EXPECT_EQ(road.nodes[0].y, 0);
  EXPECT_FALSE(std::signbit(road.nodes[0].y));
  EXPECT_EQ(road.nodes[0].z, 0);
  EXPECT_FALSE(std::signbit(road.nodes[1].y)) << "-0 becomes 0";
  EXPECT_EQ(road.nodes[1].z, 0);
  EXPECT_EQ(road.nodes[2].z, 1e-08) << "at the limit it stays";
  EXPECT_EQ(road.nodes[3].z, -1e-08);
  EXPECT_EQ(road.nodes[4].x, 1.1e-08);
  EXPECT_EQ(road.nodes[4].z, -1.1e-08);
}

TEST(RdfBlocks, BoundsAreThoseOfAllNodesUsedOrNot) {
  const CRoad road =
      accepted("NUMBER_OF_NODES = 6\n1 0 0 0\n2 10 0 0\n3 10 4 0\n4 0 4 0\n5 -3 7 0\n6 12 -1 0\n\n" + k_elements);
  EXPECT_EQ(road.x_min, -3);
  EXPECT_EQ(road.x_max, 12);
  EXPECT_EQ(road.y_min, -1);
  EXPECT_EQ(road.y_max, 7);
  EXPECT_EQ(road.x_offset, 3);
  EXPECT_EQ(road.y_offset, 1);
}

TEST(RdfBlocks, RecordLinesMayBeOfAnyLength) {
  const std::string blanks(5000, ' ');
  expect_the_two_triangles(accepted("NUMBER_OF_NODES = 4\n" + blanks + "1 0" + blanks + "0 0\n2 10 0 0" + blanks +
                                    "x\n3 10 4 0\n4 0 4 0\n" + blanks + "\n" + k_elements),
                           "long lines");
}

TEST(RdfBlocks, ALineWithEqualSignsInsideABlockIsARecord) {
  // "5 1 2 = 3" stops being numbers at "=".
  const reading r = read_text("NUMBER_OF_NODES = 1\n5 1 2 = 3\n");
  EXPECT_EQ(r.message, "READ RDF ERROR : Line 2 holds 3 numbers; a node line must hold at least 4.");
}

}  // namespace
