#include <gmock/gmock.h>

#include <cmath>

#include "solver/data_files/find_data_file.h"
#include "solver/model/expression.h"
#include "solver/read_model.h"
#include "tests/solver/model_file/base_model.h"

namespace {

using qvslv::Model;
using testing::DoubleNear;
using testing::ElementsAre;

constexpr double k_pi = 3.141592653589793;
constexpr double k_rounding = 1e-14;  // a few roundings of numbers of order 1

Model base() { return qvslv::read_model_text(k_base_model, "model.toml").model; }
Model read(const std::string& from, const std::string& to) {
  return qvslv::read_model_text(changed(from, to), "model.toml").model;
}

const qvslv::Marker& marker(const Model& model, const std::string& name) {
  for (const qvslv::Marker& marker : model.markers)
    if (marker.name == name) return marker;
  throw std::invalid_argument("no marker " + name);
}

const qvslv::Joint& joint(const Model& model, const std::string& name) {
  for (const qvslv::Joint& joint : model.joints)
    if (joint.name == name) return joint;
  throw std::invalid_argument("no joint " + name);
}

/// Determinant and orthonormality at once: R^T R = E and x cross y = z.
void expect_right_handed_unit_axes(const qvslv::Rotation& r) {
  const auto column = [&](size_t i, size_t k) { return r[3 * i + k]; };
  for (size_t i = 0; i < 3; ++i)
    for (size_t j = 0; j < 3; ++j) {
      double dot = 0;
      for (size_t k = 0; k < 3; ++k) dot += column(i, k) * column(j, k);
      EXPECT_NEAR(dot, i == j ? 1.0 : 0.0, k_rounding);
    }
  EXPECT_NEAR(column(0, 1) * column(1, 2) - column(0, 2) * column(1, 1), column(2, 0), k_rounding);
  EXPECT_NEAR(column(0, 2) * column(1, 0) - column(0, 0) * column(1, 2), column(2, 1), k_rounding);
}

TEST(ModelFile, BodiesAndMarkersShareOneNumberingThatStartsWithTheGround) {
  const Model model = base();
  EXPECT_EQ(model.markers[0].name, "ground");
  EXPECT_EQ(model.ground_id, 1);
  ASSERT_EQ(model.bodies.size(), 3u);
  for (size_t i = 0; i < model.bodies.size(); ++i) {
    EXPECT_EQ(model.bodies[i].id, static_cast<int>(i) + 2);
    EXPECT_EQ(model.markers[i + 1].id, model.bodies[i].id);
    EXPECT_EQ(model.markers[i + 1].body, static_cast<int>(i));
  }
  for (size_t i = 0; i < model.markers.size(); ++i) EXPECT_EQ(model.markers[i].id, static_cast<int>(i) + 1);
}

TEST(ModelFile, StringsAreNumberedFromOneInFileOrder) {
  const Model model = base();
  ASSERT_EQ(model.strings.size(), 2u);
  EXPECT_EQ(model.strings[0].id, 1);
  EXPECT_EQ(model.strings[0].name, "note");
  EXPECT_EQ(model.strings[1].id, 2);
  EXPECT_EQ(model.strings[1].text, "field.rdf");
}

TEST(ModelFile, ParametersMayUseEachOtherInAnyOrder) {
  const Model model = base();
  EXPECT_DOUBLE_EQ(model.bodies[1].mass, 24.0);
  const qvslv::CompiledExpression motion(joint(model, "axle").motions.at(0).value);
  EXPECT_NEAR(motion(3.0), 2 * k_pi * 0.5 * 3.0, 10 * k_rounding);
}

TEST(ModelFile, InertiaOfASolidFollowsFromShapeAndMassOrDensity) {
  const Model model = base();
  const double box = 7800 * 1.0 * 0.1 * 0.1;
  EXPECT_NEAR(model.bodies[0].mass, box, box * k_rounding);
  EXPECT_NEAR(model.bodies[0].inertia.xx, box / 12 * (0.01 + 0.01), box * k_rounding);
  EXPECT_NEAR(model.bodies[0].inertia.zz, box / 12 * (1.0 + 0.01), box * k_rounding);
  EXPECT_NEAR(model.bodies[2].inertia.yy, 0.4 * 3 * 0.01, k_rounding);
  const Model cylinder = read("inertia = [1.0, 2.0, 1.5]\n", "");
  EXPECT_NEAR(cylinder.bodies[1].inertia.yy, 0.5 * 24 * 0.25, 24 * k_rounding);
  EXPECT_NEAR(cylinder.bodies[1].inertia.xx, 24.0 / 12 * (3 * 0.25 + 0.04), 24 * k_rounding);
}

TEST(ModelFile, InertiaThatIsGivenWinsOverTheShape) { EXPECT_DOUBLE_EQ(base().bodies[1].inertia.yy, 2.0); }

TEST(ModelFile, InertiaOfAFlatPlateIsJustStillPhysical) {
  EXPECT_DOUBLE_EQ(read("inertia = [1.0, 2.0, 1.5]", "inertia = [1.0, 2.0, 3.0]").bodies[1].inertia.zz, 3.0);
}

TEST(ModelFile, AnglesInDegreesTurnBodyFixedAboutXThenYThenZ) {
  const Model quarter = base();
  EXPECT_THAT(quarter.bodies[2].orientation,
              ElementsAre(DoubleNear(0, k_rounding), DoubleNear(1, k_rounding), DoubleNear(0, k_rounding),
                          DoubleNear(-1, k_rounding), DoubleNear(0, k_rounding), DoubleNear(0, k_rounding), 0, 0, 1));
  // A quarter about x, then a quarter about the new y (which points along the old z): x goes to the old -z's place.
  const Model two = read("angles_deg = [0, 0, 90]", "angles_deg = [90, 90, 0]");
  EXPECT_THAT(two.bodies[2].orientation,
              ElementsAre(DoubleNear(0, k_rounding), DoubleNear(1, k_rounding), DoubleNear(0, k_rounding),
                          DoubleNear(0, k_rounding), DoubleNear(0, k_rounding), DoubleNear(1, k_rounding),
                          DoubleNear(1, k_rounding), DoubleNear(0, k_rounding), DoubleNear(0, k_rounding)));
}

TEST(ModelFile, AngleKeyWithoutDegIsInRadians) {
  const Model degrees = base(), radians = read("angles_deg = [0, 0, 90]", "angles = [0, 0, \"pi/2\"]");
  for (size_t i = 0; i < 9; ++i)
    EXPECT_NEAR(degrees.bodies[2].orientation[i], radians.bodies[2].orientation[i], k_rounding);
  EXPECT_NEAR(joint(base(), "pivot").position.at(0), k_pi / 6, k_rounding);
}

TEST(ModelFile, JointsAreOrderedFromTheGroundOutwards) {
  const Model model = base();
  ASSERT_EQ(model.joints.size(), 2u);
  EXPECT_EQ(model.joints[0].name, "pivot");
  EXPECT_EQ(model.joints[1].name, "axle");
}

struct axis_case {
  const char* why;
  const char* type;
  const char* axis;
  qvslv::Vec3 x, z;  // of the joint, in the parent's axes
};
const axis_case k_axis_cases[] = {
    {"a revolute joint about z keeps the parent's axes", "revolute", "\"z\"", {1, 0, 0}, {0, 0, 1}},
    {"about y, x stays x", "revolute", "\"y\"", {1, 0, 0}, {0, 1, 0}},
    {"about x, y takes the place of x", "revolute", "\"x\"", {0, 1, 0}, {1, 0, 0}},
    {"the plane of normal -y has x along x (and y along z)", "planar", "\"-y\"", {1, 0, 0}, {0, -1, 0}},
    {"a slider travels along its x", "slider", "\"z\"", {0, 0, 1}, {0, 1, 0}},
    {"a slider's z stays z where it can", "slider", "[0, -2, 0]", {0, -1, 0}, {0, 0, 1}},
};

TEST(ModelFile, JointAxesFollowFromOneDirection) {
  for (const axis_case& row : k_axis_cases) {
    SCOPED_TRACE(row.why);
    const Model model =
        read("name = \"pivot\"\ntype = \"revolute\"\nbody = \"arm\"\naxis = \"y\"\nstart = { angle_deg = 30 }",
             std::string("name = \"pivot\"\ntype = \"") + row.type + "\"\nbody = \"arm\"\naxis = " + row.axis);
    const qvslv::Rotation& axes = marker(model, "pivot.parent").orientation;
    expect_right_handed_unit_axes(axes);
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_NEAR(axes[i], row.x[i], k_rounding);
      EXPECT_NEAR(axes[6 + i], row.z[i], k_rounding);
    }
    EXPECT_EQ(marker(model, "pivot.child").orientation, axes);
    EXPECT_EQ(marker(model, "pivot.child").body, 0);
    EXPECT_EQ(marker(model, "pivot.parent").body, qvslv::k_ground);
  }
}

