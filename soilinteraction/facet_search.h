#pragma once

#include <algorithm>

#include "soilinteraction/contact_records.h"

/// The triangle of a road under a point.
namespace qvsoilinteraction {

enum search_status {
  k_search_failed = 0,  ///< kept: no search returns it, but the contact search has its documented branch for it
  k_in_extent = 1,  ///< inside: over a triangle (facet normal not zero) or over a hole in the mesh (facet normal zero)
  k_out_of_extent = 2  ///< beyond the road, which is no fault
};

/// Finds the first triangle, in list order, of the cell under the point that holds the point. Stores in the record the
/// triangle's number, normal n and plane constant d, the height over its plane (as `sinkage`) and the projection onto
/// it
/// (`facet_point`):
///
///   sinkage = n . (p - K)        facet_point = p - sinkage n        K: the triangle's first corner
///
/// A point counts as inside if it coincides with a corner; or lies on an edge (the edge's ends are seen 180 degrees
/// apart, within the tolerance on the cosine); or the three edges are seen under angles that add up to 360 degrees. All
/// of this is seen in the plan, from above.
/// Kept: the edge tolerance is 0.000153 for the first triangle of a search and 0.0001 for the others.
/// Arc cosines are only taken if the answer is not certain without them.
///
/// Over a hole the facet normal is zero, the plane constant NaN, and sinkage and facet point stay as they were. Beyond
/// the road nothing is stored.
///
/// @param p  the point in the road base marker's axes [length]; x and y must not be NaN
int search_contact_facet(const qvsoilrdf::CRoad& road, const double* p, Croad_contact& rc);

// The steps of the search.

/// Kept: the search has no message for a point beyond the road. Such a point is out of contact and nothing stops.
inline bool out_of_extent(const qvsoilrdf::CRoad& road, const double* p) {
  return p[0] > road.x_max || p[0] < road.x_min || p[1] > road.y_max || p[1] < road.y_min;
}

/// The cell at a column and row that are not truncated yet. The extent is closed: a point on its upper border, or
/// rounded to it, is in the last cell.
inline std::size_t cell_at(const qvsoilrdf::CRoad& road, double column, double row) {
  return road.cells.index(std::min(static_cast<std::int32_t>(column), road.nx - 1),
                          std::min(static_cast<std::int32_t>(row), road.ny - 1));
}

inline std::size_t cell_of(const qvsoilrdf::CRoad& road, const double* p) {
  return cell_at(road, (p[0] + road.x_offset) / road.cell_dx, (p[1] + road.y_offset) / road.cell_dy);
}

/// Barycentric coordinates beyond this are certain: the gradients are floats, whose rounding is smaller.
constexpr double k_clear_of_edges = 1e-5;

/// The least of the three barycentric coordinates of (x, y) in a triangle, all of them 0 or more inside; NaN over a
/// thin triangle.
inline double least_coordinate(const qvsoilrdf::CFacet& facet, double x, double y) {
  const double from_x = x - facet.corner[0], from_y = y - facet.corner[1];
  const double l = static_cast<double>(facet.gradient[0]) * from_x + static_cast<double>(facet.gradient[1]) * from_y;
  const double m = static_cast<double>(facet.gradient[2]) * from_x + static_cast<double>(facet.gradient[3]) * from_y;
  return std::min(std::min(l, m), 1.0 - l - m);
}

/// Whether a triangle holds the point by the angles under which it is seen, if its coordinates are not certain of it.
/// @param first  it is the first triangle of the search    @param least  its least_coordinate
bool is_seen_inside(const qvsoilrdf::CRoad& road, std::int32_t number, const double* p, bool first, double least);

/// Finds the number of the first triangle in the cell's list that holds the point; 0: none does.
/// @return  k_in_extent. Kept: the status is here for the branch that callers have for k_search_failed.
inline int find_facet(const qvsoilrdf::CRoad& road, std::size_t cell, const double* p, std::int32_t& found) {
  const double reach = road.facet_reach;
  const qvsoilrdf::element_list list = road.cells.list(cell);
  found = 0;
  for (const std::int32_t* at = list.begin(); at != list.end(); ++at) {
    const double least = least_coordinate(road.facets[static_cast<std::size_t>(*at - 1)], p[0], p[1]);
    if (least < -reach) continue;
    if (!(least > k_clear_of_edges || is_seen_inside(road, *at, p, at == list.begin(), least))) continue;
    found = *at;
    break;
  }
  return k_in_extent;
}

/// Stores what a point over no triangle gets: a zero facet normal and a plane constant of NaN.
void store_hole(Croad_contact& rc);

/// Stores the height over the plane of the triangle found, and the projection onto it.
/// Precondition: the record has the triangle's number and unit normal.
inline void project(const qvsoilrdf::CRoad& road, const double* p, Croad_contact& rc) {
  const double* corner = road.facets[static_cast<std::size_t>(rc.facet_number - 1)].corner;
  const double w[3] = {p[0] - corner[0], p[1] - corner[1], p[2] - corner[2]};
  qv::vectrvec(rc.facet_normal, w, rc.sinkage);
  double along[3];
  qv::scavec(rc.sinkage, rc.facet_normal, along);
  for (int c = 0; c < 3; ++c) rc.facet_point[c] = corner[c] + (w[c] - along[c]);
}

}  // namespace qvsoilinteraction
