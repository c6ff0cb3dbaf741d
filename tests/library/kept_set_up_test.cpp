#include "common/call/kept_set_up.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include "qvbrisk/layouts.h"
#include "tests/soilinteraction_mtl/belt_scene.h"
#include "tests/support/kept_set_up.h"

// A second set-up call that asks for something else than the first: what stands stays, and the host is told once.
namespace qvtest {
namespace {

TEST(KeptSetUp, TellsOnceForEachElementTheFirstEntryThatDiffers) {
  ScriptedHost host;
  qv::kept_set_up kept("SOIL WARNING : ");
  const qv::parameter file{4, "string id"}, count{12, "grid count"};
  kept.compare(host.handle(), {0, 1}, {{file, 4.9, 4}, {count, 7.0, 7}});
  kept.compare(host.handle(), {0, 1}, {{file, std::nan(""), 4}, {count, 3e9, 7}});
  EXPECT_EQ(told(host), "") << "entries are truncated, and what no int can hold is no entry";
  kept.compare(host.handle(), {0, 1}, {{file, 4.0, 4}, {count, 5.0, 7}});
  EXPECT_EQ(told(host),
            "USUB WARNING: SOIL WARNING : The grid count (parameter 12) is 5; the set-up before had 7" + k_kept_tail);
  kept.compare(host.handle(), {0, 1}, {{file, 2.0, 4}});
  EXPECT_EQ(told(host), "") << "once";
  kept.compare(host.handle(), {1, 0}, {{file, 2.0, 4}, {count, 5.0, 7}});
  EXPECT_EQ(told(host),
            "USUB WARNING: SOIL WARNING : The string id (parameter 4) is 2; the set-up before had 4" + k_kept_tail)
      << "another element";
}

TEST(KeptSetUp, OfAPlateStaysWhenAnotherFileOrGridIsAskedFor) {
  for (const auto& [entry, value, text] :
       {std::tuple{QV_SOIL_ROAD_STRING, 9.0, "string id of the RDF file (parameter 4) is 9; the set-up before had 4"},
        {QV_SOIL_POINTS_ALONG, 2.0, "grid count along or around (parameter 12) is 2; the set-up before had 5"},
        {QV_SOIL_POINTS_ACROSS, 1.0, "grid count across (parameter 13) is 1; the set-up before had 3"}}) {
    SoilScene scene(flat_mesh(8, 8, 0.5, 0.0, 0.0), loam(), {1, 0.5, 0.25, 5, 3});
    scene.body().position = {2.0, 2.0, -0.05};
    const std::vector<double> before = scene.call(1);
    const std::vector<double> par = scene.parameters.list();
    const std::vector<double> changed = call_changed(qvsoil_interaction, scene.host, par, entry, value, before.size());
    EXPECT_EQ(told(scene.host), "USUB WARNING: SOILINTERACTION WARNING : The " + std::string(text) + k_kept_tail);
    if (entry == QV_SOIL_ROAD_STRING) {
      EXPECT_EQ(changed, before) << "the road stays";
    }
    EXPECT_GT(changed[2], 1e3) << "and the call goes on";
    call_changed(qvsoil_interaction, scene.host, par, entry, value, before.size());
    call_changed(qvsoil_interaction, scene.host, par, entry, value, before.size(), 0);
    scene.call(1);
    EXPECT_EQ(told(scene.host), "");
  }
}

TEST(KeptSetUp, OfARoadIsNamedByTheElementThatAsksForAnotherFile) {
  SoilScene first(flat_mesh(8, 8, 0.5, 0.0, 0.0), loam(), {1, 0.5, 0.25, 5, 3});
  first.call(1);
  SoilScene second(first, 1, {2, 0.4, 0.3, 12, 2});
  std::vector<double> par = second.parameters.list();
  call_changed(qvsoil_interaction, second.host, par, QV_SOIL_ROAD_STRING, 9.0, second.result().size() + 7 + 8 * 24);
  EXPECT_EQ(told(second.host),
            "USUB WARNING: SOILINTERACTION WARNING : The string id of the RDF file (parameter 4) is 9; "
            "the set-up before had 4" +
                k_kept_tail);
  EXPECT_EQ(told(first.host), "");
}

TEST(KeptSetUp, OfATrackStaysWhenAnotherFileOrGridIsAskedFor) {
  for (const auto& [entry, value, text] :
       {std::tuple{QV_TRACK_ROAD_STRING, 9.0, "string id of the RDF file (parameter 2) is 9; the set-up before had 4"},
        {QV_TRACK_POINTS_ALONG, 7.0, "grid count along a span (parameter 9) is 7; the set-up before had 5"},
        {QV_TRACK_POINTS_ACROSS, 4.0, "grid count across the belt (parameter 10) is 4; the set-up before had 3"},
        {QV_TRACK_NODE_COUNT, 2.0, "number of nodes (parameter 12) is 2; the set-up before had 3"}}) {
    BeltScene scene(flat_mesh(16, 8, 0.5, -2.0, -2.0), loam(), level_circles(3, 1.0, 0.25, -0.05));
    scene.call(1);
    ASSERT_EQ(scene.take_report(), "");
    std::vector<double> par = scene.parameters.list();
    if (entry == QV_TRACK_NODE_COUNT) par[QV_TRACK_POINTS_ALONG] = 5, par[QV_TRACK_POINTS_ACROSS] = 3;
    const std::size_t room = 4 + 8 * 200;
    // Fewer nodes leave fewer points than the records have, which is a fault unless the list asks for more of others.
    const std::vector<double> changed = call_changed(qvsoil_interaction_mtl, scene.host, par, entry, value, room);
    EXPECT_EQ(told(scene.host), "USUB WARNING: SOILINTERACTION MTL WARNING : The " + std::string(text) + k_kept_tail);
    EXPECT_GT(changed[2], 1e3) << "the call goes on";
    call_changed(qvsoil_interaction_mtl, scene.host, par, entry, value, room);
    scene.call(1);
    EXPECT_EQ(told(scene.host), "");
  }
}

}  // namespace
}  // namespace qvtest