TEST(ModelFile, SkewAxisGivesRightHandedAxesWithZAlongIt) {
  const Model model = read("body = \"arm\"\naxis = \"y\"", "body = \"arm\"\naxis = [1, 2, 2]");
  const qvslv::Rotation& axes = marker(model, "pivot.parent").orientation;
  expect_right_handed_unit_axes(axes);
  EXPECT_NEAR(axes[6], 1.0 / 3, k_rounding);
  EXPECT_NEAR(axes[8], 2.0 / 3, k_rounding);
}

TEST(ModelFile, MotionMayBeGivenInDegreesAndAtVelocityLevel) {
  const Model model = read("motion = \"rate*t\"", "motion = { velocity_deg = \"90*t\" }");
  const qvslv::Motion& motion = joint(model, "axle").motions.at(0);
  EXPECT_EQ(motion.level, qvslv::MotionLevel::velocity);
  EXPECT_NEAR(qvslv::CompiledExpression(motion.value)(2.0), k_pi, k_rounding * 10);
}

TEST(ModelFile, FreeJointStartsFromAnglesAndPlace) {
  const Model model =
      read("name = \"pivot\"\ntype = \"revolute\"\nbody = \"arm\"\naxis = \"y\"\nstart = { angle_deg = 30 }",
           "name = \"pivot\"\ntype = \"free\"\nbody = \"arm\"\n"
           "start = { angles_deg = [0, 90, 0], position = [1, 2, 3] }\n"
           "start_velocity = { angular_velocity = [4, 5, 6], velocity = [7, 8, 9] }");
  EXPECT_THAT(joint(model, "pivot").position, ElementsAre(0, DoubleNear(k_pi / 2, k_rounding), 0, 1, 2, 3));
  EXPECT_THAT(joint(model, "pivot").velocity, ElementsAre(4, 5, 6, 7, 8, 9));
}

