#include "solver/results/report_page.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>
#include <regex>
#include <set>

#include "qvbrisk/services.h"
#include "solver/results/contact_axes.h"
#include "solver/results/hull_picture.h"
#include "solver/results/report_page/base64.h"
#include "solver/results/report_page/element_loads.h"
#include "solver/results/shape_mesh.h"
#include "solver/results/terrain_lookup.h"
#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

// --- reading a page back -------------------------------------------------------------------------------------------

std::string script_content(const std::string& page, const std::string& id) {
  const size_t tag = page.find("id=\"" + id + "\"");
  if (tag == std::string::npos) {
    ADD_FAILURE() << "no script " << id;
    return {};
  }
  const size_t begin = page.find('>', tag) + 1;
  return page.substr(begin, page.find("</script>", begin) - begin);
}

nlohmann::json data_of(const std::string& page) { return nlohmann::json::parse(script_content(page, "page-data")); }

/// The opposite of base64, digit by digit.
std::string decoded(const std::string& text) {
  std::string bytes;
  unsigned bits = 0, count = 0;
  for (const char c : text) {
    if (c == '=') break;
    const unsigned digit = c >= 'a'   ? static_cast<unsigned>(c - 'a') + 26
                           : c >= 'A' ? static_cast<unsigned>(c - 'A')
                           : c >= '0' ? static_cast<unsigned>(c - '0') + 52
                           : c == '+' ? 62U
                                      : 63U;
    bits = bits << 6 | digit;
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 255U);
  }
  return bytes;
}

template <class Number>
std::vector<Number> array(const std::string& page, const std::string& name) {
  const std::string bytes = decoded(script_content(page, "array-" + name));
  std::vector<Number> values(bytes.size() / sizeof(Number));
  if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(Number));
  EXPECT_EQ(data_of(page)["arrays"][name]["length"], values.size()) << name;
  return values;
}

size_t occurrences(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

/// The page without what stands in its scripts, its style and its comments.
std::string markup(const std::string& page) {
  std::string text;
  size_t at = 0;
  for (;;) {
    const size_t open = std::min({page.find("<script", at), page.find("<style", at), page.find("<!--", at)});
    text += page.substr(at, open - at);
    if (open == std::string::npos) return text;
    if (page.compare(open, 4, "<!--") == 0) {
      at = page.find("-->", open) + 3;
      continue;
    }
    const std::string closing = page.compare(open, 7, "<script") == 0 ? "</script>" : "</style>";
    text += page.substr(open, page.find('>', open) + 1 - open);
    at = page.find(closing, open);
    if (at == std::string::npos) {
      ADD_FAILURE() << "no " << closing;
      return text;
    }
  }
}

// --- recordings made in place --------------------------------------------------------------------------------------

struct PageCase {
  TestModel built{1.0, 0.5};
  Recording recording;
  RunRecord record;

  PageCase() {
    built.add_body("box", 2, {1, 1, 1});
    built.body(0).shape = {ShapeKind::box, {1, 1, 1}, 0, 0, 1};
    built.model.gravity = {0, 0, -9.81};
    built.add_element("soil", "scripted", ElementKind::force, {}, 6).marker = 1;
    recording.columns = {"time [s]", "box.x [m]", "soil.r0 [N]", "soil.r1 [N]", "soil.r2 [N]"};
    record.summary.outcome = RunOutcome::finished;
  }

  void add_frame(double time, const BodyPose& pose = {}) {
    Frame frame;
    frame.time = time;
    frame.body_poses = {pose};
    recording.frames.push_back(frame);
    recording.rows.push_back({time, pose.position[0], 10 * time, 0, 0});
  }
  void set_square_terrain(double x, double y, double side) {
    recording.terrain.points = {{x, y, 0}, {x + side, y, 0}, {x + side, y + side, 0}, {x, y + side, 0}};
    recording.terrain.triangles = {{0, 1, 2}, {0, 2, 3}};
  }
  std::string page(const ReportLimits& limits = {}) const {
    return report_page(built.model, recording, record, limits).together();
  }
};

/// A level grid of n x n squares, its height a function of the place.
template <class Height>
TriangleMesh grid(int n, double spacing, Height&& height) {
  TriangleMesh mesh;
  for (int j = 0; j <= n; ++j) {
    for (int i = 0; i <= n; ++i) mesh.points.push_back({i * spacing, j * spacing, height(i * spacing, j * spacing)});
  }
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < n; ++i) {
      const int k = j * (n + 1) + i;
      mesh.triangles.push_back({k, k + 1, k + n + 2});
      mesh.triangles.push_back({k, k + n + 2, k + n + 1});
    }
  }
  return mesh;
}

