#pragma once

#include "soilinteraction/contact_search.h"
#include "soilinteraction_mtl/belt_geometry.h"

/// Where a belt point meets the road: the triangle under it, the contact frame, sinkage, slip and shear displacement.
/// Search, frame and sinkage are those of a body's grid point.
namespace qvsoilinteractionmtl {

/// How markers I (1, with the vehicle) and J (5, with the road) lie and move, seen from marker R and in its axes, and
/// how fast the belt circulates.
struct track_motion {
  qvsoilinteraction::kinematics k;
  double A1t[9];      ///< marker R -> marker I
  double belt_speed;  ///< enters on the ground's side
};

/// Completes A1t and what qvsoilinteraction::complete adds, from the axes, displacements and velocities.
void complete(track_motion& motion);

/// What all points of a span share: the belt's normal and the motion of the node where the span starts.
struct span_motion {
  const double* normal;  ///< third triple of the span's frame
  double At[9];          ///< marker R -> node
  double AW[9];          ///< node axes times tilde(angular velocity): place in node axes -> velocity by rotation
  const double* velocity;
};

/// @param A, velocity  axes of the node (node -> R) and its velocity in R
/// @param W            its angular velocity, in its own axes
span_motion make_span_motion(const double* normal, const double* A, const double* velocity, const double* W);

/// First half of get_contact_info_mtl: hands the points of a placed block over to their records, keeps as near those
/// over the road that are not certainly above it, and asks memory for the triangles there. A point that is not finite
/// is out of contact.
/// @param block  its points are Croad_contact_mtl records, as many as `at` has and in the same order
void place_points_mtl(const qvsoilrdf::CRoad& road, const track_motion& motion, const belt_block& at,
                      qvsoilinteraction::contact_block& block);

/// Second half: finds the triangles under the near points and marks those in contact (sinkage negative), with frame,
/// area factor, velocities and shear displacements.
///
/// Kept: a point that had no contact after the last accepted step gets no slip velocity, so its last one stands.
/// Kept: the time since the last accepted step counts as minus the time of that step, and a belt at rest drops the
/// displacement of that step.
void get_contact_info_mtl(void* handle, const qvsoilrdf::CRoad& road, const track_motion& motion,
                          const span_motion& span, qvsoilinteraction::frame_maker& frames, const belt_block& at,
                          qvsoilinteraction::contact_block& block, const qv::fault_channel& channel);

}  // namespace qvsoilinteractionmtl
