#include "solver/engine/joints.h"

#include <string>

#include "solver/engine/prescribed_motion.h"

namespace qvslv {

using SimTK::MobilizedBody;
using SimTK::Transform;

namespace {

constexpr int k_x = 0, k_y = 1, k_z = 2;

/// One degree of freedom of a chain: a turn about, or a travel along, an axis of the joint frame.
struct Link {
  CoordinateKind kind;
  int axis;
  size_t coordinate;  ///< which coordinate of the joint it is
};

/// The links from parent to child. A planar joint travels first and turns then, so that its x and y are measured along
/// the parent marker's axes.
std::vector<Link> chain_of(JointType type) {
  constexpr auto turn = CoordinateKind::angle;
  constexpr auto travel = CoordinateKind::travel;
  switch (type) {
    case JointType::revolute:
      return {{turn, k_z, 0}};
    case JointType::slider:
      return {{travel, k_x, 0}};
    case JointType::cylindrical:
      return {{turn, k_z, 0}, {travel, k_z, 1}};
    case JointType::universal:
      return {{turn, k_x, 0}, {turn, k_y, 1}};
    case JointType::planar:
      return {{travel, k_x, 1}, {travel, k_y, 2}, {turn, k_z, 0}};
    case JointType::ball:
    case JointType::free:
    case JointType::weld:
      break;
  }
  return {};
}

/// The rotation that brings axis `from` onto axis `to` by permuting axes. It holds only zeros and ones: no rounding.
Transform permute_axes(int from, int to) {
  SimTK::Mat33 m(0);
  for (int k = 0; k < 3; ++k) m((to + k) % 3, (from + k) % 3) = 1;
  return Transform(SimTK::Rotation(m, true));
}

/// Simbody's pins turn about z and its sliders travel along x. For another axis both joint frames are permuted.
MobilizedBody add_link(const Link& link, MobilizedBody& parent, const Transform& on_parent, const SimTK::Body& child,
                       const Transform& on_child) {
  if (link.kind == CoordinateKind::angle) {
    const Transform turn = permute_axes(k_z, link.axis);
    return MobilizedBody::Pin(parent, on_parent * turn, child, on_child * turn);
  }
  const Transform turn = permute_axes(k_x, link.axis);
  return MobilizedBody::Slider(parent, on_parent * turn, child, on_child * turn);
}

BuiltJoint add_chain(MobilizedBody& parent, const Transform& on_parent, const SimTK::Body& child,
                     const Transform& on_child, const Joint& joint, const std::vector<Link>& chain, double spacing,
                     Fault& fault) {
  BuiltJoint built;
  built.joint = &joint;
  built.mobilizers.resize(chain.size());
  MobilizedBody inner = parent;
  Transform frame = on_parent;
  for (size_t i = 0; i < chain.size(); ++i) {
    const bool last = i + 1 == chain.size();
    MobilizedBody outer = last ? add_link(chain[i], inner, frame, child, on_child)
                               : add_link(chain[i], inner, frame, SimTK::Body::Massless(), Transform());
    built.mobilizers[chain[i].coordinate] = outer.getMobilizedBodyIndex();
    for (const Motion& motion : joint.motions) {
      if (motion.coordinate != static_cast<int>(chain[i].coordinate)) continue;
      const std::string label =
          "joint " + joint.name + ", coordinate " + joint_coordinates(joint.type)[chain[i].coordinate].name;
      SimTK::Motion::Custom(outer, new PrescribedMotion(motion, label, spacing, fault));
    }
    built.child = outer.getMobilizedBodyIndex();
    inner = outer;
    frame = Transform();
  }
  return built;
}

SimTK::Vec3 three(const std::vector<double>& values, size_t first) {
  SimTK::Vec3 v(0);
  for (size_t k = 0; k < 3; ++k) {
    if (first + k < values.size()) v[static_cast<int>(k)] = values[first + k];
  }
  return v;
}

void append(std::vector<double>& values, const SimTK::Vec3& v) { values.insert(values.end(), {v[0], v[1], v[2]}); }

}  // namespace

const std::vector<JointCoordinate>& joint_coordinates(JointType type) {
  constexpr auto angle = CoordinateKind::angle;
  constexpr auto travel = CoordinateKind::travel;
  static const std::vector<JointCoordinate> k_weld = {};
  static const std::vector<JointCoordinate> k_revolute = {{"angle", angle}};
  static const std::vector<JointCoordinate> k_slider = {{"travel", travel}};
  static const std::vector<JointCoordinate> k_cylindrical = {{"angle", angle}, {"travel", travel}};
  static const std::vector<JointCoordinate> k_universal = {{"angle_x", angle}, {"angle_y", angle}};
  static const std::vector<JointCoordinate> k_planar = {{"angle", angle}, {"x", travel}, {"y", travel}};
  static const std::vector<JointCoordinate> k_ball = {{"angle_x", angle}, {"angle_y", angle}, {"angle_z", angle}};
  static const std::vector<JointCoordinate> k_free = {{"angle_x", angle}, {"angle_y", angle}, {"angle_z", angle},
                                                      {"x", travel},      {"y", travel},      {"z", travel}};
  switch (type) {
    case JointType::weld:
      return k_weld;
    case JointType::revolute:
      return k_revolute;
    case JointType::slider:
      return k_slider;
    case JointType::cylindrical:
      return k_cylindrical;
    case JointType::universal:
      return k_universal;
    case JointType::planar:
      return k_planar;
    case JointType::ball:
      return k_ball;
    case JointType::free:
      return k_free;
  }
  return k_weld;
}

const char* joint_type_name(JointType type) {
  switch (type) {
    case JointType::free:
      return "free";
    case JointType::planar:
      return "planar";
    case JointType::slider:
      return "slider";
    case JointType::revolute:
      return "revolute";
    case JointType::cylindrical:
      return "cylindrical";
    case JointType::universal:
      return "universal";
    case JointType::ball:
      return "ball";
    case JointType::weld:
      return "weld";
  }
  return "";
}

BuiltJoint add_joint(MobilizedBody& parent, const Transform& frame_on_parent, const SimTK::Body& child,
                     const Transform& frame_on_child, const Joint& joint, double spacing, Fault& fault) {
  const std::vector<Link> chain = chain_of(joint.type);
  if (!chain.empty()) {
    return add_chain(parent, frame_on_parent, child, frame_on_child, joint, chain, spacing, fault);
  }
  MobilizedBody body;
  if (joint.type == JointType::weld) {
    body = MobilizedBody::Weld(parent, frame_on_parent, child, frame_on_child);
  } else if (joint.type == JointType::ball) {
    body = MobilizedBody::Ball(parent, frame_on_parent, child, frame_on_child);
  } else {
    body = MobilizedBody::Free(parent, frame_on_parent, child, frame_on_child);
  }
  BuiltJoint built;
  built.joint = &joint;
  built.child = body.getMobilizedBodyIndex();
  built.mobilizers = {built.child};
  return built;
}

void set_initial(const SimTK::SimbodyMatterSubsystem& matter, const BuiltJoint& built, SimTK::State& state) {
  const Joint& joint = *built.joint;
  const MobilizedBody& child = matter.getMobilizedBody(built.child);
  switch (joint.type) {
    case JointType::weld:
      return;
    case JointType::free:
      child.setQToFitTranslation(state, three(joint.position, 3));
      child.setUToFitLinearVelocity(state, three(joint.velocity, 3));
      [[fallthrough]];
    case JointType::ball: {
      SimTK::Rotation orientation;
      orientation.setRotationToBodyFixedXYZ(three(joint.position, 0));
      child.setQToFitRotation(state, orientation);
      child.setUToFitAngularVelocity(state, three(joint.velocity, 0));
      return;
    }
    default:
      break;
  }
  for (size_t i = 0; i < built.mobilizers.size(); ++i) {
    const MobilizedBody& mobilizer = matter.getMobilizedBody(built.mobilizers[i]);
    mobilizer.setOneQ(state, 0, i < joint.position.size() ? joint.position[i] : 0);
    mobilizer.setOneU(state, 0, i < joint.velocity.size() ? joint.velocity[i] : 0);
  }
}

JointMotion find_joint_motion(const SimTK::SimbodyMatterSubsystem& matter, const BuiltJoint& built,
                              const SimTK::State& state) {
  JointMotion motion;
  const JointType type = built.joint->type;
  if (type == JointType::weld) return motion;
  if (type == JointType::ball || type == JointType::free) {
    const MobilizedBody& child = matter.getMobilizedBody(built.child);
    const Transform& pose = child.getMobilizerTransform(state);
    const SimTK::SpatialVec& speed = child.getMobilizerVelocity(state);
    append(motion.position, pose.R().convertRotationToBodyFixedXYZ());
    append(motion.velocity, speed[0]);
    if (type == JointType::free) {
      append(motion.position, pose.p());
      append(motion.velocity, speed[1]);
    }
    return motion;
  }
  for (const SimTK::MobilizedBodyIndex index : built.mobilizers) {
    const MobilizedBody& mobilizer = matter.getMobilizedBody(index);
    motion.position.push_back(mobilizer.getOneQ(state, 0));
    motion.velocity.push_back(mobilizer.getOneU(state, 0));
  }
  return motion;
}

}  // namespace qvslv