// --- the page ------------------------------------------------------------------------------------------------------

TEST(ReportPage, HoldsThePosesAndTheColumnsOfARun) {
  TestModel built(1.0, 0.1);
  built.add_body("ball", 3, {1, 1, 1});
  built.add_body("box", 2, {1, 2, 3});
  built.body(0).velocity = {1, 2, 3};
  built.body(1).angular_velocity = {0, 1, 2};
  built.model.gravity = {0, 0, -10};
  const TestRun out = run_to_end(built);
  const std::string page = read_text(out.folder + "/report.html");
  const nlohmann::json data = data_of(page);
  EXPECT_EQ(data["run"]["outcome"], "finished");
  EXPECT_EQ(data["columns"].get<std::vector<std::string>>().size(), out.rows[0].size());

  const auto columns = array<float>(page, "columns");
  const auto times = array<double>(page, "row_times");
  const auto poses = array<float>(page, "poses");
  ASSERT_EQ(times.size(), out.rows.size());
  ASSERT_EQ(columns.size(), out.rows.size() * (out.rows[0].size() - 1));
  ASSERT_EQ(poses.size(), out.rows.size() * 2 * 7);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    EXPECT_EQ(times[row], out.rows[row][0]);
    for (size_t c = 1; c < out.rows[row].size(); ++c) {
      EXPECT_EQ(columns[(c - 1) * times.size() + row], static_cast<float>(out.rows[row][c])) << "column " << c;
    }
    const float* box = &poses[7 * (2 * row + 1)];
    for (size_t c = 0; c < 3; ++c) {
      EXPECT_NEAR(box[c] + data["origin"][c].get<double>(), out.position("box", row)[c], 1e-5);
    }
    EXPECT_EQ(box[3], static_cast<float>(out.at("box.qx", row))) << "quaternions are x y z w";
    EXPECT_EQ(box[6], static_cast<float>(out.at("box.qw", row)));
  }
}

TEST(ReportPage, TellsWhichColumnsAreThoseOfVariablesAndEquations) {
  TestModel built(1.0, 0.5);
  built.add_body("ball", 3, {1, 1, 1});
  Variable order;
  order.id = 1;
  order.name = "order";
  order.value.text = "2*t";
  built.model.variables = {order};
  Equation way;  // by the name of the body: its rate is none of the body's columns
  way.id = 1;
  way.name = "ball";
  way.right_side.text = "order";
  built.model.equations = {way};
  const TestRun out = run_to_end(built);
  const nlohmann::json data = data_of(read_text(out.folder + "/report.html"));
  const auto states = data["states"].get<std::vector<std::string>>();
  EXPECT_EQ(states, (std::vector<std::string>{"order", "ball", "ball.rate"}));
  const auto columns = data["columns"].get<std::vector<std::string>>();
  for (const std::string& name : states) EXPECT_EQ(std::count(columns.begin(), columns.end(), name), 1) << name;
}

TEST(ReportPage, IsListedFirstAmongTheFilesOfARun) {
  TestModel built(0.1, 0.1);
  built.add_body("ball", 3, {1, 1, 1});
  const TestRun out = run_to_end(built);
  ASSERT_FALSE(out.summary.files.empty());
  EXPECT_EQ(out.summary.files.front(), "report.html");
  EXPECT_EQ(nlohmann::json::parse(read_text(out.folder + "/run.json"))["files"][0], "report.html");
}

TEST(ReportPage, KeepsDigitsOfATerrainFarFromTheOrigin) {
  PageCase c;
  c.set_square_terrain(4.5e6, 7.25e5, 0.125);  // half a metre is the step of single precision out there
  c.add_frame(0, {{4.5e6 + 0.0625, 7.25e5, 1}, {1, 0, 0, 0}});
  const std::string page = c.page();
  const nlohmann::json origin = data_of(page)["origin"];
  const auto points = array<float>(page, "terrain_points");
  const auto triangles = array<std::uint32_t>(page, "terrain_triangles");
  EXPECT_EQ(triangles, (std::vector<std::uint32_t>{0, 1, 2, 0, 2, 3}));
  ASSERT_EQ(points.size(), 12u);
  for (size_t k = 0; k < points.size(); ++k) {
    EXPECT_EQ(points[k] + origin[k % 3].get<double>(), c.recording.terrain.points[k / 3][k % 3]);
  }
  EXPECT_EQ(array<float>(page, "poses")[0] + origin[0].get<double>(), 4.5e6 + 0.0625);
}

