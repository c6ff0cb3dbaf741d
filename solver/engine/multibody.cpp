#include "solver/engine/multibody.h"

#include <fmt/format.h>

#include <algorithm>

#include "solver/engine/inertia_check.h"
#include "solver/engine/prescribed_motion.h"

namespace qvslv {

using SimTK::MobilizedBody;
using SimTK::Transform;

SimTK::Vec3 to_vec3(const Vec3& v) { return SimTK::Vec3(v[0], v[1], v[2]); }

SimTK::Rotation to_rotation(const Rotation& r) {
  const SimTK::Mat33 m(r[0], r[3], r[6], r[1], r[4], r[7], r[2], r[5], r[8]);
  // Axes from a model file are as exact as the digits typed; the nearest rotation is meant. Exact axes stay exact.
  constexpr double k_roundings = 1e-15;
  const bool exact = SimTK::Mat33(~m * m - SimTK::Mat33(1)).norm() < k_roundings;
  return exact ? SimTK::Rotation(m, true) : SimTK::Rotation(m);
}

namespace {

Transform frame_of(const Marker& marker) {
  return Transform(to_rotation(marker.orientation), to_vec3(marker.position));
}

/// Mass properties about the body frame's origin. The model gives the inertia about the centre of mass.
SimTK::Body::Rigid rigid_body(const Body& body) {
  const Inertia& i = body.inertia;
  const SimTK::SymMat33 central(i.xx, i.xy, i.yy, i.xz, i.yz, i.zz);
  const SimTK::Vec3 center = to_vec3(body.center);
  const SimTK::Inertia about_frame = SimTK::Inertia(central).shiftFromMassCenter(center, body.mass);
  return SimTK::Body::Rigid(SimTK::MassProperties(body.mass, center, about_frame));
}

}  // namespace

Multibody::Multibody(const Model& model, Fault& fault) : m_model(model), m_matter(m_system), m_forces(m_system) {
  check_model(model);
  // The forces of the model are a single one; ElementCalls shares its work out among threads, not Simbody.
  m_forces.setNumberOfThreads(1);
  m_matter.setShowDefaultGeometry(false);
  m_bodies.resize(model.bodies.size());
  add_free_bodies();
  add_joints(fault);
  place_markers();
  if (model.gravity != Vec3{0, 0, 0}) {
    SimTK::Force::UniformGravity(m_forces, m_matter, to_vec3(model.gravity));
  }
}

bool Multibody::has_joint(int body) const {
  return std::any_of(m_model.joints.begin(), m_model.joints.end(), [&](const Joint& joint) {
    return m_model.markers[static_cast<size_t>(joint.child_marker)].body == body;
  });
}

void Multibody::add_free_bodies() {
  for (size_t i = 0; i < m_model.bodies.size(); ++i) {
    if (has_joint(static_cast<int>(i))) continue;
    const Body& body = m_model.bodies[i];
    MobilizedBody::Free free(m_matter.Ground(), Transform(), rigid_body(body), Transform(to_vec3(body.center)));
    m_bodies[i] = free.getMobilizedBodyIndex();
  }
}

void Multibody::add_joints(Fault& fault) {
  const double spacing = k_difference_spacing / m_model.units.time_factor;
  for (const Joint& joint : m_model.joints) {
    const Marker& on_parent = m_model.markers[static_cast<size_t>(joint.parent_marker)];
    const Marker& on_child = m_model.markers[static_cast<size_t>(joint.child_marker)];
    if (on_child.body == k_ground) {
      throw MultibodyError(
          fmt::format("joint {}: the ground cannot hang on a joint; exchange the two markers", joint.name));
    }
    const auto child = static_cast<size_t>(on_child.body);
    if (m_bodies[child].isValid()) {
      throw MultibodyError(
          fmt::format("joint {}: body {} hangs on another joint already", joint.name, m_model.bodies[child].name));
    }
    SimTK::MobilizedBodyIndex parent = SimTK::GroundIndex;
    if (on_parent.body != k_ground) parent = m_bodies[static_cast<size_t>(on_parent.body)];
    if (!parent.isValid()) {
      throw MultibodyError(fmt::format("joint {}: its parent body {} must hang on an earlier joint", joint.name,
                                       m_model.bodies[static_cast<size_t>(on_parent.body)].name));
    }
    m_joints.push_back(add_joint(m_matter.updMobilizedBody(parent), frame_of(on_parent),
                                 rigid_body(m_model.bodies[child]), frame_of(on_child), joint, spacing, fault));
    m_bodies[child] = m_joints.back().child;
  }
}

void Multibody::place_markers() {
  m_markers.reserve(m_model.markers.size());
  for (const Marker& marker : m_model.markers) {
    const SimTK::MobilizedBodyIndex body =
        marker.body == k_ground ? SimTK::GroundIndex : m_bodies[static_cast<size_t>(marker.body)];
    m_markers.push_back({body, frame_of(marker)});
  }
}

const MobilizedBody& Multibody::body(int index) const {
  return m_matter.getMobilizedBody(m_bodies[static_cast<size_t>(index)]);
}

SimTK::State Multibody::make_state() {
  m_system.realizeTopology();
  SimTK::State state = m_system.getDefaultState();
  m_system.realizeModel(state);
  for (const BuiltJoint& joint : m_joints) set_initial(m_matter, joint, state);
  start_free_bodies(state);
  state.setTime(0);
  m_system.prescribe(state);
  m_system.realize(state, SimTK::Stage::Velocity);
  check_inertia(state);
  return state;
}

void Multibody::start_free_bodies(SimTK::State& state) const {
  for (size_t i = 0; i < m_model.bodies.size(); ++i) {
    if (has_joint(static_cast<int>(i))) continue;
    const Body& body = m_model.bodies[i];
    const MobilizedBody& free = m_matter.getMobilizedBody(m_bodies[i]);
    const SimTK::Rotation orientation = to_rotation(body.orientation);
    const SimTK::Vec3 to_center = orientation * to_vec3(body.center);
    const SimTK::Vec3 spin = to_vec3(body.angular_velocity);
    free.setQToFitTransform(state, Transform(orientation, to_vec3(body.position) + to_center));
    free.setUToFitVelocity(state, SimTK::SpatialVec(spin, to_vec3(body.velocity) + spin % to_center));
  }
}

void Multibody::check_inertia(const SimTK::State& state) const {
  const int u = find_coordinate_without_inertia(m_matter, state);
  if (u < 0) return;
  throw MultibodyError(owner_of(u, state) +
                       " is free to move but nothing it moves has inertia in that direction; "
                       "give the body a mass and an inertia, or prescribe the motion");
}

std::string Multibody::owner_of(int u_index, const SimTK::State& state) const {
  const auto holds = [&](SimTK::MobilizedBodyIndex index) {
    const MobilizedBody& mobilizer = m_matter.getMobilizedBody(index);
    const int first = mobilizer.getFirstUIndex(state);
    return u_index >= first && u_index < first + mobilizer.getNumU(state);
  };
  for (const BuiltJoint& built : m_joints) {
    const auto& coordinates = joint_coordinates(built.joint->type);
    for (size_t i = 0; i < built.mobilizers.size(); ++i) {
      if (!holds(built.mobilizers[i])) continue;
      if (built.mobilizers.size() == coordinates.size()) {
        return fmt::format("coordinate {} of joint {}", coordinates[i].name, built.joint->name);
      }
      return fmt::format("a coordinate of joint {}", built.joint->name);
    }
  }
  for (size_t i = 0; i < m_bodies.size(); ++i) {
    if (holds(m_bodies[i])) return "body " + m_model.bodies[i].name;
  }
  return "a body";
}

Transform Multibody::find_pose(const SimTK::State& state, int marker) const {
  if (marker == k_none) return Transform();
  const PlacedMarker& placed = m_markers[static_cast<size_t>(marker)];
  return m_matter.getMobilizedBody(placed.body).getBodyTransform(state) * placed.in_body;
}

SimTK::Rotation Multibody::find_axes(const SimTK::State& state, int marker) const {
  if (marker == k_none) return SimTK::Rotation();
  const PlacedMarker& placed = m_markers[static_cast<size_t>(marker)];
  return m_matter.getMobilizedBody(placed.body).getBodyRotation(state) * placed.in_body.R();
}

MarkerMotion Multibody::find_motion(const SimTK::State& state, int marker) const {
  if (marker == k_none) return {};
  const PlacedMarker& placed = m_markers[static_cast<size_t>(marker)];
  return find_motion_on_body(placed.in_body, find_body_motion(state, placed.body));
}

BodyMotion Multibody::find_body_motion(const SimTK::State& state, SimTK::MobilizedBodyIndex body) const {
  const MobilizedBody& mobilized = m_matter.getMobilizedBody(body);
  return {mobilized.getBodyTransform(state), mobilized.getBodyVelocity(state)};
}

MarkerMotion find_motion_on_body(const Transform& in_body, const BodyMotion& body) {
  const SimTK::Vec3 arm = body.pose.R() * in_body.p();
  return {body.pose.p() + arm, body.pose.R() * in_body.R(), body.velocity[1] + body.velocity[0] % arm, body.velocity[0],
          body.pose.p()};
}

double Multibody::calc_kinetic_energy(const SimTK::State& state) const { return m_matter.calcKineticEnergy(state); }

double Multibody::calc_potential_energy(const SimTK::State& state) const {
  const SimTK::Vec3 gravity = to_vec3(m_model.gravity);
  double energy = 0;
  for (size_t i = 0; i < m_bodies.size(); ++i) {
    const SimTK::Vec3 center =
        m_matter.getMobilizedBody(m_bodies[i]).findStationLocationInGround(state, to_vec3(m_model.bodies[i].center));
    energy -= m_model.bodies[i].mass * SimTK::dot(gravity, center);
  }
  return energy;
}

}  // namespace qvslv
