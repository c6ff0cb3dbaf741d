#include <fmt/format.h>

#include <cmath>
#include <string>

#include "solver/checks/checks.h"
#include "solver/model/expression.h"

namespace qvslv {

namespace {

std::string coordinate_name(JointType type, int coordinate) {
  switch (type) {
    case JointType::planar:
      return coordinate == 0 ? "angle" : coordinate == 1 ? "x" : "y";
    case JointType::universal:
      return coordinate == 0 ? "angle_x" : "angle_y";
    case JointType::slider:
      return "travel";
    default:
      return coordinate == 0 ? "angle" : "travel";
  }
}

/// A start that a motion overrides. A start of 0 is one that was not given; one that the motion begins with does no
/// harm.
void check_start(const Joint& joint, const Motion& motion, double end_time, Findings& findings) {
  const CompiledExpression value(motion.value);
  const auto coordinate = static_cast<size_t>(motion.coordinate);
  const auto note = [&](const char* key, double start, double begins) {
    constexpr double k_rounding = 1e-6;
    if (start == 0 || !(std::abs(start - begins) > k_rounding * std::fmax(std::abs(start), std::abs(begins)))) return;
    findings.push_back(
        {Level::warning, "start-overridden", joint.at,
         fmt::format(
             "joint '{}', {}: {} starts at {:.4g}, and its motion overrides that with {:.4g}; take one of the two "
             "out, or add the start to the motion",
             joint.name, key, coordinate_name(joint.type, motion.coordinate), start, begins)});
  };
  if (motion.level == MotionLevel::velocity) {
    note("start_velocity", joint.velocity[coordinate], value(0));
    return;
  }
  note("start", joint.position[coordinate], value(0));
  const double step = 1e-6 * end_time;
  note("start_velocity", joint.velocity[coordinate], (value(step) - value(-step)) / (2 * step));
}

}  // namespace

void check_joints(const Scene& scene, Findings& findings) {
  for (const Joint& joint : scene.model.joints)
    for (const Motion& motion : joint.motions) check_start(joint, motion, scene.model.simulation.end_time, findings);
}

}  // namespace qvslv
