#include <gtest/gtest.h>

#include "solver/model/expression.h"
#include "solver/read_model.h"
#include "tests/solver/model_file/base_model.h"

namespace {

qvslv::ModelFile read(const std::vector<std::string>& overrides) {
  return qvslv::read_model_text(k_base_model, "model.toml", overrides);
}

TEST(Override, ChangesAKeyOfATable) {
  EXPECT_DOUBLE_EQ(read({"simulation.end_time=5"}).model.simulation.end_time, 5.0);
}

TEST(Override, FindsAnEntryByItsNameOrItsNumberFromOne) {
  EXPECT_DOUBLE_EQ(read({"body.ball.mass=7"}).model.bodies[2].mass, 7.0);
  EXPECT_DOUBLE_EQ(read({"body.3.mass=7"}).model.bodies[2].mass, 7.0);
}

TEST(Override, ParameterReachesEveryExpressionThatUsesIt) {
  const qvslv::Model model = read({"parameters.m0 = 20"}).model;
  EXPECT_DOUBLE_EQ(model.bodies[1].mass, 40.0);
  EXPECT_DOUBLE_EQ(qvslv::CompiledExpression(model.forces[0].force[1])(0.0), 0.0);
  EXPECT_NEAR(qvslv::CompiledExpression(model.forces[0].force[1])(1.0), 20 * 0.8414709848078965, 1e-13);
}

TEST(Override, MayAddAKeyThatTheFileLeavesOut) {
  EXPECT_DOUBLE_EQ(read({"simulation.accuracy=1e-6"}).model.simulation.accuracy, 1e-6);
}

TEST(Simulation, AccuracyIsLooserByDefaultWhereElementsMayJump) {
  const qvslv::Model with = read({"simulation.smallest_motion=0.02"}).model;
  EXPECT_DOUBLE_EQ(with.simulation.accuracy, 1e-4);
  EXPECT_DOUBLE_EQ(with.simulation.smallest_motion, 0.02);
  EXPECT_DOUBLE_EQ(qvslv::Simulation().accuracy, 1e-5);
}

TEST(Override, TakesListsAndTablesAsInTheFile) {
  EXPECT_EQ(read({"gravity=[0, 0, -1.62]"}).model.gravity, (qvslv::Vec3{0, 0, -1.62}));
  EXPECT_DOUBLE_EQ(read({"body.ball.shape={sphere={radius=0.3}}"}).model.bodies[2].shape.radius, 0.3);
}

TEST(Override, TakesABareWordOrAnExpressionAsAText) {
  EXPECT_EQ(read({"title=another"}).model.title, "another");
  EXPECT_DOUBLE_EQ(read({"body.ball.mass=2*m0+1"}).model.bodies[2].mass, 25.0);
}

TEST(Override, LaterOneWins) {
  EXPECT_DOUBLE_EQ(read({"body.ball.mass=7", "body.ball.mass=8"}).model.bodies[2].mass, 8.0);
}

TEST(Override, ReachesDeepTables) {
  EXPECT_DOUBLE_EQ(read({"body.ball.shape.sphere.radius=0.25"}).model.bodies[2].shape.radius, 0.25);
  EXPECT_EQ(read({"road.field.seed=12"}).roads.at(0).settings.seed, 12u);
}

TEST(Override, ValueMayHoldAnEqualsSign) { EXPECT_EQ(read({"string.note.text=\"a=b\""}).model.strings[0].text, "a=b"); }

TEST(Override, SuggestsTheParameterThatASingleWordMeans) {
  try {
    read({"m0=5"});
    FAIL() << "m0 is no key of a model file";
  } catch (const qvslv::ModelError& error) {
    EXPECT_STREQ(error.what(), "--set m0=5: there is no 'm0' in the model file; did you mean 'parameters.m0'?");
  }
}

TEST(Override, QuotesKeepAPartWithADotTogether) {
  EXPECT_THROW(read({"body.\"ba.ll\".mass=1"}), qvslv::ModelError);
  EXPECT_DOUBLE_EQ(read({"body.\"ball\".mass=1"}).model.bodies[2].mass, 1.0);
}

}  // namespace
