#include "solver/engine/marker_relation.h"

#include <cmath>

namespace qvslv {

SimTK::Vec3 find_relation(const Multibody& multibody, const SimTK::State& state, MarkerRelation relation, int measured,
                          int reference) {
  const MarkerMotion m = multibody.find_motion(state, measured);
  const MarkerMotion r = multibody.find_motion(state, reference);
  switch (relation) {
    case MarkerRelation::displacement:
      return m.position - r.position;
    case MarkerRelation::velocity:
      return m.velocity - r.velocity;
    case MarkerRelation::angular_velocity:
      break;
  }
  return m.angular_velocity - r.angular_velocity;
}

SimTK::Vec3 find_roll_pitch_yaw(const Multibody& multibody, const SimTK::State& state, int measured, int reference) {
  const SimTK::Rotation r = ~multibody.find_axes(state, reference) * multibody.find_axes(state, measured);
  return SimTK::Vec3(std::atan2(r[2][1], r[2][2]), std::atan2(-r[2][0], std::hypot(r[0][0], r[1][0])),
                     std::atan2(r[1][0], r[0][0]));
}

double find_quantity(const Multibody& multibody, const SimTK::State& state, const MarkerQuantity& wanted) {
  using Kind = MarkerQuantity::Kind;
  if (wanted.kind == Kind::angle) {
    return find_roll_pitch_yaw(multibody, state, wanted.measured, wanted.reference)[wanted.component];
  }
  const MarkerRelation relation = wanted.kind == Kind::displacement ? MarkerRelation::displacement
                                  : wanted.kind == Kind::velocity   ? MarkerRelation::velocity
                                                                    : MarkerRelation::angular_velocity;
  const SimTK::Vec3 in_ground = find_relation(multibody, state, relation, wanted.measured, wanted.reference);
  if (wanted.component == MarkerQuantity::k_magnitude) return in_ground.norm();
  return (~multibody.find_axes(state, wanted.axes) * in_ground)[wanted.component];
}

}  // namespace qvslv
