#pragma once

#include <string>
#include <vector>

#include "tests/reference/linear_algebra.h"

/// A soil road as plain lists, derived from nodes and triangles by definitions alone.
namespace qvref {

struct triangle {
  std::array<int, 3> corner{};  ///< node numbers, from 1
  v3 normal{};
  v3 center{};
  double d = 0.0;
};

/// Soil parameters as a road file gives them, except the friction angle, which is in radians here.
struct soil {
  std::string type = "SOIL";
  double coefficient_ds = 0.0, critical_pressure = 0.0, exponent_pr = 0.0, exponent_sd = 0.0;
  double kc = 0.0, kphi = 0.0, n = 0.0, damp_ratio = 0.01, boundary_sinkage = 1.0;
  double cohesion = 0.0, sensitivity = 0.0, max_shear_disp = 0.0, friction_angle = 0.0;
  double scale_factor_1 = 1.0, scale_factor_2 = 1.0;
};

struct cell {
  double x_lo, y_lo, x_hi, y_hi;
  std::vector<int> elements;  ///< triangle numbers, from 1
};

struct road {
  soil parameters;
  std::vector<v3> nodes;
  std::vector<triangle> triangles;
  double x_min = 0.0, y_min = 0.0, x_max = 0.0, y_max = 0.0;
  double x_offset = 0.0, y_offset = 0.0;
  double cell_dx = 1.0, cell_dy = 1.0;
  std::vector<std::vector<cell>> cells;  ///< [i along x][j along y]
};

/// Planes, bounds and cells of a mesh; every cell asks every triangle. Coordinates nearer to 0 than 1e-8 become 0.
/// Precondition: the mesh has an extent along x and along y.
road derive_road(const std::vector<v3>& nodes, const std::vector<std::array<int, 3>>& triangles, const soil& soil);

/// How the search ended for a plan point.
enum class found { outside_extent, hole, corner, edge, inside };

struct facet_search {
  found how = found::hole;
  int number = 0;  ///< of the triangle, from 1; 0 if there is none
  v3 normal{};     ///< the triangle's unit normal; zero if there is none
  double d = 0.0;  ///< the triangle's plane constant; NaN if there is none
  v3 point{};      ///< projection onto the triangle's plane; set only if there is one
};

/// Whether the plan point is in this triangle, by the angles between its corners. `edge_tolerance` is the caller's and
/// becomes 0.0001 after three angles.
found look_at_triangle(const road& road, int number, const v3& p, double& edge_tolerance);

/// First triangle of the point's cell, in list order, that holds the point.
facet_search search_facet(const road& road, const v3& p);

}  // namespace qvref
