#include "solver/results/frames.h"

#include "qvbrisk/layouts.h"

namespace qvslv {

namespace {

// Points of tracks are laid out as those of plates and wheels, so one reader does for both.
static_assert(static_cast<int>(QV_TRACK_POINT_LENGTH) == static_cast<int>(QV_SOIL_POINT_LENGTH) &&
              static_cast<int>(QV_TRACK_POINT_POSITION) == static_cast<int>(QV_SOIL_POINT_POSITION) &&
              static_cast<int>(QV_TRACK_POINT_SINKAGE) == static_cast<int>(QV_SOIL_POINT_SINKAGE));

/// The quaternion with the non-negative real part; q and -q are the same orientation.
std::array<double, 4> quaternion_of(const SimTK::Rotation& rotation) {
  const SimTK::Quaternion q = rotation.convertRotationToQuaternion();
  const double sign = q[0] < 0 ? -1 : 1;
  return {sign * q[0], sign * q[1], sign * q[2], sign * q[3]};
}

Vec3 vector_at(const double* values) { return {values[0], values[1], values[2]}; }

/// Contact area of a belt, which the library adds to the x component of its first point's force. The belt's sum reports
/// the area after the first accepted step; before that, and without a sum, this is 0.
double area_in_first_force(const Engine& engine, const Element& belt) {
  const Model& model = engine.multibody().model();
  for (size_t i = 0; i < model.elements.size(); ++i) {
    const Element& sum = model.elements[i];
    if (sum.subroutine == "qvsoil_interaction_mtl_sum" && sum.par[QV_TRACK_SUM_ROAD] == belt.par[QV_TRACK_ROAD])
      return engine.elements().result(i)[QV_TRACK_SUM_RESULT_AREA];
  }
  return 0;
}

void turn_belt_forces(const Engine& engine, const Element& belt, const ContactAxes* axes, size_t first, Frame& frame) {
  const SimTK::Rotation reference = engine.multibody().find_axes(engine.state(), belt.axes);
  for (size_t k = first; k < frame.points.size(); ++k) {
    ContactPointSample& point = frame.points[k];
    Vec3& force = point.local_force;
    if (k == first) force[0] -= area_in_first_force(engine, belt);
    if (!point.in_contact()) force = {0, 0, 0};
    const SimTK::Vec3 in_ground = reference * SimTK::Vec3(force[0], force[1], force[2]);
    force = {in_ground[0], in_ground[1], in_ground[2]};
    if (axes != nullptr) force = axes->force_along(point, force, frame);
  }
}

void append_points(const Engine& engine, size_t element, std::vector<ContactPointSample>& points) {
  const Element& from = engine.multibody().model().elements[element];
  const std::vector<double>& result = engine.elements().result(element);
  const SimTK::Transform axes = engine.multibody().find_pose(engine.state(), from.axes);
  for (int k = 0; k < from.points.count; ++k) {
    const size_t at = static_cast<size_t>(from.points.first) + QV_SOIL_POINT_LENGTH * static_cast<size_t>(k);
    if (at + QV_SOIL_POINT_LENGTH > result.size()) return;
    ContactPointSample point;
    point.element = static_cast<int>(element);
    const double* values = &result[at];
    point.local_force = vector_at(values + QV_SOIL_POINT_LOCAL_FORCE);
    const Vec3 position = vector_at(values + QV_SOIL_POINT_POSITION);
    const SimTK::Vec3 in_ground = axes * SimTK::Vec3(position[0], position[1], position[2]);
    point.position = {in_ground[0], in_ground[1], in_ground[2]};
    point.sinkage = values[QV_SOIL_POINT_SINKAGE];
    point.dynamic_sinkage = values[QV_SOIL_POINT_DYNAMIC_SINKAGE];
    points.push_back(point);
  }
}

}  // namespace

BodyPose calc_body_pose(const Engine& engine, size_t body) {
  const SimTK::MobilizedBody& mobilizer = engine.multibody().body(static_cast<int>(body));
  const Body& from = engine.multibody().model().bodies[body];
  const SimTK::Vec3 center = mobilizer.findStationLocationInGround(engine.state(), to_vec3(from.center));
  return {{center[0], center[1], center[2]}, quaternion_of(mobilizer.getBodyRotation(engine.state()))};
}

bool is_belt(const Element& element) { return element.subroutine == "qvsoil_interaction_mtl"; }

Frame calc_frame(const Engine& engine, const ContactAxes* axes) {
  Frame frame;
  frame.time = engine.time();
  const Model& model = engine.multibody().model();
  for (size_t i = 0; i < model.bodies.size(); ++i) frame.body_poses.push_back(calc_body_pose(engine, i));
  for (size_t i = 0; i < model.elements.size(); ++i) {
    const size_t first = frame.points.size();
    append_points(engine, i, frame.points);
    if (is_belt(model.elements[i])) turn_belt_forces(engine, model.elements[i], axes, first, frame);
  }
  return frame;
}

}  // namespace qvslv