TEST(ReportPage, HoldsThePointsThatTouchTheGround) {
  PageCase c;
  c.set_square_terrain(0, 0, 2);
  c.add_frame(0);
  ContactPointSample touching;
  touching.position = {0.5, 0.75, -0.25};
  touching.local_force = {3, 4, 12};
  touching.sinkage = -0.25;
  c.recording.frames[0].points = {ContactPointSample{}, touching, ContactPointSample{}};
  const std::string page = c.page();
  EXPECT_EQ(array<std::uint32_t>(page, "point_counts"), std::vector<std::uint32_t>{1});
  EXPECT_EQ(array<std::uint16_t>(page, "point_elements"), std::vector<std::uint16_t>{0});
  // Level ground below a body whose axes are the ground's: shear 1 is along y x z = x, shear 2 along z x x = y.
  const std::vector<float> expected = {-0.5F, -0.25F, -0.25F, 3, 4, 12, 0.25F, 12};
  EXPECT_EQ(array<float>(page, "points"), expected);
}

TEST(ReportPage, KeepsValuesThatAreNoNumbers) {
  PageCase c;
  c.add_frame(0);
  c.recording.rows[0][2] = std::nan("");
  c.recording.rows[0][3] = -std::numeric_limits<double>::infinity();
  const auto columns = array<float>(c.page(), "columns");
  EXPECT_TRUE(std::isnan(columns[1]));
  EXPECT_EQ(columns[2], -std::numeric_limits<float>::infinity());
}

TEST(ReportPage, ClosesEveryTagInOrder) {
  PageCase c;
  c.add_frame(0);
  const std::set<std::string> without_end = {"!DOCTYPE", "meta", "input"};
  std::vector<std::string> open;
  std::set<std::string> ids;
  const std::string text = markup(c.page());
  const std::regex tag("<(/?)([!A-Za-z][A-Za-z0-9]*)([^<>]*)>"), id("id=\"([^\"]*)\"");
  size_t angles = 0;
  for (std::sregex_iterator it(text.begin(), text.end(), tag), end; it != end; ++it) {
    angles += 1;
    const std::string name = (*it)[2], attributes = (*it)[3];
    EXPECT_EQ(std::count(attributes.begin(), attributes.end(), '"') % 2, 0) << it->str();
    std::smatch found;
    if (std::regex_search(attributes, found, id)) {
      EXPECT_TRUE(ids.insert(found[1]).second) << "twice: " << found[1];
    }
    if (without_end.count(name) != 0) continue;
    if ((*it)[1].length() == 0) {
      open.push_back(name);
    } else {
      ASSERT_FALSE(open.empty()) << it->str();
      ASSERT_EQ(open.back(), name);
      open.pop_back();
    }
  }
  EXPECT_TRUE(open.empty());
  EXPECT_GT(angles, 100u);
  EXPECT_EQ(static_cast<size_t>(std::count(text.begin(), text.end(), '<')), angles) << "no stray '<'";
}

TEST(ReportPage, RefersToNothingOutsideItself) {
  PageCase c;
  c.add_frame(0);
  const std::string page = c.page(), text = markup(page);
  EXPECT_NE(text.find("Content-Security-Policy\" content=\"default-src 'none'"), std::string::npos);
  for (const char* part : {"src=", "href=", "<link", "<base", "<iframe", "http://", "https://"}) {
    EXPECT_EQ(text.find(part), std::string::npos) << part;
  }
  for (const char* pattern : {"(src|href)\\s*=\\s*[\"'`]\\s*(https?:)?//", "import\\s*\\(?\\s*[\"'`]", "@import"}) {
    std::smatch found;
    EXPECT_FALSE(std::regex_search(page, found, std::regex(pattern))) << found.str();
  }
}

