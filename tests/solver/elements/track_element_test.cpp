#include <gmock/gmock.h>

#include "solver/model_file/expand.h"
#include "solver/read_model.h"
#include "tests/solver/elements/track_model.h"
#include "tests/solver/model_file/mistake.h"

namespace {

using qvslv::Element;
using qvslv::ElementKind;
using qvslv::Model;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

Model read(const std::string& text) { return qvslv::read_model_text(text, "model.toml").model; }
Model read(const std::string& from, const std::string& to) { return read(changed_track(from, to)); }

const Element& element(const Model& model, const std::string& name) {
  for (const Element& element : model.elements)
    if (element.name == name) return element;
  throw std::invalid_argument("no element " + name);
}

std::string marker_name(const Model& model, int marker) { return model.markers[static_cast<size_t>(marker)].name; }

TEST(Track, BecomesItsParameterList) {
  const Model model = read(k_track_model);
  const Element& left = element(model, "left");
  EXPECT_EQ(left.subroutine, "qvsoil_interaction_mtl");
  EXPECT_EQ(left.kind, ElementKind::evaluated);
  // track 0, road 0, string 1, hull 4, road marker 3, reference 3, 2 roads, thickness, width, grid, belt speed
  // (variable 4), 3 wheels, -, markers 6 to 8 and radii
  EXPECT_THAT(left.par, ElementsAre(0, 0, 1, 4, 3, 3, 2, 0.03, 0.5, 6, 3, 4, 3, 0, 6, 0.3, 7, 0.3, 8, 0.28));
  EXPECT_EQ(left.result_length, 4 + 8 * (2 * 5 + 1) * 3);
  EXPECT_EQ(left.points.first, 4);
  EXPECT_EQ(left.points.count, (2 * 5 + 1) * 3);
}

TEST(Track, EveryTrackHasARoadSlotOfItsOwnWithItsFile) {
  const Model model = read(k_track_model);
  // the second: road 1, the same string, on the ground, seen from the ground
  EXPECT_THAT(element(model, "right").par, ElementsAre(0, 1, 1, 5, 1, 1, 2, 0, 0.5, 5, 4, 2, 2, 0, 9, 0.3, 10, 0.3));
  EXPECT_THAT(element(model, "right_shear").par, ElementsAre(0, 1));
  EXPECT_THAT(element(model, "right_wheel_2").par, ElementsAre(0, 1, 1));
  EXPECT_THAT(element(model, "right_sum").par, ElementsAre(1, 0));
}

TEST(Track, ForcesFollowTheContactAndReportsFollowThem) {
  std::vector<std::string> names;
  for (const Element& element : read(k_track_model).elements) names.push_back(element.name);
  EXPECT_THAT(names,
              ElementsAre("left", "left_wheel_1", "left_wheel_2", "left_wheel_3", "left_shear", "left_belt", "left_sum",
                          "right", "right_wheel_1", "right_wheel_2", "right_shear", "right_sum", "left_turn"));
}

TEST(Track, NormalForcesActOnTheWheelsAndTheShearOnTheHull) {
  const Model model = read(k_track_model);
  const Element &wheel = element(model, "left_wheel_2"), &shear = element(model, "left_shear");
  EXPECT_EQ(wheel.kind, ElementKind::force);
  EXPECT_EQ(marker_name(model, wheel.marker), "left_middle");
  EXPECT_EQ(marker_name(model, shear.marker), "hull_left");
  for (const Element* force : {&wheel, &shear}) {
    EXPECT_EQ(marker_name(model, force->axes), "lane");
    EXPECT_EQ(marker_name(model, force->reaction), "lane");
    EXPECT_THAT(force->columns, SizeIs(3));
  }
}

TEST(Track, DriveMakesTorqueSprocketAndBeltSpeed) {
  const Model model = read(k_track_model);
  ASSERT_THAT(model.equations, SizeIs(1));
  ASSERT_THAT(model.variables, SizeIs(4));
  const qvslv::Equation& turn = model.equations[0];
  EXPECT_EQ(turn.name, "left_turn");
  EXPECT_EQ(turn.order, 2);
  EXPECT_EQ(turn.value, 0);
  EXPECT_DOUBLE_EQ(turn.rate, 0.6 / 0.3);
  EXPECT_EQ(model.variables[2].name, "left_drive");
  EXPECT_EQ(model.variables[2].value.text, "800*throttle");
  EXPECT_EQ(model.variables[3].name, "left_belt_speed");
  EXPECT_EQ(model.variables[3].value.text, "0.3*dif1(left_turn)");
  const Element& motion = model.elements[static_cast<size_t>(turn.element)];
  const double rear = element(model, "left_wheel_1").id, front = element(model, "left_wheel_3").id;
  // track 0, -, torque, inertia, ratio, road 0, forces, radius of the sprocket, resistance
  EXPECT_THAT(motion.par, ElementsAre(0, 0, 3, 40, 0.5, 0, rear, 0, front, 0, 0.3, 0.01, 0, 0, 0));
  EXPECT_THAT(element(model, "left_belt").par, ElementsAre(0, 0.3, turn.id));
}

TEST(Track, TorqueAndSprocketShareOneIdHoweverManyVariablesAndEquationsThereAre) {
  const std::string equations =
      "\n[[equation]]\nname = \"a\"\nvalue = 1\n\n[[equation]]\nname = \"b\"\nid = 9\nvalue "
      "= 1\n";
  for (const std::string& more : {std::string(), equations}) {
    const Model model = read(k_track_model + more);
    EXPECT_EQ(model.equations.back().id, model.variables[2].id);
    EXPECT_EQ(model.variables[2].id, more.empty() ? 3 : 10);
    EXPECT_EQ(model.elements.back().par[2], model.variables[2].id);
  }
}

TEST(Track, OneResistingForceStandsTwiceWithHalfTheFactor) {
  const Model model = read("[\"left_wheel_1\", \"left_wheel_3\"]", "[\"left_wheel_2\"]");
  const double force = element(model, "left_wheel_2").id;
  EXPECT_THAT(model.elements.back().par, ElementsAre(0, 0, 3, 40, 0.5, 0, force, 0, force, 0, 0.3, 0.005, 0, 0, 0));
}

TEST(Track, DriveWithoutMoreTakesTheFirstWheelAsItsSprocket) {
  const Model model = read(
      ", ratio = 0.5, speed = 0.6, resistance = 0.01, forces = [\"left_wheel_1\", "
      "\"left_wheel_3\"]",
      "");
  const double shear = element(model, "left_shear").id;
  EXPECT_THAT(model.elements.back().par, ElementsAre(0, 0, 3, 40, 1, 0, shear, 0, shear, 0, 0.3, 0, 0, 0, 0));
  EXPECT_EQ(model.equations[0].rate, 0);
  const Model other = read("inertia = 40", "inertia = 40, radius = 0.25");
  EXPECT_EQ(element(other, "left_belt").par[1], 0.25);
  EXPECT_EQ(other.variables[3].value.text, "0.25*dif1(left_turn)");
}

TEST(Track, BeltSpeedIsAVariableOrBecomesOne) {
  EXPECT_EQ(element(read(k_track_model), "right").par[11], 2);
  const Model model = read("belt_speed = \"crawl\"", "belt_speed = \"crawl - 0.1*vx(vehicle)\"");
  EXPECT_EQ(element(model, "right").par[11], 5);
  EXPECT_EQ(model.variables[4].name, "right_belt_speed");
  EXPECT_EQ(read("belt_speed = \"crawl\"", "belt_speed = 0").variables[4].value.text, "0");
}

TEST(Track, NameThatNoExpressionCanHoldIsWrittenWithUnderscores) {
  std::string text = changed_track("name = \"left\"\n", "name = \"2 left-hand\"\n");
  for (size_t at; (at = text.find("\"left_wheel_")) != std::string::npos;) text.replace(at + 1, 4, "2 left-hand");
  const Model model = read(text);
  EXPECT_EQ(model.equations[0].name, "track_2_left_hand_turn");
  EXPECT_EQ(model.variables[3].value.text, "0.3*dif1(track_2_left_hand_turn)");
  EXPECT_EQ(element(model, "2 left-hand_sum").subroutine, "qvsoil_interaction_mtl_sum");
}

/// Drops everything from the first variable on and puts the expansion there.
std::string with_expansion(const std::string& text, const Model& model) {
  return text.substr(0, text.find("[[variable]]")) + qvslv::expanded(model);
}

TEST(Expand, TracksReadBackAsTheSameModel) {
  const std::string equation = "\n[[equation]]\nname = \"far\"\nid = 12\nvalue = 1\n";
  for (const std::string& text : {k_track_model, k_track_model + equation}) {
    const std::string path = testing::TempDir() + "model.toml";
    const Model model = qvslv::read_model_text(text, path).model;
    const Model again = qvslv::read_model_text(with_expansion(text, model), path).model;
    ASSERT_EQ(model.elements.size(), again.elements.size());
    for (size_t i = 0; i < model.elements.size(); ++i) {
      const Element &a = model.elements[i], &b = again.elements[i];
      SCOPED_TRACE(a.name);
      EXPECT_EQ(a.name, b.name);
      EXPECT_EQ(a.id, b.id);
      EXPECT_EQ(a.subroutine, b.subroutine);
      EXPECT_EQ(a.kind, b.kind);
      EXPECT_EQ(a.par, b.par);
      EXPECT_EQ(a.marker, b.marker);
      EXPECT_EQ(a.axes, b.axes);
      EXPECT_EQ(a.reaction, b.reaction);
      EXPECT_EQ(a.result_length, b.result_length);
      EXPECT_EQ(a.points.count, b.points.count);
      EXPECT_EQ(a.road_string, b.road_string);
      ASSERT_EQ(a.columns.size(), b.columns.size());
      for (size_t k = 0; k < a.columns.size(); ++k) EXPECT_EQ(a.columns[k].name, b.columns[k].name);
    }
    ASSERT_EQ(model.variables.size(), again.variables.size());
    for (size_t i = 0; i < model.variables.size(); ++i) {
      EXPECT_EQ(model.variables[i].id, again.variables[i].id);
      EXPECT_EQ(model.variables[i].name, again.variables[i].name);
      EXPECT_EQ(model.variables[i].value.text, again.variables[i].value.text);
    }
    ASSERT_EQ(model.equations.size(), again.equations.size());
    for (size_t i = 0; i < model.equations.size(); ++i) {
      EXPECT_EQ(model.equations[i].id, again.equations[i].id);
      EXPECT_EQ(model.equations[i].name, again.equations[i].name);
      EXPECT_EQ(model.equations[i].order, again.equations[i].order);
      EXPECT_EQ(model.equations[i].rate, again.equations[i].rate);
      EXPECT_EQ(model.equations[i].element, again.equations[i].element);
    }
  }
}

// clang-format off
const mistake k_mistakes[] = {
    {"A track of one wheel", "wheels = [{ marker = \"right_rear\", radius = 0.3 }, { marker = \"right_front\", radius = 0.3 }]", "wheels = [{ marker = \"right_rear\", radius = 0.3 }]", "model.toml:92:10: element 'right', wheels: a belt needs two wheels or more"},
    {"A wheel without its radius", "{ marker = \"left_middle\", radius = 0.3 }", "{ marker = \"left_middle\" }", "model.toml:77:3: element 'left', wheels 2: the key 'radius' is missing"},
    {"A wheel on an unknown marker", "marker = \"left_middle\"", "marker = \"left_midle\"", "model.toml:77:14: element 'left', wheels 2, marker: there is no marker or body 'left_midle'; did you mean 'left_middle'?"},
    {"Wheels from the front to the rear", "[{ marker = \"right_rear\", radius = 0.3 }, { marker = \"right_front\", radius = 0.3 }]", "[{ marker = \"right_front\", radius = 0.3 }, { marker = \"right_rear\", radius = 0.3 }]", "model.toml:92:10: element 'right', wheels: wheels 1 and 2 go backwards along the x axis of 'hull_right'; list them from the rear to the front, else the belt runs over them, not under"},
    {"A wheel inside another", "{ marker = \"right_rear\", radius = 0.3 }", "{ marker = \"right_rear\", radius = 2.5 }", "model.toml:92:10: element 'right', wheels: wheels 1 and 2 lie in one another: no belt is tangent to both"},
    {"More wheels on a later track", "wheels = [{ marker = \"right_rear\", radius = 0.3 }, { marker = \"right_front\", radius = 0.3 }]", "wheels = [{ marker = \"right_rear\", radius = 0.3 }, { marker = \"left_middle\", radius = 0.2 }, { marker = \"vehicle\", radius = 0.2 }, { marker = \"right_front\", radius = 0.3 }]", "model.toml:92:10: element 'right', wheels: there are 4, and the first track, 'left', has 3; the subroutine makes room for as many as the first has, so put the track with the most wheels first"},
    {"A track's grid of one row", "grid = [5, 4]", "grid = [1, 4]", "model.toml:95:8: element 'right', grid: two whole numbers, 2 or more, are expected: points along each span and across the belt"},
    {"A reference that moves", "reference = \"lane\"", "reference = \"hull_left\"", "model.toml:82:13: element 'left', reference: 'hull_left' moves; the reference is a marker on the ground"},
    {"A negative thickness", "thickness = 0.03", "thickness = -0.03", "model.toml:84:13: element 'left', thickness: must not be negative, is -0.03"},
    {"A track without the speed of its belt", "belt_speed = \"crawl\"\n", "", "model.toml:88:1: element 'right': the key 'belt_speed' is missing (or 'drive', for a belt that a torque drives)"},
    {"A belt speed and a drive", "belt_speed = \"crawl\"", "belt_speed = \"crawl\"\ndrive = { torque = 1, inertia = 1 }", "model.toml:97:9: element 'right', drive: makes the belt's speed itself; give either it or 'belt_speed'"},
    {"An unknown name in a belt speed", "belt_speed = \"crawl\"", "belt_speed = \"2*crwl\"", "model.toml:96:14: in the expression \"2*crwl\": 'crwl' is no variable, equation, parameter or constant; did you mean 'crawl'?"},
    {"A drive without inertia", "inertia = 40, ", "", "model.toml:86:9: element 'left', drive: the key 'inertia' is missing"},
    {"A resistance without forces", ", forces = [\"left_wheel_1\", \"left_wheel_3\"]", "", "model.toml:86:89: element 'left', drive, resistance: is that by one or two 'forces', which are missing (a track's wheels are called 'left_wheel_1', ...)"},
    {"Forces without a resistance", "resistance = 0.01, ", "", "model.toml:86:85: element 'left', drive, forces: resist the sprocket by a 'resistance', which is missing"},
    {"Three resisting forces", "[\"left_wheel_1\", \"left_wheel_3\"]", "[\"left_wheel_1\", \"left_wheel_2\", \"left_wheel_3\"]", "model.toml:86:104: element 'left', drive, forces: one or two forces are expected, not 3"},
    {"An unknown resisting force", "\"left_wheel_3\"", "\"left_wheel_4\"", "model.toml:86:104: element 'left', drive, forces: there is no force or element 'left_wheel_4'; did you mean 'left_wheel_1'?"},
    {"A track's road that is not there", "road = \"field\"\nwidth", "road = \"feild\"\nwidth", "model.toml:93:8: element 'right', road: there is no file 'feild' beside the model in <folder> (a [[road]] table could describe it)"},
    {"A key of a wheel's contact for a track", "grid = [5, 4]", "grid = [5, 4]\nsum = true", "model.toml:96:7: element 'right', sum: a track has no such key; known: name, type, hull, wheels, road, road_marker, reference, width, thickness, grid, belt_speed, drive"},
    {"A plain track beside a track", "[[element]]\nname = \"left\"", "[[element]]\nname = \"other_sum\"\ntype = \"subroutine\"\nsubroutine = \"qvsoil_interaction_mtl_sum\"\npar = [0, 0]\n\n[[element]]\nname = \"left\"", "model.toml:71:1: element 'other_sum': qvsoil_interaction_mtl_sum beside a track; road numbers are counted over all tracks, so write either all of them plain or all as track"},
    {"An element with the name of a track's", "name = \"right\"\n", "name = \"left_sum\"\n", "model.toml:89:8: the name 'left_sum' is taken: an element has it (line 72)"},
    {"An id that another variable has", "name = \"crawl\"", "name = \"crawl\"\nid = 1", "model.toml:69:6: variable 'crawl', id: 'throttle' has the id 1 already"},
};
// clang-format on

TEST(BadInputTrack, ModelItselfHasNoMistake) { EXPECT_EQ(message_of(k_track_model, {}), "no mistake was found"); }

TEST(BadInputTrack, EveryMistakeIsNamedAtItsPlace) {
  for (const mistake& row : k_mistakes) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(comparable(message_of(changed_track(row.from, row.to), {})), row.message);
  }
}

TEST(BadInputTrack, PageShowsEveryMistakeAndItsMessage) {
  const std::string text = bad_input_page();
  for (const mistake& row : k_mistakes) {
    EXPECT_THAT(text, HasSubstr(std::string("| ") + row.why + " |"));
    EXPECT_THAT(text, HasSubstr("`" + in_table(row.message) + "`"));
  }
}

}  // namespace
