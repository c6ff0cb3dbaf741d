#include "tests/reference/track_reference.h"

#include <algorithm>

#include "qvbrisk/services.h"

namespace qvref {
namespace {

template <std::size_t N>
std::array<double, N> ask(void* handle, const char* name, const std::vector<int>& ids) {
  std::array<double, N> values{};
  int count = static_cast<int>(N), flag = 0;
  sysary(handle, name, ids.data(), static_cast<int>(ids.size()), values.data(), &count, &flag);
  return values;
}

void share(const contact_point& loads, track_point& node) {
  const m33 M = from_columns(loads.tangent_1, loads.tangent_2, loads.normal);
  const double w = node.weight;
  const v3 normal = M * v3{0.0, w * loads.shear_force[1], w * loads.normal_force};
  const v3 shear = M * v3{w * loads.shear_force[0], 0.0, 0.0};
  for (std::size_t c = 0; c < 3; ++c) {
    node.normal_share[c] = normal[c];
    node.shear_share[c] = shear[c];
    node.shear_share[3 + c] = 0.0;
  }
}

void advance_track_history(double time, bool in_contact, track_point& point) {
  contact_point& soil = point.soil;
  point.last_update = time;
  if (!in_contact) {
    soil.contact_state = soil.max_sinkage = soil.last_pressure = soil.last_static_sinkage = 0.0;
    soil.last_shear_disp = {};
    return;
  }
  soil.last_pressure = soil.pressure;
  soil.last_static_sinkage = soil.static_sinkage;
  soil.last_shear_disp = soil.shear_disp;
  if (std::fabs(soil.sinkage) > soil.max_sinkage) soil.max_sinkage = std::fabs(soil.sinkage);
  if (static_cast<int>(soil.contact_state) == 0) {
    soil.contact_state = 1.0;
  } else if (static_cast<int>(soil.contact_state) == 1) {
    soil.contact_state = 2.0;
  }
}

}  // namespace

track_kinematics fetch_track_kinematics(void* handle, const track_layout& layout) {
  const int I = layout.marker_I, J = layout.marker_J, R = layout.marker_R;
  track_kinematics k;
  k.AI = ask<9>(handle, "AM", {I, R});
  k.AJ = ask<9>(handle, "AM", {J, R});
  k.dI = ask<3>(handle, "TDISP", {I, R, R});
  k.dJ = ask<3>(handle, "TDISP", {J, R, R});
  k.VI = ask<3>(handle, "TVEL", {I, R, R});
  k.WI = ask<3>(handle, "RVEL", {I, R, I});
  k.VJ = ask<3>(handle, "TVEL", {J, R, R});
  k.WJ = ask<3>(handle, "RVEL", {J, R, J});
  for (const int marker : layout.markers) {
    node_state node;
    node.position = ask<3>(handle, "TDISP", {marker, R, R});
    node.velocity = ask<3>(handle, "TVEL", {marker, R, R});
    node.angular_velocity = ask<3>(handle, "RVEL", {marker, R, marker});
    node.A = ask<9>(handle, "AM", {marker, R});
    k.nodes.push_back(node);
  }
  int flag = 0;
  sysfnc(handle, "VARVAL", &layout.speed_variable, 1, &k.belt_speed, &flag);
  return k;
}

void split_to_nodes(track_point& first, track_point& second) {
  contact_point& soil = first.soil;
  const m33 M = from_columns(soil.tangent_1, soil.tangent_2, soil.normal);
  soil.local_force = {soil.shear_force[0], soil.shear_force[1], soil.normal_force};
  soil.force = M * soil.local_force;
  soil.moment = cross(first.lever_marker, soil.force);
  share(soil, first);
  share(soil, second);
}

track::track(const road& road, const track_layout& set_up) : m_road(road), m_normal(set_up.markers.size()) {
  const std::vector<track_point> row(static_cast<std::size_t>(set_up.n_lat));
  for (std::size_t node = 0; node < set_up.markers.size(); ++node) {
    std::array<belt_record, 2> ends;
    ends[1].side = 1;
    for (belt_record& end : ends) end.points.assign(static_cast<std::size_t>(set_up.n_long), row);
    m_records.push_back(ends);
  }
}

void track::clear_sums() {
  m_contact = {};
  m_shear = {};
  for (auto& sum : m_normal) sum = {};
}

void track::lay_belt(const track_kinematics& k, const track_layout& now, double& L) {
  std::vector<double> radii;
  for (const double radius : now.radii) radii.push_back(radius + now.thickness);
  const v3 axle = column(k.AI, 1);
  for (std::size_t i = 0; i + 1 < radii.size(); ++i) {
    belt_record &A = m_records[i][1], &B = m_records[i + 1][0];
    lay_tangent(k.nodes[i].position, radii[i], k.nodes[i + 1].position, radii[i + 1], axle, L, A);
    B.along = A.along;
    B.axle = A.axle;
    B.normal = A.normal;
    B.P0 = A.P0;
    B.P1 = A.P1;
  }
  if (radii.size() > 2) cut_corners(m_records, radii);
}

void track::sum_normals(std::size_t span, std::size_t nodes, const track_point& first, const track_point& second) {
  for (std::size_t c = 0; c < 6; ++c) {
    const double N = first.normal_share[c], N2 = second.normal_share[c];
    if (span == 0) {
      m_normal[0][c] += N;
      if (nodes == 2) m_normal[1][c] += N2;
    } else {
      m_normal[span][c] += N + N2;
      if (span == nodes - 2) m_normal[span + 1][c] += N2;
    }
  }
}

void track::call(void* handle, double time, const track_layout& now, int iflag, std::vector<double>& result) {
  const std::size_t nodes = now.markers.size();
  result.assign(
      4 + 8 * ((nodes - 1) * (static_cast<std::size_t>(now.n_long) - 1) + 1) * static_cast<std::size_t>(now.n_lat),
      0.0);
  clear_sums();
  m_points_in_contact = m_stale_points = 0;
  const track_kinematics k = fetch_track_kinematics(handle, now);
  double L = 0.0;
  lay_belt(k, now, L);
  const body plate = {1, L, now.width, now.n_long, now.n_lat};
  std::size_t number = 0;
  for (std::size_t i = 0; i + 1 < nodes; ++i) {
    belt_record &A = m_records[i][1], &B = m_records[i + 1][0];
    place_grid(now.width, k.dI, k.nodes[i].position, A);
    place_grid(now.width, k.dI, k.nodes[i + 1].position, B);
    for (std::size_t j = 0; j < A.points.size(); ++j) {
      for (std::size_t c = 0; c < A.points[j].size(); ++c, ++number) {
        const bool shared_row = i >= 1 && j == 0;
        if (shared_row && c == 0) number -= A.points[j].size();
        track_point &point = A.points[j][c], &other = B.points[j][c];
        const std::size_t block = 4 + 8 * number;
        const bool in_contact = measure_track_contact(m_road, k, A.normal, k.nodes[i], point);
        point.soil.local_force = point.soil.force = {};
        point.shear_share = point.normal_share = other.shear_share = other.normal_share = {};
        for (std::size_t x = 0; x < 3; ++x) result[block + 3 + x] = point.position[x];
        if (in_contact) {
          ++m_points_in_contact;
          soil_force(m_road.parameters, plate, point.soil);
          if (!(point.soil.pressure > 0.0) && point.soil.normal_force > 0.0) ++m_stale_points;
          split_to_nodes(point, other);
          for (std::size_t x = 0; x < 3; ++x) {
            result[x] += point.soil.local_force[x];
            result[block + x] = (shared_row ? result[block + x] : 0.0) + point.soil.force[x];
            m_contact[x] += point.soil.force[x];
          }
          for (std::size_t x = 0; x < 6; ++x) m_shear[x] += other.shear_share[x] + point.shear_share[x];
          sum_normals(i, nodes, point, other);
          result[4] += point.soil.effective_area;
          m_contact[3] += point.soil.effective_area;
          result[block + 6] = point.soil.sinkage;
          result[block + 7] = point.soil.dynamic_sinkage;
        }
        if (iflag == 2) advance_track_history(time, in_contact, point);
      }
    }
  }
}

}  // namespace qvref
