#include <gtest/gtest.h>

#include "tests/reference/thrust_reference.h"
#include "tests/thrust/thrust_scene.h"
#include "thrust/thrust_force.h"

// Compares the thrust with the literal reference, bit for bit: random waves, modes, gains, motions and call sequences.

namespace qvtest {
namespace {

vec3 random_vector(random_source& random, double size) {
  return {uniform(random, -size, size), uniform(random, -size, size), uniform(random, -size, size)};
}

qvref::wave_file random_wave(random_source& random) {
  qvref::wave_file wave;
  wave.rows = whole(random, 1, 6);
  wave.cols = whole(random, 1, 9);
  for (auto* axis : {&wave.time, &wave.x}) {
    double at = uniform(random, -1, 1);
    for (int i = axis == &wave.time ? wave.rows : wave.cols; i > 0; --i) {
      axis->push_back(at);
      at += uniform(random, 0.1, 3.0);
    }
  }
  for (auto* table : {&wave.elevation, &wave.velocity}) {
    table->assign(static_cast<std::size_t>(wave.rows), std::vector<double>(static_cast<std::size_t>(wave.cols)));
    for (auto& row : *table)
      for (double& value : row) value = uniform(random, -1, 1);
  }
  return wave;
}

struct thrust_census {
  long calls = 0, cut_out = 0, limited = 0;
};

bool run(unsigned seed, thrust_census& seen) {
  random_source random(seed);
  ThrustScene scene(random_wave(random));
  qvref::thruster reference(qvref::read_wave(scene.wave_file()));
  scene.parameters.mode = whole(random, 0, 4);
  scene.parameters.switch_on_waves = whole(random, 0, 3) > 0 ? 1 : 0;
  for (double& gain : scene.parameters.gains) gain = uniform(random, -3, 3);
  double limit = 0.0;
  scene.host.splines[k_spline] = [&](double v) { return limit + 0.1 * v; };
  double time = -1.0;
  for (int step = 0; step < 60; ++step) {
    time += uniform(random, -0.2, 0.4);
    limit = uniform(random, -0.5, 4.0);
    scene.set_variable(whole(random, 0, 4) == 0 ? 0.0 : uniform(random, -3, 3));
    scene.set_equation(uniform(random, -2, 2), uniform(random, -2, 2), uniform(random, -2, 2));
    scene.water().position = random_vector(random, 5.0);
    scene.water().axes = rotation({0.3, 0.2, 1}, uniform(random, -3, 3));
    const vec3 way =
        times(scene.water().axes, {uniform(random, -1, 20), uniform(random, -9, 9), uniform(random, -1, 1)});
    for (std::size_t k = 0; k < 3; ++k) scene.point().position[k] = scene.water().position[k] + way[k];
    const int iflag = whole(random, 0, 3);
    const auto expected = reference.call(scene.host.handle(), time, scene.parameters.list(), iflag);
    const double thrust = scene.thrust(time, iflag);
    ++seen.calls;
    seen.cut_out += thrust == 0.0 ? 1 : 0;
    seen.limited +=
        std::fabs(thrust) == std::fabs(scene.host.splines[k_spline](scene.host.scalars[{"VARVAL", k_variable}]));
    if (!same(thrust, expected[0])) {
      ADD_FAILURE() << "step " << step << ": " << thrust << ", reference " << expected[0];
      return false;
    }
    if (scene.parameters.switch_on_waves == 0) continue;
    EXPECT_EQ(qvthrust::gp_Wave[static_cast<std::size_t>(scene.parameters.id)].time_index, reference.time_index());
  }
  return true;
}

TEST(RandomThrusters, GiveTheThrustOfTheLiteralReferenceBitForBit) {
  thrust_census seen;
  for (unsigned seed = 1; seed <= 300; ++seed) ASSERT_TRUE(run(seed, seen)) << "seed " << seed;
  EXPECT_GT(seen.cut_out, seen.calls / 10);
  EXPECT_LT(seen.cut_out, seen.calls - seen.calls / 5);
  EXPECT_GT(seen.limited, seen.calls / 50);
}

TEST(RandomVehicles, HaveTheVelocityErrorOfTheLiteralReferenceBitForBit) {
  random_source random(1);
  ScriptedHost host;
  const std::vector<double> par = {0, 1, 2, 3};
  for (int i = 0; i < 2000; ++i) {
    host.markers[1].axes = rotation(random_vector(random, 1.0), uniform(random, -3, 3));
    host.markers[1].velocity = random_vector(random, 9.0);
    host.markers[2].velocity = random_vector(random, 9.0);
    host.scalars[{"VARVAL", 3}] = whole(random, 0, 5) == 0 ? 0.0 : uniform(random, -9, 9);
    ASSERT_EQ(call_velocity_error(host, par), qvref::velocity_error(host.handle(), par));
  }
}

}  // namespace
}  // namespace qvtest