TEST(ReportPage, ShowsTextsAsTextWhateverTheyHold) {
  PageCase plain;
  plain.add_frame(0);
  PageCase hostile;
  hostile.add_frame(0);
  const std::string text = "</title></script><script>steal()</script><!-- \" ' & \xE2\x80\xA8 <!--@data-->";
  hostile.built.model.title = text;
  hostile.built.model.path = text;
  hostile.built.model.bodies[0].name = text;
  hostile.record.messages = {text};
  hostile.record.summary.message = text;
  hostile.recording.columns[1] = text;
  const std::string page = hostile.page();
  EXPECT_EQ(occurrences(page, "<script"), occurrences(plain.page(), "<script"));
  EXPECT_EQ(occurrences(page, "</script"), occurrences(plain.page(), "</script"));
  EXPECT_EQ(occurrences(page, "<!--"), occurrences(plain.page(), "<!--"));
  EXPECT_NE(page.find("<title>&lt;/title&gt;&lt;/script&gt;"), std::string::npos);
  const nlohmann::json data = data_of(page);
  EXPECT_EQ(data["run"]["messages"][0], text);
  EXPECT_EQ(data["run"]["message"], text);
  EXPECT_EQ(data["bodies"][0]["name"], text);
  EXPECT_EQ(data["columns"][1], text);
}

TEST(ReportPage, StandsTextThatIsNoUtf8) {
  PageCase c;
  c.add_frame(0);
  c.record.messages = {"depth \xB5m"};
  c.built.model.bodies[0].name = "r\xE4tsel";
  const nlohmann::json data = data_of(c.page());
  EXPECT_EQ(data["run"]["messages"][0], "depth \xEF\xBF\xBDm");
  EXPECT_EQ(data["bodies"][0]["name"],
            "r\xEF\xBF\xBD"
            "tsel");
}

TEST(ReportPage, TellsHowARunEnded) {
  const std::pair<RunOutcome, const char*> cases[] = {{RunOutcome::finished, "finished"},
                                                      {RunOutcome::interrupted, "interrupted"},
                                                      {RunOutcome::stopped, "stopped"},
                                                      {RunOutcome::failed, "failed"}};
  for (const auto& [outcome, word] : cases) {
    PageCase c;
    c.add_frame(0);
    c.record.summary.outcome = outcome;
    c.record.summary.message = "why";
    const nlohmann::json run = data_of(c.page())["run"];
    EXPECT_EQ(run["outcome"], word);
    EXPECT_EQ(run["complete"], outcome == RunOutcome::finished);
    EXPECT_EQ(run["message"], "why");
  }
}

char* message(const char* text) {
  char* copy = new char[std::strlen(text) + 1];
  std::strcpy(copy, text);
  return copy;
}

TEST(ReportPage, IsWrittenForARunThatFailsUnderWay) {
  TestModel built(1.0, 0.1);
  built.add_body("ball", 1, {1, 1, 1});
  built.add_element("soil", "scripted", ElementKind::force, {}, 6).marker = 1;
  const Script script([&](const HookCall& call) {
    if (call.time < 0.45) return;
    char* slots[5] = {message("</script> TOO DEEP."), nullptr, nullptr, nullptr, nullptr};
    THROW_ERROR(call.handle, "USUB ERROR", 1, slots);
  });
  const TestRun out = run(built);
  const std::string page = read_text(out.folder + "/report.html");
  const nlohmann::json data = data_of(page);
  EXPECT_EQ(data["run"]["outcome"], "failed");
  EXPECT_NE(data["run"]["message"].get<std::string>().find("</script> TOO DEEP."), std::string::npos);
  EXPECT_EQ(array<double>(page, "frame_times").size(), 5u) << "frames 0 to 0.4 are kept";
}

TEST(ReportPage, IsWrittenForARunThatNeverStarted) {
  TestModel built(1.0, 0.1);
  built.add_body("ball", 1, {1, 1, 1});
  RunOptions options;
  options.plugin_path = "/nowhere/libplugin.so";
  const TestRun out = run(built, options);
  ASSERT_EQ(out.summary.outcome, RunOutcome::failed);
  const std::string page = read_text(out.folder + "/report.html");
  EXPECT_EQ(data_of(page)["run"]["outcome"], "failed");
  EXPECT_TRUE(array<double>(page, "frame_times").empty());
  EXPECT_TRUE(array<double>(page, "row_times").empty());
}

// --- hulls and water -----------------------------------------------------------------------------------------------

/// A box of edge 1 as a hull, in a sea that rises evenly.
struct SeaCase : PageCase {
  EvenSurface surface{0.25, 0.125, 0.5};

