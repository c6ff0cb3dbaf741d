#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "common/call/messages.h"
#include "soilinteraction/contact_frames.h"
#include "soilinteraction/contact_records.h"
#include "soilinteraction/facet_search.h"
#include "soilinteraction/kinematics.h"
#include "soilinteraction/soil_laws.h"

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

/// Where the points of a block are on the road.
struct road_places {
  vectors relative;        ///< from the road base marker, ground axes [length]
  vectors p;               ///< the same, road axes
  double column[k_block];  ///< column of the cell under a point, not truncated; -1 beyond the road's extent
  double row[k_block];     ///< row, likewise
  double floor[k_block];   ///< the point is certainly not lower than this, road axes [length]; else minus infinity
};

/// A point of a block for which a triangle is searched.
struct search_point {
  std::int32_t index;  ///< the point's place in its block
  std::size_t cell;    ///< the cell that it is over
};

/// Some points of an element that are worked on together: each step is done for all of them before the next step, so
/// that one loop works on several at a time, and the waiting time of one point (for a square root, for memory) overlaps
/// with the arithmetic of the others.
struct contact_block {
  int count = 0;
  Croad_contact* points[k_block];  ///< records; the search reads their history
  road_places at;
  search_point near[k_block];  ///< the points that are not certainly out of contact
  int near_count = 0;
};

/// The points of a block that are in contact, in the block's order and side by side.
struct contact_rows {
  int count = 0;
  std::int32_t index[k_block];  ///< the points' places in their block
  const contact_frame* frames[k_block];
  const vectors* p;                   ///< the point from the road base marker, road axes [length]
  const vectors* relative;            ///< the same, ground axes
  vectors copied_p, copied_relative;  ///< what these point to, unless all points of the block are in contact
  vectors facet_normal, corner;
  vectors facet_point;  ///< the point projected onto the triangle's plane, road axes [length]
  vectors normal, tangent_1, tangent_2;
  motion_rows motion;
};

/// Vectors of the points in contact: those of their block if all its points are in contact, else copies in `copied`.
inline const vectors& of_rows(const vectors& of_block, int block_count, const contact_rows& rows, vectors& copied) {
  if (rows.count == block_count) return of_block;
  for (int c = 0; c < rows.count; ++c) qv::copy_vector(of_block, rows.index[c], copied, c);
  return copied;
}

/// The grid points of a body in a block, and where they are.
struct body_block {
  contact_block contact;
  vectors on_body;   ///< Si_prime of the records
  vectors lever;     ///< from the body marker, ground axes [length]
  vectors position;  ///< from the ground reference marker, ground axes [length]
};

/// First pass: computes each point's place from its `on_body`, keeps in `near` the points inside the road's extent and
/// not higher than everything in their cell, and prefetches those cells' triangles. Run it for block n+1 before
/// get_contact_info of block n, so that memory latency overlaps arithmetic. A point whose x or y on the road is NaN is
/// a fault.
void place_points(const qvsoilrdf::CRoad& road, const kinematics& k, body_block& block,
                  const qv::fault_channel& channel);

/// Second pass: finds the triangles under the near points and their sinkage. Points with a negative (or NaN) sinkage
/// are in contact; they get the contact frame, area ratio, velocities and shear displacements. A point over a hole in
/// the mesh or over a triangle without a normal is out of contact.
/// @param shape  k_plate, else a wheel
void get_contact_info(void* handle, const qvsoilrdf::CRoad& road, int shape, const kinematics& k, frame_maker& frames,
                      const body_block& block, contact_rows& rows, const qv::fault_channel& channel);

/// Stores where point c of the rows is, how it moves, and the contact frame there, in its record.
void store_contact(const contact_rows& rows, int c, Croad_contact& rc);

/// Moves the history of point c of the rows on, after a converged step.
void advance_history(const contact_rows& rows, const load_rows& loads, int c, Croad_contact& rc);

/// The same of a point out of contact.
inline void end_history(Croad_contact& rc) {
  if (rc.contact_state != 0.0) rc.clear_history();  // a point that had no contact has no history
}

// The steps that the track shares, in the order in which they are called. Of the body marker's motion they read only
// the axes A1.

/// Fills `at` for points at `position`, which is seen from the ground reference marker.
QV_IN_LOOPS void find_road_places(const qvsoilrdf::CRoad& road, const kinematics& k, const vectors& position, int count,
                                  road_places& at) {
  for (int i = 0; i < count; ++i) {
    at.relative.x[i] = position.x[i] - k.d5[0];
    at.relative.y[i] = position.y[i] - k.d5[1];
    at.relative.z[i] = position.z[i] - k.d5[2];
  }
  rotate(k.A5t, at.relative, at.p, count);
  const double x_offset = road.x_offset, y_offset = road.y_offset, dx = road.cell_dx, dy = road.cell_dy;
  const double x_min = road.x_min, x_max = road.x_max, y_min = road.y_min, y_max = road.y_max;
  for (int i = 0; i < count; ++i) {
    // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): rotate has filled `count` of them
    const double x = at.p.x[i], y = at.p.y[i];
    const bool inside = (x >= x_min) & (x <= x_max) & (y >= y_min) & (y <= y_max);
    at.column[i] = inside ? (x + x_offset) / dx : -1.0;
    at.row[i] = (y + y_offset) / dy;
  }
  // Heights that overflow in the search become NaN there, which is in contact: of them nothing is certain. Nor is it if
  // the road's axes are no rotation, for then a height may have another sign in ground axes.
  constexpr double k_far = 1e100, k_rounding = 1e-13;
  const double limit = k.road_is_rigidly_placed ? k_far : -std::numeric_limits<double>::infinity();
  for (int i = 0; i < count; ++i) {
    const double z = at.p.z[i];
    const double slack = k_rounding * (std::fabs(at.p.x[i]) + std::fabs(at.p.y[i]) + std::fabs(z));
    at.floor[i] = z < limit ? z - slack : -std::numeric_limits<double>::infinity();
  }
}

/// Adds point i, which is inside the road's extent, to the block's near points. Precondition: the road has cells.
inline void keep_near(const qvsoilrdf::CRoad& road, int i, contact_block& block) {
  const std::size_t cell = cell_at(road, block.at.column[i], block.at.row[i]);
  __builtin_prefetch(road.cells.data(cell));
  block.near[block.near_count++] = {i, cell};
}

/// Drops the near points that are higher than everything in their cell and prefetches the triangles of the other
/// points' cells, and the history of those points.
void drop_points_above(const qvsoilrdf::CRoad& road, contact_block& block);

/// Finds the triangles under the near points, the contact frames over them and the sinkages, and makes rows of the
/// points in contact. Of these it sets places, frames and sinkages, and the area ratios of a plate.
void find_contacts(void* handle, const qvsoilrdf::CRoad& road, const kinematics& k, frame_maker& frames,
                   const contact_block& block, contact_rows& rows, const qv::fault_channel& channel);

/// The slip velocity, or exactly 0 if it is slower than 1e-08 in the model's units, whatever these are.
QV_IN_LOOPS double at_rest_below_threshold(double slip) {
  constexpr double k_slip_at_rest = 1e-08;
  return std::fabs(slip) < k_slip_at_rest ? 0.0 : slip;
}

}  // namespace qvsoilinteraction