TEST(ModelFile, UnitsGoByAnyOfTheirNamesInAnyCase) {
  const Model model = read("length = \"m\"\nforce = \"N\"", "length = \"mm\"\nmass = \"ton\"\nforce = \"newton\"");
  EXPECT_EQ(model.units.length, "MILIMETER");
  EXPECT_DOUBLE_EQ(model.units.length_factor, 0.001);
  EXPECT_EQ(model.units.mass, "TON");
  EXPECT_EQ(model.units.force, "NEWTON");
}

TEST(ModelFile, SoilOfARoadIsConvertedToTheModelsUnits) {
  const auto metres = qvslv::read_model_text(k_base_model, "model.toml");
  const auto millimetres = qvslv::read_model_text(
      changed("length = \"m\"\nforce = \"N\"", "length = \"mm\"\nmass = \"ton\"\nforce = \"N\""), "model.toml");
  const qvslv::RoadSoil& si = metres.roads.at(0).settings.soil;
  const qvslv::RoadSoil& mm = millimetres.roads.at(0).settings.soil;
  // The same pressure under 0.2 m of width at 0.05 m of sinkage: 1 Pa is 1e-6 N/mm^2.
  const double n = si.sinkage_exponent;
  const double pascal = (si.cohesive_coeff / 0.2 + si.frictional_coeff) * std::pow(0.05, n);
  const double newton_per_mm2 = (mm.cohesive_coeff / 200 + mm.frictional_coeff) * std::pow(50, n);
  EXPECT_NEAR(newton_per_mm2, pascal * 1e-6, pascal * 1e-6 * 1e-13);
  EXPECT_NEAR(mm.cohesion, si.cohesion * 1e-6, 1e-15);
  EXPECT_NEAR(mm.shear_displacement, si.shear_displacement * 1000, 1e-12);
}

