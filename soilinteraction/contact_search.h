#pragma once

#include "soilinteraction/contact_frames.h"
#include "soilinteraction/contact_records.h"
#include "soilinteraction/facet_search.h"
#include "soilinteraction/kinematics.h"

/// Where a grid point meets the road: the triangle under it, the contact frame, sinkage, slip and shear displacement.
namespace qvsoilinteraction {

/// A point of a block on its way to the triangle under it.
struct search_point {
  int index;    ///< in the block
  double p[3];  ///< in road axes
  std::size_t cell;
};

/// Some points of an element, worked on together: each step is done for all of them before the next, so that what
/// one point waits for (a square root, a cell from memory) overlaps with the others' work.
struct contact_block {
  Croad_contact* points[k_block];
  bool in_contact[k_block];
  int count = 0;
  search_point near[k_block];  ///< those that are not certainly out of contact
  int near_count = 0;
};

/// First half of get_contact_info: places the block's points, keeps as `near` those over the road and not above all
/// of its cell, and asks memory for the triangles there. Worth doing for the next block before finishing this one.
/// A point whose place on the road is not a number is a fault.
void place_points(const qvsoilrdf::CRoad& road, const kinematics& k, contact_block& block, int& ierr, char** msg);

/// Second half: finds the triangles under the near points and measures their contact: position, sinkage, and in
/// contact (sinkage negative) the frame, area ratio, velocities and shear displacements.
/// @param shape  1 plate, else wheel
void get_contact_info(void* handle, const qvsoilrdf::CRoad& road, int shape, const kinematics& k, frame_maker& frames,
                      contact_block& block, char** msg);

}  // namespace qvsoilinteraction
