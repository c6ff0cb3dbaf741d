#include "soilrdf/road.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

using namespace qvsoilrdf;

TEST(RoadRecords, ANodeStartsAtTheOrigin) {
  const CNode node;
  EXPECT_EQ(node.x, 0.0);
  EXPECT_EQ(node.y, 0.0);
  EXPECT_EQ(node.z, 0.0);
  EXPECT_EQ(node.id, 0);
}

TEST(RoadRecords, AnElementStartsEmpty) {
  const CElement element;
  for (int c = 0; c < 3; ++c) {
    EXPECT_EQ(element.node[c], 0);
    EXPECT_EQ(element.normal[c], 0.0);
    EXPECT_EQ(element.center[c], 0.0);
  }
  EXPECT_EQ(element.value, 0.0);
  EXPECT_EQ(element.id, 0);
  EXPECT_EQ(element.d, 0.0);
}

TEST(RoadRecords, ACellStartsEmpty) {
  const CCell cell;
  EXPECT_TRUE(cell.elements.empty());
  EXPECT_EQ(cell.i, 0);
  EXPECT_EQ(cell.j, 0);
  for (double bound : {cell.x_lo, cell.y_lo, cell.x_hi, cell.y_hi}) EXPECT_EQ(bound, 0.0);
}

TEST(RoadRecords, SoilParametersStartAtZeroExceptTheDamping) {
  const CRoad road;
  const CDynamicSinkage& s = road.dynamic_sinkage;
  for (double v : {s.coefficient_ds, s.critical_pressure, s.exponent_pr, s.exponent_sd}) EXPECT_EQ(v, 0.0);
  const CBekker& b = road.bekker;
  for (double v : {b.cohesive_coeff, b.frictional_coeff, b.sinkage_exponent, b.width}) EXPECT_EQ(v, 0.0);
  EXPECT_EQ(b.damp_ratio, 0.01);
  EXPECT_EQ(b.boundary_sinkage, 1.0);
  const CWong& w = road.wong;
  for (double v : {w.cohesion, w.sensitivity, w.max_shear_disp, w.friction_angle}) EXPECT_EQ(v, 0.0);
}

TEST(RoadRecords, ARoadStartsUnreadWithAnEmptyGridOfOneCell) {
  const CRoad road;
  EXPECT_TRUE(road.cells.empty());
  EXPECT_TRUE(road.nodes.empty());
  EXPECT_TRUE(road.elements.empty());
  EXPECT_EQ(road.soil_type, "");
  EXPECT_EQ(road.normal_pressure, "BEKKER");
  EXPECT_EQ(road.shear_pressure, "WONG");
  EXPECT_EQ(road.file_type, "RDF");
  EXPECT_EQ(road.method, "3D_SOIL");
  EXPECT_EQ(road.angle_unit, "RADIAN");
  for (double one : {road.length_factor, road.mass_factor, road.time_factor, road.force_factor, road.scale_factor_1,
                     road.scale_factor_2, road.cell_dx, road.cell_dy}) {
    EXPECT_EQ(one, 1.0);
  }
  for (double zero :
       {road.x_min, road.y_min, road.x_max, road.y_max, road.max_dx, road.max_dy, road.x_offset, road.y_offset}) {
    EXPECT_EQ(zero, 0.0);
  }
  EXPECT_EQ(road.nx, 1);
  EXPECT_EQ(road.ny, 1);
  EXPECT_EQ(road.number_of_nodes, 0);
  EXPECT_EQ(road.number_of_elements, 0);
  EXPECT_EQ(road.road_id, -16394);
}

TEST(RoadRecords, ArePlainValues) {
  EXPECT_FALSE(std::is_polymorphic_v<CRoad>);
  EXPECT_FALSE(std::is_polymorphic_v<CCell>);
  EXPECT_TRUE(std::is_trivially_copyable_v<CNode>);
  EXPECT_TRUE(std::is_trivially_copyable_v<CElement>);
  EXPECT_TRUE(std::is_copy_constructible_v<CRoad> && std::is_copy_assignable_v<CRoad>);
  EXPECT_TRUE((std::is_same_v<decltype(CNode::id), std::int32_t> && std::is_same_v<decltype(CRoad::nx), std::int32_t>));
}

CRoad filled_road() {
  CRoad road;
  road.nodes.resize(3);
  road.nodes[1].x = 10;
  road.nodes[2].y = 4;
  road.elements.push_back({{1, 2, 3}});
  road.soil_type = "CONCRETE";
  road.bekker.width = 3;
  road.x_max = 10, road.y_max = 4;
  road.nx = 2, road.ny = 2;
  road.cell_dx = 5, road.cell_dy = 2;
  road.spare_int_1 = 6, road.spare_int_2 = 7;
  road.road_id = 4;
  build_cell_grid(road);
  return road;
}

TEST(RoadRecords, ACopyIsEqualAndIndependent) {
  const CRoad source = filled_road();
  CRoad copy = source, assigned;
  assigned = source;
  for (CRoad* road : {&copy, &assigned}) {
    EXPECT_EQ(road->cell(0, 0).elements, std::vector<std::int32_t>{1});
    EXPECT_EQ(road->nodes[1].x, 10);
    EXPECT_EQ(road->soil_type, "CONCRETE");
    EXPECT_EQ(road->bekker.width, 3);
    EXPECT_EQ(road->nx, 2);
    EXPECT_EQ(road->spare_int_1, 6);
    EXPECT_EQ(road->spare_int_2, 7);
    EXPECT_EQ(road->road_id, 4);
    road->elements.clear();
    road->nodes[1].x = 0;
    road->soil_type += "!";
    road->cells = cell_grid();
  }
  EXPECT_EQ(source.elements.size(), 1u);
  EXPECT_EQ(source.nodes[1].x, 10);
  EXPECT_EQ(source.soil_type, "CONCRETE");
  EXPECT_EQ(source.cell(0, 0).elements, std::vector<std::int32_t>{1});
}

TEST(RoadRecords, TypeOfNormalPressureIsZeroForBekkerToTheLetter) {
  CRoad road;
  EXPECT_EQ(road.get_type_of_normal_pressure(), 0);
  for (const char* name : {"bekker", "Bekker", " BEKKER", "BEKKER ", "WONG", ""}) {
    road.normal_pressure = name;
    EXPECT_EQ(road.get_type_of_normal_pressure(), 1) << '"' << name << '"';
  }
}

TEST(RoadRecords, APlaneHoldsItsCentre) {
  EXPECT_TRUE(rc::check([] {
    const auto drawn = *rc::gen::container<std::vector<int>>(6, rc::gen::inRange(-1000, 1001));
    CElement element;
    for (size_t c = 0; c < 3; ++c) {
      element.normal[c] = drawn[c];
      element.center[c] = drawn[c + 3];
    }
    element.d = 99;
    element.equation_plane();
    double dot = element.d;
    for (int c = 0; c < 3; ++c) dot += element.normal[c] * element.center[c];
    RC_ASSERT(dot == 0.0);
  }));
}

}  // namespace
