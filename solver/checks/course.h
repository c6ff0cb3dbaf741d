#pragma once

#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// A frame seen from another one.
struct Pose {
  Vec3 place = {0, 0, 0};
  Rotation axes = k_identity;  ///< its axes in those of the other
};

Vec3 turned(const Rotation& axes, const Vec3& v);       ///< from the inner axes into the outer ones
Vec3 turned_back(const Rotation& axes, const Vec3& v);  ///< from the outer axes into the inner ones
Vec3 outwards(const Pose& pose, const Vec3& point);     ///< from the inner frame into the outer one
Vec3 inwards(const Pose& pose, const Vec3& point);      ///< from the outer frame into the inner one
Pose chained(const Pose& outer, const Pose& inner);     ///< `inner` is given in `outer`: seen from beyond both
inline Vec3 axis_of(const Pose& pose, size_t axis) {    ///< x, y or z axis of the inner frame, in the outer axes
  return {pose.axes[3 * axis], pose.axes[3 * axis + 1], pose.axes[3 * axis + 2]};
}

/// Where the bodies are, as far as the model file alone tells: prescribed motions are followed through the run, all
/// other coordinates stay as they start. Moment 0 is the start; the others are spread over the run, and a model without
/// motions has none.
class Course {
public:
  explicit Course(const Model& model);

  size_t moments() const { return m_times.size(); }
  double time(size_t moment) const { return m_times[moment]; }
  /// Frame of a marker in ground axes.
  /// @param marker  index into Model::markers
  Pose marker(int marker, size_t moment = 0) const;
  /// Whether a marker can move along the x-y plane of another one: its body is free, or a joint under it leaves a
  /// travel free, or prescribes one, that is not along the other's z axis.
  bool can_travel(int marker, int plane) const;
  /// The body at the root of the tree that a body belongs to: itself if no joint or a free one carries it; k_ground if
  /// the tree hangs on the ground.
  /// @param body  index into Model::bodies, or k_ground
  int floating_root(int body) const;

private:
  const Model& m_model;
  std::vector<double> m_times;
  std::vector<std::vector<Pose>> m_bodies;  ///< [moment][body]
  std::vector<int> m_carriers;              ///< by body: index into Model::joints, k_none if it is free
  std::vector<int> m_roots;                 ///< by body: see floating_root
};

}  // namespace qvslv
