#pragma once

#include "solver/results/recording.h"

namespace qvslv {

/// Place and axes of a marker in ground axes at a moment.
struct MarkerPose {
  Vec3 place = {0, 0, 0};
  Rotation axes = k_identity;
};

/// v of the inner frame, in the outer one.
Vec3 rotated(const Rotation& axes, const Vec3& v);
/// v turned by a unit quaternion w, x, y, z.
Vec3 rotated(const std::array<double, 4>& quaternion, const Vec3& v);

Rotation rotation_of(const std::array<double, 4>& quaternion);

/// @param marker  index into Model::markers; k_none: the ground's origin and axes
Vec3 find_marker_place(const Model& model, int marker, const Frame& frame);
MarkerPose find_marker_pose(const Model& model, int marker, const Frame& frame);

/// A vector of a marker's axes in ground axes.
Vec3 from_marker_axes(const Model& model, int marker, const Frame& frame, const Vec3& v);

/// A point of the marker's frame in ground axes, and back.
Vec3 to_ground(const MarkerPose& pose, const Vec3& point);
Vec3 to_marker(const MarkerPose& pose, const Vec3& point);

/// Index into Model::markers of the one with that id, k_none when there is none. Bodies are markers too.
int find_marker(const Model& model, int id);

}  // namespace qvslv
