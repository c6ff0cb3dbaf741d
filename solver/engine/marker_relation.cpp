#include "solver/engine/marker_relation.h"

#include <cmath>

namespace qvslv {

SimTK::Vec3 find_relation(const MarkerMotions& markers, MarkerRelation relation, int measured, int reference) {
  const MarkerMotion &m = markers.of(measured), &r = markers.of(reference);
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

SimTK::Rotation find_rotation(const MarkerMotions& markers, int measured, int reference) {
  return ~markers.of(reference).axes * markers.of(measured).axes;
}

SimTK::Vec3 find_roll_pitch_yaw(const MarkerMotions& markers, int measured, int reference) {
  const SimTK::Rotation r = find_rotation(markers, measured, reference);
  return SimTK::Vec3(std::atan2(r[2][1], r[2][2]), std::atan2(-r[2][0], std::hypot(r[0][0], r[1][0])),
                     std::atan2(r[1][0], r[0][0]));
}

double find_quantity(const MarkerMotions& markers, const MarkerQuantity& wanted) {
  using Kind = MarkerQuantity::Kind;
  if (wanted.kind == Kind::angle) {
    return find_roll_pitch_yaw(markers, wanted.measured, wanted.reference)[wanted.component];
  }
  const MarkerRelation relation = wanted.kind == Kind::displacement ? MarkerRelation::displacement
                                  : wanted.kind == Kind::velocity   ? MarkerRelation::velocity
                                                                    : MarkerRelation::angular_velocity;
  const SimTK::Vec3 in_ground = find_relation(markers, relation, wanted.measured, wanted.reference);
  if (wanted.component == MarkerQuantity::k_magnitude) return in_ground.norm();
  return (~markers.of(wanted.axes).axes * in_ground)[wanted.component];
}

}  // namespace qvslv
