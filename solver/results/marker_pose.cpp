#include "solver/results/marker_pose.h"

#include <array>

namespace qvslv {

Vec3 rotated(const Rotation& axes, const Vec3& v) {
  Vec3 out{};
  for (size_t row = 0; row < 3; ++row) {
    for (size_t column = 0; column < 3; ++column) out[row] += axes[3 * column + row] * v[column];
  }
  return out;
}

Vec3 rotated(const std::array<double, 4>& q, const Vec3& v) {
  const Vec3 axis = {q[1], q[2], q[3]};
  const Vec3 once = cross(axis, v);
  const Vec3 twice = cross(axis, once);
  Vec3 out = v;
  for (size_t c = 0; c < 3; ++c) out[c] += 2 * (q[0] * once[c] + twice[c]);
  return out;
}

Rotation rotation_of(const std::array<double, 4>& q) {
  const double w = q[0], x = q[1], y = q[2], z = q[3];
  return {1 - 2 * (y * y + z * z), 2 * (x * y + w * z),     2 * (x * z - w * y),
          2 * (x * y - w * z),     1 - 2 * (x * x + z * z), 2 * (y * z + w * x),
          2 * (x * z + w * y),     2 * (y * z - w * x),     1 - 2 * (x * x + y * y)};
}

Vec3 find_marker_place(const Model& model, int marker, const Frame& frame) {
  if (marker == k_none) return {0, 0, 0};
  const Marker& at = model.markers[static_cast<size_t>(marker)];
  if (at.body == k_ground) return at.position;
  const auto body = static_cast<size_t>(at.body);
  Vec3 from_center{};
  for (size_t c = 0; c < 3; ++c) from_center[c] = at.position[c] - model.bodies[body].center[c];
  Vec3 place = rotated(frame.body_poses[body].quaternion, from_center);
  for (size_t c = 0; c < 3; ++c) place[c] += frame.body_poses[body].position[c];
  return place;
}

Vec3 from_marker_axes(const Model& model, int marker, const Frame& frame, const Vec3& v) {
  if (marker == k_none) return v;
  const Marker& at = model.markers[static_cast<size_t>(marker)];
  const Vec3 in_body = rotated(at.orientation, v);
  return at.body == k_ground ? in_body : rotated(frame.body_poses[static_cast<size_t>(at.body)].quaternion, in_body);
}

MarkerPose find_marker_pose(const Model& model, int marker, const Frame& frame) {
  MarkerPose pose;
  pose.place = find_marker_place(model, marker, frame);
  for (size_t column = 0; column < 3; ++column) {
    Vec3 axis{};
    axis[column] = 1;
    axis = from_marker_axes(model, marker, frame, axis);
    for (size_t row = 0; row < 3; ++row) pose.axes[3 * column + row] = axis[row];
  }
  return pose;
}

Vec3 to_ground(const MarkerPose& pose, const Vec3& point) {
  Vec3 out = rotated(pose.axes, point);
  for (size_t c = 0; c < 3; ++c) out[c] += pose.place[c];
  return out;
}

Vec3 to_marker(const MarkerPose& pose, const Vec3& point) {
  Vec3 out{};
  for (size_t column = 0; column < 3; ++column) {
    for (size_t row = 0; row < 3; ++row) out[column] += pose.axes[3 * column + row] * (point[row] - pose.place[row]);
  }
  return out;
}

}  // namespace qvslv
