#include <gtest/gtest.h>

#include "qvbrisk/layouts.h"
#include "tests/hydro/hydro_scene.h"
#include "tests/hydro/module_state.h"

// Drag of a plate deep in the water, by hand.

namespace qvtest {
namespace {

const mat3 k_upright = {1, 0, 0, 0, 1, 0, 0, 0, 1};
const mat3 k_turned_over = {1, 0, 0, 0, -1, 0, 0, 0, -1};

/// A plate of 2 by 3 facing up, 10 below the surface.
class PlateScene : public HydroScene {
public:
  explicit PlateScene(const qvref::wave_file& wave = calm_water(),
                      const qvref::current_file& currents = steady_current())
      : HydroScene(plate_hull(2, 3), wave, currents) {
    place({0, 0, -10}, k_upright);
  }
};
constexpr double k_area = 6.0;

void expect_vector(const vec3& actual, const vec3& expected, const char* what = "") {
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_NEAR(actual[k], expected[k], 1e-14 * (1 + std::fabs(expected[k]))) << what << k;
  }
}

TEST(NormalDrag, IsHalfTheDensityTimesTheSquareOfTheSpeedIntoTheWater) {
  PlateScene scene;
  scene.parameters.density = 3.0;
  scene.parameters.drag_scale = 0.7;
  scene.parameters.scale = 1.5;
  scene.move({0, 0, 2});
  const hull_forces f = scene.forces();
  expect_vector(f.normal_drag, {0, 0, -0.5 * 3.0 * 0.7 * 1.5 * k_area * 4.0});
  expect_vector(f.tangential_drag, {0, 0, 0});
  expect_vector(f.drag, f.normal_drag);
}

TEST(NormalDrag, ActsOnlyWhereThePatchRunsIntoTheWater) {
  PlateScene scene;
  scene.move({0, 0, -2});
  expect_vector(scene.forces().drag, {0, 0, 0});
  scene.place({0, 0, -10}, k_turned_over);
  expect_vector(scene.forces().normal_drag, {0, 0, 0.5 * k_area * 4.0});
  scene.move({5, 0, 0});
  expect_vector(scene.forces().normal_drag, {0, 0, 0}, "along the plate");
}

TEST(NormalDrag, CountsTheSpeedAlongTheNormalOnly) {
  PlateScene scene;
  const mat3 tilted = rotation({0, 1, 0}, 0.5);
  scene.place({0, 0, -10}, tilted);
  const vec3 n = {tilted[6], tilted[7], tilted[8]};
  scene.move({3, 4, 1});
  const double vn = 3 * n[0] + 4 * n[1] + n[2];
  ASSERT_GT(vn, 0.0);
  const double force = -0.5 * k_area * vn * vn;
  expect_vector(scene.forces().normal_drag, {force * n[0], force * n[1], force * n[2]});
}

TEST(TangentialDrag, IsAPowerOfTheSpeedAlongThePatchAgainstIt) {
  for (const double exponent : {0.0, 0.5, 1.0, 1.83, 2.0, -1.0}) {
    PlateScene scene;
    scene.parameters.tangential_coef = 0.4;
    scene.parameters.tangential_exp = exponent;
    scene.parameters.drag_scale = 3.0;
    scene.parameters.scale = 0.5;
    scene.parameters.density = 77.0;
    scene.move({0, 1.7, -5});
    const hull_forces f = scene.forces();
    expect_vector(f.tangential_drag, {0, -0.4 * 3.0 * 0.5 * k_area * std::pow(1.7, exponent), 0});
    expect_vector(f.drag, f.tangential_drag);
  }
}

TEST(TangentialDrag, OfAPlateThatDoesNotSlideIsNothing) {
  for (const double exponent : {0.0, 0.5, 2.0}) {
    PlateScene scene;
    scene.parameters.tangential_coef = 0.4;
    scene.parameters.tangential_exp = exponent;
    expect_vector(scene.forces().drag, {0, 0, 0});
    scene.move({0, 0, -5});
    expect_vector(scene.forces().drag, {0, 0, 0});
  }
}

TEST(TangentialDrag, OfANegativePowerAtRestIsNoNumberAndLeavesTheBuoyancyAlone) {
  PlateScene scene;
  scene.parameters.tangential_coef = 0.4;
  scene.parameters.tangential_exp = -1.0;
  const hull_forces f = scene.forces();
  for (const vec3& v : {f.tangential_drag, f.drag, f.force}) EXPECT_TRUE(std::isnan(v[0]));
  expect_vector(f.normal_drag, {0, 0, 0});
  expect_vector(f.buoyancy, {0, 0, -60});
}

TEST(DragTorque, IsThatOfTheNodesAboutTheForceMarker) {
  PlateScene scene;
  scene.parameters.tangential_coef = 0.4;
  scene.force_marker().position = {1, 2, -7};
  scene.move({3, 0, 2});
  const hull_forces f = scene.forces();
  // Centred on the body marker, which is at (-1, -2, -3) from the force marker.
  expect_vector(f.normal_drag, {0, 0, -12});
  expect_vector(f.normal_torque, {-2.0 * -12, -(-1.0 * -12), 0});
  expect_vector(f.tangential_drag, {-0.4 * 6 * 3, 0, 0});
  expect_vector(f.tangential_torque, {0, -3.0 * -7.2, 2.0 * -7.2});
  const vec3 of_buoyancy = {-2.0 * f.buoyancy[2], 1.0 * f.buoyancy[2], 0};
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_DOUBLE_EQ(f.drag_torque[k], f.normal_torque[k] + f.tangential_torque[k]);
    EXPECT_NEAR(f.torque[k], f.drag_torque[k] + of_buoyancy[k], 1e-12);
  }
}

