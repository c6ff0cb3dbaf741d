#pragma once

#include "common/kernels/vectors.h"
#include "soilinteraction_mtl/contact_records.h"

/// Lays the belt over the circles of the nodes and the contact points on the belt. All positions from marker R, in its
/// axes.
namespace qvsoilinteractionmtl {

/// Common outer tangent of two node circles on the side that `frame`'s third triple turns its back on (below the nodes
/// when the chain runs along x and the axle along y).
///
/// @param c1, r1, c2, r2  centres and radii
/// @param a       axle direction, a unit vector
/// @param L       receives the distance of the tangent points
/// @param frame   receives along the span, axle, belt normal
/// @param points  receives the tangent points on the first and on the second circle
/// Circles with a common centre leave all three as they are. One circle inside the other has no tangent: not-a-numbers.
void get_tangent_point_XZ(const double* c1, double r1, const double* c2, double r2, const double* a, double& L,
                          double* frame, double* points);

/// Turns the arc around each inner node into a corner, where the tangents of its two ends cross.
///
/// Kept: of a span between two inner nodes only the record of its end gets the corner behind it, so its start record,
/// whose points are evaluated, runs from a corner to the unmoved tangent point (test: see docs/kept-oddities.md).
/// An arc's chord longer than the diameter gives not-a-numbers.
void replace_tangent_point(int nNode, track_records& track, const double* radii);

/// How the points of a span's grid lie: point (j, k) is j dx along and k dy - half across.
struct grid_spacing {
  double dx, dy, half;
};

/// The spacing on a span of the record's points[]; sets its span length.
grid_spacing space_grid(double b, CSoilInteractionMTL& span);

/// Some points of a span, side by side.
struct belt_block {
  int count = 0;
  double along[qv::k_block], across[qv::k_block];
  qv::vectors position, lever_marker, lever_node;  ///< axes of marker R

  void add(const grid_spacing& grid, int j, int k) {
    along[count] = j * grid.dx;
    across[count++] = k * grid.dy - grid.half;
  }
  /// Hands place and levers of point i over to its record.
  void store(int i, Croad_contact_mtl& rc) const {
    qv::take(position, i, rc.position);
    qv::take(lever_marker, i, rc.lever_marker);
    qv::take(lever_node, i, rc.lever_node);
  }
};

/// Places the points that were added.
/// @param pI, pNode  position of marker I and of the span's node
void place_on_span(const CSoilInteractionMTL& span, const double* pI, const double* pNode, belt_block& at);

}  // namespace qvsoilinteractionmtl
