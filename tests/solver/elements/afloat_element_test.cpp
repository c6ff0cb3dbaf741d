#include <gmock/gmock.h>

#include <cmath>
#include <fstream>

#include "solver/model_file/expand.h"
#include "solver/read_model.h"
#include "tests/solver/elements/afloat_model.h"

namespace {

using qvslv::Element;
using qvslv::Model;
using qvslv::ModelFile;
using testing::DoubleEq;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::SizeIs;

ModelFile read_file(const std::string& text) { return qvslv::read_model_text(text, "model.toml"); }
Model read(const std::string& text) { return read_file(text).model; }
Model read(const std::string& from, const std::string& to) { return read(changed_afloat(from, to)); }

const Element& element(const Model& model, const std::string& name) {
  for (const Element& element : model.elements)
    if (element.name == name) return element;
  throw std::invalid_argument("no element " + name);
}

std::vector<double> fixed_part(const Element& hull) { return {hull.par.begin(), hull.par.begin() + 21}; }

/// Nodes and patches of a hull as the subroutine reads them.
struct PatchMesh {
  explicit PatchMesh(const std::vector<double>& par) {
    const auto nodes = static_cast<size_t>(par[20]);
    for (size_t i = 0; i < nodes; ++i) node.push_back({par[21 + 3 * i], par[22 + 3 * i], par[23 + 3 * i]});
    const auto patches = static_cast<size_t>(par[21 + 3 * nodes]);
    for (size_t i = 0; i < 3 * patches; ++i) corner.push_back(static_cast<size_t>(par[22 + 3 * nodes + i]));
    rest = par.size() - (22 + 3 * nodes + 3 * patches);
  }
  /// After the divergence theorem: a third of the sum of position times outward area.
  double volume() const {
    double sum = 0;
    for (size_t i = 0; i < corner.size(); i += 3) {
      const qvslv::Vec3 &a = node[corner[i]], &b = node[corner[i + 1]], &c = node[corner[i + 2]];
      sum +=
          a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) + a[2] * (b[0] * c[1] - b[1] * c[0]);
    }
    return sum / 6;
  }
  std::vector<qvslv::Vec3> node;
  std::vector<size_t> corner;
  size_t rest = 0;
};

const std::string k_buoy =
    "\n[[element]]\nname = \"float\"\ntype = \"hull\"\nbody = \"buoy\"\nmesh = { shape = \"sphere\", radius = 0.5, "
    "divisions = 1 }\nwave = \"sea\"\ncurrent = \"stream\"\ndensity = 1025\n";

TEST(Hull, BecomesItsParameterList) {
  const Model model = read(k_afloat_model);
  const Element& hull = element(model, "hull");
  EXPECT_EQ(hull.subroutine, "qvhydro_force");
  EXPECT_EQ(hull.kind, qvslv::ElementKind::force);
  EXPECT_EQ(hull.result_length, 34);
  // mesh 0 of 1, hydro force 1 of 1, force at 2 (barge), water 4, mesh on 2, strings 2 and 3, mass, -, -, scale 1,
  // always, density, gravity, skin drag, drag scale, nodes
  EXPECT_THAT(fixed_part(hull),
              ElementsAre(0, 1, 1, 1, 2, 4, 2, 2, 3, 2000, 0, 0, 1, 0, 0, 1000, DoubleEq(9.81), 5, 2, 1, 12));
  const PatchMesh mesh(hull.par);
  EXPECT_EQ(mesh.rest, 0u);
  EXPECT_EQ(mesh.corner.size(), 3u * 20);
  EXPECT_NEAR(mesh.volume(), 8, 1e-12);
  EXPECT_EQ(model.strings[1].text, "sea.wave");
  EXPECT_EQ(model.strings[2].text, "stream.current");
}

TEST(Hull, ForceActsAtItsMarkerInGroundAxesWithoutReaction) {
  const Model model = read(k_afloat_model);
  const Element& hull = element(model, "hull");
  EXPECT_EQ(model.markers[static_cast<size_t>(hull.marker)].name, "barge");
  EXPECT_EQ(model.markers[static_cast<size_t>(hull.axes)].name, "ground");
  EXPECT_EQ(hull.reaction, qvslv::k_none);
}

