#pragma once

#include "soilinteraction/contact_search.h"
#include "soilinteraction_mtl/belt_geometry.h"

/// Contact of belt points with the road: the triangle under a point, the contact frame over it, sinkage, slip and shear
/// displacement. Search, frame and sinkage are those of a body's grid point (soilinteraction/contact_search.h), with
/// marker R for the ground reference marker. Velocities and displacements are the track's own:
///
///   area ratio      = |n . w|                                       n: normal of the road, w: normal of the belt
///   normal velocity = n . (v_node + A_node tilde(W_node) A_nodeT l_node - v_J - A_J tilde(W_J) f)
///   c = A_IT (v_I + A_I tilde(W_I) A_IT l_I)                        the point as the vehicle carries it
///   g = A_IT (v_J + A_J tilde(W_J) p)                               the ground at the point
///   slip = (c.x - (g.x + v_belt), c.y - g.y)                        along marker I's axes x and y
///   j    = slip dt + j_last,  dt = -(time of the last converged step);  j = slip dt if v_belt is exactly 0
///
/// l_I, l_node: levers of the point; f, p: its projection onto the triangle's plane and the point itself, road axes;
/// W: angular velocities, each in its marker's axes; j_last: shear displacement at the last converged step.
namespace qvsoilinteractionmtl {

/// How markers I (index 1, with the vehicle) and J (index 5, with the road) lie and move, seen from marker R and in its
/// axes, and how fast the belt circulates.
struct track_motion {
  qvsoilinteraction::kinematics k;
  double A1t[9];      ///< transpose of A1: axes of marker R -> axes of marker I
  double belt_speed;  ///< v_belt [length/time]; it is added to the ground's velocity
};

/// Computes A1t, and the fields that qvsoilinteraction::complete sets, from the others.
void complete(track_motion& motion);

/// What all points of a span share: the belt's normal and the motion of the node where the span starts.
struct span_motion {
  const double* normal;    ///< w, the third triple of the span's frame
  double At[9];            ///< axes of marker R -> axes of the node
  double AW[9];            ///< A tilde(W): a place in the node's axes -> its velocity by rotation, axes of marker R
  const double* velocity;  ///< of the node, axes of marker R [length/time]
};

/// @param normal       w of the span
/// @param A, velocity  axes of the node (node -> R) and its velocity in the axes of R
/// @param W            its angular velocity, in its own axes [1/time]
span_motion make_span_motion(const double* normal, const double* A, const double* velocity, const double* W);

/// First pass: finds the places in `at` on the road, keeps in `near` the points inside its extent and not higher than
/// everything in their cell, and prefetches those cells' triangles. Run it for block n+1 before get_contact_info_mtl of
/// block n, so that memory latency overlaps arithmetic. A point that is not finite is out of contact.
/// @param block  its points are Croad_contact_mtl records, as many as `at` has and in the same order
void place_points_mtl(const qvsoilrdf::CRoad& road, const track_motion& motion, const belt_block& at,
                      qvsoilinteraction::contact_block& block);

/// Second pass: finds the triangles under the near points and their sinkage. Points with a negative (or NaN) sinkage
/// are in contact; they get the contact frame, area ratio, velocities and shear displacements. A standard exception is
/// recorded (run_recorded), and the block is then out of contact.
///
/// Kept: a point that had no contact at the last converged step has no shear displacement, and its slip velocity keeps
/// the value of its last contact.
/// Kept: dt above is minus the time of the last converged step, not the time since then, and a belt at rest drops the
/// displacement of that step.
void get_contact_info_mtl(void* handle, const qvsoilrdf::CRoad& road, const track_motion& motion,
                          const span_motion& span, qvsoilinteraction::frame_maker& frames, const belt_block& at,
                          const qvsoilinteraction::contact_block& block, qvsoilinteraction::contact_rows& rows,
                          const qv::fault_channel& channel);

}  // namespace qvsoilinteractionmtl
