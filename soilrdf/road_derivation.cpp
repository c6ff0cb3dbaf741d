#include "soilrdf/road_derivation.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "common/call/messages.h"
#include "common/call/parameters.h"
#include "common/kernels/kernels.h"

namespace qvsoilrdf {
namespace {

void check_node_numbers(const CRoad& road, const qv::fault_channel& channel) {
  const auto count = static_cast<std::int64_t>(road.nodes.size());
  for (const CElement& element : road.elements) {
    for (const std::int32_t number : element.node) {
      if (number >= 1 && number <= count) continue;
      qv::first_fault("READ RDF ERROR : Element " + std::to_string(element.id) + " names node " +
                          std::to_string(number) + "; node numbers must lie between 1 and " + std::to_string(count) +
                          ".",
                      channel.ierr, channel.msg);
    }
  }
}

/// Sets the triangle's unit normal (z not negative), centroid and plane constant.
void set_plane(CElement& element, const CNode& K, const CNode& L, const CNode& M) {
  const double kl[3] = {L.x - K.x, L.y - K.y, L.z - K.z};
  const double lm[3] = {M.x - L.x, M.y - L.y, M.z - L.z};
  int degenerate;  // a triangle without area keeps the normal (0, 0, 0), and no point over it is in contact
  qv::vectlvec(kl, lm, element.normal);
  qv::normalization_vec(element.normal, degenerate);
  if (element.normal[2] < 0.0) {
    for (double& component : element.normal) component = -component;
  }
  element.center[0] = (K.x + L.x + M.x) / 3.0;
  element.center[1] = (K.y + L.y + M.y) / 3.0;
  element.center[2] = (K.z + L.z + M.z) / 3.0;
  element.equation_plane();
}

// Kept: the differences are cyclic and signed, no extents. For corners at 2, 1, 0 the result is 1. The cell size
// follows from it.
double largest_cyclic_difference(double so_far, double k, double l, double m) {
  return std::max(std::max(so_far, k - l), std::max(l - m, m - k));
}

/// How far outside a triangle, in its barycentric coordinates, a point may still count as on an edge; 0 for a thin
/// triangle (a corner below about 3 degrees). Such a point is at most 0.0044 of the edge's length away: this is the
/// height of the arc from which the edge is seen under the angle of the widest tolerance. A point farther out than
/// 0.0045 of the longest edge is on none.
double edge_reach(double twice_area, double longest_squared) {
  constexpr double k_reach = 0.0045;
  constexpr double k_thin = 0.05;
  const double shape = std::fabs(twice_area) / longest_squared;
  return shape >= k_thin ? k_reach / shape * 1.0001 : 0.0;
}

CFacet make_facet(const CElement& element, const CNode& K, const CNode& L, const CNode& M, double& reach) {
  CFacet facet;
  facet.corner[0] = K.x, facet.corner[1] = K.y, facet.corner[2] = K.z;
  for (int c = 0; c < 3; ++c) facet.normal[c] = 0.0 + element.normal[c];  // adding 0 turns -0 into 0
  const double ax = L.x - K.x, ay = L.y - K.y, bx = M.x - K.x, by = M.y - K.y;
  const double cx = bx - ax, cy = by - ay;
  const double twice_area = ax * by - ay * bx;
  const double longest = std::max(std::max(ax * ax + ay * ay, bx * bx + by * by), cx * cx + cy * cy);
  const double own_reach = edge_reach(twice_area, longest);
  constexpr double k_float_range = 1e30;  // up to here a float has all its digits
  const bool judged_by_angles = own_reach == 0.0 || !(longest < k_float_range && longest > 1.0 / k_float_range);
  const double scale = judged_by_angles ? std::numeric_limits<double>::quiet_NaN() : 1.0 / twice_area;
  facet.gradient[0] = static_cast<float>(by * scale);
  facet.gradient[1] = static_cast<float>(-bx * scale);
  facet.gradient[2] = static_cast<float>(-ay * scale);
  facet.gradient[3] = static_cast<float>(ax * scale);
  reach = std::max(reach, own_reach);
  return facet;
}

void derive_triangles(CRoad& road) {
  road.facets.clear();
  road.facet_reach = 0.0;
  road.facets.reserve(road.elements.size());
  for (CElement& element : road.elements) {
    const CNode& K = road.nodes[static_cast<std::size_t>(element.node[0] - 1)];
    const CNode& L = road.nodes[static_cast<std::size_t>(element.node[1] - 1)];
    const CNode& M = road.nodes[static_cast<std::size_t>(element.node[2] - 1)];
    set_plane(element, K, L, M);
    road.max_dx = largest_cyclic_difference(road.max_dx, K.x, L.x, M.x);
    road.max_dy = largest_cyclic_difference(road.max_dy, K.y, L.y, M.y);
    road.facets.push_back(make_facet(element, K, L, M, road.facet_reach));
  }
}

/// The number of cells of at least `smallest` that fit into `extent`, 1 at least.
std::int32_t cell_count(double extent, double smallest, const char* axis, const qv::fault_channel& channel) {
  const double quotient = extent / smallest;
  if (!qv::fits_int(quotient)) {
    qv::first_fault("READ RDF ERROR : The number of grid cells along " + std::string(axis) + " is " +
                        qv::number_text(quotient) + "; it must lie between 0 and 2147483647.",
                    channel.ierr, channel.msg);
  }
  const auto c = static_cast<std::int32_t>(quotient);
  const double rest = extent - c * smallest;
  const std::int32_t count = rest >= 0.0 || c <= 1 ? c : c - 1;
  return count == 0 ? 1 : count;
}

void size_grid(CRoad& road, const qv::fault_channel& channel) {
  const double lx = road.x_max - road.x_min;
  const double ly = road.y_max - road.y_min;
  const double hx = 0.5 * road.max_dx;
  const double hy = 0.5 * road.max_dy;
  if (hx == 0.0) {
    qv::first_fault(
        " READ RDF ERROR : THE LONGITUDINAL DIRECTION OR FACESET OF THE BASE ENTITY IS SET INCORRECTLY. PLEASE "
        "CONFIRM IT! \n",
        channel.ierr, channel.msg);
  }
  road.nx = cell_count(lx, hx, "x", channel);
  if (hy == 0.0) {
    qv::first_fault(
        " READ RDF ERROR : THE VERTICAL DIRECTION OR FACESET OF THE BASE ENTITY IS SET INCORRECTLY. PLEASE CONFIRM "
        "IT! \n",
        channel.ierr, channel.msg);
  }
  road.ny = cell_count(ly, hy, "y", channel);
  road.cell_dx = lx / road.nx;
  road.cell_dy = ly / road.ny;
}

}  // namespace

void derive_road(CRoad& road, const qv::fault_channel& channel) {
  road.x_offset = -road.x_min;
  road.y_offset = -road.y_min;
  check_node_numbers(road, channel);
  derive_triangles(road);
  size_grid(road, channel);
  build_cell_grid(road);
}

}  // namespace qvsoilrdf