TEST(Hull, KeysReachTheirPlacesInTheList) {
  const Model model = read("density = \"rho\"\n",
                           "density = 1025\ngravity = 9.8\nscale = 0.5\nactive = [1, 3]\ndrag_scale = 0.7\nmass = "
                           "1500\nmarker = \"rail\"\nmesh_marker = \"propeller\"\n");
  EXPECT_THAT(fixed_part(element(model, "hull")),
              ElementsAre(0, 1, 1, 1, 6, 4, 5, 2, 3, 1500, 0, 0, 0.5, 1, 3, 1025, 9.8, 5, 2, 0.7, 12));
}

TEST(Hull, HullsAreNumberedOverTheWholeModel) {
  const Model model = read(k_afloat_model + k_buoy);
  EXPECT_THAT(fixed_part(element(model, "hull")),
              ElementsAre(0, 1, 1, 2, 2, 4, 2, 2, 3, 2000, 0, 0, 1, 0, 0, 1000, DoubleEq(9.81), 5, 2, 1, 12));
  EXPECT_THAT(fixed_part(element(model, "float")),
              ElementsAre(0, 1, 2, 2, 3, 1, 3, 2, 3, 50, 0, 0, 1, 0, 0, 1025, DoubleEq(9.81), 0, 1, 1, 42));
}

TEST(Hull, PartsAreSlicesThatShareMassAndEncloseTheSame) {
  const Model model = read("name = \"hull\"\n", "name = \"hull\"\nparts = 3\n");
  double volume = 0, mass = 0, patches = 0;
  for (int part = 0; part < 3; ++part) {
    const Element& slice = element(model, "hull_" + std::to_string(part + 1));
    EXPECT_DOUBLE_EQ(slice.par[0], part);
    EXPECT_DOUBLE_EQ(slice.par[1], 3);
    EXPECT_DOUBLE_EQ(slice.par[2], 1);
    EXPECT_DOUBLE_EQ(slice.par[3], 1);
    const PatchMesh mesh(slice.par);
    EXPECT_EQ(mesh.rest, 0u);
    volume += mesh.volume();
    mass += slice.par[9];
    patches += static_cast<double>(mesh.corner.size()) / 3;
  }
  EXPECT_NEAR(volume, 8, 1e-12);
  EXPECT_NEAR(mass, 2000, 1e-9);
  EXPECT_EQ(patches, 20);
  EXPECT_DOUBLE_EQ(element(model, "hull_report").par[1], 1);
}

TEST(Hull, MeshIsInTheBodysFrameUnlessAMarkerCarriesIt) {
  const Model middle = read(k_afloat_model);
  const Model low = read("mass = 2000\n", "mass = 2000\ncenter = [0, 0, -0.3]\n");
  // The marker that carries the nodes is the centre of mass: a mesh fixed in the body's frame stands 0.3 above it.
  const PatchMesh before(element(middle, "hull").par), after(element(low, "hull").par);
  for (size_t i = 0; i < before.node.size(); ++i) {
    EXPECT_DOUBLE_EQ(after.node[i][0], before.node[i][0]);
    EXPECT_NEAR(after.node[i][2], before.node[i][2] + 0.3, 1e-15);
  }
}

TEST(Hull, ShapeMayStandBesideItsFramesOrigin) {
  const Model model = read("divisions = [2, 1, 1]", "divisions = [2, 1, 1], center = [0, 0, 0.25]");
  double top = -1;
  for (const qvslv::Vec3& node : PatchMesh(element(model, "hull").par).node) top = std::max(top, node[2]);
  EXPECT_DOUBLE_EQ(top, 0.75);
}

TEST(Hull, DivisionsFollowTheLongestEdgeUnlessGiven) {
  const Model model = read(", divisions = [2, 1, 1]", "");
  // 10 by 5 by 2.5 (rounds to 3) squares of 0.4 along the edges of 4, 2 and 1
  EXPECT_EQ(PatchMesh(element(model, "hull").par).corner.size(), 3u * 2 * 2 * (10 * 5 + 5 * 3 + 10 * 3));
}

