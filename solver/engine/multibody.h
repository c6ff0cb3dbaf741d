#pragma once

#include <Simbody.h>

#include <string>
#include <vector>

#include "solver/engine/joints.h"
#include "solver/engine/model_check.h"
#include "solver/model/fault.h"
#include "solver/model/model.h"

namespace qvslv {

/// The mobilized body that a marker is fixed to, and its pose in that body.
struct PlacedMarker {
  SimTK::MobilizedBodyIndex body;
  SimTK::Transform in_body;
};

/// How a marker stands and moves, relative to the ground and in its axes.
struct MarkerMotion {
  SimTK::Vec3 position = SimTK::Vec3(0);
  SimTK::Rotation axes;
  SimTK::Vec3 velocity = SimTK::Vec3(0);
  SimTK::Vec3 angular_velocity = SimTK::Vec3(0);
  SimTK::Vec3 body_origin = SimTK::Vec3(0);  ///< of the frame of the body that it is fixed to
};

/// The same of a body's frame: pose, and angular velocity with the velocity of its origin.
struct BodyMotion {
  SimTK::Transform pose;
  SimTK::SpatialVec velocity = SimTK::SpatialVec(SimTK::Vec3(0), SimTK::Vec3(0));
};

MarkerMotion find_motion_on_body(const SimTK::Transform& in_body, const BodyMotion& body);

SimTK::Vec3 to_vec3(const Vec3& v);
SimTK::Rotation to_rotation(const Rotation& r);

/// The bodies, joints and markers of a model as a Simbody system. Its user adds forces to `forces` before `make_state`.
/// A body that no joint carries moves freely; its mobilizer sits at the centre of mass, so that its translation
/// and its rotation are not coupled.
class Multibody {
public:
  /// Throws MultibodyError for what cannot be built. The model and the fault must outlive this object.
  Multibody(const Model& model, Fault& fault);
  Multibody(const Multibody&) = delete;
  Multibody& operator=(const Multibody&) = delete;

  /// Finishes the system and makes its state at time 0, with all prescribed motions applied and realized to Velocity.
  /// Throws MultibodyError if a coordinate is free to move but has no inertia.
  SimTK::State make_state();

  const Model& model() const { return m_model; }
  const SimTK::MultibodySystem& system() const { return m_system; }
  const SimTK::SimbodyMatterSubsystem& matter() const { return m_matter; }
  SimTK::GeneralForceSubsystem& forces() { return m_forces; }
  const SimTK::GeneralForceSubsystem& forces() const { return m_forces; }
  const std::vector<BuiltJoint>& joints() const { return m_joints; }
  const PlacedMarker& marker(int index) const { return m_markers[static_cast<size_t>(index)]; }
  const SimTK::MobilizedBody& marker_body(int index) const { return m_matter.getMobilizedBody(marker(index).body); }
  const SimTK::MobilizedBody& body(int index) const;

  // Pose, axes and motion of a marker in ground axes. `marker` is an index into Model::markers; k_none is the ground
  // frame. The state is realized to Position, for find_motion to Velocity, or further.
  SimTK::Transform find_pose(const SimTK::State& state, int marker) const;
  SimTK::Rotation find_axes(const SimTK::State& state, int marker) const;
  MarkerMotion find_motion(const SimTK::State& state, int marker) const;
  BodyMotion find_body_motion(const SimTK::State& state, SimTK::MobilizedBodyIndex body) const;

  double calc_kinetic_energy(const SimTK::State& state) const;
  /// Energy in the field of gravity; 0 if all centres of mass lie in the ground's origin.
  double calc_potential_energy(const SimTK::State& state) const;

private:
  void add_free_bodies();
  void add_joints(Fault& fault);
  void place_markers();
  void start_free_bodies(SimTK::State& state) const;
  void check_inertia(const SimTK::State& state) const;
  std::string owner_of(int u_index, const SimTK::State& state) const;
  bool has_joint(int body) const;

  const Model& m_model;
  SimTK::MultibodySystem m_system;
  SimTK::SimbodyMatterSubsystem m_matter;
  SimTK::GeneralForceSubsystem m_forces;
  std::vector<SimTK::MobilizedBodyIndex> m_bodies;  ///< by index into Model::bodies
  std::vector<PlacedMarker> m_markers;              ///< by index into Model::markers
  std::vector<BuiltJoint> m_joints;
};

}  // namespace qvslv
