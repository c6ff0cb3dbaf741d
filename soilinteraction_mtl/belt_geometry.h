#pragma once

#include "common/kernels/vectors.h"
#include "soilinteraction_mtl/contact_records.h"

/// Lays the belt over the circles of the nodes and the contact points on the belt. All positions are seen from marker
/// R, in its axes, in lengths of the model.
namespace qvsoilinteractionmtl {

/// Common outer tangent of two node circles, on the side that the belt normal w points away from (below the nodes if
/// the chain is listed along x and the axle points along y). Plane geometry in the plane across the axle:
///
///   u = unit(c2 - c1)    w = unit(u x a)    D = |c2 - c1|    h = sqrt(D^2 - (r1 - r2)^2)    |theta| = acos(h/D)
///   (u, a, w) turned about a by theta, which is positive for r1 < r2, negative for r1 > r2
///   P0 = c1 - r1 w       P1 = c2 - r2 w     L = |P1 - P0|
///
/// @param c1, r1, c2, r2  centres and radii, belt thickness included
/// @param a       axle direction, a unit vector
/// @param L       receives the distance of the tangent points
/// @param frame   receives u, a, w
/// @param points  receives P0 and P1
/// Circles with a common centre leave all three as they are. If one circle is inside the other there is no tangent and
/// the results are NaN.
void get_tangent_point_XZ(const double* c1, double r1, const double* c2, double r2, const double* a, double& L,
                          double* frame, double* points);

/// Replaces the arc around each inner node by a corner, the point where the tangents at the arc's two ends cross. With
/// c the chord between the tangent points and R the node's radius,
///
///   corner = P1 + t u     t = R tan(beta)     beta = pi/2 - acos(c / (2 R))
///
/// P1 and u are the end and the direction of the span that arrives at the node.
/// Kept: of a span between two inner nodes only the end record gets the corner at its end. The start record, whose
/// points are evaluated, runs from a corner to the unmoved tangent point (test: see docs/kept-oddities.md).
/// A chord longer than the diameter gives NaN.
/// @param radii  of the nodes, belt thickness included
void replace_tangent_point(int nNode, track_records& track, const double* radii);

/// How the points of a span's grid lie: point (j, k) is j dx along and k dy - half across [length].
struct grid_spacing {
  double dx, dy, half;
};

/// The spacing on the span between the record's `points` for a belt of width b. Sets the record's span length.
grid_spacing space_grid(double b, CSoilInteractionMTL& span);

/// Some points of a span, to be placed together.
struct belt_block {
  int count = 0;
  double along[qv::k_block], across[qv::k_block];
  qv::vectors position, lever_marker, lever_node;  ///< as in Croad_contact_mtl

  /// Adds `points` points of row j of the grid, from (j, k) on. Precondition: there is room for them.
  void add(const grid_spacing& grid, int j, int k, int points) {
    for (int i = 0; i < points; ++i) {
      along[count + i] = j * grid.dx;
      across[count + i] = (k + i) * grid.dy - grid.half;
    }
    count += points;
  }
  /// Copies position and levers of point i to its record.
  void store(int i, Croad_contact_mtl& rc) const {
    qv::take(position, i, rc.position);
    qv::take(lever_marker, i, rc.lever_marker);
    qv::take(lever_node, i, rc.lever_node);
  }
};

/// Places the points that were added to `at`.
/// @param pI, pNode  positions of marker I and of the node where the span starts
void place_on_span(const CSoilInteractionMTL& span, const double* pI, const double* pNode, belt_block& at);

}  // namespace qvsoilinteractionmtl
