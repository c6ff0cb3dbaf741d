#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "solver/data_files/wave_file.h"
#include "solver/results/csv.h"
#include "solver/results/shape_mesh.h"
#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"
#include "tests/support/exact_text.h"
#include "tests/support/vtp_arrays.h"

namespace {

using namespace qvslv;
using qvtest::vtp_array;

/// Counts elements by name in an XML text, and fails the test unless every tag is closed in order.
std::map<std::string, int> xml_elements(const std::string& text) {
  std::map<std::string, int> counts;
  std::vector<std::string> open;
  for (size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) {
    const size_t end = text.find('>', at);
    if (end == std::string::npos) {
      ADD_FAILURE() << "a tag does not end";
      break;
    }
    const std::string tag = text.substr(at + 1, end - at - 1);
    if (tag.front() == '?') continue;
    EXPECT_EQ(std::count(tag.begin(), tag.end(), '"') % 2, 0) << tag;
    if (tag.front() == '/') {
      if (open.empty() || open.back() != tag.substr(1)) ADD_FAILURE() << "unexpected <" << tag << ">";
      if (!open.empty()) open.pop_back();
      continue;
    }
    const std::string name = tag.substr(0, tag.find_first_of(" /"));
    ++counts[name];
    if (tag.back() != '/') open.push_back(name);
  }
  EXPECT_TRUE(open.empty()) << "not closed: " << (open.empty() ? "" : open.back());
  return counts;
}

constexpr double k_single = 1.0 / (1 << 24);  // a rounding of single precision, relative

TestModel falling_box(double end_time, double output_step) {
  TestModel built(end_time, output_step);
  const int box = built.add_body("box", 2, {1, 1, 1});
  built.body(box).shape.kind = ShapeKind::box;
  built.body(box).shape.size = {2, 4, 6};
  built.body(box).position = {1, 2, 3};
  built.model.gravity = {0, 0, -10};
  return built;
}

TEST(ResultsCsv, RowsStandAtTheExactOutputTimes) {
  struct Case {
    const char* why;
    double end, step;
    std::vector<double> times;
  };
  const Case cases[] = {
      {"decimal steps give decimal times", 0.5, 0.1, {0, 0.1, 0.2, 0.3, 0.4, 0.5}},
      {"a step that does not divide the end adds the end", 1.0, 0.4, {0, 0.4, 0.8, 1.0}},
      {"a step beyond the end leaves start and end", 0.3, 2.0, {0, 0.3}},
      {"steps above one", 6.0, 2.0, {0, 2, 4, 6}},
      {"no end: the start alone", 0.0, 0.1, {0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(run_to_end(falling_box(c.end, c.step)).column("time"), c.times);
  }
}

TEST(ResultsCsv, AModelWithoutBodiesStillRunsItsReports) {
  TestModel built(0.2, 0.1);
  built.add_element("clock", "scripted", ElementKind::report, {}, 1);
  const Script script([](const HookCall& call) { call.result[0] = call.time; });
  const TestRun out = run_to_end(built);
  EXPECT_EQ(out.at("clock.r0", 1), 0.1);
  EXPECT_EQ(out.at("clock.r0", 2), 0.2);
}

TEST(ResultsCsv, AReportThatHasNothingToTellBeforeTheFirstStepHasEmptyCellsThere) {
  TestModel built(0.2, 0.1);
  built.add_body("box", 1, {1, 1, 1});
  built.add_element("push", "scripted", ElementKind::force, {1}, 6).marker = 1;
  built.add_element("sum", "scripted", ElementKind::report, {2}, 2);
  built.add_element("size", "scripted", ElementKind::report, {3}, 2);
  const Script script([](const HookCall& call) {
    if (call.par[0] == 2 && call.iflag != 2) return;
    if (call.par[0] != 1) call.result[1] = 7;
  });
  const TestRun out = run_to_end(built);
  for (const char* column : {"sum.r0", "sum.r1"}) EXPECT_TRUE(std::isnan(out.at(column, 0))) << column;
  EXPECT_EQ(out.at("sum.r0", 1), 0);
  EXPECT_EQ(out.at("sum.r1", 1), 7);
  EXPECT_EQ(out.at("size.r0", 0), 0);
  EXPECT_EQ(out.at("size.r1", 0), 7);
  EXPECT_EQ(out.at("push.r0", 0), 0);
  EXPECT_EQ(csv_line(std::vector<double>{1, std::nan(""), 0.5}), "1,,0.5\n");
}

TEST(ResultsCsv, HeadersCarryTheModelsUnits) {
  TestModel built = falling_box(0.1, 0.1);
  built.model.units.length = "MILIMETER";
  built.model.units.length_factor = 0.001;
  built.model.units.time = "MILISECOND";
  const int hinge = built.add_marker(0, {0, 0, 0});
  built.add_joint(JointType::revolute, 0, hinge);
  const TestRun out = run_to_end(built);
  for (const char* name : {"time [ms]", "box.x [mm]", "box.qw", "box.vz [mm/ms]", "box.wx [rad/ms]",
                           "joint0.angle [rad]", "joint0.angle_rate [rad/ms]", "kinetic_energy [kg mm^2/ms^2]"}) {
    EXPECT_EQ(std::count(out.columns.begin(), out.columns.end(), name), 1) << name;
  }
  EXPECT_EQ(out.columns.size(), out.rows[0].size());
}

TEST(ResultsCsv, NumbersReadBackToTheSameBits) {
  const TestRun out = run_to_end(falling_box(0.7, 0.1));
  std::ifstream csv(out.folder + "/results.csv");
  std::string line;
  std::getline(csv, line);
  for (size_t row = 0; std::getline(csv, line); ++row) {
    std::stringstream fields(line);
    std::string field;
    for (size_t k = 0; std::getline(fields, field, ','); ++k) {
      EXPECT_EQ(qvtest::number_in(field), qvtest::number_in(qvtest::exact_text(out.rows[row][k])));
    }
  }
}

TEST(ResultsCsv, EnergyOfAFallIsThatOfTheClosedForm) {
  const TestRun out = run_to_end(falling_box(0.5, 0.5));
  EXPECT_NEAR(out.at("potential_energy", 0), 2 * 10 * 3, 1e-12);
  EXPECT_NEAR(out.at("kinetic_energy", 1), 0.5 * 2 * 25, 1e-9);
  EXPECT_NEAR(out.at("potential_energy", 1), 2 * 10 * (3 - 1.25), 1e-7);
}

TEST(ResultsCsv, FieldsWithCommasAreQuoted) {
  EXPECT_EQ(csv_field("plain [m]"), "plain [m]");
  EXPECT_EQ(csv_field("x=-1"), "x=-1");
  for (const char* formula : {"=1+1", "+x", "-x", "@x", "\tx", "\rx"})
    EXPECT_EQ(csv_field(formula), std::string("\"'") + formula + "\"") << "a spreadsheet would take it for a formula";
  EXPECT_EQ(csv_field("a,b \"c\""), "\"a,b \"\"c\"\"\"");
}

TEST(RunRecord, TellsWhatWasRunAndHowItWent) {
  TestModel built = falling_box(0.2, 0.1);
  built.model.title = "a box falls";
  RunOptions options;
  options.command = "qvbrisk run box.toml";
  options.overrides = {"simulation.end_time=0.2"};
  const TestRun out = run(built, options);
  const auto json = nlohmann::json::parse(read_text(out.folder + "/run.json"));
  EXPECT_EQ(json["title"], "a box falls");
  EXPECT_EQ(json["command"], "qvbrisk run box.toml");
  EXPECT_EQ(json["overrides"][0], "simulation.end_time=0.2");
  EXPECT_EQ(json["settings"]["end_time"], 0.2);
  EXPECT_EQ(json["outcome"], "finished");
  EXPECT_TRUE(json["complete"].get<bool>());
  EXPECT_EQ(json["steps"], out.summary.steps);
  EXPECT_EQ(json["time_reached"], 0.2);
  EXPECT_EQ(json["versions"]["simbody"].get<std::string>().rfind("3.", 0), 0u);
  for (const std::string& file : out.summary.files) {
    EXPECT_TRUE(std::filesystem::exists(out.folder + "/" + file)) << file;
  }
}

TEST(RunFolder, HoldsNoFramesOfAnEarlierLongerRun) {
  RunOptions options;
  options.out_folder = test_folder();
  run(falling_box(0.5, 0.1), options);
  EXPECT_TRUE(std::filesystem::exists(options.out_folder + "/frames/bodies_000005.vtp"));
  run(falling_box(0.2, 0.1), options);
  EXPECT_TRUE(std::filesystem::exists(options.out_folder + "/frames/bodies_000002.vtp"));
  EXPECT_FALSE(std::filesystem::exists(options.out_folder + "/frames/bodies_000003.vtp"));
}

TEST(Frames, IndexListsEveryFrameWithItsFiles) {
  TestModel built = falling_box(1.0, 0.1);
  built.model.simulation.frame_step = 0.5;
  const TestRun out = run_to_end(built);
  const std::string index = read_text(out.folder + "/frames.pvd");
  EXPECT_EQ(xml_elements(index)["DataSet"], 3);
  for (const char* time : {"timestep=\"0\"", "timestep=\"0.5\"", "timestep=\"1\""}) {
    EXPECT_NE(index.find(time), std::string::npos) << time;
  }
  for (const char* file : {"bodies_000000.vtp", "bodies_000001.vtp", "bodies_000002.vtp"}) {
    EXPECT_NE(index.find(std::string("file=\"frames/") + file), std::string::npos) << file;
    xml_elements(qvtest::vtp_xml(read_text(out.folder + "/frames/" + file)));
  }
}

TEST(Frames, AtEveryOutputWhenNoStepIsGiven) {
  const TestRun out = run_to_end(falling_box(1.0, 0.1));
  EXPECT_EQ(xml_elements(read_text(out.folder + "/frames.pvd"))["DataSet"], 11);
}

TEST(Frames, ShowBodiesWhereTheyAre) {
  TestModel built = falling_box(0.1, 0.1);
  built.body(0).orientation = turn(2, k_pi / 2);  // x edge 4 and y edge 2 as seen from the ground
  const TestRun out = run_to_end(built);
  const std::string text = read_text(out.folder + "/frames/bodies_000000.vtp");
  const std::vector<double> points = vtp_array(text, "Points");
  ASSERT_EQ(points.size(), 3u * 8);
  Vec3 low = {1e9, 1e9, 1e9}, high = {-1e9, -1e9, -1e9};
  for (size_t k = 0; k < points.size(); ++k) {
    low[k % 3] = std::min(low[k % 3], points[k]);
    high[k % 3] = std::max(high[k % 3], points[k]);
  }
  expect_near({1 - 2, 2 - 1, 3 - 3}, low, 6 * k_single);
  expect_near({1 + 2, 2 + 1, 3 + 3}, high, 6 * k_single);
  EXPECT_EQ(vtp_array(text, "body").size(), 12u);
  EXPECT_EQ(vtp_array(text, "connectivity").size(), 36u);
  EXPECT_EQ(vtp_array(text, "offsets").back(), 36);
}

TEST(Frames, PlacesFarFromTheOriginKeepTheirDigits) {
  // In coordinates as of a map, single precision would be half a length.
  TestModel built = falling_box(0.1, 0.1);
  built.body(0).position = {4e6, 5e6, 3};
  const TestRun out = run_to_end(built);
  const std::vector<double> points = vtp_array(read_text(out.folder + "/frames/bodies_000000.vtp"), "Points");
  ASSERT_EQ(points.size(), 3u * 8);
  for (size_t k = 0; k < 8; ++k) {
    EXPECT_NEAR(std::abs(points[3 * k] - 4e6), 1, 1e-8);
    EXPECT_NEAR(std::abs(points[3 * k + 1] - 5e6), 2, 1e-8);
  }
}

TEST(Frames, ShowContactPointsWithTheirLoads) {
  TestModel built = falling_box(0.1, 0.1);
  Element& soil = built.add_element("soil", "scripted", ElementKind::report, {}, 23);
  soil.points = {7, 2};
  const Script script([](const HookCall& call) {
    const double points[16] = {1, 2, 2, 10, 20, 30, -0.5, -0.25, 0, 0, 0, 40, 50, 60, 0, 0};
    std::copy(points, points + 16, call.result + 7);
  });
  const TestRun out = run_to_end(built);
  const std::string text = read_text(out.folder + "/frames/points_000001.vtp");
  xml_elements(qvtest::vtp_xml(text));
  EXPECT_EQ(vtp_array(text, "Points"), (std::vector<double>{10, 20, 30, 40, 50, 60}));
  EXPECT_EQ(vtp_array(text, "sinkage"), (std::vector<double>{-0.5, 0}));
  EXPECT_EQ(vtp_array(text, "dynamic_sinkage"), (std::vector<double>{-0.25, 0}));
  EXPECT_EQ(vtp_array(text, "local_force"), (std::vector<double>{1, 2, 2, 0, 0, 0}));
  EXPECT_EQ(vtp_array(text, "force"), (std::vector<double>{3, 0}));
  EXPECT_EQ(vtp_array(text, "normal_force"), (std::vector<double>{2, 0}));
  EXPECT_EQ(vtp_array(text, "in_contact"), (std::vector<double>{1, 0}));
}

TEST(Frames, ShowTheRoadWhereItsMarkerStands) {
  TestModel built = falling_box(0.1, 0.1);
  const std::string folder = test_folder();
  std::filesystem::create_directories(folder);
  std::ofstream(folder + "/road.rdf") << "NUMBER_OF_NODES = 3\n{ id x y z }\n1 0 0 0\n2 1 0 0\n3 0 2 0\n\n"
                                         "NUMBER_OF_ELEMENTS = 1\n1 2 3 0\n\n";
  built.model.path = folder + "/model.toml";
  built.model.strings.push_back({9, "road", "road.rdf"});
  Element& soil = built.add_element("soil", "scripted", ElementKind::report, {}, 1);
  soil.road_string = 9;
  soil.road_marker = built.add_marker(k_ground, {10, 0, 1}, turn(2, k_pi / 2));
  const Script script([](const HookCall&) {});
  RunOptions options;
  options.out_folder = folder + "/out";
  const TestRun out = run(built, options);
  const std::vector<double> points = vtp_array(read_text(out.folder + "/frames/terrain.vtp"), "Points");
  const double expected[9] = {10, 0, 1, 10, 1, 1, 8, 0, 1};
  ASSERT_EQ(points.size(), 9u);
  for (size_t k = 0; k < 9; ++k) EXPECT_NEAR(points[k], expected[k], 10 * k_single);
  EXPECT_NE(read_text(out.folder + "/frames.pvd").find("frames/terrain.vtp"), std::string::npos);
}

/// The falling box as a hull of its own shape in a sea at rest at z = 2.5 that ends at x = 10.
TestModel box_at_sea(const std::string& folder) {
  TestModel built = falling_box(0.2, 0.1);
  std::filesystem::create_directories(folder);
  std::ofstream(folder + "/calm.wave") << wave_text(EvenSurface{2.5, 0, 0}.wave(1, 11, 1), "");
  built.model.path = folder + "/model.toml";
  built.model.strings.push_back({9, "wave", "calm.wave"});
  const std::vector<double> par = hull_par(k_ground_id, 1, 9, shape_mesh(built.body(0).shape));
  built.add_element("hull", "qvhydro_force", ElementKind::force, par, 34).marker = 1;
  return built;
}

TEST(Frames, ShowHullsWithTheirDepthAndTheWater) {
  const std::string folder = test_folder();
  const TestModel built = box_at_sea(folder);
  const Script script([](const HookCall&) {});
  RunOptions options;
  options.out_folder = folder + "/out";
  const TestRun out = run(built, options);
  EXPECT_TRUE(out.told.empty());

  const std::string hull = read_text(out.folder + "/frames/hulls_000001.vtp");
  xml_elements(qvtest::vtp_xml(hull));
  const std::vector<double> nodes = vtp_array(hull, "Points"), depth = vtp_array(hull, "depth");
  ASSERT_EQ(nodes.size(), 3U * 8);
  ASSERT_EQ(depth.size(), 8U);
  const double height = 3 - 5 * 0.1 * 0.1;  // fallen freely for 0.1
  for (size_t k = 0; k < 8; ++k) {
    EXPECT_NEAR(std::abs(nodes[3 * k + 2] - height), 3, 6 * k_single + 1e-8);
    EXPECT_NEAR(depth[k], 2.5 - nodes[3 * k + 2], 12 * k_single);
  }
  // Under water: the bottom, and of each side the triangle that has two corners there.
  const std::vector<double> wet = vtp_array(hull, "wet");
  EXPECT_EQ(wet.size(), 12U);
  EXPECT_EQ(std::count(wet.begin(), wet.end(), 1), 2 + 4);
  EXPECT_EQ(vtp_array(hull, "element"), std::vector<double>(12, 0));

  const std::string water = read_text(out.folder + "/frames/water_000001.vtp");
  xml_elements(qvtest::vtp_xml(water));
  EXPECT_EQ(vtp_array(water, "elevation"), std::vector<double>(22, 2.5));
  const std::vector<double> points = vtp_array(water, "Points");
  ASSERT_EQ(points.size(), 3U * 22);
  const double edge = std::hypot(2, 4);  // one reach of the box beyond it on either side
  for (size_t k = 0; k < 22; ++k) {
    const size_t column = k / 2;
    const double expected[3] = {static_cast<double>(column), k % 2 == 0 ? 0 - edge : 4 + edge, 2.5};
    for (size_t c = 0; c < 3; ++c) EXPECT_NEAR(points[3 * k + c], expected[c], 10 * k_single + 1e-9) << k;
  }
}

TEST(Frames, ListHullsAndWaterInTheIndexAndReplaceThoseOfAnEarlierRun) {
  const std::string folder = test_folder();
  TestModel built = box_at_sea(folder);
  const Script script([](const HookCall&) {});
  RunOptions options;
  options.out_folder = folder + "/out";
  run(built, options);
  const std::string index = read_text(options.out_folder + "/frames.pvd");
  EXPECT_EQ(xml_elements(index)["DataSet"], 3 * 3);
  for (const char* file : {"hulls_000000.vtp", "hulls_000002.vtp", "water_000000.vtp", "water_000002.vtp"}) {
    EXPECT_NE(index.find(std::string("file=\"frames/") + file), std::string::npos) << file;
    EXPECT_TRUE(std::filesystem::exists(options.out_folder + "/frames/" + file)) << file;
  }
  built.model.elements.clear();
  run(built, options);
  EXPECT_FALSE(std::filesystem::exists(options.out_folder + "/frames/hulls_000000.vtp"));
  EXPECT_FALSE(std::filesystem::exists(options.out_folder + "/frames/water_000000.vtp"));
}

TEST(Frames, HullsInOneSeaShareItsSheet) {
  const std::string folder = test_folder();
  TestModel built = box_at_sea(folder);
  const Element first = built.model.elements[0];
  built.model.elements.push_back(first);
  built.model.elements[1].name = "second";
  const Script script([](const HookCall&) {});
  RunOptions options;
  options.out_folder = folder + "/out";
  run(built, options);
  EXPECT_EQ(vtp_array(read_text(options.out_folder + "/frames/hulls_000000.vtp"), "wet").size(), 24U);
  EXPECT_EQ(vtp_array(read_text(options.out_folder + "/frames/water_000000.vtp"), "elevation").size(), 22U);
}

TEST(Frames, AHullOrAWaterThatCannotBeDrawnIsToldAndTheRunGoesOn) {
  const std::string folder = test_folder();
  TestModel built = box_at_sea(folder);
  built.model.strings[0].text = "nowhere.wave";
  built.model.elements.push_back(built.model.elements[0]);
  built.model.elements[1].name = "torn";
  built.model.elements[1].par.pop_back();
  const Script script([](const HookCall&) {});
  RunOptions options;
  options.out_folder = folder + "/out";
  const TestRun out = run(built, options);
  EXPECT_EQ(out.summary.outcome, RunOutcome::finished);
  ASSERT_EQ(out.told.size(), 2U);
  EXPECT_EQ(out.told[0],
            "warning: " + built.model.path + ": element hull: no picture of the water nowhere.wave: it cannot be read");
  EXPECT_EQ(out.told[1],
            "warning: " + built.model.path + ": element torn: no picture of the hull: its par holds no whole mesh");
  const std::vector<double> wet = vtp_array(read_text(out.folder + "/frames/hulls_000000.vtp"), "wet");
  EXPECT_EQ(wet, std::vector<double>(12, 0));
  EXPECT_FALSE(std::filesystem::exists(out.folder + "/frames/water_000000.vtp"));
}

TEST(Frames, ARoadThatCannotBeDrawnIsToldAndTheRunGoesOn) {
  TestModel built = falling_box(0.1, 0.1);
  built.model.strings.push_back({9, "road", "nowhere.rdf"});
  built.add_element("soil", "scripted", ElementKind::report, {}, 1).road_string = 9;
  const Script script([](const HookCall&) {});
  const TestRun out = run_to_end(built);
  ASSERT_EQ(out.told.size(), 1u);
  EXPECT_NE(out.told[0].find("nowhere.rdf"), std::string::npos);
}

}  // namespace
