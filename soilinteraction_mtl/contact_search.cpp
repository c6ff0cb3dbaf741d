#include "soilinteraction_mtl/contact_search.h"

#include <algorithm>
#include <cmath>

#include "soilinteraction_mtl/recorded_fault.h"

namespace qvsoilinteractionmtl {
namespace {

using qv::k_block;
using qv::rotate;
using qv::vectors;
using qvsoilinteraction::contact_block;
using qvsoilinteraction::road_places;
using qvsoilinteraction::search_point;
using qvsoilrdf::CRoad;

Croad_contact_mtl& record(const contact_block& block, int index) {
  return static_cast<Croad_contact_mtl&>(*block.points[index]);
}

void put(const double* from, vectors& v, int i) {
  v.x[i] = from[0];
  v.y[i] = from[1];
  v.z[i] = from[2];
}

QV_WIDE_VECTORS void find_places(const CRoad& road, const qvsoilinteraction::kinematics& k, const vectors& position,
                                 int count, road_places& places) {
  find_road_places(road, k, position, count, places);
}

/// The velocities of the points in contact, and what they are computed from, side by side.
struct contact_velocities {
  vectors lever_marker, lever_node, facet_point, p, normal;  ///< the input
  double area_ratio[k_block], normal_velocity[k_block], slip[2][k_block];
};

void copy(const vectors& from, int index, vectors& to, int i) {
  to.x[i] = from.x[index];
  to.y[i] = from.y[index];
  to.z[i] = from.z[index];
}

void gather(const belt_block& at, const contact_block& block, int count, contact_velocities& v) {
  for (int i = 0; i < count; ++i) {
    const int index = block.near[i].index;
    const Croad_contact_mtl& rc = record(block, index);
    copy(at.lever_marker, index, v.lever_marker, i);
    copy(at.lever_node, index, v.lever_node, i);
    put(rc.facet_point, v.facet_point, i);
    put(rc.normal, v.normal, i);
    put(block.near[i].p, v.p, i);
  }
}

/// Sets area ratios and normal velocities. The belt point turns with the node, the ground point under it with the road.
QV_WIDE_VECTORS void set_normal_velocities(const track_motion& motion, const span_motion& span, int count,
                                           contact_velocities& v) {
  vectors in_node, by_node, by_road;
  rotate(span.At, v.lever_node, in_node, count);
  rotate(span.AW, in_node, by_node, count);
  rotate(motion.k.AW5, v.facet_point, by_road, count);
  const double *n = span.normal, *node = span.velocity, *road = motion.k.V5;
  for (int i = 0; i < count; ++i) {
    v.area_ratio[i] = std::fabs(v.normal.x[i] * n[0] + v.normal.y[i] * n[1] + v.normal.z[i] * n[2]);
    v.normal_velocity[i] = v.normal.x[i] * (by_node.x[i] + node[0] - road[0] - by_road.x[i]) +
                           v.normal.y[i] * (by_node.y[i] + node[1] - road[1] - by_road.y[i]) +
                           v.normal.z[i] * (by_node.z[i] + node[2] - road[2] - by_road.z[i]);
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
QV_WIDE_VECTORS void set_slips(const track_motion& motion, int count, contact_velocities& v) {
  vectors in_marker, carried, ground;
  rotate(motion.A1t, v.lever_marker, in_marker, count);
  velocities_in_marker(motion.A1t, motion.k.AW1, in_marker, motion.k.V1, count, carried);
  velocities_in_marker(motion.A1t, motion.k.AW5, v.p, motion.k.V5, count, ground);
  for (int i = 0; i < count; ++i) {
    v.slip[0][i] = qvsoilinteraction::at_rest_below_threshold(carried.x[i] - (ground.x[i] + motion.belt_speed));
    v.slip[1][i] = qvsoilinteraction::at_rest_below_threshold(carried.y[i] - ground.y[i]);
  }
}

void set_shear_displacement(double belt_speed, const double (&slip)[2], Croad_contact_mtl& rc) {
  if (static_cast<int>(rc.contact_state) == 0) {
    rc.shear_disp[0] = rc.shear_disp[1] = 0.0;
    return;
  }
  // Kept: nothing writes update_time, so it is 0 and dt is minus the time of the last converged step.
  const double dt = rc.update_time - rc.last_update_time;
  for (int c = 0; c < 2; ++c) {
    rc.slip_velocity[c] = slip[c];
    rc.shear_disp[c] = belt_speed != 0.0 ? slip[c] * dt + rc.last_shear_disp[c] : slip[c] * dt;
  }
}

void measure(void* handle, const CRoad& road, const track_motion& motion, const span_motion& span,
             qvsoilinteraction::frame_maker& frames, const belt_block& at, contact_block& block,
             const qv::fault_channel& channel) {
  const int count = find_contacts(handle, road, motion.k, frames, block, channel);
  contact_velocities v;
  gather(at, block, count, v);
  set_normal_velocities(motion, span, count, v);
  set_slips(motion, count, v);
  for (int i = 0; i < count; ++i) {
    Croad_contact_mtl& rc = record(block, block.near[i].index);
    rc.area_ratio = v.area_ratio[i];
    rc.normal_velocity = v.normal_velocity[i];
    set_shear_displacement(motion.belt_speed, {v.slip[0][i], v.slip[1][i]}, rc);
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
  road_places places;
  find_places(road, motion.k, at.position, at.count, places);
  for (int i = 0; i < at.count; ++i) {
    Croad_contact_mtl& rc = record(block, i);
    at.store(i, rc);
    rc.sinkage = 0.0;
    block.in_contact[i] = false;
    const vectors& p = places.p;
    if (!std::isfinite(p.x[i]) || !std::isfinite(p.y[i]) || !std::isfinite(p.z[i])) continue;
    keep_near(road, places, i, block);
  }
  drop_points_above(road, motion.k, block);
}

void get_contact_info_mtl(void* handle, const CRoad& road, const track_motion& motion, const span_motion& span,
                          qvsoilinteraction::frame_maker& frames, const belt_block& at, contact_block& block,
                          const qv::fault_channel& channel) {
  const bool measured = run_recorded([&] { measure(handle, road, motion, span, frames, at, block, channel); }, channel);
  if (!measured) std::fill_n(block.in_contact, block.count, false);
}

}  // namespace qvsoilinteractionmtl
