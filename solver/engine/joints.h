#pragma once

#include <Simbody.h>

#include <string>
#include <vector>

#include "solver/model/fault.h"
#include "solver/model/model.h"

namespace qvslv {

enum class CoordinateKind { angle, travel };

/// One coordinate of a joint as users see it.
struct JointCoordinate {
  const char* name;
  CoordinateKind kind;
};

/// Coordinates of a joint type, in the order of Joint::position.
const std::vector<JointCoordinate>& joint_coordinates(JointType type);

/// Name of a joint type as in the model file.
const char* joint_type_name(JointType type);

/// A joint inside the system: one mobilizer per coordinate (so that each can have a motion of its own), or a single
/// mobilizer for ball, free and weld joints.
struct BuiltJoint {
  const Joint* joint = nullptr;
  std::vector<SimTK::MobilizedBodyIndex> mobilizers;  ///< in the order of the coordinates
  SimTK::MobilizedBodyIndex child;                    ///< carries the child body
};

/// Hangs a body on its parent.
/// @param frame_on_parent  of the parent marker, in the parent body
/// @param frame_on_child   of the child marker, in the child body
/// @param spacing          of the motions' differences, in model time
BuiltJoint add_joint(SimTK::MobilizedBody& parent, const SimTK::Transform& frame_on_parent, const SimTK::Body& child,
                     const SimTK::Transform& frame_on_child, const Joint& joint, double spacing, Fault& fault);

/// Writes the joint's initial coordinates and speeds; missing values are 0. The state is realized to Model.
void set_initial(const SimTK::SimbodyMatterSubsystem& matter, const BuiltJoint& built, SimTK::State& state);

/// Coordinates as in Joint::position, and their rates: speeds as in Joint::velocity.
struct JointMotion {
  std::vector<double> position;
  std::vector<double> velocity;
};
JointMotion find_joint_motion(const SimTK::SimbodyMatterSubsystem& matter, const BuiltJoint& built,
                              const SimTK::State& state);

}  // namespace qvslv