TEST(ModelFile, TheShearDisplacementOfARoadIsReadUnderItsFormerNameToo) {
  const auto with = [](const std::string& keys) {
    return qvslv::read_model_text(changed("soil = \"dry_sand\"", "soil = \"dry_sand\"\n" + keys), "model.toml");
  };
  for (const char* key : {"shear_displacement", "shear_modulus"})
    EXPECT_EQ(with(key + std::string(" = 0.02")).roads.at(0).settings.soil.shear_displacement, 0.02) << key;
  try {
    with("shear_displacement = 0.02\nshear_modulus = 0.02");
    ADD_FAILURE() << "both were read";
  } catch (const qvslv::ModelError& error) {
    EXPECT_STREQ(error.what(),
                 "model.toml:25:17: road 'field', shear_modulus: give either shear_displacement or "
                 "shear_modulus, its former name, not both");
  }
}

TEST(ModelFile, OutputStepIsATwoHundredthOfTheTimeUnlessGiven) {
  EXPECT_DOUBLE_EQ(base().simulation.output_step, 0.1);
  EXPECT_DOUBLE_EQ(read("output_step = 0.1\n", "").simulation.output_step, 0.01);
}

TEST(ModelFile, ResultsAreAListWithCommas) {
  struct Case {
    const char* list;
    bool table, frames, page;
  };
  const Case cases[] = {{"all", true, true, true},
                        {"table", true, false, false},
                        {" frames ,page", false, true, true},
                        {"page,page", false, false, true},
                        {"table,all", true, true, true}};
  for (const Case& c : cases) {
    const std::string key = std::string("results = \"") + c.list + "\"\n";
    const qvslv::ResultKinds kinds = read("output_step = 0.1\n", key).simulation.results;
    EXPECT_EQ(kinds.table, c.table) << c.list;
    EXPECT_EQ(kinds.frames, c.frames) << c.list;
    EXPECT_EQ(kinds.page, c.page) << c.list;
  }
}

TEST(ModelFile, ForceComponentsAreExpressionsOfTime) {
  const Model model = base();
  ASSERT_EQ(model.forces.size(), 1u);
  EXPECT_NEAR(qvslv::CompiledExpression(model.forces[0].force[1])(0.5), 12 * std::sin(0.5), 12 * k_rounding);
  EXPECT_DOUBLE_EQ(qvslv::CompiledExpression(model.forces[0].torque[2])(0.5), 0.0);
  EXPECT_EQ(model.markers[static_cast<size_t>(model.forces[0].marker)].name, "hub");
}

TEST(ModelFile, ReaderWritesNothing) {
  qvslv::read_model_text(k_base_model, testing::TempDir() + "model.toml");
  EXPECT_TRUE(qvslv::find_data_file("field.rdf", testing::TempDir() + "model.toml").empty());
}

}  // namespace
