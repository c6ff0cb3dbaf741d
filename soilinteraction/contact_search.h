#pragma once

#include <cmath>

#include "common/call/messages.h"
#include "soilinteraction/contact_frames.h"
#include "soilinteraction/contact_records.h"
#include "soilinteraction/facet_search.h"
#include "soilinteraction/kinematics.h"

/// Contact of a body's grid points with the road: the triangle under a point, the contact frame over it, sinkage, slip
/// and shear displacement.
///
///   r = A1 s                                 the point s on the body, from the body marker, ground axes
///   q = r + d1 - d5,  p = A5T q              from the road base marker, ground axes and road axes
///   sinkage = n . (q - A5 f)                 n: normal of the triangle, f: projection of p onto its plane
///   b = A1 tilde(W1) s + V1 - V5             velocity against the road base marker
///   slip = (t1 . b, t2 . b)                  t1, t2: tangents
///   normal velocity = n . (b - A5 tilde(W5) f)
///   j = (t1' . (q - q'), t2' . (q - q'))     travel since touch-down, which q', t1', t2' are from
///
/// Markers, axes and letters are those of `kinematics`. The area ratio is the cosine between n and the plate's normal
/// or, for a wheel, the direction from the point to the wheel's centre in the x-z plane of the road's axes.
namespace qvsoilinteraction {

/// A point of a block for which a triangle is searched.
struct search_point {
  int index;         ///< the point's place in its block
  double p[3];       ///< the point from the road base marker, road axes [length]
  std::size_t cell;  ///< the cell that it is over
};

/// Some points of an element that are worked on together: each step is done for all of them before the next step, so
/// that the waiting time of one point (for a square root, for memory) overlaps with the arithmetic of the others.
struct contact_block {
  Croad_contact* points[k_block];
  bool in_contact[k_block];
  int count = 0;
  search_point near[k_block];  ///< the points that are not certainly out of contact
  int near_count = 0;
};

/// Where the points of a block are on the road.
struct road_places {
  vectors relative;        ///< from the road base marker, ground axes [length]
  vectors p;               ///< the same, road axes
  double column[k_block];  ///< column of the cell under a point, not truncated
  double row[k_block];     ///< row, likewise
};

/// First pass: computes each point's place on the road, keeps in `near` the points inside the extent and not higher
/// than everything in their cell, and prefetches those cells' triangles. Run it for block n+1 before get_contact_info
/// of block n, so that memory latency overlaps arithmetic. A point whose x or y on the road is NaN is a fault.
void place_points(const qvsoilrdf::CRoad& road, const kinematics& k, contact_block& block,
                  const qv::fault_channel& channel);

/// Second pass: finds the triangles under the near points and their sinkage. Points with a negative (or NaN) sinkage
/// are in contact; they get the contact frame, area ratio, velocities and shear displacements. A point over a hole in
/// the mesh or over a triangle without a normal is out of contact.
/// @param shape  k_plate, else a wheel
void get_contact_info(void* handle, const qvsoilrdf::CRoad& road, int shape, const kinematics& k, frame_maker& frames,
                      contact_block& block, const qv::fault_channel& channel);

// The steps that the track shares, in the order in which they are called. Of the body marker's motion they read only
// the axes A1.

/// Fills `at` for points at `position`, which is seen from the ground reference marker.
inline void find_road_places(const qvsoilrdf::CRoad& road, const kinematics& k, const vectors& position, int count,
                             road_places& at) {
  for (int i = 0; i < count; ++i) {
    at.relative.x[i] = position.x[i] - k.d5[0];
    at.relative.y[i] = position.y[i] - k.d5[1];
    at.relative.z[i] = position.z[i] - k.d5[2];
  }
  rotate(k.A5t, at.relative, at.p, count);
  for (int i = 0; i < count; ++i) {
    // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): rotate has filled `count` of them
    at.column[i] = (at.p.x[i] + road.x_offset) / road.cell_dx;
    at.row[i] = (at.p.y[i] + road.y_offset) / road.cell_dy;
  }
}

/// Adds point i to the block's near points if it is inside the road's extent, and stores its relative position.
/// Precondition: its x and y on the road are not NaN.
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

/// Drops the near points that are higher than everything in their cell and prefetches the triangles of the other
/// points' cells.
void drop_points_above(const qvsoilrdf::CRoad& road, const kinematics& k, contact_block& block);

/// Finds the triangles under the near points, the contact frames over them and the sinkages. Marks the points in
/// contact and moves them to the front of the near points.
/// @return  the number of points in contact
int find_contacts(void* handle, const qvsoilrdf::CRoad& road, const kinematics& k, frame_maker& frames,
                  contact_block& block, const qv::fault_channel& channel);

/// The slip velocity, or exactly 0 if it is slower than 1e-08 in the model's units, whatever these are.
inline double at_rest_below_threshold(double slip) {
  constexpr double k_slip_at_rest = 1e-08;
  return std::fabs(slip) < k_slip_at_rest ? 0.0 : slip;
}

}  // namespace qvsoilinteraction
