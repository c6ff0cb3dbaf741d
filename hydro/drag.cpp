#include "hydro/drag.h"

#include <cmath>

#include "common/kernels/powers.h"

namespace qvhydro {

coefficients::coefficients(const Chydro_force& element, const Chydro_force_sub& sub) {
  const inverse_units& u = element.inv_unit;
  const double T2 = u.time * u.time;
  L2 = u.length * u.length;
  L3 = u.length * u.length * u.length;
  force = u.force;
  buoyancy = (u.length / T2) * (u.mass / L3) * sub.scale * element.density * element.gravity;
  // Each corner of a patch takes a third of its area.
  normal = (u.mass / L3) * element.drag_scale * (element.density * sub.scale * 0.5 / 3.0);
  tangential = (u.mass / (u.length * u.time)) * element.drag_scale * (sub.tangential_coef * sub.scale / 3.0);
  tangential_exp = sub.tangential_exp;
  normal_units = L2 / T2;
  tangential_units = qv::power(u.length / u.time, sub.tangential_exp);
}

void drag_block::add(const double* normal, double area, const node_state* const corners[3], int reached) {
  const int i = m_count++;
  m_reached[i] = reached;
  m_area[i] = area;
  for (int k = 0; k < 3; ++k) m_normal[k][i] = normal[k];
  for (int n = 0; n < 3; ++n) {
    for (int k = 0; k < 3; ++k) {
      m_velocity[n][k][i] = corners[n]->velocity[k];
      m_lever[n][k][i] = corners[n]->lever[k];
    }
  }
}

void drag_block::finish(const coefficients& k, const double* A6, drag_sums& sums) {
  turn_normals(A6);
  for (int n = 0; n < 3; ++n) {
    find_speeds(n);
    find_powers(n, k.tangential_exp);
    find_loads(k, n);
  }
  add_to(sums);
  m_count = 0;
}

QV_WIDE_VECTORS void drag_block::turn_normals(const double* A6) {
  for (int i = 0; i < m_count; ++i) {
    const double x = m_normal[0][i], y = m_normal[1][i], z = m_normal[2][i];
    m_normal[0][i] = A6[0] * x + A6[3] * y + A6[6] * z;
    m_normal[1][i] = A6[1] * x + A6[4] * y + A6[7] * z;
    m_normal[2][i] = A6[2] * x + A6[5] * y + A6[8] * z;
  }
}

/// Splits the velocity of corner n into its part along the normal and its part along the patch.
QV_WIDE_VECTORS void drag_block::find_speeds(int n) {
  const auto& v = m_velocity[n];
  auto& t = m_along[n];
  for (int i = 0; i < m_count; ++i) {
    const double vn = m_normal[0][i] * v[0][i] + m_normal[1][i] * v[1][i] + m_normal[2][i] * v[2][i];
    const double x = v[0][i] - vn * m_normal[0][i];
    const double y = v[1][i] - vn * m_normal[1][i];
    const double z = v[2][i] - vn * m_normal[2][i];
    const double speed = std::sqrt(x * x + y * y + z * z);
    const double reciprocal = 1.0 / (speed == 0.0 ? 1.0 : speed);
    t[0][i] = x * reciprocal;
    t[1][i] = y * reciprocal;
    t[2][i] = z * reciprocal;
    m_speed[n][i] = speed;
    m_normal_speed[n][i] = vn;
  }
}

void drag_block::find_powers(int n, double exponent) {
  row speeds;
  for (int i = 0; i < m_count; ++i) speeds[i] = n < m_reached[i] ? m_speed[n][i] : 1.0;
  qv::powers(speeds, exponent, m_power[n], m_count);
  for (int i = 0; i < m_count; ++i) m_power[n][i] = n < m_reached[i] ? m_power[n][i] : 0.0;
}

/// Pressure drag if the corner runs into the water, and friction against its motion along the patch. Corners that were
/// not reached get 0: the block computes something for them too, which is dropped here.
QV_WIDE_VECTORS void drag_block::find_loads(const coefficients& k, int n) {
  const auto& r = m_lever[n];
  auto& p = m_pressure[n];
  auto& f = m_friction[n];
  auto& b = m_both[n];
  const double normal_units = k.normal_units, tangential_units = k.tangential_units;
  const double kn = k.normal, kt = k.tangential, L2 = k.L2, force = k.force;
  for (int c = 0; c < 3; ++c) {
    for (int i = 0; i < m_count; ++i) {
      const bool reached = n < m_reached[i];
      const double vn = m_normal_speed[n][i];
      const double pressure = normal_units * -(m_normal[c][i] * m_area[i] * kn * vn * vn) * L2 * force;
      const double friction = tangential_units * (-(m_along[n][c][i] * m_area[i] * kt * m_power[n][i]) * L2) * force;
      p[c][i] = reached && vn > 0.0 ? pressure : 0.0;
      f[c][i] = reached ? friction : 0.0;
      b[c][i] = p[c][i] + f[c][i];
    }
  }
  for (auto* load : {&p, &f, &b}) {
    auto& l = *load;
    for (int i = 0; i < m_count; ++i) {
      const bool reached = n < m_reached[i];
      const double x = r[1][i] * l[2][i] - r[2][i] * l[1][i];
      const double y = r[2][i] * l[0][i] - r[0][i] * l[2][i];
      const double z = r[0][i] * l[1][i] - r[1][i] * l[0][i];
      l[3][i] = reached ? x : 0.0;
      l[4][i] = reached ? y : 0.0;
      l[5][i] = reached ? z : 0.0;
    }
  }
}

void drag_block::add_to(drag_sums& sums) const {
  drag_sums s = sums;
  for (int i = 0; i < m_count; ++i) {
    for (int n = 0; n < 3; ++n) {
      for (int k = 0; k < 3; ++k) {
        s.total.force[k] += m_both[n][k][i];
        s.total.torque[k] += m_both[n][3 + k][i];
        s.normal.force[k] += m_pressure[n][k][i];
        s.normal.torque[k] += m_pressure[n][3 + k][i];
        s.tangential.force[k] += m_friction[n][k][i];
        s.tangential.torque[k] += m_friction[n][3 + k][i];
      }
    }
  }
  sums = s;
}

}  // namespace qvhydro