TEST(DragTorque, AboutAMarkerThatIsNowhereIsNoNumberEvenWithoutForce) {
  for (const vec3& velocity : {vec3{0, 0, 2}, vec3{0, 0, -2}, vec3{0, 0, 0}}) {
    PlateScene scene;
    scene.parameters.tangential_coef = 0.4;
    scene.move(velocity);
    scene.force_marker().position = {std::nan(""), std::nan(""), std::nan("")};
    const hull_forces f = scene.forces();
    for (const vec3& torque : {f.normal_torque, f.tangential_torque}) {
      for (const double component : torque) EXPECT_TRUE(std::isnan(component)) << velocity[2];
    }
  }
}

TEST(RollingPlate, DragsWithASixthOfItsAreaPerCornerOfItsTwoPatches) {
  PlateScene scene;
  scene.move({0, 0, 0}, {2, 0, 0});  // corners at y = 1.5 rise with 3
  const hull_forces f = scene.forces();
  // Of the corners at y = 1.5 one belongs to one patch and one to two: three thirds of patches of area 3.
  const double force = -0.5 * (k_area / 6) * 9.0 * 3;
  expect_vector(f.normal_drag, {0, 0, force});
  expect_vector(f.normal_torque, {1.5 * force, -(1.0 + 1.0 - 1.0) * force / 3, 0});
}

TEST(SpinOfTheBody, IsGivenInGlobalAxes) {
  PlateScene scene;
  const mat3 turn = rotation({0, 0, 1}, 0.7);
  scene.place({0, 0, -10}, turn);
  const vec3 spin = times(turn, {2, 0, 0});
  scene.move({0, 0, 0}, spin);
  const double force = -0.5 * (k_area / 6) * 9.0 * 3;
  expect_vector(scene.forces().normal_drag, {0, 0, force});
}

TEST(WaterRisingUnderAPlate, PushesItUp) {
  PlateScene scene(calm_water(200.0, 0.0, 3.0));
  scene.place({0, 0, -10}, k_turned_over);
  expect_vector(scene.forces().normal_drag, {0, 0, 0.5 * k_area * 9.0});
  scene.move({0, 0, 3});
  expect_vector(scene.forces().normal_drag, {0, 0, 0}, "rising with it");
}

