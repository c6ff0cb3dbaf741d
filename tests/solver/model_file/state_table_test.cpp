#include <gmock/gmock.h>

#include <limits>

#include "solver/engine/model_check.h"
#include "solver/model_file/expand.h"
#include "solver/read_model.h"
#include "tests/solver/elements/afloat_model.h"

namespace {

using qvslv::Element;
using qvslv::ElementKind;
using qvslv::Model;
using testing::ElementsAre;
using testing::HasSubstr;

Model read(const std::string& text) { return qvslv::read_model_text(text, "model.toml").model; }

const Element& element(const Model& model, const std::string& name) {
  for (const Element& element : model.elements)
    if (element.name == name) return element;
  throw std::invalid_argument("no element " + name);
}

std::string plain(const std::string& name, const std::string& subroutine, const std::string& par,
                  const std::string& kind = "report") {
  return "\n[[element]]\nname = \"" + name + "\"\ntype = \"subroutine\"\nsubroutine = \"" + subroutine +
         "\"\nkind = \"" + kind + "\"\npar = " + par + "\n";
}

std::string message_of(const std::string& text) {
  try {
    read(text);
  } catch (const qvslv::ModelError& error) {
    return error.what();
  }
  return "none";
}

TEST(StateTables, VariablesEquationsAndSplinesAreEachNumberedFromOne) {
  const Model model = read(k_afloat_model);
  ASSERT_EQ(model.variables.size(), 2u);
  ASSERT_EQ(model.equations.size(), 3u);
  ASSERT_EQ(model.splines.size(), 1u);
  for (size_t i = 0; i < 2; ++i) EXPECT_EQ(model.variables[i].id, static_cast<int>(i) + 1);
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(model.equations[i].id, static_cast<int>(i) + 1);
  EXPECT_EQ(model.splines[0].id, 1);
  EXPECT_THAT(model.splines[0].x, ElementsAre(0, 1, 2));
  EXPECT_THAT(model.splines[0].y, ElementsAre(500, 1000, 1500));
}

TEST(StateTables, ForcesAndThenElementsFollowTheMarkersInOneNumbering) {
  const Model model = read(k_afloat_model);
  const int markers = static_cast<int>(model.markers.size());
  EXPECT_EQ(model.markers.back().id, markers);
  ASSERT_EQ(model.forces.size(), 1u);
  EXPECT_EQ(model.forces[0].id, markers + 1);
  for (size_t i = 0; i < model.elements.size(); ++i)
    EXPECT_EQ(model.elements[i].id, markers + 2 + static_cast<int>(i)) << model.elements[i].name;
}

TEST(StateTables, EquationStartsFromItsInitialValues) {
  const Model model = read(k_afloat_model);
  EXPECT_EQ(model.equations[0].order, 1);
  EXPECT_EQ(model.equations[0].value, 0);
  EXPECT_EQ(model.equations[1].order, 2);
  EXPECT_EQ(model.equations[1].value, 1);
  EXPECT_EQ(model.equations[1].rate, 0);
  EXPECT_EQ(model.equations[2].value, 0.25);
}

TEST(StateTables, EquationOfASubroutineHasAnEvaluatedElementBehindAllOthers) {
  const Model model = read(k_afloat_model);
  EXPECT_EQ(model.equations[0].element, qvslv::k_none);
  ASSERT_EQ(model.equations[2].element, static_cast<int>(model.elements.size()) - 1);
  const Element& error = model.elements.back();
  EXPECT_EQ(error.name, "error");
  EXPECT_EQ(error.kind, ElementKind::evaluated);
  EXPECT_THAT(error.par, ElementsAre(0, 5, 1, 1));
  EXPECT_EQ(error.result_length, 1);
}

TEST(StateTables, OrderOfTheFileDoesNotMatterBetweenKinds) {
  const std::string variable = "\n[[variable]]\nname = \"late\"\nvalue = 3\n";
  const Model model = read(
      k_afloat_model +
      plain("asks", "qvsoil_error_velocity", "[0, \"marker:rail\", \"marker:ground\", \"variable:late\"]") + variable);
  EXPECT_THAT(element(model, "asks").par, ElementsAre(0, 6, 1, 3));
}

TEST(StateTables, NamesStandForIdsInParameterLists) {
  // FM of the wind at the barge, of the hull's id and a marker it reacts on; TFORCE of an element further down.
  const std::string state =
      "[0, 0, \"variable:double_speed\", 2, 0.5, 0, \"force:wind\", 0, \"force:later\", \"marker:ground\", "
      "1, 1, 0, 0, 0]";
  const Model model = read(k_afloat_model + plain("track", "qvsoil_mtl_eom", state, "evaluated") +
                           plain("later", "qvsoil_mtl_velocity", "[2, 1, \"equation:way\"]"));
  const double wind = model.forces[0].id, later = element(model, "later").id;
  EXPECT_THAT(element(model, "track").par, ElementsAre(0, 0, 2, 2, 0.5, 0, wind, 0, later, 1, 1, 1, 0, 0, 0));
  EXPECT_EQ(element(model, "track").kind, ElementKind::evaluated);
  EXPECT_THAT(element(model, "later").par, ElementsAre(2, 1, 1));
}

TEST(StateTables, ForceOfAMarkerMayBeAskedForInsteadOfThatOfAnElement) {
  const Model model = read(k_afloat_model + plain("report", "qvhydro_report",
                                                  "[0, 1, \"marker:barge\", \"marker:water\", 0, \"marker:barge\", "
                                                  "\"marker:water\", 0, 0, 0, 0, 0]"));
  EXPECT_THAT(element(model, "report").par, ElementsAre(0, 1, 2, 4, 0, 2, 4, 0, 0, 0, 0, 0));
}

TEST(StateTables, ValueOfAnEquationIsReadWhereNoVariableHasItsId) {
  const auto velocity = [](const std::string& name) {
    return k_afloat_model + plain("asks", "qvsoil_mtl_velocity", "[1, 1, \"" + name + "\"]");
  };
  EXPECT_THAT(element(read(velocity("equation:error")), "asks").par, ElementsAre(1, 1, 3));
  EXPECT_THAT(element(read(velocity("variable:speed")), "asks").par, ElementsAre(1, 1, 1));
  EXPECT_THAT(message_of(velocity("equation:way")),
              HasSubstr("'equation:way' has the id 1, and so has the variable 'speed', whose value would be read; make "
                        "a variable with the equation's name as its value and name that"));
}

TEST(StateTables, DerivativeIsAskedOfAnEquationOnly) {
  const std::string text = k_afloat_model + plain("asks", "qvsoil_mtl_velocity", "[0, 1, \"variable:speed\"]");
  EXPECT_THAT(message_of(text), HasSubstr("par[2] (equation or variable): 'variable:speed' is no equation; write "
                                          "\"equation:name\""));
}

TEST(StateTables, IdsOfNothingAreRefusedHoweverTheyAreWritten) {
  const auto report = [](const std::string& force) {
    return k_afloat_model +
           plain("report", "qvhydro_report",
                 "[0, 1, \"marker:barge\", \"marker:water\", 0, " + force + ", \"marker:water\", 0, 0, 0, 0, 0]");
  };
  EXPECT_EQ(message_of(report("7")), "none");  // the wind
  EXPECT_THAT(message_of(report("77")), HasSubstr("par[5] (force whose z component is reported): 77 is no force; write "
                                                  "\"force:name\""));
  EXPECT_THAT(message_of(report("\"force:wnd\"")),
              HasSubstr("there is no force or element 'wnd'; did you mean 'wind'?"));
  EXPECT_THAT(message_of(report("\"variable:speed\"")), HasSubstr("'variable:speed' is no force"));
}

TEST(StateTables, NameOfAForceAndAnElementIsAmbiguousOnceItIsUsed) {
  const std::string twin = plain("wind", "qvsoil_mtl_velocity", "[1, 1, 2]");
  EXPECT_EQ(message_of(changed_afloat("force = \"wind\"", "force = \"hull\"") + twin), "none");
  EXPECT_THAT(message_of(k_afloat_model + twin),
              HasSubstr("both a force and an element are called 'wind'; rename one of them"));
}

TEST(StateTables, ThrustAsksOnlyForWhatItsModeNeeds) {
  const auto thrust = [](const std::string& mode) {
    return changed_afloat("name = \"screw\"\ntype = \"thruster\"", "name = \"screw\"\ntype = \"thruster\"")
               .substr(0, k_afloat_model.rfind("[[element]]")) +
           plain("push", "qvsoil_thrustforce",
                 "[1, 1, \"marker:propeller\", 0, \"marker:ground\", \"marker:ground\", " + mode +
                     ", 0, \"variable:speed\", 0, 0, 0, 0, 0, 0]",
                 "force");
  };
  EXPECT_EQ(message_of(thrust("1")), "none");
  EXPECT_THAT(message_of(thrust("2")), HasSubstr("par[9] (differential equation (all modes but 1)): 0 is no equation"));
  EXPECT_THAT(message_of(thrust("3")), HasSubstr("par[7] (spline (mode 3)): 0 is no spline; write \"spline:name\""));
}

TEST(StateTables, SubroutineOfTheUsersOwnLibraryMayDriveAnEquation) {
  const Model model =
      read(k_afloat_model +
           "\n[[equation]]\nname = \"own\"\nsubroutine = \"engine_model\"\nresult_length = 4\npar = [2, "
           "\"variable:speed\", \"force:screw\"]\n");
  const Element& own = element(model, "own");
  EXPECT_EQ(own.kind, ElementKind::evaluated);
  EXPECT_EQ(own.result_length, 4);
  EXPECT_THAT(own.par, ElementsAre(2, 1, element(model, "screw").id));
  EXPECT_THAT(qvslv::expanded(model), HasSubstr("\"force:screw\","));
}

TEST(StateTables, EquationsThatNoReaderMadeAreCheckedBeforeARun) {
  Model model = read(k_afloat_model);
  EXPECT_NO_THROW(qvslv::check_model(model));
  model.equations[1].order = 3;
  EXPECT_THROW(qvslv::check_model(model), qvslv::MultibodyError);
  model.equations[1].order = 2;
  model.equations[1].rate = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(qvslv::check_model(model), qvslv::MultibodyError);
}

}  // namespace