TEST(Hull, MeshFileIsFoundBesideTheModelAndScaled) {
  const std::string folder = testing::TempDir();
  std::ofstream(folder + "tetra.obj") << "v 0 0 0\nv 2000 0 0\nv 0 3000 0\nv 0 0 1000\n"
                                         "f 1 3 2\nf 1 2 4\nf 2 3 4\nf 3 1 4\n";
  const std::string text = changed_afloat("mesh = { shape = \"box\", size = [4, 2, 1], divisions = [2, 1, 1] }",
                                          "mesh = \"tetra.obj\"\nmesh_scale = 0.001");
  const ModelFile file = qvslv::read_model_text(text, folder + "model.toml");
  const PatchMesh mesh(element(file.model, "hull").par);
  EXPECT_EQ(mesh.node.size(), 4u);
  EXPECT_NEAR(mesh.volume(), 2.0 * 3.0 * 1.0 / 6.0, 1e-6);
  ASSERT_THAT(file.hulls, SizeIs(1));
  EXPECT_NEAR(file.hulls[0].volume, 1, 1e-6);
  EXPECT_NEAR(file.hulls[0].center[1], 0.75, 1e-6);  // a quarter of the edge from the right angle
}

TEST(Hull, FlipTurnsAMeshThatFacesInwards) {
  const std::string folder = testing::TempDir();
  std::ofstream(folder + "inwards.obj") << "v 0 0 0\nv 2 0 0\nv 0 3 0\nv 0 0 1\nf 1 2 3\nf 1 4 2\nf 2 4 3\nf 3 4 1\n";
  const std::string mesh = "mesh = { shape = \"box\", size = [4, 2, 1], divisions = [2, 1, 1] }";
  const auto text = [&](const std::string& keys) { return changed_afloat(mesh, "mesh = \"inwards.obj\"\n" + keys); };
  EXPECT_THROW(qvslv::read_model_text(text(""), folder + "model.toml"), qvslv::ModelError);
  const Model flipped = qvslv::read_model_text(text("flip = true"), folder + "model.toml").model;
  EXPECT_NEAR(PatchMesh(element(flipped, "hull").par).volume(), 1, 1e-6);
}

TEST(Hull, ReportGetsTheHullItsForceAndItsPoints) {
  const Model model = read(k_afloat_model);
  const Element& report = element(model, "hull_report");
  EXPECT_EQ(report.subroutine, "qvhydro_report");
  EXPECT_EQ(report.kind, qvslv::ElementKind::report);
  // hydro force 1, body 2, water 4, force wind (7) in the axes of 2, points rail (6) and propeller (5)
  EXPECT_THAT(report.par, ElementsAre(0, 1, 2, 4, 0, 7, 2, 0, 0, 0, 0, 2, 6, 5));
  EXPECT_EQ(report.result_length, 18 + 4 * 2);
}

TEST(Hull, ReportWithoutMoreTellsOfTheHullItself) {
  const Model model = read(
      "report = { force = \"wind\", force_marker = \"barge\", points = [\"rail\", \"propeller\"] }", "report = true");
  const double hull_id = element(model, "hull").id;
  EXPECT_THAT(element(model, "hull_report").par, ElementsAre(0, 1, 2, 4, 0, hull_id, 4, 0, 0, 0, 0, 0));
  EXPECT_EQ(read("report = {", "mass = 1800\n# report = {").elements.size(), model.elements.size() - 1);
}

/// Force of a unit of submerged volume, and of a unit of area moving through water, as the subroutine computes them
/// from the reciprocals of the unit factors.
struct Loads {
  Loads(const qvslv::Units& units, const std::vector<double>& par, double speed) {
    const double L = 1 / units.length_factor, M = 1 / units.mass_factor, T = 1 / units.time_factor,
                 F = 1 / units.force_factor;
    buoyancy = (L / (T * T)) * (M / (L * L * L)) * par[12] * par[15] * par[16] * (L * L * L) * F;
    normal_drag =
        (L * L / (T * T)) * (M / (L * L * L)) * par[19] * par[15] * par[12] * 0.5 * speed * speed * (L * L) * F;
    skin_drag =
        std::pow(L / T, par[18]) * (M / (L * T)) * par[19] * par[17] * par[12] * std::pow(speed, par[18]) * (L * L) * F;
  }
  double buoyancy = 0, normal_drag = 0, skin_drag = 0;
};