TEST(Currents, DragAlongTheWatersFirstAndSecondAxis) {
  PlateScene scene(calm_water(), steady_current(2.0, 5.0));
  scene.parameters.tangential_coef = 1.0;
  scene.water().axes = {0, 1, 0, -1, 0, 0, 0, 0, 1};
  scene.water().position = {0, -100, 0};
  expect_vector(scene.forces().drag, {-5 * k_area, 2 * k_area, 0});
  scene.move({-5, 2, 0});
  expect_vector(scene.forces().drag, {0, 0, 0}, "drifting with it");
  scene.move({0, 0, 0});
  expect_vector(scene.forces(0.0, 1).drag, {-5 * k_area, 2 * k_area, 0}, "in a set-up call too");
}

/// The current that a small patch at (x, y) of the water frame drifts in, told by drag of power 1.
class Drifter {
public:
  explicit Drifter(const qvref::current_file& currents)
      : m_scene(one_patch({0, 0, 0}, {k_reach, 0, 0}, {0, k_reach, 0}), calm_water(), currents) {
    m_scene.parameters.tangential_coef = 2 / (k_reach * k_reach);
  }
  vec3 at(double x, double y) {
    m_scene.place({x - 100.0, y, -1}, k_upright);
    return m_scene.forces().tangential_drag;
  }
  const qvhydro::Cpatch& patch() const { return element_of(m_scene.parameters.id).subs[0].patches[0]; }

private:
  static constexpr double k_reach = 1.0 / 1048576;
  HydroScene m_scene;
};

TEST(CurrentTable, InModeOneIsInterpolatedOverXAndNothingOutside) {
  const qvref::current_table table = {3, 1, {10, 20, 40, 40}, {1, 3, -1, -1}};
  Drifter drifter({table, {2, 1, {0, 50, 50}, {0, 5, 5}}});
  const double rows[][3] = {{5, 0, 0.5},           {10, 1, 1}, {15, 2, 1.5}, {20, 3, 2}, {30, 1, 3.0},
                            {39.75, -0.95, 3.975}, {40, 0, 4}, {45, 0, 4.5}, {55, 0, 0}};
  for (const auto& [x, cx, cy] : rows) {
    const vec3 seen = drifter.at(x, 77.0);
    EXPECT_NEAR(seen[0], cx, 1e-6) << x;
    EXPECT_NEAR(seen[1], cy, 1e-6) << x;
  }
}

TEST(CurrentTable, InAnyOtherModeIsInterpolatedOverYAndHeldAtItsEnds) {
  for (const int mode : {0, 2, -1}) {
    const qvref::current_table table = {3, mode, {10, 20, 40, 40}, {1, 3, -1, -1}};
    Drifter drifter({table, {1, mode, {7, 7}, {0.5, 0.5}}});
    const double rows[][2] = {{-500, 1}, {9, 1},         {10, 1},  {15, 2}, {20, 3},
                              {30, 1},   {39.75, -0.95}, {40, -1}, {90, -1}};
    for (const auto& [y, cx] : rows) {
      const vec3 seen = drifter.at(33.0, y);
      EXPECT_NEAR(seen[0], cx, 1e-6) << y;
      EXPECT_NEAR(seen[1], 0.5, 1e-6) << y << ": a table of one row is the same everywhere";
    }
  }
}

TEST(CurrentTable, WhoseFirstKeyStandsTwiceHasTheSecondValueThere) {
  Drifter drifter({{3, 0, {10, 10, 20, 20}, {1, 3, 5, 5}}, {1, 0, {0, 0}, {0, 0}}});
  EXPECT_NEAR(drifter.at(33.0, 9.0)[0], 1.0, 1e-6) << "before it";
  EXPECT_NEAR(drifter.at(33.0, 10.0)[0], 3.0, 1e-6) << "the empty interval holds nothing";
  EXPECT_NEAR(drifter.at(33.0, 15.0)[0], 4.0, 1e-6);
}