  SeaCase() {
    const TriangleMesh mesh = shape_mesh(built.body(0).shape);
    Element& hull = built.model.elements[0];
    hull.subroutine = "qvhydro_force";
    hull.par = hull_par(k_ground_id, 1, 1, mesh);
    recording.model = &built.model;
    recording.hulls.push_back(*read_hull(built.model, 0));
    recording.hulls[0].water = 0;
    recording.waters.push_back({0, surface.wave(8, 33, 0.5)});
  }
};

/// Bit k of a frame: patch k is under water.
std::vector<bool> bits(const std::vector<std::uint8_t>& bytes, size_t first, size_t count) {
  std::vector<bool> out;
  for (size_t k = 0; k < count; ++k) out.push_back((bytes[first + k / 8] >> k % 8 & 1) != 0);
  return out;
}

TEST(ReportPage, HoldsHullsAboutTheCentreOfMassAndWhichPatchesAreWet) {
  SeaCase c;
  c.built.body(0).center = {0.5, 0, 0};
  c.add_frame(0, {{4, 0, 5}, {1, 0, 0, 0}});
  c.add_frame(1, {{4, 0, 1}, {std::cos(0.4), 0, std::sin(0.4), 0}});
  c.add_frame(2, {{4, 0, -5}, {1, 0, 0, 0}});
  const int marker = c.built.add_marker(0, {0.5, 2, 0}, turn(2, k_pi / 2));
  c.recording.hulls[0].marker = marker;
  const std::string page = c.page();
  const nlohmann::json hulls = data_of(page)["hulls"];
  ASSERT_EQ(hulls.size(), 1U);
  EXPECT_EQ(hulls[0]["body"], 0);
  EXPECT_EQ(hulls[0]["element"], 0);
  const auto nodes = array<float>(page, "hull_nodes");
  const auto patches = array<std::uint32_t>(page, "hull_patches");
  ASSERT_EQ(nodes.size(), 3U * hulls[0]["nodes"].get<size_t>());
  ASSERT_EQ(patches.size(), 3U * hulls[0]["patches"].get<size_t>());
  const TriangleMesh& mesh = c.recording.hulls[0].mesh;
  for (size_t k = 0; k < mesh.points.size(); ++k) {
    const Vec3 expected = {-mesh.points[k][1], 2 + mesh.points[k][0], mesh.points[k][2]};
    expect_near(expected, {nodes[3 * k], nodes[3 * k + 1], nodes[3 * k + 2]}, 1e-6);
  }
  EXPECT_EQ(patches[4], static_cast<std::uint32_t>(mesh.triangles[1][1]));

  const auto wet = array<std::uint8_t>(page, "hull_wet");
  ASSERT_EQ(wet.size(), 3U * 2) << "12 patches take 2 bytes of each frame";
  EXPECT_EQ(bits(wet, 0, 12), std::vector<bool>(12, false)) << "high over the water";
  EXPECT_EQ(bits(wet, 2, 12),
            calc_hull_state(c.built.model, c.recording.hulls[0], &c.recording.waters[0], c.recording.frames[1]).wet);
  EXPECT_EQ(bits(wet, 4, 12), std::vector<bool>(12, true)) << "deep under it";
}

TEST(ReportPage, HoldsTheWatersSurfaceAtEachFrame) {
  SeaCase c;
  const double half = std::sqrt(0.5);
  c.recording.waters[0].marker = c.built.add_marker(k_ground, {1, 2, 3}, turn(2, k_pi / 2));
  c.add_frame(0, {{1, 10, 3}, {1, 0, 0, 0}});
  c.add_frame(1.5, {{1, 12, 3}, {half, 0, 0, half}});
  const std::string page = c.page();
  const nlohmann::json data = data_of(page), water = data["waters"].at(0);
  EXPECT_EQ(water["body"], k_ground);
  EXPECT_EQ(water["columns"], 33);
  for (size_t k = 0; k < 3; ++k) {
    EXPECT_EQ(water["place"][k].get<double>() + data["origin"][k].get<double>(), static_cast<double>(k + 1));
  }
  EXPECT_NEAR(water["axes"][1].get<double>(), 1, 1e-15) << "its x axis is the ground's y axis";
  // In the water's frame the box goes from x = 8 to 10 and stays at y = 0; its plan is 1 x 1 at any time.
  const double reach = std::hypot(1, 1);
  EXPECT_NEAR(water["y"][0].get<double>(), -0.5 - reach, 1e-12);
  EXPECT_NEAR(water["y"][1].get<double>(), 0.5 + reach, 1e-12);
  const auto x = array<float>(page, "water_x"), levels = array<float>(page, "water_levels");
  ASSERT_EQ(x.size(), 33U);
  ASSERT_EQ(levels.size(), 2U * 33);
  for (size_t k = 0; k < 33; ++k) {
    EXPECT_EQ(x[k], 0.5F * static_cast<float>(k));
    EXPECT_EQ(levels[k], static_cast<float>(c.surface.at(0, x[k])));
    EXPECT_EQ(levels[33 + k], static_cast<float>(c.surface.at(1.5, x[k])));
  }
}

