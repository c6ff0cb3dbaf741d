#include "soilinteraction_mtl/contact_search.h"

#include <cmath>

#include "soilinteraction_mtl/recorded_fault.h"

namespace qvsoilinteractionmtl {
namespace {

using qv::k_block;
using qv::rotate;
using qv::vectors;
using qvsoilinteraction::contact_block;
using qvsoilinteraction::contact_rows;
using qvsoilrdf::CRoad;

QV_WIDE_VECTORS void find_places(const CRoad& road, const qvsoilinteraction::kinematics& k, const vectors& position,
                                 contact_block& block) {
  find_road_places(road, k, position, block.count, block.at);
}

/// Sets area ratios and normal velocities. The belt point turns with the node, the ground point under it with the road.
QV_WIDE_VECTORS void set_normal_velocities(const track_motion& motion, const span_motion& span, const vectors& lever,
                                           contact_rows& rows) {
  vectors in_node, by_node, by_road;
  rotate(span.At, lever, in_node, rows.count);
  rotate(span.AW, in_node, by_node, rows.count);
  rotate(motion.k.AW5, rows.facet_point, by_road, rows.count);
  const double n[3] = {span.normal[0], span.normal[1], span.normal[2]};
  const double node[3] = {span.velocity[0], span.velocity[1], span.velocity[2]};
  const double road[3] = {motion.k.V5[0], motion.k.V5[1], motion.k.V5[2]};
  for (int i = 0; i < rows.count; ++i) {
    const double x = rows.normal.x[i], y = rows.normal.y[i], z = rows.normal.z[i];
    rows.motion.area_ratio[i] = std::fabs(x * n[0] + y * n[1] + z * n[2]);
    rows.motion.normal_velocity[i] = x * (by_node.x[i] + node[0] - road[0] - by_road.x[i]) +
                                     y * (by_node.y[i] + node[1] - road[1] - by_road.y[i]) +
                                     z * (by_node.z[i] + node[2] - road[2] - by_road.z[i]);
  }
}

/// Velocity of places that move with a marker, in marker I's axes. It has to be inlined, so that both versions of
/// set_slips vectorise it.
[[gnu::always_inline]] inline void velocities_in_marker(const double* A1t, const double* AW, const vectors& place,
                                                        const double* velocity, int count, vectors& seen) {
  vectors moving;
  rotate(AW, place, moving, count);
  for (int i = 0; i < count; ++i) {
    moving.x[i] = velocity[0] + moving.x[i];
    moving.y[i] = velocity[1] + moving.y[i];
    moving.z[i] = velocity[2] + moving.z[i];
  }
  rotate(A1t, moving, seen, count);
}

/// Sets the slips: the belt as the vehicle carries it against the ground, to whose velocity the belt's speed is added.
QV_WIDE_VECTORS void set_slips(const track_motion& motion, const vectors& lever, contact_rows& rows) {
  vectors in_marker, carried, ground;
  rotate(motion.A1t, lever, in_marker, rows.count);
  velocities_in_marker(motion.A1t, motion.k.AW1, in_marker, motion.k.V1, rows.count, carried);
  velocities_in_marker(motion.A1t, motion.k.AW5, *rows.p, motion.k.V5, rows.count, ground);
  const double belt_speed = motion.belt_speed;
  for (int i = 0; i < rows.count; ++i) {
    rows.motion.slip_velocity[0][i] =
        qvsoilinteraction::at_rest_below_threshold(carried.x[i] - (ground.x[i] + belt_speed));
    rows.motion.slip_velocity[1][i] = qvsoilinteraction::at_rest_below_threshold(carried.y[i] - ground.y[i]);
  }
}

/// Sets the shear displacement of point c. A point without a history keeps the slip of its last contact.
void set_shear_displacement(double belt_speed, qvsoilinteraction::Croad_contact& rc, int c, contact_rows& rows) {
  const bool without_history = static_cast<int>(rc.contact_state) == 0;
  // Kept: nothing writes update_time, so it is 0 and dt is minus the time of the last converged step.
  const double dt = rc.update_time - rc.last_update_time;
  for (int t = 0; t < 2; ++t) {
    double& slip = rows.motion.slip_velocity[t][c];
    const double way = slip * dt;
    const double whole = belt_speed != 0.0 ? way + rc.last_shear_disp[t] : way;
    rows.motion.shear_disp[t][c] = rc.shear_disp[t] = without_history ? 0.0 : whole;
    slip = rc.slip_velocity[t] = without_history ? rc.slip_velocity[t] : slip;
  }
}

void measure(void* handle, const CRoad& road, const track_motion& motion, const span_motion& span,
             qvsoilinteraction::frame_maker& frames, const belt_block& at, const contact_block& block,
             contact_rows& rows, const qv::fault_channel& channel) {
  find_contacts(handle, road, motion.k, frames, block, rows, channel);
  vectors lever;
  set_normal_velocities(motion, span, of_rows(at.lever_node, block.count, rows, lever), rows);
  set_slips(motion, of_rows(at.lever_marker, block.count, rows, lever), rows);
  for (int c = 0; c < rows.count; ++c) {
    set_shear_displacement(motion.belt_speed, *block.points[rows.index[c]], c, rows);
  }
}

}  // namespace

void complete(track_motion& motion) {
  qvsoilinteraction::complete(motion.k);
  qv::mattr(motion.k.A1, motion.A1t);
}

span_motion make_span_motion(const double* normal, const double* A, const double* velocity, const double* W) {
  span_motion span = {normal, {}, {}, velocity};
  double tilde[9];
  qv::vectl(W, tilde);
  qv::mattr(A, span.At);
  qv::matmat(A, tilde, span.AW);
  return span;
}

void place_points_mtl(const CRoad& road, const track_motion& motion, const belt_block& at, contact_block& block) {
  find_places(road, motion.k, at.position, block);
  if (road.cells.empty()) return;
  const vectors& p = block.at.p;
  for (int i = 0; i < block.count; ++i) {
    if (block.at.column[i] >= 0.0 && std::isfinite(p.z[i])) keep_near(road, i, block);
  }
  drop_points_above(road, block);
}

void get_contact_info_mtl(void* handle, const CRoad& road, const track_motion& motion, const span_motion& span,
                          qvsoilinteraction::frame_maker& frames, const belt_block& at, const contact_block& block,
                          contact_rows& rows, const qv::fault_channel& channel) {
  const bool measured =
      run_recorded([&] { measure(handle, road, motion, span, frames, at, block, rows, channel); }, channel);
  if (!measured) rows.count = 0;
}

}  // namespace qvsoilinteractionmtl