struct unit_case {
  const char* why;
  const char* units;
};
const unit_case k_unit_cases[] = {
    {"SI", "length = \"m\""},
    {"millimetres, tons and newtons", "length = \"mm\"\nmass = \"ton\""},
    {"metres, tons and kilonewtons", "mass = \"ton\"\nforce = \"kN\""},
    {"millimetres and milliseconds", "length = \"mm\"\ntime = \"msec\"\nforce = \"kN\""},
};

TEST(Hull, LoadsComeOutInTheModelsUnitsWhateverTheyAre) {
  const double speed = 3, density = 1000, gravity = 9.81, coefficient = 5, exponent = 2;  // model units throughout
  for (const unit_case& row : k_unit_cases) {
    SCOPED_TRACE(row.why);
    const Model model = read("[parameters]", std::string("[units]\n") + row.units + "\n[parameters]");
    const Loads loads(model.units, element(model, "hull").par, speed);
    EXPECT_NEAR(loads.buoyancy / (density * gravity), 1, 1e-12);
    EXPECT_NEAR(loads.normal_drag / (0.5 * density * speed * speed), 1, 1e-12);
    EXPECT_NEAR(loads.skin_drag / (coefficient * std::pow(speed, exponent)), 1, 1e-12);
  }
}

TEST(Thruster, BecomesItsParameterList) {
  const Model model = read(k_afloat_model);
  const Element& screw = element(model, "screw");
  EXPECT_EQ(screw.subroutine, "qvsoil_thrustforce");
  // thruster 1 of 1, marker 5, -, second marker, water 4, mode 3, spline 1, variable 1, equation 3, gains of y', y'',
  // y, wave switch, string 2
  EXPECT_THAT(screw.par, ElementsAre(1, 1, 5, 0, 4, 4, 3, 1, 1, 3, 800, 5, 100, 1, 2));
  EXPECT_EQ(model.markers[static_cast<size_t>(screw.marker)].name, "propeller");
  EXPECT_EQ(screw.axes, screw.marker);
  EXPECT_EQ(screw.result_length, 6);
}

struct mode_case {
  const char* mode;
  const char* keys;
  std::vector<double> par;
};

TEST(Thruster, ModesTakeWhatTheyNeedAndNoMore) {
  const std::string from =
      "mode = \"limited\"\nvariable = \"speed\"\nequation = \"error\"\ngains = { p = 800, i = 100, d = 5 }\nlimit = "
      "\"limit\"\nwave = \"sea\"\nwater = \"water\"";
  const mode_case cases[] = {
      {"variable", "variable = \"double_speed\"", {1, 1, 5, 0, 1, 1, 1, 0, 2, 0, 0, 0, 0, 0, 0}},
      {"feedback",
       "variable = \"speed\"\nequation = \"way\"\ngains = { p = 2 }",
       {1, 1, 5, 0, 1, 1, 0, 0, 1, 1, 2, 0, 0, 0, 0}},
      {"feedback_or_off",
       "variable = \"speed\"\nequation = \"swing\"\ngains = { d = 3 }\nwave = \"sea\"",
       {1, 1, 5, 0, 1, 1, 2, 0, 1, 2, 0, 3, 0, 1, 2}},
  };
  for (const mode_case& row : cases) {
    SCOPED_TRACE(row.mode);
    const Model model = read(from, std::string("mode = \"") + row.mode + "\"\n" + row.keys);
    EXPECT_THAT(element(model, "screw").par, ElementsAreArray(row.par));
  }
}

