#include "soilinteraction/contact_search.h"

#include <algorithm>
#include <cmath>

#include "common/call/messages.h"
#include "common/call/parameters.h"
#include "qvbrisk/services.h"

namespace qvsoilinteraction {
namespace {

using qvsoilrdf::CRoad;

[[noreturn]] void refuse_place(const CRoad& road, double px, const qv::fault_channel& channel) {
  const bool x = std::isnan(px);
  qv::fault(std::string("SOIL INTERACTION ERROR : The ") + (x ? "x" : "y") +
                "-axis value of a contact point on the road is nan; it must be a number, on the road between " +
                qv::number_text(x ? road.x_min : road.y_min) + " and " + qv::number_text(x ? road.x_max : road.y_max) +
                ".",
            channel.ierr, channel.msg);
}

QV_WIDE_VECTORS void find_places(const CRoad& road, const kinematics& k, body_block& block) {
  const int count = block.contact.count;
  rotate(k.A1, block.on_body, block.lever, count);
  for (int i = 0; i < count; ++i) {
    block.position.x[i] = block.lever.x[i] + k.d1[0];
    block.position.y[i] = block.lever.y[i] + k.d1[1];
    block.position.z[i] = block.lever.z[i] + k.d1[2];
  }
  find_road_places(road, k, block.position, count, block.contact.at);
}

void keep_points_on_road(const CRoad& road, contact_block& block, const qv::fault_channel& channel) {
  const bool has_cells = !road.cells.empty();
  for (int i = 0; i < block.count; ++i) {
    if (block.at.column[i] < 0.0) {
      const double x = block.at.p.x[i], y = block.at.p.y[i];
      if (std::isnan(x) || std::isnan(y)) refuse_place(road, x, channel);
    } else if (has_cells) {
      keep_near(road, i, block);
    }
  }
}

/// Finds the triangles under the near points. Keeps the points that have one.
/// Kept: the branch that stops the analysis, which no search takes.
void find_facets(void* handle, const CRoad& road, const contact_block& block, contact_rows& rows, std::int32_t* numbers,
                 const qv::fault_channel& channel) {
  int found = 0;
  for (int i = 0; i < block.near_count; ++i) {
    const search_point& point = block.near[i];
    double p[3];
    take(block.at.p, point.index, p);
    if (find_facet(road, point.cell, p, numbers[found]) == k_search_failed) {
      int status = 0;
      stop_solver(handle, 1, 0, 1, channel.msg[0], &status);
    }
    rows.index[found] = point.index;
    found += numbers[found] != 0 ? 1 : 0;
  }
  rows.count = found;
}

/// Gives each point the frame over its triangle and what its sinkage is computed from. Drops the points over a triangle
/// without a normal.
void gather_places(const contact_block& block, const std::int32_t* numbers, frame_maker& frames, contact_rows& rows) {
  const contact_frame* found[k_block];
  frames.find_frames(numbers, rows.count, found);
  int kept = 0;
  for (int i = 0; i < rows.count; ++i) {
    const contact_frame& frame = *found[i];
    rows.index[kept] = rows.index[i];
    rows.frames[kept] = &frame;
    put(frame.facet_normal, rows.facet_normal, kept);
    put(frame.corner, rows.corner, kept);
    put(frame.normal, rows.normal, kept);
    kept += frame.flat ? 1 : 0;
  }
  rows.count = kept;
  rows.p = &of_rows(block.at.p, block.count, rows, rows.copied_p);
  rows.relative = &of_rows(block.at.relative, block.count, rows, rows.copied_relative);
}

/// Sets the projections onto the triangles' planes, as `project` does, and the signed heights over these planes.
QV_WIDE_VECTORS void measure_sinkages(const kinematics& k, contact_rows& rows) {
  vectors on_plane;
  const vectors &p = *rows.p, &relative = *rows.relative;
  for (int i = 0; i < rows.count; ++i) {
    const double nx = rows.facet_normal.x[i], ny = rows.facet_normal.y[i], nz = rows.facet_normal.z[i];
    const double wx = p.x[i] - rows.corner.x[i];
    const double wy = p.y[i] - rows.corner.y[i];
    const double wz = p.z[i] - rows.corner.z[i];
    const double height = nx * wx + ny * wy + nz * wz;
    rows.facet_point.x[i] = rows.corner.x[i] + (wx - height * nx);
    rows.facet_point.y[i] = rows.corner.y[i] + (wy - height * ny);
    rows.facet_point.z[i] = rows.corner.z[i] + (wz - height * nz);
  }
  rotate(k.A5, rows.facet_point, on_plane, rows.count);
  for (int i = 0; i < rows.count; ++i) {
    rows.motion.sinkage[i] = rows.normal.x[i] * (relative.x[i] - on_plane.x[i]) +
                             rows.normal.y[i] * (relative.y[i] - on_plane.y[i]) +
                             rows.normal.z[i] * (relative.z[i] - on_plane.z[i]);
  }
}

/// Moves the points at `places`, `count` of them in ascending order, to the front of the rows.
void keep(const std::int32_t* places, int count, contact_rows& rows) {
  for (int c = 0; c < count; ++c) {
    const std::int32_t i = places[c];
    rows.index[c] = rows.index[i];
    rows.frames[c] = rows.frames[i];
    rows.motion.sinkage[c] = rows.motion.sinkage[i];
    copy_vector(*rows.p, i, rows.copied_p, c);
    copy_vector(*rows.relative, i, rows.copied_relative, c);
    copy_vector(rows.facet_point, i, rows.facet_point, c);
    copy_vector(rows.normal, i, rows.normal, c);
  }
  rows.count = count;
  rows.p = &rows.copied_p;
  rows.relative = &rows.copied_relative;
}

/// Drops the points that are not in contact, and gives the others the rest of their frames.
void keep_sunk_points(contact_rows& rows) {
  std::int32_t places[k_block];
  int kept = 0;
  for (int i = 0; i < rows.count; ++i) {
    places[kept] = i;
    kept += rows.motion.sinkage[i] >= 0.0 ? 0 : 1;  // a NaN is in contact, so that it shows in the result
  }
  if (kept != rows.count) keep(places, kept, rows);
  for (int c = 0; c < kept; ++c) {
    const contact_frame& frame = *rows.frames[c];
    put(frame.tangent_1, rows.tangent_1, c);
    put(frame.tangent_2, rows.tangent_2, c);
    rows.motion.area_ratio[c] = frame.plate_ratio;
  }
}

/// Sets the area ratio of points on a wheel: the cosine between the road's normal and the direction from the point to
/// the wheel's centre in the x-z plane of the road's axes.
QV_WIDE_VECTORS void set_wheel_ratios(const kinematics& k, contact_rows& rows) {
  vectors to_center;
  for (int i = 0; i < rows.count; ++i) {
    to_center.x[i] = k.d15[0] - rows.p->x[i];
    to_center.y[i] = 0.0;
    to_center.z[i] = k.d15[2] - rows.p->z[i];
  }
  normalise(to_center, rows.count);
  for (int i = 0; i < rows.count; ++i) {
    rows.motion.area_ratio[i] = std::fabs(rows.normal.x[i] * to_center.x[i] + rows.normal.y[i] * to_center.y[i] +
                                          rows.normal.z[i] * to_center.z[i]);
  }
}

QV_WIDE_VECTORS void set_velocities(const kinematics& k, const vectors& on_body, contact_rows& rows) {
  vectors by_rotation, of_road;
  rotate(k.AW1, on_body, by_rotation, rows.count);
  rotate(k.AW5, rows.facet_point, of_road, rows.count);
  for (int i = 0; i < rows.count; ++i) {
    const double bx = by_rotation.x[i] + k.V1[0] - k.V5[0];
    const double by = by_rotation.y[i] + k.V1[1] - k.V5[1];
    const double bz = by_rotation.z[i] + k.V1[2] - k.V5[2];
    // Kept: the normal velocity is taken from the road's material point, the slip from its base marker.
    rows.motion.normal_velocity[i] = rows.normal.x[i] * (bx - of_road.x[i]) + rows.normal.y[i] * (by - of_road.y[i]) +
                                     rows.normal.z[i] * (bz - of_road.z[i]);
    rows.motion.slip_velocity[0][i] =
        at_rest_below_threshold(rows.tangent_1.x[i] * bx + rows.tangent_1.y[i] * by + rows.tangent_1.z[i] * bz);
    rows.motion.slip_velocity[1][i] =
        at_rest_below_threshold(rows.tangent_2.x[i] * bx + rows.tangent_2.y[i] * by + rows.tangent_2.z[i] * bz);
  }
}

/// Sets the travel of point c since touch-down, along the tangents that it had then.
void set_shear_displacement(const Croad_contact& rc, int c, contact_rows& rows) {
  if (rc.contact_state == 0.0) {
    rows.motion.shear_disp[0][c] = rows.motion.shear_disp[1][c] = 0.0;
    return;
  }
  const double* from = rc.first_contact_position;
  const double g[3] = {rows.relative->x[c] - from[0], rows.relative->y[c] - from[1], rows.relative->z[c] - from[2]};
  qv::vectrvec(rc.first_contact_tangent_1, g, rows.motion.shear_disp[0][c]);
  qv::vectrvec(rc.first_contact_tangent_2, g, rows.motion.shear_disp[1][c]);
}

}  // namespace

void drop_points_above(const CRoad& road, contact_block& block) {
  search_point* points = block.near;
  int kept = 0;
  for (int i = 0; i < block.near_count; ++i) {
    const search_point point = points[i];
    road.make_ready(point.cell);
    // Without a branch: whether a point is above is as good as random to the processor's guesses.
    points[kept] = point;
    kept += block.at.floor[point.index] > static_cast<double>(road.cells.top(point.cell)) ? 0 : 1;
  }
  block.near_count = kept;
  for (int i = 0; i < kept; ++i) {
    prefetch_history(*block.points[points[i].index]);
    if (i > 0 && points[i].cell == points[i - 1].cell) continue;  // neighbouring points mostly share a cell
    for (const std::int32_t number : road.cells.list(points[i].cell)) {
      __builtin_prefetch(&road.facets[static_cast<std::size_t>(number - 1)]);
    }
  }
}

void find_contacts(void* handle, const CRoad& road, const kinematics& k, frame_maker& frames,
                   const contact_block& block, contact_rows& rows, const qv::fault_channel& channel) {
  std::int32_t numbers[k_block + 1];
  find_facets(handle, road, block, rows, numbers, channel);
  gather_places(block, numbers, frames, rows);
  measure_sinkages(k, rows);
  keep_sunk_points(rows);
}

void place_points(const CRoad& road, const kinematics& k, body_block& block, const qv::fault_channel& channel) {
  find_places(road, k, block);
  keep_points_on_road(road, block.contact, channel);
  drop_points_above(road, block.contact);
}

void get_contact_info(void* handle, const CRoad& road, int shape, const kinematics& k, frame_maker& frames,
                      const body_block& block, contact_rows& rows, const qv::fault_channel& channel) {
  find_contacts(handle, road, k, frames, block.contact, rows, channel);
  if (shape != k_plate) set_wheel_ratios(k, rows);
  vectors on_body;
  set_velocities(k, of_rows(block.on_body, block.contact.count, rows, on_body), rows);
  for (int c = 0; c < rows.count; ++c) set_shear_displacement(*block.contact.points[rows.index[c]], c, rows);
}

void store_contact(const contact_rows& rows, int c, Croad_contact& rc) {
  const contact_frame& frame = *rows.frames[c];
  rc.facet_number = frame.number;
  store_motion(rows.motion, c, rc);
  qv::assgvec(frame.facet_normal, 3, rc.facet_normal);
  take(rows.facet_point, c, rc.facet_point);
  take(rows.normal, c, rc.normal);
  take(rows.tangent_1, c, rc.tangent_1);
  take(rows.tangent_2, c, rc.tangent_2);
  take(*rows.relative, c, rc.relative_position);
}

void advance_history(const contact_rows& rows, const load_rows& loads, int c, Croad_contact& rc) {
  rc.last_pressure = loads.pressure[c];
  for (int t = 0; t < 2; ++t) rc.last_shear_disp[t] = rows.motion.shear_disp[t][c];
  rc.last_static_sinkage = loads.static_sinkage[c];
  const double depth = std::fabs(rows.motion.sinkage[c]);
  if (depth > rc.max_sinkage) rc.max_sinkage = depth;
  if (rc.contact_state == 0.0) {
    rc.contact_state = 1.0;
    take(*rows.relative, c, rc.first_contact_position);
    take(rows.tangent_1, c, rc.first_contact_tangent_1);
    take(rows.tangent_2, c, rc.first_contact_tangent_2);
  } else if (rc.contact_state == 1.0) {
    rc.contact_state = 2.0;
  }
}

}  // namespace qvsoilinteraction