TEST(CurrentTable, OfOneRowInModeOneHoldsNoInterval) {
  Drifter drifter({{1, 1, {50, 50}, {3, 3}}, {1, 1, {0, 0}, {3, 3}}});
  for (const double x : {10.0, 50.0, 90.0}) EXPECT_EQ(length(drifter.at(x, 0.0)), 0.0);
}

TEST(CurrentRows, FoundLastAreKeptInThePatch) {
  const qvref::current_table over_x = {3, 1, {10, 20, 40, 40}, {1, 3, -1, -1}};
  const qvref::current_table over_y = {3, 0, {10, 20, 40, 40}, {1, 3, -1, -1}};
  Drifter drifter({over_x, over_y});
  const auto rows_at = [&](double x, double y) {
    drifter.at(x, y);
    return std::make_pair(drifter.patch().current1_row[0], drifter.patch().current2_row[0]);
  };
  EXPECT_EQ(rows_at(30, 30), std::make_pair(1, 1));
  EXPECT_EQ(rows_at(60, 60), std::make_pair(1, 2)) << "none found over x: the old one stays; held at the end over y";
  EXPECT_EQ(rows_at(15, 0), std::make_pair(0, 0));
}

// --- units -------------------------------------------------------------------------------------------------------

TEST(Units, EnterEveryForceAsItsCoefficientsHaveThem) {
  const double L = 1 / 0.3, M = 1 / 2.5, T = 1 / 7.0, F = 1 / 11.0;
  HydroScene scene(plate_hull(2, 3));
  scene.host.unit_scale = {0.3, 2.5, 7.0, 11.0, 99.0};
  scene.parameters.density = 1.3;
  scene.parameters.gravity = 9.1;
  scene.parameters.scale = 0.9;
  scene.parameters.drag_scale = 0.8;
  scene.parameters.tangential_coef = 0.6;
  scene.parameters.tangential_exp = 1.4;
  scene.place({0, 0, -10}, k_upright);
  scene.move({3, 0, 2});
  const hull_forces f = scene.forces();
  const double buoyancy = -60 * 1.3 * 9.1 * 0.9 * L * M * F / (T * T);
  const double normal = -0.5 * 1.3 * 0.9 * 0.8 * 6 * 4 * L * M * F / (T * T);
  const double tangential = -0.6 * 0.9 * 0.8 * 6 * std::pow(3, 1.4) * std::pow(L / T, 1.4) * L * M * F / T;
  EXPECT_NEAR(f.buoyancy[2], buoyancy, 1e-14 * std::fabs(buoyancy));
  EXPECT_NEAR(f.normal_drag[2], normal, 1e-14 * std::fabs(normal));
  EXPECT_NEAR(f.tangential_drag[0], tangential, 1e-14 * std::fabs(tangential));
  EXPECT_DOUBLE_EQ(f.volume, -60) << "in the model's units";
}

TEST(Units, OfAHostThatDoesNotTellThemGiveNoNumbers) {
  HydroScene scene(plate_hull(2, 3));
  scene.host.unit_scale.reset();
  scene.place({0, 0, -10}, k_upright);
  std::vector<double> par = scene.parameters.list(), result(QV_HULL_RESULT_LENGTH, k_poison);
  int ierr = 0;
  char* msg[5] = {};
  qvhydro::qvhydro_force(scene.host.handle(), 0.0, par.data(), 0, 0, 0, result.data(), ierr, msg);
  EXPECT_EQ(ierr, 0);
  EXPECT_FALSE(std::isfinite(result[8]));
  EXPECT_DOUBLE_EQ(result[33], -60);
}

}  // namespace
}  // namespace qvtest