TEST(Thruster, SpeedControlMakesItsEquation) {
  const Model model = read("variable = \"speed\"\nequation = \"error\"\n",
                           "speed_control = { command = \"double_speed\", reference = \"water\" }\n");
  ASSERT_THAT(model.equations, SizeIs(4));
  const qvslv::Equation& made = model.equations[3];
  EXPECT_EQ(made.name, "screw_error");
  EXPECT_EQ(made.order, 1);
  const Element& error = model.elements[static_cast<size_t>(made.element)];
  EXPECT_EQ(error.name, "screw_error");
  EXPECT_EQ(error.subroutine, "qvsoil_error_velocity");
  EXPECT_EQ(error.kind, qvslv::ElementKind::evaluated);
  EXPECT_THAT(error.par, ElementsAre(0, 5, 4, 2));
  EXPECT_THAT(element(model, "screw").par, ElementsAre(1, 1, 5, 0, 4, 4, 3, 1, 2, 4, 800, 5, 100, 1, 2));
}

TEST(Thruster, ThrustersAreNumberedOverTheWholeModel) {
  const Model model = read(k_afloat_model +
                           "\n[[element]]\nname = \"second\"\ntype = \"thruster\"\nmarker = \"rail\"\nmode = "
                           "\"variable\"\nvariable = \"speed\"\n");
  EXPECT_DOUBLE_EQ(element(model, "screw").par[0], 1);
  EXPECT_DOUBLE_EQ(element(model, "second").par[0], 2);
  EXPECT_DOUBLE_EQ(element(model, "screw").par[1], 2);
  EXPECT_DOUBLE_EQ(element(model, "second").par[1], 2);
}

/// Drops everything from the first string on and puts the expansion there.
std::string with_expansion(const std::string& text, const Model& model) {
  return text.substr(0, text.find("[[string]]")) + qvslv::expanded(model);
}

void expect_same_elements(const Model& a, const Model& b) {
  ASSERT_EQ(a.elements.size(), b.elements.size());
  for (size_t i = 0; i < a.elements.size(); ++i) {
    SCOPED_TRACE(a.elements[i].name);
    EXPECT_EQ(a.elements[i].name, b.elements[i].name);
    EXPECT_EQ(a.elements[i].id, b.elements[i].id);
    EXPECT_EQ(a.elements[i].subroutine, b.elements[i].subroutine);
    EXPECT_EQ(a.elements[i].kind, b.elements[i].kind);
    EXPECT_EQ(a.elements[i].par, b.elements[i].par);
    EXPECT_EQ(a.elements[i].marker, b.elements[i].marker);
    EXPECT_EQ(a.elements[i].axes, b.elements[i].axes);
    EXPECT_EQ(a.elements[i].result_length, b.elements[i].result_length);
    EXPECT_EQ(a.elements[i].columns.size(), b.elements[i].columns.size());
  }
}

TEST(Expand, HullsThrustersAndQuantitiesReadBackAsTheSameModel) {
  const std::string path = testing::TempDir() + "model.toml";
  for (const std::string& text :
       {k_afloat_model, changed_afloat("name = \"hull\"\n", "name = \"hull\"\nparts = 3\n"),
        changed_afloat("variable = \"speed\"\nequation = \"error\"\n", "speed_control = { command = \"speed\" }\n")}) {
    const Model model = qvslv::read_model_text(text, path).model;
    const Model again = qvslv::read_model_text(with_expansion(text, model), path).model;
    expect_same_elements(model, again);
    ASSERT_EQ(model.variables.size(), again.variables.size());
    for (size_t i = 0; i < model.variables.size(); ++i) {
      EXPECT_EQ(model.variables[i].name, again.variables[i].name);
      EXPECT_EQ(model.variables[i].value.text, again.variables[i].value.text);
    }
    ASSERT_EQ(model.equations.size(), again.equations.size());
    for (size_t i = 0; i < model.equations.size(); ++i) {
      const qvslv::Equation &a = model.equations[i], &b = again.equations[i];
      EXPECT_EQ(a.name, b.name);
      EXPECT_EQ(a.order, b.order);
      EXPECT_EQ(a.value, b.value);
      EXPECT_EQ(a.rate, b.rate);
      EXPECT_EQ(a.element, b.element);
      EXPECT_EQ(a.right_side.text, b.right_side.text);
    }
    ASSERT_EQ(model.splines.size(), again.splines.size());
    EXPECT_EQ(model.splines[0].x, again.splines[0].x);
    EXPECT_EQ(model.splines[0].y, again.splines[0].y);
  }
}

}  // namespace