TEST(ReportPage, CountsHullsAndWaterInItsBudget) {
  SeaCase c;
  for (int k = 0; k <= 64; ++k) c.add_frame(0.125 * k);
  ReportLimits limits;
  limits.frame_bytes = 4000;  // a frame has 33 levels and two bytes of patches, next to the 60 bytes of the others
  const std::string page = c.page(limits);
  const size_t frames = array<double>(page, "frame_times").size();
  EXPECT_EQ(array<float>(page, "water_levels").size(), frames * 33);
  EXPECT_EQ(array<std::uint8_t>(page, "hull_wet").size(), frames * 2);
  EXPECT_LE(static_cast<double>(frames - 1) * (60 + 4 * 33 + 2) * 4 / 3, 1.2 * 4000);
  EXPECT_GT(frames, 8U);
}

TEST(ReportPage, HoldsNothingOfHullsForAModelWithoutThem) {
  PageCase c;
  c.add_frame(0);
  const std::string page = c.page();
  EXPECT_TRUE(data_of(page)["hulls"].empty());
  EXPECT_EQ(page.find("array-hull"), std::string::npos);
  EXPECT_EQ(page.find("array-water"), std::string::npos);
}

// --- bounds --------------------------------------------------------------------------------------------------------

TEST(ReportPage, LeavesOutFramesAndRowsBeyondItsBudgetAndSaysSo) {
  PageCase c;
  for (int k = 0; k <= 100; ++k) c.add_frame(0.125 * k);
  EXPECT_TRUE(data_of(c.page())["notes"].empty());
  ReportLimits limits;
  limits.frame_bytes = 1500;
  limits.row_bytes = 400;
  const std::string page = c.page(limits);
  EXPECT_EQ(data_of(page)["notes"].size(), 2u);
  for (const auto& [name, bytes, each] :
       {std::tuple{"frame_times", 1500.0, 8 + 28 + 24.0}, {"row_times", 400.0, 16.0}}) {
    const auto times = array<double>(page, name);
    EXPECT_EQ(times.front(), 0) << name;
    EXPECT_EQ(times.back(), 12.5) << name << ": the end stays";
    // Without the last one, all fit the budget; twice as many would not.
    const double size = static_cast<double>(times.size() - 1) * each * 4 / 3;
    EXPECT_LE(size, bytes * 1.2) << name;
    EXPECT_GT(2 * size, bytes * 0.6) << name;
  }
}

double area(const TriangleMesh& mesh) {
  double sum = 0;
  for (const auto& t : mesh.triangles) {
    const auto corner = [&](size_t k) { return mesh.points[static_cast<size_t>(t[k])]; };
    sum += 0.5 * norm(cross(corner(1) - corner(0), corner(2) - corner(0)));
  }
  return sum;
}

TEST(ThinnedTerrain, StaysWithinItsLimitAndOnItsPlane) {
  const TriangleMesh fine = grid(100, 0.1, [](double x, double y) { return 0.3 * x - 0.2 * y; });
  const TriangleMesh coarse = thinned(fine, 2000);
  EXPECT_LE(coarse.triangles.size(), 2000u);
  EXPECT_GT(coarse.triangles.size(), 200u);
  for (const Vec3& p : coarse.points) EXPECT_NEAR(p[2], 0.3 * p[0] - 0.2 * p[1], 1e-12);
  // Nodes merged at the border move in by up to half a cube, 0.17 of 10, on each of four sides.
  EXPECT_NEAR(area(coarse), area(fine), 0.12 * area(fine));
}

