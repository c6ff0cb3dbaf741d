#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>

#include "soilrdf/rdf_reader.h"
#include "tests/soilrdf/read_text.h"
#include "tests/support/scripted_host.h"
#include "tests/support/temporary_folder.h"

// What the reader refuses because going on would have no meaning, and how it refuses.
namespace {

using qvtest::read_text;
using qvtest::reading;
using qvtest::with_mesh;

const char* const k_longitudinal =
    " READ RDF ERROR : THE LONGITUDINAL DIRECTION OR FACESET OF THE BASE ENTITY IS SET INCORRECTLY. PLEASE CONFIRM IT! "
    "\n";
const char* const k_vertical =
    " READ RDF ERROR : THE VERTICAL DIRECTION OR FACESET OF THE BASE ENTITY IS SET INCORRECTLY. PLEASE CONFIRM IT! \n";
const std::string k_nodes = "NUMBER_OF_NODES = 4\n1 0 0 0\n2 10 0 0\n3 10 4 0\n4 0 4 0\n\n";

struct refusal_case {
  std::string content;
  std::string message;
};

void expect_refused(const refusal_case& row) {
  const reading r = read_text(row.content);
  EXPECT_EQ(r.thrown, 1) << row.content;
  EXPECT_EQ(r.count, 1) << row.content;
  EXPECT_EQ(r.message, row.message) << row.content;
}

TEST(RdfGuards, RecordsWithTooFewNumbersAreNamedByTheirLine) {
  const std::string node = " numbers; a node line must hold at least 4.";
  const std::string element = " numbers; an element line must hold at least 4.";
  const refusal_case rows[] = {
      {"NUMBER_OF_NODES = 2\n1 0 0 0\n2 5 5\n", "READ RDF ERROR : Line 3 holds 3" + node},
      {"title\nNUMBER_OF_NODES = 2\n{\n1 0 0 0\n\n", "READ RDF ERROR : Line 5 holds 0" + node},
      {"NUMBER_OF_NODES = 1\n1 0 x 0\n", "READ RDF ERROR : Line 2 holds 2" + node},
      {"NUMBER_OF_NODES = 1\n1 nan 0 0\n", "READ RDF ERROR : Line 2 holds 1" + node},
      {"NUMBER_OF_NODES = 1\n1 0 0 inf\n", "READ RDF ERROR : Line 2 holds 3" + node},
      {"NUMBER_OF_NODES = 1\n1 1e999 0 0\n", "READ RDF ERROR : Line 2 holds 1" + node},
      {"NUMBER_OF_NODES = 1\n1,0,0,0\n", "READ RDF ERROR : Line 2 holds 1" + node},
      {"NUMBER_OF_NODES = 1\n {\n", "READ RDF ERROR : Line 2 holds 0" + node},
      {k_nodes + "NUMBER_OF_ELEMENTS = 1\n1 2 3\n", "READ RDF ERROR : Line 8 holds 3" + element},
      {k_nodes + "NUMBER_OF_ELEMENTS = 2\n1 2 3 0\n\n", "READ RDF ERROR : Line 9 holds 0" + element},
  };
  for (const refusal_case& row : rows) expect_refused(row);
}

TEST(RdfGuards, CountsMustBeNumbersFromZeroOn) {
  const std::string tail = "; it must lie between 0 and 2147483647.";
  const refusal_case rows[] = {
      {"NUMBER_OF_NODES = -1\n", "READ RDF ERROR : NUMBER_OF_NODES is -1 in line 1" + tail},
      {"\nNUMBER_OF_NODES = 3e9\n", "READ RDF ERROR : NUMBER_OF_NODES is 3e+09 in line 2" + tail},
      {"NUMBER_OF_NODES = nan\n", "READ RDF ERROR : NUMBER_OF_NODES is nan in line 1" + tail},
      {"NUMBER_OF_NODES = inf\n", "READ RDF ERROR : NUMBER_OF_NODES is inf in line 1" + tail},
      {"NUMBER_OF_NODES = 1e999\n", "READ RDF ERROR : NUMBER_OF_NODES is inf in line 1" + tail},
      {"NUMBER_OF_ELEMENTS = -7.5\n", "READ RDF ERROR : NUMBER_OF_ELEMENTS is -7.5 in line 1" + tail},
      {"NUMBER_OF_ELEMENTS = 2147483648\n", "READ RDF ERROR : NUMBER_OF_ELEMENTS is 2147483648 in line 1" + tail},
      {"NUMBER_OF_NODES = -0.5\n", k_longitudinal},
      {"NUMBER_OF_NODES = many\n", k_longitudinal},
  };
  for (const refusal_case& row : rows) expect_refused(row);
}

TEST(RdfGuards, AHugeCountCostsNoMemoryTheFileCannotFill) {
  const reading r = read_text("NUMBER_OF_NODES = 2147483647\n1 0 0 0\n");
  EXPECT_EQ(r.message, k_longitudinal);
  EXPECT_EQ(r.road.number_of_nodes, 2147483647);
  EXPECT_EQ(r.road.nodes.size(), 1u);
  EXPECT_LT(r.road.nodes.capacity(), 100u);
}

TEST(RdfGuards, NodeNumbersMustNameANode) {
  const std::string tail = "; node numbers must lie between 1 and 4.";
  const refusal_case rows[] = {
      {k_nodes + "NUMBER_OF_ELEMENTS = 2\n1 2 3 0\n1 2 5 0\n", "READ RDF ERROR : Element 2 names node 5" + tail},
      {k_nodes + "NUMBER_OF_ELEMENTS = 1\n0 2 3 0\n", "READ RDF ERROR : Element 1 names node 0" + tail},
      {k_nodes + "NUMBER_OF_ELEMENTS = 1\n1 -2147483648 3 0\n",
       "READ RDF ERROR : Element 1 names node -2147483648" + tail},
      {k_nodes + "NUMBER_OF_ELEMENTS = 1\n1 2 2147483647 0\n",
       "READ RDF ERROR : Element 1 names node 2147483647" + tail},
      {k_nodes + "NUMBER_OF_ELEMENTS = 1\n0.9 2 3 0\n", "READ RDF ERROR : Element 1 names node 0" + tail},
      {"NUMBER_OF_ELEMENTS = 1\n1 2 3 0\n",
       "READ RDF ERROR : Element 1 names node 1; node numbers must lie between 1 and 0."},
      {k_nodes + "NUMBER_OF_ELEMENTS = 1\n1 3e9 3 0\n",
       "READ RDF ERROR : A node number in line 8 is 3e+09; it must lie between 1 and the number of nodes."},
      {k_nodes + "NUMBER_OF_ELEMENTS = 1\n1 2 -1e300 0\n",
       "READ RDF ERROR : A node number in line 8 is -1e+300; it must lie between 1 and the number of nodes."},
  };
  for (const refusal_case& row : rows) expect_refused(row);
}

TEST(RdfGuards, LinesOutsideTheBlocksMustBeShorterThanTheLimit) {
  EXPECT_TRUE(read_text(with_mesh("# " + std::string(637, 'x') + "\n")).returned) << "639 characters";
  EXPECT_TRUE(read_text(with_mesh("WIDTH = " + std::string(630, ' ') + "4\n")).returned) << "639 characters";
  const std::string tail = " characters; outside the node and element blocks a line must be shorter than 640.";
  expect_refused({with_mesh("\n" + std::string(640, 'x') + "\n"), "READ RDF ERROR : Line 2 has 640" + tail});
  expect_refused({with_mesh("WIDTH = " + std::string(632, ' ') + "4\n"), "READ RDF ERROR : Line 1 has 641" + tail});
  expect_refused({std::string(100000, 'x'), "READ RDF ERROR : Line 1 has 100000" + tail});
}

TEST(RdfGuards, ARoadWithoutPlanExtentIsRefused) {
  const refusal_case rows[] = {
      {"", k_longitudinal},
      {"\n", k_longitudinal},
      {"COHESION = 5", k_longitudinal},
      {k_nodes, k_longitudinal},
      {"NUMBER_OF_NODES = 3\n1 5 0 0\n2 5 1 0\n3 5 0 1\n\nNUMBER_OF_ELEMENTS = 1\n1 2 3 0\n", k_longitudinal},
      {"NUMBER_OF_NODES = 3\n1 0 5 0\n2 1 5 0\n3 0 5 1\n\nNUMBER_OF_ELEMENTS = 1\n1 2 3 0\n", k_vertical},
      {"NUMBER_OF_NODES = 1\n1 5 5 5\n\nNUMBER_OF_ELEMENTS = 1\n1 1 1 0\n", k_longitudinal},
  };
  for (const refusal_case& row : rows) expect_refused(row);
}

TEST(RdfGuards, AGridTooFineToCountIsRefused) {
  expect_refused({"NUMBER_OF_NODES = 4\n1 0 0 0\n2 1e-6 0 0\n3 0 1 0\n4 1e9 0 0\n\nNUMBER_OF_ELEMENTS = 1\n1 2 3 0\n",
                  "READ RDF ERROR : The number of grid cells along x is 2e+15; it must lie between 0 and "
                  "2147483647."});
}

TEST(RdfGuards, TheCountIsSetToOneAndTheFirstSlotUsedWhateverStoodThere) {
  const qvtest::TemporaryFolder folder;
  folder.write("road.rdf", "TIME = 'DAY'\n");
  qvtest::ScriptedHost host;
  char own[3][4] = {"one", "two", "thr"};
  char* slots[5] = {own[0], own[1], own[2], nullptr, nullptr};
  int count = 3;
  qvsoilrdf::CRoad road;
  EXPECT_THROW(qvsoilrdf::read_rdf(host.handle(), folder.wide_path("road.rdf"), road, count, slots), int);
  EXPECT_EQ(count, 1);
  EXPECT_STREQ(slots[0], "READ RDF ERROR : DAY is an unsupported TIME UNIT.");
  EXPECT_EQ(slots[1], own[1]);
  EXPECT_EQ(slots[3], nullptr);
  delete[] slots[0];
}

TEST(RdfGuards, TheRoadKeepsWhatWasFilledBeforeARefusal) {
  const reading r = read_text("LENGTH = 'MM'\nCOHESION = 4\n" + k_nodes + "TIME = 'DAY'\nSENSITIVITY = 3\n");
  EXPECT_EQ(r.thrown, 1);
  EXPECT_EQ(r.road.length_factor, 0.001);
  EXPECT_EQ(r.road.wong.cohesion, 4);
  EXPECT_EQ(r.road.wong.sensitivity, 0);
  EXPECT_EQ(r.road.nodes.size(), 4u);
  EXPECT_EQ(r.road.x_max, 10);
  EXPECT_TRUE(r.road.cells.empty());
}

TEST(RdfGuards, ASuccessLeavesTheChannelAsItWas) {
  const qvtest::TemporaryFolder folder;
  folder.write("road.rdf", qvtest::k_two_triangles);
  qvtest::ScriptedHost host;
  char own[4] = "one";
  char* slots[5] = {own, nullptr, nullptr, nullptr, nullptr};
  int count = 1;
  qvsoilrdf::CRoad road;
  EXPECT_TRUE(qvsoilrdf::read_rdf(host.handle(), folder.wide_path("road.rdf"), road, count, slots));
  EXPECT_EQ(count, 1);
  EXPECT_EQ(slots[0], own);
}

TEST(RdfGuards, AnyTextIsReadOrRefusedWithAMessage) {
  EXPECT_TRUE(rc::check([] {
    const auto pieces = *rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
        "NUMBER_OF_NODES", "NUMBER_OF_ELEMENTS", "=", "= 4", "= 2", "= -1", "\n", "\n", "\n", "1 0 0 0\n", "2 10 0 0\n",
        "3 10 4 0\n", "4 0 4 1e8\n", "1 2 3 0\n", "1 3 4 0\n", "{", "'", "LENGTH", "'MM'", "WIDTH", "9 1 1 1e999\n",
        "\r\n", "TIME = 'DAY'\n", std::string(1, '\0'), "\xff\xfe", "nan", std::string(700, 'x')));
    std::string content;
    for (const std::string& piece : pieces) content += piece;
    const reading r = read_text(content);
    const bool silent = r.count == 0 && r.message.empty();
    const bool refused = r.thrown == 1 && r.count == 1 && !r.message.empty();
    RC_ASSERT((r.returned ? silent : refused));
  }));
}

}  // namespace
