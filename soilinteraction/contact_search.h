#pragma once

#include "soilinteraction/contact_records.h"

/// Where a grid point meets the road: the triangle under it, the contact frame, sinkage, slip and shear displacement.
namespace qvsoilinteraction {

/// Positions and velocities of the body marker (1) and the road base marker (5) from the ground reference marker, in
/// its axes. Matrices are 3x3, column by column, marker -> ground.
struct kinematics {
  double A1[9], A5[9];
  double A5t[9];    ///< ground -> road base
  double d1[3], d5[3];
  double d15[3];    ///< body marker from road base marker, in the latter's axes
  double V1[3], V5[3];
  double W1[3], W5[3];   ///< angular velocities, in the marker's own axes
  double AW1[9], AW5[9]; ///< A times tilde(W): body-fixed place -> velocity it has by rotation, ground axes
  bool road_is_rigidly_placed;  ///< A5 is a rotation, so heights over the road keep their sign in its own axes
};

/// Completes A5t, AW1, AW5 and road_is_rigidly_placed from the rest.
void complete(kinematics& k);

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

/// Places one grid point and measures its contact.
/// @param shape  1 plate, else wheel
/// @return 1 in contact (sinkage negative), 0 otherwise. A point whose place on the road is not a number is a fault.
int get_contact_info(void* handle, const qvsoilrdf::CRoad& road, int shape, const kinematics& k, Croad_contact& rc,
                     int& ierr, char** msg);

}  // namespace qvsoilinteraction
