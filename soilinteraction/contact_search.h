#pragma once

#include <cmath>

#include "common/call/messages.h"
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

/// The points of a block from the road base marker, in ground axes and in the road's own, with the cell's column and
/// row before truncation.
struct road_places {
  vectors relative, p;
  double column[k_block], row[k_block];
};

/// First half of get_contact_info: places the block's points, keeps as `near` those over the road and not above all
/// of its cell, and asks memory for the triangles there. Worth doing for the next block before finishing this one.
/// A point whose place on the road is not a number is a fault.
void place_points(const qvsoilrdf::CRoad& road, const kinematics& k, contact_block& block,
                  const qv::fault_channel& channel);

/// Second half: finds the triangles under the near points and measures their contact: position, sinkage, and in
/// contact (sinkage negative) the frame, area ratio, velocities and shear displacements.
/// @param shape  1 plate, else wheel
void get_contact_info(void* handle, const qvsoilrdf::CRoad& road, int shape, const kinematics& k, frame_maker& frames,
                      contact_block& block, const qv::fault_channel& channel);

// The steps that other bodies share, in their order. Of a body marker they read the axes A1 alone.

/// Fills `at` for the positions of a block's points.
inline void find_road_places(const qvsoilrdf::CRoad& road, const kinematics& k, const vectors& position, int count,
                             road_places& at) {
  for (int i = 0; i < count; ++i) {
    at.relative.x[i] = position.x[i] - k.d5[0];
    at.relative.y[i] = position.y[i] - k.d5[1];
    at.relative.z[i] = position.z[i] - k.d5[2];
  }
  rotate(k.A5t, at.relative, at.p, count);
  for (int i = 0; i < count; ++i) {
    // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): rotate has filled as many
    at.column[i] = (at.p.x[i] + road.x_offset) / road.cell_dx;
    at.row[i] = (at.p.y[i] + road.y_offset) / road.cell_dy;
  }
}

/// Adds point i to the block's near points when it is over the road, and stores its place there.
/// Precondition: its x and y on the road are numbers.
inline void keep_near(const qvsoilrdf::CRoad& road, const road_places& at, int i, contact_block& block) {
  search_point& point = block.near[block.near_count];
  take(at.p, i, point.p);
  if (out_of_extent(road, point.p) || road.cells.empty()) return;
  point.index = i;
  point.cell = cell_at(road, at.column[i], at.row[i]);
  __builtin_prefetch(road.cells.data(point.cell));
  take(at.relative, i, block.points[i]->relative_position);
  ++block.near_count;
}

/// Drops the near points that are certainly above the road and asks memory for what the others' cells hold.
void drop_points_above(const qvsoilrdf::CRoad& road, const kinematics& k, contact_block& block);

/// Finds the triangles under the near points, the frames over them and the sinkages. Points in contact are marked and
/// moved to the front of the near points.
/// @return  how many they are
int find_contacts(void* handle, const qvsoilrdf::CRoad& road, const kinematics& k, frame_maker& frames,
                  contact_block& block, const qv::fault_channel& channel);

/// A slip velocity, or none when it is slower than 1e-08, in any unit.
inline double at_rest_below_threshold(double slip) {
  constexpr double k_slip_at_rest = 1e-08;
  return std::fabs(slip) < k_slip_at_rest ? 0.0 : slip;
}

}  // namespace qvsoilinteraction
