#pragma once

#include <Simbody.h>

#include <memory>
#include <string>
#include <vector>

#include "solver/engine/joints.h"
#include "solver/engine/model_check.h"
#include "solver/model/fault.h"
#include "solver/model/model.h"

namespace qvslv {

/// Where a marker is fixed.
struct PlacedMarker {
  SimTK::MobilizedBodyIndex body;
  SimTK::Transform in_body;
};

/// Position, axes and velocities of a marker in ground axes.
struct MarkerMotion {
  SimTK::Vec3 position;
  SimTK::Vec3 velocity;
  SimTK::Vec3 angular_velocity;
};

SimTK::Vec3 to_vec3(const Vec3& v);
SimTK::Rotation to_rotation(const Rotation& r);

/// The bodies, joints and markers of a model as a Simbody system. Forces are added to `forces` from outside, before
/// `make_state`. Bodies on no joint are free in ground, their mobilizer at the centre of mass.
class Multibody {
public:
  /// The model and the fault outlive this. Throws MultibodyError for what cannot be built.
  Multibody(const Model& model, Fault& fault);
  Multibody(const Multibody&) = delete;
  Multibody& operator=(const Multibody&) = delete;

  /// The state at time 0, motions prescribed, realized to Velocity. Finishes the system. Throws MultibodyError when
  /// some coordinate is free to move but has no inertia.
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

  /// @param marker  index into Model::markers; k_none is the ground frame
  SimTK::Transform find_pose(const SimTK::State& state, int marker) const;
  SimTK::Rotation find_axes(const SimTK::State& state, int marker) const;
  MarkerMotion find_motion(const SimTK::State& state, int marker) const;

  double calc_kinetic_energy(const SimTK::State& state) const;
  /// In the field of gravity, 0 with all centres of mass in the ground's origin.
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
  std::vector<SimTK::MobilizedBodyIndex> m_bodies;  ///< of Model::bodies
  std::vector<PlacedMarker> m_markers;              ///< of Model::markers
  std::vector<BuiltJoint> m_joints;
};

}  // namespace qvslv
