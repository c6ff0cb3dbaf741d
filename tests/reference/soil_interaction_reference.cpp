#include "tests/reference/soil_interaction_reference.h"

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

double area_ratio(const body& body, const marker_kinematics& k, const v3& p, const v3& normal) {
  if (body.shape == 1) return std::fabs(dot(normal, column(k.A1, 2)));
  v3 to_center = k.d15 - p;
  to_center[1] = 0.0;
  normalise(to_center);
  return std::fabs(dot(normal, to_center));
}

void set_velocities(const marker_kinematics& k, contact_point& point) {
  const v3 b = (k.A1 * tilde(k.W1)) * point.Si_prime + k.V1 - k.V5;
  const v3 u = b - (k.A5 * tilde(k.W5)) * point.facet_point;
  point.normal_velocity = dot(point.normal, u);
  point.slip_velocity = {dot(point.tangent_1, b), dot(point.tangent_2, b)};
  for (double& slip : point.slip_velocity) {
    if (std::fabs(slip) < 1e-08) slip = 0.0;
  }
}

}  // namespace

marker_kinematics fetch_kinematics(void* handle, int m1, int m5, int m14) {
  marker_kinematics k;
  k.A1 = ask<9>(handle, "AM", {m1, m14});
  k.A5 = ask<9>(handle, "AM", {m5, m14});
  k.d1 = ask<3>(handle, "TDISP", {m1, m14, m14});
  k.d5 = ask<3>(handle, "TDISP", {m5, m14, m14});
  k.V1 = ask<3>(handle, "TVEL", {m1, m14, m14});
  k.W1 = ask<3>(handle, "RVEL", {m1, m14, m1});
  k.V5 = ask<3>(handle, "TVEL", {m5, m14, m14});
  k.W5 = ask<3>(handle, "RVEL", {m5, m14, m5});
  k.d15 = ask<3>(handle, "TDISP", {m1, m5, m5});
  return k;
}

bool measure_contact(road road, const body& body, const marker_kinematics& k, contact_point& point) {
  const v3 r = k.A1 * point.Si_prime;
  point.position = r + k.d1;
  point.from_road = r + k.d1 - k.d5;
  const v3& q = point.from_road;
  const v3 p = transpose(k.A5) * q;
  point.sinkage = 0.0;
  const facet_search search = search_facet(road, p);
  if (search.how == found::outside_extent) return false;
  v3 facet_normal = search.normal;
  if (normalise(facet_normal) == 0.0) return false;
  point.facet_point = search.point;

  point.normal = k.A5 * facet_normal;
  normalise(point.normal);
  const v3 f = k.A5 * point.facet_point;
  point.sinkage = dot(point.normal, q - f);
  if (point.sinkage >= 0.0) return false;

  point.tangent_1 = cross(column(k.A1, 1), point.normal);
  normalise(point.tangent_1);
  point.tangent_2 = cross(point.normal, point.tangent_1);
  normalise(point.tangent_2);
  point.area_ratio = area_ratio(body, k, p, point.normal);
  set_velocities(k, point);
  if (point.contact_state == 0.0) {
    point.shear_disp = {0.0, 0.0};
  } else {
    const v3 g = q - point.first_contact_position;
    point.shear_disp = {dot(point.first_contact_tangent_1, g), dot(point.first_contact_tangent_2, g)};
  }
  return true;
}

void advance_history(bool in_contact, contact_point& point) {
  if (!in_contact) {
    point.contact_state = point.max_sinkage = point.last_pressure = point.last_static_sinkage = 0.0;
    point.first_contact_position = point.first_contact_tangent_1 = point.first_contact_tangent_2 = {};
    point.last_shear_disp = {};
    return;
  }
  point.last_pressure = point.pressure;
  point.last_shear_disp = point.shear_disp;
  point.last_static_sinkage = point.static_sinkage;
  point.max_sinkage = std::max(point.max_sinkage, std::fabs(point.sinkage));
  if (point.contact_state == 0.0) {
    point.contact_state = 1.0;
    point.first_contact_position = point.from_road;
    point.first_contact_tangent_1 = point.tangent_1;
    point.first_contact_tangent_2 = point.tangent_2;
  } else if (point.contact_state == 1.0) {
    point.contact_state = 2.0;
  }
}

soil_element::soil_element(const road& road, const body& body)
    : m_road(road),
      m_body(body),
      m_points(static_cast<std::size_t>(body.nx), std::vector<contact_point>(static_cast<std::size_t>(body.ny))) {}

void soil_element::call(const marker_kinematics& k, int iflag, std::vector<double>& result) {
  result.assign(7 + 8 * static_cast<std::size_t>(m_body.nx) * static_cast<std::size_t>(m_body.ny), 0.0);
  m_sums = {};
  m_points_in_contact = 0;
  const road copy = m_road;
  std::size_t slot = 7;
  for (int i = 0; i < m_body.nx; ++i) {
    for (int j = 0; j < m_body.ny; ++j, slot += 8) {
      contact_point& point = m_points[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
      if (iflag == 1) point.Si_prime = grid_point(m_body, i, j);
      const bool in_contact = measure_contact(copy, m_body, k, point);
      for (std::size_t c = 0; c < 3; ++c) result[slot + 3 + c] = point.position[c];
      if (in_contact) {
        ++m_points_in_contact;
        soil_force(copy.parameters, m_body, point);
        generalised_force(k.A1, point);
        for (std::size_t c = 0; c < 3; ++c) {
          result[c] += point.force[c];
          m_sums[c] += point.force[c];
          result[3 + c] += point.moment[c];
          result[slot + c] = point.local_force[c];
        }
        result[6] += point.effective_area;
        m_sums[3] += point.effective_area;
        result[slot + 6] = point.sinkage;
        result[slot + 7] = point.dynamic_sinkage;
      }
      if (iflag == 2) advance_history(in_contact, point);
    }
  }
}

}  // namespace qvref
