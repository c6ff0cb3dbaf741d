#include "solver/checks/course.h"

#include <cmath>
#include <utility>

#include "solver/model/expression.h"

namespace qvslv {

namespace {

constexpr size_t k_intervals = 100;  // of the run, between the moments

Rotation multiplied(const Rotation& a, const Rotation& b) {
  Rotation product{};
  for (size_t column = 0; column < 3; ++column) {
    const Vec3 image = turned(a, {b[3 * column], b[3 * column + 1], b[3 * column + 2]});
    for (size_t k = 0; k < 3; ++k) product[3 * column + k] = image[k];
  }
  return product;
}

Pose inverse(const Pose& pose) {
  Pose result;
  const Vec3 back = turned_back(pose.axes, pose.place);
  for (size_t k = 0; k < 3; ++k) {
    result.place[k] = -back[k];
    for (size_t column = 0; column < 3; ++column) result.axes[3 * column + k] = pose.axes[3 * k + column];
  }
  return result;
}

/// Turned about one of the axes.
Pose turn(size_t axis, double angle) {
  Pose pose;
  const size_t a = (axis + 1) % 3, b = (axis + 2) % 3;
  pose.axes[3 * a + a] = pose.axes[3 * b + b] = std::cos(angle);
  pose.axes[3 * a + b] = std::sin(angle);
  pose.axes[3 * b + a] = -std::sin(angle);
  return pose;
}

Pose travel(const Vec3& way) { return {way, k_identity}; }

Pose body_fixed(const std::vector<double>& q) { return chained(turn(0, q[0]), chained(turn(1, q[1]), turn(2, q[2]))); }

/// Frame of the child marker in the parent marker's, for the coordinates q.
Pose joint_pose(JointType type, const std::vector<double>& q) {
  switch (type) {
    case JointType::weld:
      break;
    case JointType::revolute:
      return turn(2, q[0]);
    case JointType::slider:
      return travel({q[0], 0, 0});
    case JointType::cylindrical:
      return chained(turn(2, q[0]), travel({0, 0, q[1]}));
    case JointType::universal:
      return chained(turn(0, q[0]), turn(1, q[1]));
    case JointType::planar:
      return chained(travel({q[1], q[2], 0}), turn(2, q[0]));
    case JointType::ball:
      return body_fixed(q);
    case JointType::free:
      return chained(travel({q[3], q[4], q[5]}), body_fixed(q));
  }
  return {};
}

/// The integral of a function over a short time (Simpson's rule, which is exact up to the third power).
double integral(const CompiledExpression& f, double from, double to) {
  const double middle = 0.5 * (from + to);
  return (to - from) / 6 * (f(from) + 4 * f(middle) + f(to));
}

/// Values of a coordinate at all moments: given by its motion, or the motion's integral from the start on.
std::vector<double> followed(const Motion& motion, double start, const std::vector<double>& times) {
  const CompiledExpression f(motion.value);
  std::vector<double> values;
  double integrated = start;
  for (size_t i = 0; i < times.size(); ++i) {
    if (i > 0 && motion.level == MotionLevel::velocity) integrated += integral(f, times[i - 1], times[i]);
    const double value = motion.level == MotionLevel::position ? f(times[i]) : integrated;
    // A motion without a value ends the run there with a message of its own.
    values.push_back(std::isfinite(value) || values.empty() ? value : values.back());
  }
  return values;
}

/// Coordinates of a joint: [moment][coordinate].
std::vector<std::vector<double>> coordinates_of(const Joint& joint, const std::vector<double>& times) {
  std::vector<std::vector<double>> q(times.size(), joint.position);
  for (const Motion& motion : joint.motions) {
    const auto coordinate = static_cast<size_t>(motion.coordinate);
    const std::vector<double> values = followed(motion, joint.position[coordinate], times);
    for (size_t i = 0; i < times.size(); ++i) q[i][coordinate] = values[i];
  }
  return q;
}

Pose pose_of(const Marker& marker) { return {marker.position, marker.orientation}; }

bool has_motions(const Model& model) {
  for (const Joint& joint : model.joints)
    if (!joint.motions.empty()) return true;
  return false;
}

}  // namespace

Vec3 turned(const Rotation& axes, const Vec3& v) {
  Vec3 result = {0, 0, 0};
  for (size_t column = 0; column < 3; ++column)
    for (size_t k = 0; k < 3; ++k) result[k] += axes[3 * column + k] * v[column];
  return result;
}

Vec3 turned_back(const Rotation& axes, const Vec3& v) {
  Vec3 result = {0, 0, 0};
  for (size_t column = 0; column < 3; ++column)
    for (size_t k = 0; k < 3; ++k) result[column] += axes[3 * column + k] * v[k];
  return result;
}

Vec3 outwards(const Pose& pose, const Vec3& point) {
  const Vec3 way = turned(pose.axes, point);
  return {pose.place[0] + way[0], pose.place[1] + way[1], pose.place[2] + way[2]};
}

Vec3 inwards(const Pose& pose, const Vec3& point) { return turned_back(pose.axes, minus(point, pose.place)); }

Pose chained(const Pose& outer, const Pose& inner) {
  return {outwards(outer, inner.place), multiplied(outer.axes, inner.axes)};
}

Course::Course(const Model& model) : m_model(model), m_times(1, 0.0) {
  if (has_motions(model))
    for (size_t i = 1; i <= k_intervals; ++i)
      m_times.push_back(model.simulation.end_time * static_cast<double>(i) / k_intervals);
  std::vector<Pose> start;
  for (const Body& body : model.bodies) start.push_back({body.position, body.orientation});
  m_bodies.assign(m_times.size(), start);
  m_carriers.assign(model.bodies.size(), k_none);
  for (size_t i = 0; i < model.bodies.size(); ++i) m_roots.push_back(static_cast<int>(i));
  for (size_t i = 0; i < model.joints.size(); ++i) {
    const Joint& joint = model.joints[i];
    const Marker& child = model.markers[static_cast<size_t>(joint.child_marker)];
    const int parent = model.markers[static_cast<size_t>(joint.parent_marker)].body;
    const auto body = static_cast<size_t>(child.body);
    m_carriers[body] = static_cast<int>(i);
    if (joint.type != JointType::free) m_roots[body] = floating_root(parent);
    const Pose to_body = inverse(pose_of(child));
    const std::vector<std::vector<double>> q = coordinates_of(joint, m_times);
    for (size_t k = 0; k < m_times.size(); ++k)
      m_bodies[k][body] = chained(marker(joint.parent_marker, k), chained(joint_pose(joint.type, q[k]), to_body));
  }
}

Pose Course::marker(int marker, size_t moment) const {
  const Marker& from = m_model.markers[static_cast<size_t>(marker)];
  if (from.body == k_ground) return pose_of(from);
  return chained(m_bodies[moment][static_cast<size_t>(from.body)], pose_of(from));
}

namespace {

/// Directions of a joint's travels, in its parent marker's axes, each with the number of its coordinate.
std::vector<std::pair<size_t, Vec3>> travels_of(JointType type) {
  switch (type) {
    case JointType::slider:
      return {{0, {1, 0, 0}}};
    case JointType::cylindrical:
      return {{1, {0, 0, 1}}};
    case JointType::planar:
      return {{1, {1, 0, 0}}, {2, {0, 1, 0}}};
    case JointType::free:
      return {{3, {1, 0, 0}}, {4, {0, 1, 0}}, {5, {0, 0, 1}}};
    default:
      return {};
  }
}

/// Whether a motion keeps a coordinate where it is.
bool held(const Joint& joint, size_t coordinate) {
  for (const Motion& motion : joint.motions) {
    const CompiledExpression value(motion.value);
    if (motion.coordinate == static_cast<int>(coordinate))
      return value.constant() && (motion.level == MotionLevel::position || value(0) == 0);
  }
  return false;
}

}  // namespace

bool Course::can_travel(int marker, int plane) const {
  const Vec3 normal = axis_of(this->marker(plane), 2);
  int body = m_model.markers[static_cast<size_t>(marker)].body;
  while (body != k_ground) {
    const int carrier = m_carriers[static_cast<size_t>(body)];
    if (carrier == k_none) return true;
    const Joint& joint = m_model.joints[static_cast<size_t>(carrier)];
    const Pose parent = this->marker(joint.parent_marker);
    constexpr double k_along = 1e-6;
    for (const auto& [coordinate, way] : travels_of(joint.type))
      if (!held(joint, coordinate) && length(cross(turned(parent.axes, way), normal)) > k_along) return true;
    body = m_model.markers[static_cast<size_t>(joint.parent_marker)].body;
  }
  return false;
}

int Course::floating_root(int body) const { return body == k_ground ? k_ground : m_roots[static_cast<size_t>(body)]; }

}  // namespace qvslv
