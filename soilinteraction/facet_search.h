#pragma once

#include <algorithm>

#include "soilinteraction/contact_records.h"

/// The triangle of a road under a point.
namespace qvsoilinteraction {

enum search_status {
  k_search_failed = 0,  ///< kept: callers have a branch for it, no search returns it
  k_in_extent = 1,      ///< a triangle found (facet normal not zero) or a hole in the mesh (facet normal zero)
  k_out_of_extent = 2   ///< beyond the road, silently
};

/// Finds the first triangle of the point's cell that holds it, in list order, and stores its normal, plane constant,
/// height over it (as `sinkage`) and the projection onto its plane in the record.
///
/// A point holds to be in a triangle when it is a corner, when an edge appears from it under an angle whose cosine
/// lies within the edge tolerance of -1, or when the three edges appear under angles that sum up to 360 degrees.
/// Kept: the edge tolerance is 0.000153 for the first triangle of a search and 0.0001 for the others.
/// Arc cosines are taken only where the answer is not certain without them.
///
/// @param p  the point in the road base marker's axes; x and y must not be not-a-number
int search_contact_facet(const qvsoilrdf::CRoad& road, const double* p, Croad_contact& rc);

// The steps of the search.

/// Kept: the texts "The analysis is stopped because of exceeding the ... value" were never handed on; a point beyond
/// the road is out of contact and nothing stops, so they are not even built here.
inline bool out_of_extent(const qvsoilrdf::CRoad& road, const double* p) {
  return p[0] > road.x_max || p[0] < road.x_min || p[1] > road.y_max || p[1] < road.y_min;
}

/// The cell at a column and row with fractions. The extent is closed: a point on its upper border, or rounded there,
/// is in the last cell.
inline std::size_t cell_at(const qvsoilrdf::CRoad& road, double column, double row) {
  return road.cells.index(std::min(static_cast<std::int32_t>(column), road.nx - 1),
                          std::min(static_cast<std::int32_t>(row), road.ny - 1));
}

inline std::size_t cell_of(const qvsoilrdf::CRoad& road, const double* p) {
  return cell_at(road, (p[0] + road.x_offset) / road.cell_dx, (p[1] + road.y_offset) / road.cell_dy);
}

/// Sets the number of the first triangle of the cell's list that holds the point, 0 when none does.
/// @return k_in_extent, always
int find_facet(const qvsoilrdf::CRoad& road, std::size_t cell, const double* p, Croad_contact& rc);

/// What a point over no triangle keeps: a zero facet normal.
void store_hole(Croad_contact& rc);

/// Height over the plane of the triangle found, and the projection onto it. The facet normal stands already.
inline void project(const qvsoilrdf::CRoad& road, const double* p, Croad_contact& rc) {
  const double* corner = road.facets[static_cast<std::size_t>(rc.facet_number - 1)].corner;
  const double w[3] = {p[0] - corner[0], p[1] - corner[1], p[2] - corner[2]};
  qv::vectrvec(rc.facet_normal, w, rc.sinkage);
  double along[3];
  qv::scavec(rc.sinkage, rc.facet_normal, along);
  for (int c = 0; c < 3; ++c) rc.facet_point[c] = corner[c] + (w[c] - along[c]);
}

}  // namespace qvsoilinteraction
