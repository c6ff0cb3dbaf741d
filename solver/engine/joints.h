#pragma once

#include <Simbody.h>

#include <vector>

#include "solver/model/fault.h"
#include "solver/model/model.h"

namespace qvslv {

enum class CoordinateKind { angle, travel };

/// One coordinate of a joint as users see it.
struct JointCoordinate {
  const char* name;  ///< as in model files and column heads
  CoordinateKind kind;
};

/// Coordinates of a joint type, in the order of Joint::position; angles in radians, travels in model length.
const std::vector<JointCoordinate>& joint_coordinates(JointType type);

/// Name of a joint type as a model file has it.
const char* joint_type_name(JointType type);

/// A joint inside the multibody system. It has one mobilizer per coordinate, so that each coordinate can have a motion
/// of its own, or a single mobilizer for ball, free and weld joints.
struct BuiltJoint {
  const Joint* joint = nullptr;
  std::vector<SimTK::MobilizedBodyIndex> mobilizers;  ///< in the order of the coordinates
  SimTK::MobilizedBodyIndex child;                    ///< mobilizer that carries the child body
};

/// Hangs a body on its parent.
/// @param frame_on_parent  pose of the parent marker in the parent body
/// @param frame_on_child   pose of the child marker in the child body
/// @param spacing          spacing of the finite differences of its motions [model time]
/// @param fault            is told if a motion has no finite value; must outlive the system
BuiltJoint add_joint(SimTK::MobilizedBody& parent, const SimTK::Transform& frame_on_parent, const SimTK::Body& child,
                     const SimTK::Transform& frame_on_child, const Joint& joint, double spacing, Fault& fault);

/// Writes the joint's initial coordinates and speeds into a state that is realized to Model. Missing values are 0.
void set_initial(const SimTK::SimbodyMatterSubsystem& matter, const BuiltJoint& built, SimTK::State& state);

/// Coordinates of a joint in the order of Joint::position, and speeds in the order of Joint::velocity.
struct JointMotion {
  std::vector<double> position;
  std::vector<double> velocity;
};
JointMotion find_joint_motion(const SimTK::SimbodyMatterSubsystem& matter, const BuiltJoint& built,
                              const SimTK::State& state);

}  // namespace qvslv
