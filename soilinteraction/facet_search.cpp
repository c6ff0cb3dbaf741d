#include "soilinteraction/facet_search.h"

#include <cmath>

#include "qvbrisk/constants.h"

namespace qvsoilinteraction {
namespace {

using qvsoilrdf::CNode;
using qvsoilrdf::corner_numbers;
using qvsoilrdf::CRoad;

constexpr double k_first_edge_tolerance = 0.000153;
constexpr double k_edge_tolerance = 0.0001;
constexpr double k_angle_tolerance = 0.0001;  // [deg]

/// Unit vectors from the point to the triangle's corners in the plan; false if the point is on a corner.
bool directions_to_corners(const CRoad& road, const corner_numbers& element, const double* p,
                           double (&direction)[3][3]) {
  for (int c = 0; c < 3; ++c) {
    const CNode& node = road.nodes[static_cast<std::size_t>(element.node[c] - 1)];
    direction[c][0] = node.x - p[0];
    direction[c][1] = node.y - p[1];
    direction[c][2] = 0.0;
    int on_corner;
    qv::normalization_vec(direction[c], on_corner);
    if (on_corner != 0) return false;
  }
  return true;
}

/// Whether the point is in the triangle by the angles under which it sees the edges; this is the definition.
/// @param clearly_outside  the point is outside by more than rounding: it may still count as on an edge, but the angles
///                         cannot add up to a full turn
bool appears_inside(const CRoad& road, const corner_numbers& element, const double* p, double edge_tolerance,
                    bool clearly_outside) {
  double direction[3][3], cosine[3];
  if (!directions_to_corners(road, element, p, direction)) return true;
  for (int c = 0; c < 3; ++c) qv::vectrvec(direction[c], direction[(c + 1) % 3], cosine[c]);
  for (const double c : cosine) {
    if (-1.0 - edge_tolerance <= c && c <= -1.0 + edge_tolerance) return true;
  }
  if (clearly_outside) return false;
  double sum = 0.0;
  for (const double c : cosine) sum += std::acos(c) * RTOD;
  return 360.0 - k_angle_tolerance <= sum && sum <= 360.0 + k_angle_tolerance;
}

}  // namespace

bool is_seen_inside(const CRoad& road, std::int32_t number, const double* p, bool first, double least) {
  return appears_inside(road, road.elements[static_cast<std::size_t>(number - 1)], p,
                        first ? k_first_edge_tolerance : k_edge_tolerance, least < -k_clear_of_edges);
}

void store_hole(Croad_contact& rc) {
  rc.facet_number = 0;
  rc.facet_normal[0] = rc.facet_normal[1] = rc.facet_normal[2] = 0.0;
  rc.facet_d = std::nan("");  // the mean over no triangles, 0/0
}

int search_contact_facet(const CRoad& road, const double* p, Croad_contact& rc) {
  if (out_of_extent(road, p)) return k_out_of_extent;
  rc.facet_number = 0;
  // The reading of a road may break off before its grid is built; it then has no cells.
  int status = k_in_extent;
  if (!road.cells.empty()) {
    const std::size_t cell = cell_of(road, p);
    road.make_ready(cell);
    status = find_facet(road, cell, p, rc.facet_number);
  }
  if (rc.facet_number == 0) {
    store_hole(rc);
    return status;
  }
  const auto found = static_cast<std::size_t>(rc.facet_number - 1);
  qv::assgvec(road.facets[found].normal, 3, rc.facet_normal);
  rc.facet_d = road.element(found).d;
  double length;
  int zero;
  qv::normalization_vec(rc.facet_normal, length, zero);
  if (length != 0.0) project(road, p, rc);
  return status;
}

}  // namespace qvsoilinteraction
