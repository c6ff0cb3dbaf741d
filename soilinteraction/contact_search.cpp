#include "soilinteraction/contact_search.h"

#include <algorithm>
#include <cmath>

#include "common/call/messages.h"
#include "common/call/parameters.h"
#include "qvbrisk/services.h"

namespace qvsoilinteraction {
namespace {

using qvsoilrdf::CRoad;

/// Whether the point is higher than everything in its cell, by more than rounding: it is then out of contact, whatever
/// triangle the search would find. Never true of heights that overflow in the search, because those become NaN, which
/// is in contact.
bool clear_above(const CRoad& road, const kinematics& k, std::size_t cell, const double* p) {
  constexpr double k_far = 1e100, k_rounding = 1e-13;
  const double slack = k_rounding * (std::fabs(p[0]) + std::fabs(p[1]) + std::fabs(p[2]));
  return k.road_is_rigidly_placed && p[2] - slack > static_cast<double>(road.cells.top(cell)) && p[2] < k_far;
}

void set_velocities(const kinematics& k, Croad_contact& rc) {
  double by_rotation[3], of_road[3], b[3], u[3];
  qv::matvec(k.AW1, rc.Si_prime, by_rotation);
  qv::matvec(k.AW5, rc.facet_point, of_road);
  for (int c = 0; c < 3; ++c) {
    b[c] = by_rotation[c] + k.V1[c] - k.V5[c];
    u[c] = b[c] - of_road[c];
  }
  // Kept: the normal velocity is taken from the road's material point, the slip from its base marker.
  qv::vectrvec(rc.normal, u, rc.normal_velocity);
  double slip[2];
  qv::vectrvec(rc.tangent_1, b, slip[0]);
  qv::vectrvec(rc.tangent_2, b, slip[1]);
  rc.slip_velocity[0] = at_rest_below_threshold(slip[0]);
  rc.slip_velocity[1] = at_rest_below_threshold(slip[1]);
}

/// The point's travel since touch-down, along the tangents that it had then.
void set_shear_displacement(Croad_contact& rc) {
  if (rc.contact_state == 0.0) {
    rc.shear_disp[0] = rc.shear_disp[1] = 0.0;
    return;
  }
  double g[3];
  for (int c = 0; c < 3; ++c) g[c] = rc.relative_position[c] - rc.first_contact_position[c];
  qv::vectrvec(rc.first_contact_tangent_1, g, rc.shear_disp[0]);
  qv::vectrvec(rc.first_contact_tangent_2, g, rc.shear_disp[1]);
}

/// Where the points of a block are.
struct places {
  vectors lever, position;  ///< from the body marker and from the ground reference marker, ground axes
  road_places on_road;
};

QV_WIDE_VECTORS void find_places(const CRoad& road, const kinematics& k, const contact_block& block, places& at) {
  vectors s;
  for (int i = 0; i < block.count; ++i) {
    const double* on_body = block.points[i]->Si_prime;
    s.x[i] = on_body[0];
    s.y[i] = on_body[1];
    s.z[i] = on_body[2];
  }
  rotate(k.A1, s, at.lever, block.count);
  for (int i = 0; i < block.count; ++i) {
    at.position.x[i] = at.lever.x[i] + k.d1[0];
    at.position.y[i] = at.lever.y[i] + k.d1[1];
    at.position.z[i] = at.lever.z[i] + k.d1[2];
  }
  find_road_places(road, k, at.position, block.count, at.on_road);
}

[[noreturn]] void refuse_place(const CRoad& road, const double* p, const qv::fault_channel& channel) {
  const bool x = std::isnan(p[0]);
  qv::fault(std::string("SOIL INTERACTION ERROR : The ") + (x ? "x" : "y") +
                "-axis value of a contact point on the road is nan; it must be a number, on the road between " +
                qv::number_text(x ? road.x_min : road.y_min) + " and " + qv::number_text(x ? road.x_max : road.y_max) +
                ".",
            channel.ierr, channel.msg);
}

/// Stores the points' places in their records and keeps the points inside the road's extent.
void keep_points_on_road(const CRoad& road, const places& at, contact_block& block, const qv::fault_channel& channel) {
  for (int i = 0; i < block.count; ++i) {
    Croad_contact& rc = *block.points[i];
    take(at.position, i, rc.position);
    take(at.lever, i, rc.lever);
    rc.sinkage = 0.0;
    block.in_contact[i] = false;
    double p[3];
    take(at.on_road.p, i, p);
    if (std::isnan(p[0]) || std::isnan(p[1])) refuse_place(road, p, channel);
    keep_near(road, at.on_road, i, block);
  }
}

/// Prefetches the facets that the lists of the points' cells name. Neighbouring points mostly share a cell.
void prefetch_facets(const CRoad& road, const search_point* points, int count) {
  for (int i = 0; i < count; ++i) {
    if (i > 0 && points[i].cell == points[i - 1].cell) continue;
    for (const std::int32_t number : road.cells.list(points[i].cell)) {
      __builtin_prefetch(&road.facets[static_cast<std::size_t>(number - 1)]);
    }
  }
}

/// Finds the triangles under the points. Kept: the branch that stops the analysis, which no search takes.
void find_facets(void* handle, const CRoad& road, contact_block& block, const search_point* points, int count,
                 const qv::fault_channel& channel) {
  for (int i = 0; i < count; ++i) {
    Croad_contact& rc = *block.points[points[i].index];
    if (find_facet(road, points[i].cell, points[i].p, rc) == k_search_failed) {
      int status = 0;
      stop_solver(handle, 1, 0, 1, channel.msg[0], &status);
    }
    if (rc.facet_number == 0) store_hole(rc);
  }
}

/// Gives each point the contact frame over its triangle. Drops the points over a hole or a triangle without a normal.
/// @return  how many points are left
int set_frames(contact_block& block, frame_maker& frames, search_point* points, int count) {
  Croad_contact* contacts[k_block] = {};
  bool flat[k_block];
  for (int i = 0; i < count; ++i) contacts[i] = block.points[points[i].index];
  frames.set_frames(contacts, count, flat);
  int kept = 0;
  for (int i = 0; i < count; ++i) {
    if (!flat[i]) continue;
    if (kept != i) points[kept] = points[i];
    ++kept;
  }
  return kept;
}

/// Sets the signed height of the point over the triangle's plane; true if that is a contact.
bool sinks_in(const kinematics& k, Croad_contact& rc) {
  double facet_point[3];
  qv::matvec(k.A5, rc.facet_point, facet_point);
  const double e[3] = {rc.relative_position[0] - facet_point[0], rc.relative_position[1] - facet_point[1],
                       rc.relative_position[2] - facet_point[2]};
  qv::vectrvec(rc.normal, e, rc.sinkage);
  return !(rc.sinkage >= 0.0);  // a NaN is in contact, so that it shows in the result
}

/// Marks the points that are in contact and drops the others.
/// @return  how many points are left
int keep_sunk_points(const CRoad& road, const kinematics& k, contact_block& block, search_point* points, int count) {
  int kept = 0;
  for (int i = 0; i < count; ++i) {
    Croad_contact& rc = *block.points[points[i].index];
    project(road, points[i].p, rc);
    if (!sinks_in(k, rc)) continue;
    block.in_contact[points[i].index] = true;
    if (kept != i) points[kept] = points[i];
    ++kept;
  }
  return kept;
}

/// Sets the area ratio of points on a wheel: the cosine between the road's normal and the direction from the point to
/// the wheel's centre in the x-z plane of the road's axes.
void set_wheel_ratios(const kinematics& k, contact_block& block, const search_point* points, int count) {
  vectors to_center;
  for (int i = 0; i < count; ++i) {
    to_center.x[i] = k.d15[0] - points[i].p[0];
    to_center.y[i] = 0.0;
    to_center.z[i] = k.d15[2] - points[i].p[2];
  }
  normalise(to_center, count);
  for (int i = 0; i < count; ++i) {
    Croad_contact& rc = *block.points[points[i].index];
    double direction[3], cosine;
    take(to_center, i, direction);
    qv::vectrvec(rc.normal, direction, cosine);
    rc.area_ratio = std::fabs(cosine);
  }
}

}  // namespace

void drop_points_above(const CRoad& road, const kinematics& k, contact_block& block) {
  search_point* points = block.near;
  int kept = 0;
  for (int i = 0; i < block.near_count; ++i) {
    road.make_ready(points[i].cell);
    if (clear_above(road, k, points[i].cell, points[i].p)) continue;
    if (kept != i) points[kept] = points[i];
    __builtin_prefetch(road.cells.list(points[kept].cell).begin());
    ++kept;
  }
  block.near_count = kept;
  prefetch_facets(road, points, kept);
}

int find_contacts(void* handle, const CRoad& road, const kinematics& k, frame_maker& frames, contact_block& block,
                  const qv::fault_channel& channel) {
  find_facets(handle, road, block, block.near, block.near_count, channel);
  const int count = set_frames(block, frames, block.near, block.near_count);
  return keep_sunk_points(road, k, block, block.near, count);
}

void place_points(const CRoad& road, const kinematics& k, contact_block& block, const qv::fault_channel& channel) {
  places at;
  find_places(road, k, block, at);
  keep_points_on_road(road, at, block, channel);
  drop_points_above(road, k, block);
}

void get_contact_info(void* handle, const CRoad& road, int shape, const kinematics& k, frame_maker& frames,
                      contact_block& block, const qv::fault_channel& channel) {
  const search_point* points = block.near;
  const int count = find_contacts(handle, road, k, frames, block, channel);
  if (shape != k_plate) set_wheel_ratios(k, block, points, count);
  for (int i = 0; i < count; ++i) set_velocities(k, *block.points[points[i].index]);
  for (int i = 0; i < count; ++i) set_shear_displacement(*block.points[points[i].index]);
}

}  // namespace qvsoilinteraction