TEST(ThinnedTerrain, IsTheSameMeshWhereItFits) {
  const TriangleMesh mesh = grid(3, 1, [](double, double) { return 0.0; });
  EXPECT_EQ(thinned(mesh, mesh.triangles.size()).triangles, mesh.triangles);
}

// --- forces --------------------------------------------------------------------------------------------------------

TEST(TerrainLookup, FindsTheNormalThatASearchOfAllTrianglesFinds) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> height(-0.3, 0.3), place(-0.5, 5.5);
  const TriangleMesh mesh = grid(10, 0.5, [&](double, double) { return height(random); });
  const TerrainLookup lookup(mesh, UpAxis{});
  int inside_count = 0;
  for (int k = 0; k < 2000; ++k) {
    const Vec3 p = {place(random), place(random), 0};
    Vec3 expected = {0, 0, 1};
    for (const auto& t : mesh.triangles) {
      const auto flat = [&](size_t n) {
        Vec3 q = mesh.points[static_cast<size_t>(t[n])];
        q[2] = 0;
        return q;
      };
      bool inside = true;
      for (size_t n = 0; n < 3; ++n) inside = inside && cross(flat((n + 1) % 3) - flat(n), p - flat(n))[2] > 0;
      if (!inside) continue;
      const auto corner = [&](size_t n) { return mesh.points[static_cast<size_t>(t[n])]; };
      const Vec3 normal = cross(corner(1) - corner(0), corner(2) - corner(0));
      expected = (1 / norm(normal)) * normal;
      ++inside_count;
    }
    expect_near(expected, lookup.find_normal(p), 1e-12);
  }
  EXPECT_GT(inside_count, 1000);
}

TEST(TerrainLookup, LooksUpAgainstGravity) {
  EXPECT_EQ(find_up({0, 0, -9.81}).index, 2u);
  EXPECT_EQ(find_up({0, -9.81, 0}).index, 1u);
  EXPECT_EQ(find_up({9.81, 0, 0}).sign, -1);
  EXPECT_EQ(find_up({0, 0, 0}).index, 2u);
  TriangleMesh wall;  // level for a gravity along -y, and walked either way round
  wall.points = {{0, 2, 0}, {1, 2, 0}, {1, 2, 1}, {0, 2, 1}};
  wall.triangles = {{0, 1, 2}, {0, 3, 2}};
  const TerrainLookup lookup(wall, find_up({0, -1, 0}));
  expect_near({0, 1, 0}, lookup.find_normal({0.8, 0, 0.3}), 1e-15);
  expect_near({0, 1, 0}, lookup.find_normal({0.3, 0, 0.8}), 1e-15);
}

