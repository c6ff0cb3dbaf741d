#include "soilrdf/road_derivation.h"

#include <algorithm>
#include <cmath>

#include "common/call/messages.h"
#include "common/call/parameters.h"
#include "soilrdf/facet.h"

namespace qvsoilrdf {
namespace {

[[noreturn, gnu::noinline, gnu::cold]] void refuse_node_number(const CRoad& road, std::size_t element,
                                                               std::int32_t number, const qv::fault_channel& channel) {
  qv::first_fault("READ RDF ERROR : Element " + std::to_string(element + 1) + " names node " + std::to_string(number) +
                      "; node numbers must lie between 1 and " + std::to_string(road.nodes.size()) + ".",
                  channel.ierr, channel.msg);
}

// Kept: the differences are cyclic and signed, no extents. For corners at 2, 1, 0 the result is 1. The cell size
// follows from it.
double largest_cyclic_difference(double so_far, double k, double l, double m) {
  return std::max(std::max(so_far, k - l), std::max(l - m, m - k));
}

/// Checks the node numbers, finds the largest cyclic differences and the reach of the triangle whose shape is worst.
void survey_triangles(CRoad& road, const qv::fault_channel& channel) {
  const std::size_t count = road.nodes.size();
  double max_dx = road.max_dx, max_dy = road.max_dy;
  double worst_area = 1.0,
         worst_longest = 0.0;  // of the worst shape so far: the smallest area over longest edge squared
  for (std::size_t e = 0; e < road.elements.size(); ++e) {
    const corner_numbers& element = road.elements[e];
    for (const std::int32_t number : element.node) {
      if (static_cast<std::uint32_t>(number) - 1 >= count) refuse_node_number(road, e, number, channel);
    }
    const CNode &K = road.corner(element, 0), &L = road.corner(element, 1), &M = road.corner(element, 2);
    max_dx = largest_cyclic_difference(max_dx, K.x, L.x, M.x);
    max_dy = largest_cyclic_difference(max_dy, K.y, L.y, M.y);
    const plan_shape shape(K, L, M);
    // Quotients are compared by their products: a division per triangle is what this loop cannot afford.
    if (std::fabs(shape.twice_area) * worst_longest >= worst_area * shape.longest_squared) continue;
    if (shape.judged_by_angles()) continue;
    worst_area = std::fabs(shape.twice_area);
    worst_longest = shape.longest_squared;
  }
  road.max_dx = max_dx;
  road.max_dy = max_dy;
  road.facet_reach = edge_reach(worst_longest, worst_area);
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
  survey_triangles(road, channel);
  size_grid(road, channel);
  build_cell_grid(road);
}

}  // namespace qvsoilrdf
