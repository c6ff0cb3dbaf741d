#include <gmock/gmock.h>

#include "solver/model_file/expand.h"
#include "solver/model_file/layouts.h"
#include "solver/read_model.h"
#include "tests/solver/model_file/base_model.h"

namespace {

using qvslv::Element;
using qvslv::Model;
using testing::ElementsAre;
using testing::HasSubstr;

Model read(const std::string& text) { return qvslv::read_model_text(text, "model.toml").model; }

const Element& element(const Model& model, const std::string& name) {
  for (const Element& element : model.elements)
    if (element.name == name) return element;
  throw std::invalid_argument("no element " + name);
}

std::string plate(const std::string& name, const std::string& road) {
  return "\n[[element]]\nname = \"" + name +
         "\"\ntype = \"soil_contact\"\nshape = \"plate\"\nmarker = \"hub\"\nroad = \"" + road +
         "\"\nroad_marker = \"arm\"\nlength = 0.6\nwidth = 0.4\ngrid = [4, 5]\n";
}

const std::string k_second_road =
    "\n[[road]]\nname = \"hill\"\nfile = \"hill.rdf\"\nkind = \"flat\"\nsize = [4, 2]\nspacing = 0.5\nsoil = "
    "\"snow_US\"\n";

TEST(Element, WheelContactBecomesItsParameterList) {
  const Element tyre = element(read(k_base_model), "tyre");
  EXPECT_EQ(tyre.subroutine, "qvsoil_interaction");
  // element 0, marker wheel (id 3), -, road 0, string 2, ground (id 1), -, 1 element, 1 road, wheel, r, w, grid, ground
  EXPECT_THAT(tyre.par, ElementsAre(0, 3, 0, 0, 2, 1, 0, 1, 1, 2, 0.5, 0.2, 12, 3, 1));
  EXPECT_EQ(tyre.result_length, 7 + 8 * 12 * 3);
  EXPECT_EQ(tyre.points.first, 7);
  EXPECT_EQ(tyre.points.count, 36);
  EXPECT_EQ(tyre.road_string, 2);
}

TEST(Element, ContactsAreNumberedPerRoadOverTheWholeModel) {
  const Model model = read(k_base_model + k_second_road + plate("skid", "hill") + plate("pad", "field"));
  EXPECT_THAT(element(model, "tyre").par, ElementsAre(0, 3, 0, 0, 2, 1, 0, 2, 2, 2, 0.5, 0.2, 12, 3, 1));
  EXPECT_THAT(element(model, "skid").par, ElementsAre(0, 5, 0, 1, 3, 2, 0, 1, 2, 1, 0.6, 0.4, 4, 5, 1));
  EXPECT_THAT(element(model, "pad").par, ElementsAre(1, 5, 0, 0, 2, 2, 0, 2, 2, 1, 0.6, 0.4, 4, 5, 1));
}

TEST(Element, RoadByNameAndByFileIsOneRoad) {
  const Model model = read(k_base_model + plate("pad", "field.rdf"));
  EXPECT_DOUBLE_EQ(element(model, "pad").par[0], 1);
  EXPECT_DOUBLE_EQ(element(model, "pad").par[3], 0);
  EXPECT_DOUBLE_EQ(element(model, "pad").par[8], 1);
}

TEST(Element, ForceActsOnTheBodyMarkerAgainstTheRoadInGroundAxes) {
  const Model model = read(k_base_model + plate("pad", "field"));
  const Element& pad = element(model, "pad");
  EXPECT_EQ(pad.kind, qvslv::ElementKind::force);
  EXPECT_EQ(model.markers[static_cast<size_t>(pad.marker)].name, "hub");
  EXPECT_EQ(model.markers[static_cast<size_t>(pad.reaction)].name, "arm");
  EXPECT_EQ(model.markers[static_cast<size_t>(pad.axes)].name, "ground");
  EXPECT_EQ(model.markers[static_cast<size_t>(pad.road_marker)].name, "arm");
}

TEST(Element, SumIsAddedOncePerRoadThatAsksForIt) {
  const Model model = read(k_base_model + k_second_road + plate("skid", "hill") + plate("pad", "field"));
  EXPECT_THAT(element(model, "field_sum").par, ElementsAre(0));
  EXPECT_EQ(element(model, "field_sum").subroutine, "qvsoil_interaction_Sum");
  EXPECT_EQ(element(model, "field_sum").kind, qvslv::ElementKind::report);
  EXPECT_EQ(model.elements.size(), 5u);
}

TEST(Element, BallsTakeTheirDiametersFromTheirSpheresOrTheFile) {
  const std::string balls = "\n[[element]]\nname = \"b\"\ntype = \"balls\"\nbodies = [\"ball\", \"ball\"]\n";
  EXPECT_THAT(element(read(k_base_model + balls), "b").par, ElementsAre(0, 2, 4, 4, 0.2, 0.2));
  EXPECT_THAT(element(read(k_base_model + balls + "diameters = [0.5, 0.6]\n"), "b").par,
              ElementsAre(0, 2, 4, 4, 0.5, 0.6));
}

TEST(Element, ColumnsCarryNamesAndTheModelsUnits) {
  const Model model = read(k_base_model);
  const Element& tyre = element(model, "tyre");
  ASSERT_EQ(tyre.columns.size(), 7u);
  EXPECT_EQ(tyre.columns[2].name, "force_z");
  EXPECT_EQ(tyre.columns[2].unit, "N");
  EXPECT_EQ(tyre.columns[5].unit, "N m");
  EXPECT_EQ(tyre.columns[6].unit, "m^2");
  EXPECT_EQ(element(model, "energies").columns[1].name, "ball.translational_energy");
  EXPECT_EQ(element(model, "energies").columns[1].unit, "J");
}

TEST(Element, PlainParameterMayBeAnExpression) {
  const Model model = qvslv::read_model_text(changed("0.2]", "\"m0/60\"]"), "model.toml").model;
  EXPECT_DOUBLE_EQ(element(model, "energies").par[3], 0.2);
}

TEST(Element, SubroutineOfTheUsersOwnLibraryIsTakenAsWritten) {
  const Model model = read(k_base_model +
                           "\n[[element]]\nname = \"own\"\ntype = \"subroutine\"\nsubroutine = \"spring_and_damper\"\n"
                           "kind = \"force\"\nmarker = \"hub\"\nresult_length = 6\npar = [\"marker:hub\", 1e5]\n"
                           "columns = [{ index = 2, name = \"lift\", unit = \"N\" }]\n");
  const Element& own = element(model, "own");
  EXPECT_THAT(own.par, ElementsAre(5, 1e5));
  ASSERT_EQ(own.columns.size(), 1u);
  EXPECT_EQ(own.columns[0].index, 2);
}

TEST(Element, EveryExportedSubroutineHasItsLayout) {
  for (const char* name :
       {"qvballplacing_report", "qvhydro_force", "qvhydro_report", "qvsoil_interaction_mtl", "qvsoil_mtl_eom",
        "qvsoil_mtl_velocity", "qvsoil_shearforce_mtl", "qvsoil_normalforce_mtl", "qvsoil_interaction_mtl_sum",
        "qvsoil_interaction", "qvsoil_interaction_Sum", "qvsoil_error_velocity", "qvsoil_thrustforce"})
    EXPECT_NE(qvslv::find_layout(name), nullptr) << name;
  EXPECT_EQ(qvslv::subroutine_layouts().size(), 13u);
}

struct length_case {
  const char* subroutine;
  std::vector<double> par;
  size_t par_length;
  int result_length;
};

TEST(Element, LengthsFollowFromTheCountsInThePar) {
  std::vector<double> track(14, 0.0), hull(21, 0.0), report(12, 0.0);
  track[9] = 5;   // along
  track[10] = 3;  // across
  track[12] = 4;  // nodes
  hull[20] = 3;
  hull.resize(21 + 3 * 3, 0.0);
  hull.push_back(1);  // one patch
  report[11] = 2;
  const std::vector<length_case> cases = {
      {"qvsoil_interaction_mtl", track, 14 + 2 * 4, 4 + 8 * (3 * 4 + 1) * 3},
      {"qvhydro_force", hull, 22 + 9 + 3, 34},
      {"qvhydro_report", report, 12 + 2, 18 + 4 * 2},
      {"qvballplacing_report", {0, 3}, 2 + 3 + 3, 9},
  };
  for (const length_case& row : cases) {
    SCOPED_TRACE(row.subroutine);
    const qvslv::SubroutineLayout& layout = *qvslv::find_layout(row.subroutine);
    EXPECT_EQ(qvslv::slots_of(layout, row.par).size(), row.par_length);
    EXPECT_EQ(result_length(layout, row.par), row.result_length);
  }
}

TEST(Element, AbsurdCountIsRefusedBeforeAnythingIsBuiltFromIt) {
  for (const char* count : {"1e300", "-1", "1e9"}) {
    SCOPED_TRACE(count);
    try {
      qvslv::read_model_text(
          changed("[0, 1, \"body:ball\", 0.2]", std::string("[0, ") + count + ", \"body:ball\", 0.2]"), "model.toml");
      FAIL() << "not refused";
    } catch (const qvslv::ModelError& error) {
      EXPECT_THAT(error.what(), HasSubstr("par[1] is a count and must be 0 to 10000000"));
    }
  }
}

TEST(Expand, ShowsPositionIdAndMeaningOfEveryParameter) {
  const std::string text = qvslv::expanded(read(k_base_model));
  EXPECT_THAT(text,
              HasSubstr("  \"marker:wheel\",         # par[1]   = 3     body marker: the contact points are fixed in "
                        "its axes\n"));
  EXPECT_THAT(text,
              HasSubstr("  12,                     # par[12]          nx: contact points along the plate or around the "
                        "wheel\n"));
  EXPECT_THAT(text, HasSubstr("#   3    wheel\n"));
}

/// Drops everything from the first string on and puts the expansion there.
std::string with_expansion(const std::string& text, const Model& model) {
  return text.substr(0, text.find("[[string]]")) + qvslv::expanded(model);
}

TEST(Expand, ExpansionInPlaceOfTheElementsIsTheSameModel) {
  const std::string folder = testing::TempDir();
  const std::string path = folder + "model.toml";
  const qvslv::ModelFile file = qvslv::read_model_text(k_base_model, path);
  const Model again = qvslv::read_model_text(with_expansion(k_base_model, file.model), path).model;
  ASSERT_EQ(again.elements.size(), file.model.elements.size());
  for (size_t i = 0; i < again.elements.size(); ++i) {
    const Element& a = file.model.elements[i];
    const Element& b = again.elements[i];
    SCOPED_TRACE(a.name);
    EXPECT_EQ(a.name, b.name);
    EXPECT_EQ(a.par, b.par);
    EXPECT_EQ(a.marker, b.marker);
    EXPECT_EQ(a.axes, b.axes);
    EXPECT_EQ(a.reaction, b.reaction);
    EXPECT_EQ(a.result_length, b.result_length);
    EXPECT_EQ(a.points.count, b.points.count);
    ASSERT_EQ(a.columns.size(), b.columns.size());
    for (size_t k = 0; k < a.columns.size(); ++k) EXPECT_EQ(a.columns[k].name, b.columns[k].name);
  }
}

}  // namespace
