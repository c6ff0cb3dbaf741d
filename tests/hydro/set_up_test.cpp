#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qvbrisk/layouts.h"
#include "qvbrisk/subroutines.h"
#include "tests/hydro/hydro_scene.h"
#include "tests/hydro/module_state.h"

// What a first call reads and keeps, and what the host is asked for.

namespace qvtest {
namespace {

using testing::ElementsAre;

qvhydro::Chydro_force& record_of(const HydroScene& scene) { return element_of(scene.parameters.id); }
qvhydro::Chydro_force_sub& part_of(const HydroScene& scene) {
  return record_of(scene).subs.at(static_cast<std::size_t>(scene.parameters.sub));
}

std::vector<double> call_with(HydroScene& scene, std::vector<double> par, int iflag = 0) {
  std::vector<double> result(QV_HULL_RESULT_LENGTH, k_poison);
  qvhydro_force(scene.host.handle(), 0.0, par.data(), 0, 0, iflag, result.data());
  return result;
}

TEST(FirstCall, SizesTheModulesTablesByTheNumberOfElements) {
  const empty_module module;
  HydroScene scene(plate_hull(2, 2));
  std::vector<double> par = scene.parameters.list();
  par[QV_HULL_FORCE_ID] = 4, par[QV_HULL_FORCE_COUNT] = 5.9;
  call_with(scene, par);
  EXPECT_EQ(qvhydro::gp_hydro_force.size(), 6U);
  EXPECT_THAT(qvhydro::s_HydroForce_Report, testing::SizeIs(6));
  for (const auto& entry : qvhydro::s_HydroForce_Report) EXPECT_THAT(entry, ElementsAre(0.0, 0.0));
  par[QV_HULL_FORCE_ID] = 3, par[QV_HULL_FORCE_COUNT] = 50;
  call_with(scene, par);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_EQ(qvhydro::gp_hydro_force.size(), 6U) << "once";
  EXPECT_EQ(element_of(4).initialized, 1);
  EXPECT_EQ(element_of(3).initialized, 1);
  EXPECT_EQ(element_of(2).initialized, 0);
}

TEST(FirstCall, SetsUpWhateverItsFlagIs) {
  for (const int iflag : {-1, 0, 1, 2, 3}) {
    HydroScene scene(plate_hull(2, 2));
    scene.place({0, 0, -1}, rotation({1, 0, 0}, 0.1));
    EXPECT_LT(scene.forces(0.0, iflag).volume, -1.0) << iflag;
  }
}

TEST(Parameters, AreKeptInTheRecordsTheyBelongTo) {
  HydroScene scene(one_patch({1, 2, 3}, {4, 5, 7}, {0, 1, -5}));
  hydro_parameters& p = scene.parameters;
  p.sub = 1, p.subs = 3;
  p.mass = 9.5, p.option = 10.9, p.reserve = 11.5, p.scale = 12.5, p.t_start = 13.5, p.t_end = 14.5;
  p.density = 15.5, p.gravity = 16.5, p.tangential_coef = 17.5, p.tangential_exp = 18.5, p.drag_scale = 19.5;
  scene.call();
  const qvhydro::Chydro_force& e = record_of(scene);
  EXPECT_EQ(e.id, p.id);
  EXPECT_EQ(e.initialized, 1);
  EXPECT_EQ(e.subelement_count, 3);
  EXPECT_EQ(e.subs.size(), 4U);
  EXPECT_EQ(e.wave_string_id, k_wave_string);
  EXPECT_EQ(e.current_string_id, k_current_string);
  EXPECT_EQ(e.density, 15.5);
  EXPECT_EQ(e.gravity, 16.5);
  EXPECT_EQ(e.drag_scale, 19.5);
  const qvhydro::Chydro_force_sub& s = part_of(scene);
  EXPECT_EQ(s.index, 1);
  EXPECT_EQ(s.force_id, p.id);
  EXPECT_EQ(s.initialized, 1);
  EXPECT_EQ(s.force_marker, k_force_marker);
  EXPECT_EQ(s.water_marker, k_water_marker);
  EXPECT_EQ(s.body_marker, k_body_marker);
  EXPECT_EQ(s.mass, 9.5);
  EXPECT_EQ(s.option, 10) << "truncated toward zero";
  EXPECT_EQ(s.reserve, 11.5);
  EXPECT_EQ(s.scale, 12.5);
  EXPECT_EQ(s.t_start, 13.5);
  EXPECT_EQ(s.t_end, 14.5);
  EXPECT_EQ(s.tangential_coef, 17.5);
  EXPECT_EQ(s.tangential_exp, 18.5);
  EXPECT_EQ(s.node_count, 3);
  EXPECT_EQ(s.patch_count, 1);
  EXPECT_EQ(s.spare, 0);
  EXPECT_EQ(s.max_node_z, 7.0);
  EXPECT_EQ(s.nodes.size(), 4U);
  EXPECT_EQ(s.patches.size(), 2U);
  EXPECT_EQ(e.subs[0].initialized, 0);
  EXPECT_EQ(e.subs[3].initialized, 0);
}

TEST(Parameters, OfAnElementAreReadOnceAndSoAreThoseOfASubElement) {
  HydroScene scene(box_hull(2, 2, 2));
  scene.parameters.subs = 2;
  scene.parameters.density = 3.0;
  const double before = scene.forces().buoyancy[2];
  scene.parameters.density = 7.0;
  scene.parameters.gravity = 7.0;
  scene.parameters.scale = 7.0;
  scene.parameters.shape = box_hull(4, 4, 4);
  scene.parameters.subs = 9;
  EXPECT_EQ(scene.forces().buoyancy[2], before);
  scene.parameters.sub = 1;
  EXPECT_DOUBLE_EQ(scene.forces().buoyancy[2], 3.0 * 7.0 * 32.0) << "the element's density, its own scale and shape";
  EXPECT_EQ(record_of(scene).subs.size(), 3U);
}

TEST(Parameters, ThatSelectAreTruncatedTowardZeroOnEveryCall) {
  HydroScene scene(box_hull(2, 2, 2));
  scene.parameters.subs = 2;
  scene.call();
  scene.parameters.sub = 1;
  scene.parameters.shape = box_hull(4, 4, 4);
  scene.call();
  std::vector<double> par = scene.parameters.list();
  const double volumes[][2] = {{-0.9, 4.0}, {0.0, 4.0}, {0.99, 4.0}, {1.0, 32.0}, {1.99, 32.0}};
  for (const auto& [selector, volume] : volumes) {
    par[QV_HULL_PART] = selector;
    par[QV_HULL_FORCE_ID] = scene.parameters.id + (selector < 0 ? 0.0 : 0.5);
    EXPECT_DOUBLE_EQ(call_with(scene, par)[33], volume) << selector;
  }
  EXPECT_EQ(scene.take_report(), "");
}

TEST(LargestNodeHeight, IsThatOfTheHighestNodeEvenWhenAllAreBelowZero) {
  HydroScene scene(one_patch({0, 0, -3}, {1, 0, -2}, {0, 1, -5}));
  scene.call();
  EXPECT_EQ(part_of(scene).max_node_z, -2.0);
}

TEST(Patches, HoldTheirGeometry) {
  HydroScene scene(one_patch({1, 1, 1}, {4, 1, 1}, {1, 5, 1}));
  scene.call();
  const qvhydro::Cpatch& p = part_of(scene).patches[0];
  const qvhydro::patch_outline& o = part_of(scene).outlines[0];
  EXPECT_THAT(p.node_ids, ElementsAre(0, 1, 2));
  EXPECT_THAT(o.centroid, ElementsAre(2.0, 7.0 / 3.0, 1.0));
  EXPECT_THAT(p.normal, ElementsAre(0.0, 0.0, 1.0));
  EXPECT_EQ(p.area, 6.0);
  EXPECT_THAT(o.edge01, ElementsAre(3.0, 0.0, 0.0));
  EXPECT_THAT(o.edge12, ElementsAre(-3.0, 4.0, 0.0));
  EXPECT_THAT(o.edge20, ElementsAre(0.0, -4.0, 0.0));
  EXPECT_THAT(o.edge02, ElementsAre(0.0, 4.0, 0.0));
  EXPECT_THAT(p.wave_col, ElementsAre(0, 0, 0));
  EXPECT_THAT(p.current1_row, ElementsAre(0, 0, 0));
  EXPECT_THAT(p.current2_row, ElementsAre(0, 0, 0));
}

TEST(Patches, OfARandomHullHaveUnitNormalsThatPointOutAndCloseTheHull) {
  random_source random(2);
  const hull shape = random_hull(random);
  HydroScene scene(shape);
  scene.call();
  vec3 sum = {0, 0, 0};
  for (std::size_t i = 0; i < shape.patches.size(); ++i) {
    const qvhydro::Cpatch& p = part_of(scene).patches[i];
    const vec3 n = {p.normal[0], p.normal[1], p.normal[2]};
    EXPECT_NEAR(length(n), 1.0, 4e-16);
    const double* c0 = part_of(scene).outlines[i].centroid;
    EXPECT_GT(n[0] * c0[0] + n[1] * c0[1] + n[2] * c0[2], 0.0);
    const qvref::v3& a = shape.nodes[static_cast<std::size_t>(shape.patches[i][0])];
    const qvref::v3& b = shape.nodes[static_cast<std::size_t>(shape.patches[i][1])];
    const qvref::v3& c = shape.nodes[static_cast<std::size_t>(shape.patches[i][2])];
    EXPECT_NEAR(p.area, length(qvref::cross(qvref::operator-(b, a), qvref::operator-(c, a))) / 2, 1e-14);
    for (std::size_t k = 0; k < 3; ++k) sum[k] += p.area * n[k];
  }
  EXPECT_NEAR(length(sum), 0.0, 1e-13);
}

TEST(SpareEntries, StandAtTheOriginAndAtZero) {
  HydroScene scene(one_patch({1, 1, 1}, {4, 1, 1}, {1, 5, 1}));
  scene.call();
  const qvhydro::Cnode& node = part_of(scene).nodes.back();
  EXPECT_THAT((std::vector<double>{node.x, node.y, node.z}), ElementsAre(0.0, 0.0, 0.0));
  const qvhydro::Cpatch& patch = part_of(scene).patches.back();
  EXPECT_EQ(patch.area, 0.0);
  EXPECT_THAT(patch.normal, ElementsAre(0.0, 0.0, 0.0));
  EXPECT_THAT(part_of(scene).outlines.back().centroid, ElementsAre(0.0, 0.0, 0.0));
}

TEST(SpareEntries, TheNodeBehindTheLastMayBeNamedByAPatch) {
  HydroScene named(one_patch({1, 0, 0}, {0, 2, 0}, {9, 9, 9}));
  named.parameters.shape.nodes.pop_back();
  named.place({0, 0, -4}, rotation({1, 0, 0}, 0.1));
  HydroScene written(one_patch({1, 0, 0}, {0, 2, 0}, {0, 0, 0}));
  written.place({0, 0, -4}, rotation({1, 0, 0}, 0.1));
  EXPECT_EQ(first_difference(named.call(), written.call()), -1);
  EXPECT_EQ(named.take_report(), "");
  EXPECT_LT(named.forces().volume, -3.9);
}

TEST(Units, AreKeptAsReciprocalsOfMassLengthForceAndTime) {
  HydroScene scene(plate_hull(1, 1));
  scene.host.unit_scale = {2.0, 4.0, 8.0, 16.0, 99.0};
  scene.call();
  const qvhydro::inverse_units& u = record_of(scene).inv_unit;
  EXPECT_EQ(u.length, 1.0 / 2);
  EXPECT_EQ(u.mass, 1.0 / 4);
  EXPECT_EQ(u.time, 1.0 / 8);
  EXPECT_EQ(u.force, 1.0 / 16);
  EXPECT_TRUE(scene.host.units_were_zeroed);
}

TEST(Requests, OfAFirstCallAreTheUnitsTheFilesAndTheMotion) {
  HydroScene scene(plate_hull(1, 1));
  scene.host.log = true;
  scene.call(0.0, 1);
  EXPECT_THAT(scene.host.requests, ElementsAre("units", "string 21", "string 22", "TDISP 3", "TDISP 5", "TDISP 8",
                                               "AM 5", "AM 8", "TDISP 5 8 8", "TVEL 5 8 8", "RVEL 5"));
}

TEST(Requests, OfALaterCallAreTheMotionWhateverItsFlag) {
  HydroScene scene(plate_hull(1, 1));
  scene.call();
  scene.host.log = true;
  for (const int iflag : {0, 1, 2}) {
    scene.host.requests.clear();
    scene.call(0.0, iflag);
    EXPECT_THAT(scene.host.requests,
                ElementsAre("TDISP 3", "TDISP 5", "TDISP 8", "AM 5", "AM 8", "TDISP 5 8 8", "TVEL 5 8 8", "RVEL 5"));
  }
}

TEST(Requests, OfASecondSubElementDoNotReadTheFilesAgain) {
  HydroScene scene(plate_hull(1, 1));
  scene.parameters.subs = 2;
  scene.call();
  scene.host.strings.clear();
  scene.host.unit_scale.reset();
  scene.parameters.sub = 1;
  scene.call();
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_EQ(part_of(scene).initialized, 1);
}

}  // namespace
}  // namespace qvtest