TEST(TerrainLookup, HoldsOutOnTerrainsWithoutExtent) {
  for (const TriangleMesh& mesh : {TriangleMesh{}, TriangleMesh{{{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}, {{0, 1, 2}}}}) {
    expect_near({0, 0, 1}, TerrainLookup(mesh, UpAxis{}).find_normal({1, 1, 0}), 0);
    expect_near({0, 0, 1}, TerrainLookup(mesh, UpAxis{}).find_normal({std::nan(""), 1, 0}), 0);
  }
}

TEST(ContactAxes, TurnPointForcesFromTheSlopeAndTheBody) {
  PageCase c;
  const double slope = 0.3, heading = 0.8;
  c.recording.terrain = grid(4, 1, [&](double x, double) { return std::tan(slope) * x; });
  c.add_frame(0, {{2, 2, 1}, {std::cos(heading / 2), 0, 0, std::sin(heading / 2)}});
  ContactPointSample point;
  point.position = {2.2, 1.7, 0};
  point.local_force = {5, -7, 11};
  const Vec3 normal = {-std::sin(slope), 0, std::cos(slope)};
  const Vec3 y = {-std::sin(heading), std::cos(heading), 0};
  const Vec3 across = cross(y, normal);
  const Vec3 shear_1 = (1 / norm(across)) * across;
  const Vec3 expected = 5.0 * shear_1 + -7.0 * cross(normal, shear_1) + 11.0 * normal;
  const ContactAxes axes(c.built.model, c.recording.terrain, UpAxis{});
  expect_near(expected, axes.force_in_ground(point, c.recording.frames[0]), 1e-12);
}

TEST(ReportPage, LongRunIsHeldInBoundedMemoryAndShownFromItsFirstToItsLastMoment) {
  TestModel built(1.0, 0.001);
  built.model.simulation.frame_step = 0.001;
  built.add_body("ball", 3, {1, 1, 1});
  built.body(0).velocity = {1, 0, 0};
  built.add_element("soil", "scripted", ElementKind::force, {}, 6).marker = 1;
  const Script script([](const HookCall& call) { call.result[0] = 1 + call.time; });
  RunOptions options;
  options.recording = {4000, 8000};
  const TestRun out = run(built, options);
  ASSERT_EQ(out.summary.outcome, RunOutcome::finished) << out.summary.message;
  EXPECT_EQ(out.rows.size(), 1001u) << "the file has all rows";
  const std::string page = read_text(out.folder + "/report.html");
  const auto times = array<double>(page, "row_times"), frames = array<double>(page, "frame_times");
  EXPECT_LE(times.size() * out.rows[0].size() * sizeof(double), 8000u);
  EXPECT_GT(times.size(), 10u);
  EXPECT_LT(frames.size(), times.size());
  for (const auto& kept : {times, frames}) {
    EXPECT_EQ(kept.front(), 0);
    EXPECT_EQ(kept.back(), 1);
  }
  const auto loads = array<float>(page, "loads");
  for (size_t k = 0; k < frames.size(); ++k)  // each frame has the load of its own time, though most rows are gone
    EXPECT_NEAR(loads[6 * k + 3], 1 + frames[k], 1e-6) << "frame " << k;
  const std::string notes = data_of(page)["notes"].dump();
  EXPECT_NE(notes.find("The run has 1001 rows; the plots show " + std::to_string(times.size()) + " of them"),
            std::string::npos)
      << notes;
  EXPECT_NE(notes.find("The run has 1001 frames; the replay shows " + std::to_string(frames.size()) + " of them"),
            std::string::npos)
      << notes;
}

TEST(ElementLoads, TakeTheForceOfTheFramesRowWhereThePointsCarry) {
  PageCase c;
  c.add_frame(0);
  c.add_frame(0.5);
  c.recording.rows[1] = {0.5, 0, 1, 2, 3};
  ContactPointSample light, heavy, off;
  light.position = {0, 0, 0};
  light.local_force = {0, 0, 1};
  heavy.position = {4, 8, 0};
  heavy.local_force = {9, 0, 3};
  light.sinkage = heavy.sinkage = -0.1;
  off.position = {100, 100, 100};
  c.recording.frames[1].points = {light, heavy, off};
  const ElementLoads loads(c.built.model, c.recording.columns);
  ASSERT_EQ(loads.elements(), std::vector<int>{0});
  const ElementLoad load = loads.find_loads(c.recording.frames[1], c.recording.rows)[0];
  expect_near({1, 2, 3}, load.force, 0);
  expect_near({3, 6, 0}, load.place, 1e-14);
}

TEST(ElementLoads, TurnForcesOutOfTheElementsAxesAndStandAtItsMarker) {
  PageCase c;
  const double half = std::sqrt(0.5);
  c.add_frame(0, {{10, 20, 30}, {half, 0, 0, half}});  // a quarter turn about z
  c.recording.rows[0] = {0, 0, 1, 2, 3};
  const int marker = c.built.add_marker(0, {2, 0, 0}, turn(2, k_pi / 2));
  c.built.model.elements[0].marker = marker;
  c.built.model.elements[0].axes = marker;
  const ElementLoads loads(c.built.model, c.recording.columns);
  const ElementLoad load = loads.find_loads(c.recording.frames[0], c.recording.rows)[0];
  expect_near({-1, -2, 3}, load.force, 1e-14, "half a turn in all");
  expect_near({10, 22, 30}, load.place, 1e-14);
}

TEST(Base64, IsThatOfTheStandard) {
  const std::pair<const char*, const char*> cases[] = {{"", ""},
                                                       {"f", "Zg=="},
                                                       {"fo", "Zm8="},
                                                       {"foo", "Zm9v"},
                                                       {"foob", "Zm9vYg=="},
                                                       {"fooba", "Zm9vYmE="},
                                                       {"foobar", "Zm9vYmFy"},
                                                       {"\xFB\xEF\xFF", "++//"}};
  for (const auto& [bytes, expected] : cases) {
    std::string text;
    append_base64(bytes, std::strlen(bytes), text);
    EXPECT_EQ(text, expected);
    EXPECT_EQ(text.size(), base64_length(std::strlen(bytes)));
  }
}

}  // namespace
