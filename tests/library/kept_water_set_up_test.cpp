#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qvbrisk/layouts.h"
#include "tests/support/kept_set_up.h"
#include "tests/thrust/thrust_scene.h"

// A second set-up call that asks for something else than the first: what stands stays, and the host is told once.
namespace qvtest {
namespace {

TEST(KeptSetUp, OfAHullStaysWhenOtherFilesOrAnotherMeshAreAskedFor) {
  HydroScene sized(plate_hull(2, 2));
  const std::vector<double> list = sized.parameters.list();
  const auto nodes = static_cast<int>(list[QV_HULL_NODE_COUNT]);
  const int patches_at = QV_HULL_LENGTH + QV_HULL_NODE_LENGTH * nodes;
  const auto patches = static_cast<int>(list[static_cast<std::size_t>(patches_at)]);
  const auto had = [](int count) { return "; the set-up before had " + std::to_string(count); };
  const struct {
    int entry;
    double value;
    std::string text;
  } rows[] = {{QV_HULL_WAVE_STRING, 9, "string of the WAVE file (parameter 7) is 9" + had(k_wave_string)},
              {QV_HULL_CURRENT_STRING, 9, "string of the CURRENT file (parameter 8) is 9" + had(k_current_string)},
              {QV_HULL_NODE_COUNT, 3, "number of nodes (parameter 20) is 3" + had(nodes)},
              {patches_at, 1, "number of patches (parameter " + std::to_string(patches_at) + ") is 1" + had(patches)}};
  for (const auto& row : rows) {
    HydroScene scene(plate_hull(2, 2));
    scene.place({0, 0, -1}, rotation({1, 0, 0}, 0.1));
    const std::vector<double> before = scene.call(0.0, 0);
    const std::vector<double> par = scene.parameters.list();
    const auto again = [&](int iflag) {
      return call_changed(qvhydro_force, scene.host, par, row.entry, row.value, QV_HULL_RESULT_LENGTH, iflag);
    };
    again(0);
    EXPECT_EQ(told(scene.host), "") << "no set-up call";
    const std::vector<double> changed = again(1);
    EXPECT_EQ(told(scene.host), "USUB WARNING: HYDRO FORCE WARNING : The " + row.text + k_kept_tail);
    for (std::size_t i = 0; i < changed.size(); ++i) EXPECT_EQ(changed[i], before[i]) << "entry " << i;
    again(1);
    scene.call(0.0, 1);
    EXPECT_EQ(told(scene.host), "");
  }
}

TEST(KeptSetUp, OfAThrusterStaysWhenAnotherFileIsAskedFor) {
  ThrustScene scene;
  scene.parameters.switch_on_waves = 1;
  scene.set_variable(12.5);
  scene.call();
  const auto again = [&](int iflag) {
    return call_changed(qvsoil_thrustforce, scene.host, scene.parameters.list(), QV_THRUST_WAVE_STRING, 9, 6, iflag);
  };
  again(0);
  EXPECT_EQ(told(scene.host), "");
  EXPECT_EQ(again(1)[0], 12.5);
  EXPECT_EQ(told(scene.host),
            "USUB WARNING: THRUST FORCE WARNING : The string of the WAVE file (parameter 14) is 9; the "
            "set-up before had 54" +
                k_kept_tail);
  again(1);
  EXPECT_EQ(told(scene.host), "");
}

}  // namespace
}  // namespace qvtest
