#pragma once

#include <array>

#include "solver/model/model.h"
#include "solver/results/recording.h"

namespace qvslv {

/// Place and axes of a marker at a moment, in ground axes.
struct MarkerPose {
  Vec3 place = {0, 0, 0};
  Rotation axes = k_identity;
};

/// The vector v of an inner frame expressed in the outer one; `axes` are the inner frame's.
Vec3 rotated(const Rotation& axes, const Vec3& v);
/// The vector v turned by a unit quaternion w, x, y, z.
Vec3 rotated(const std::array<double, 4>& quaternion, const Vec3& v);

Rotation rotation_of(const std::array<double, 4>& quaternion);

/// Where a marker stands in a frame of the recording.
/// @param marker  index into Model::markers; k_none is the ground's origin and axes
Vec3 find_marker_place(const Model& model, int marker, const Frame& frame);
MarkerPose find_marker_pose(const Model& model, int marker, const Frame& frame);

/// A vector given in a marker's axes, expressed in ground axes.
Vec3 from_marker_axes(const Model& model, int marker, const Frame& frame, const Vec3& v);

/// A point of the marker's frame, expressed in the ground's frame.
Vec3 to_ground(const MarkerPose& pose, const Vec3& point);
/// A point of the ground's frame, expressed in the marker's frame.
Vec3 to_marker(const MarkerPose& pose, const Vec3& point);

}  // namespace qvslv
