#include "hydro/drag.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "common/kernels/powers.h"
#include "hydro/lanes.h"

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
  const double per_time = u.length / u.time;  // 1 in SI, and 1 has no power but 1
  tangential_units = per_time == 1.0 ? 1.0 : qv::power(per_time, sub.tangential_exp);
}

void drag_block::finish_block() {
  m_padded = whole_vectors(m_count);
  std::fill(m_patch + m_count, m_patch + m_padded, m_patch[0]);
  std::fill(m_node + m_count, m_node + m_padded, m_node[0]);
  gather();
  find_speeds();
  qv::powers(m_speed.value, k_.tangential_exp, m_power.value, m_count);
  std::fill(m_power.value + m_count, m_power.value + m_padded, 0.0);
  find_friction();
  if (m_pressed) find_pressure();
  add_up();
  if (m_pressed) add_up_pressure();
  m_count = 0;
}

QV_WIDE_VECTORS void drag_block::gather() {
  const int count = in_whole_vectors(m_padded);
  const node_flow* const flows = m_mesh.flows.data();
  const patch_plane* const planes = m_mesh.planes.data();
  for (int i = 0; i < count; i += 4) {
    const double* at[4];
    for (int j = 0; j < 4; ++j) at[j] = planes[m_patch[i + j]].normal;
    to_rows(at, 0, &m_normal[0][i], &m_normal[1][i]);
    to_rows(at, 2, &m_normal[2][i], &m_area[i]);
    for (int j = 0; j < 4; ++j) at[j] = flows[m_node[i + j]].velocity;
    to_rows(at, 0, &m_velocity[0][i], &m_velocity[1][i]);
    to_rows(at, 2, &m_velocity[2][i], &m_lever[0][i]);
    to_rows(at, 4, &m_lever[1][i], &m_lever[2][i]);
  }
}

/// Splits the velocities into their parts along the normal and their parts along the patch.
QV_WIDE_VECTORS void drag_block::find_speeds() {
  const int count = in_whole_vectors(m_padded);
  double A6[9];
  std::copy_n(m_A6, 9, A6);
  std::int64_t pressed = 0;
  QV_ROWS_APART
  for (int i = 0; i < count; ++i) {
    const double a = m_normal[0][i], b = m_normal[1][i], c = m_normal[2][i];
    const double nx = A6[0] * a + A6[3] * b + A6[6] * c;
    const double ny = A6[1] * a + A6[4] * b + A6[7] * c;
    const double nz = A6[2] * a + A6[5] * b + A6[8] * c;
    const double vn = nx * m_velocity[0][i] + ny * m_velocity[1][i] + nz * m_velocity[2][i];
    const double x = m_velocity[0][i] - vn * nx;
    const double y = m_velocity[1][i] - vn * ny;
    const double z = m_velocity[2][i] - vn * nz;
    const double speed = std::sqrt(x * x + y * y + z * z);
    const double reciprocal = 1.0 / (speed == 0.0 ? 1.0 : speed);
    m_normal[0][i] = nx;
    m_normal[1][i] = ny;
    m_normal[2][i] = nz;
    m_along[0][i] = x * reciprocal;
    m_along[1][i] = y * reciprocal;
    m_along[2][i] = z * reciprocal;
    m_speed[i] = speed;
    m_normal_speed[i] = vn;
    pressed |= vn > 0.0 ? 1 : 0;
  }
  m_pressed = pressed != 0 || !m_finite_levers;
}

namespace {

/// Writes the force f at corner i, and its torque about the force marker, to the rows of a load.
QV_IN_LOOPS void set_load(const row* lever, const double* f, row* load, int i) {
  const double x = lever[0][i], y = lever[1][i], z = lever[2][i];
  for (int c = 0; c < 3; ++c) load[c][i] = f[c];
  load[3][i] = y * f[2] - z * f[1];
  load[4][i] = z * f[0] - x * f[2];
  load[5][i] = x * f[1] - y * f[0];
}

}  // namespace

/// Friction against the motion of the corners along the patch.
QV_WIDE_VECTORS void drag_block::find_friction() {
  const double units = k_.tangential_units, kt = k_.tangential, L2 = k_.L2, force = k_.force;
  const int count = in_whole_vectors(m_padded);
  QV_ROWS_APART
  for (int i = 0; i < count; ++i) {
    const double area = m_area[i], power = m_power[i];
    double f[3];
    for (int c = 0; c < 3; ++c) f[c] = units * (-(m_along[c][i] * area * kt * power) * L2) * force;
    set_load(m_lever, f, m_friction, i);
  }
}

/// Pressure on corners that run into the water, and its sum with the friction.
QV_WIDE_VECTORS void drag_block::find_pressure() {
  const double units = k_.normal_units, kn = k_.normal, L2 = k_.L2, force = k_.force;
  const int count = in_whole_vectors(m_padded);
  QV_ROWS_APART
  for (int i = 0; i < count; ++i) {
    const double area = m_area[i], vn = m_normal_speed[i];
    const double normal[3] = {m_normal[0][i], m_normal[1][i], m_normal[2][i]};
    double p[3], both[3];
    for (int c = 0; c < 3; ++c) {
      const double pressure = units * -(normal[c] * area * kn * vn * vn) * L2 * force;
      p[c] = vn > 0.0 ? pressure : 0.0;
      both[c] = p[c] + m_friction[c][i];
    }
    set_load(m_lever, p, m_pressure, i);
    set_load(m_lever, both, m_both, i);
  }
}

/// Adds friction and total drag, corner after corner.
QV_WIDE_VECTORS void drag_block::add_up() {
  const auto& f = m_friction;
  const auto& b = m_both;
  four_lanes total(m_total), tangential(m_tangential);
  four_lanes rest(pair_at(m_total + 4), pair_at(m_tangential + 4));
  const int pairs = m_count / 2 * 2;
  const auto add = [&](const two_columns& t, const two_columns& s, const two_columns& r) {
    total += t.left, tangential += s.left, rest += r.left;
    total += t.right, tangential += s.right, rest += r.right;
  };
  if (m_pressed) {
    for (int i = 0; i < pairs; i += 2)
      add({b[0], b[1], b[2], b[3], i}, {f[0], f[1], f[2], f[3], i}, {b[4], b[5], f[4], f[5], i});
  } else {
    for (int i = 0; i < pairs; i += 2) {
      const two_columns first(f[0], f[1], f[2], f[3], i);
      add(first, first, {f[4], f[5], f[4], f[5], i});
    }
  }
  total.put(m_total);
  tangential.put(m_tangential);
  double rests[4];
  rest.put(rests);
  std::copy_n(rests, 2, m_total + 4);
  std::copy_n(rests + 2, 2, m_tangential + 4);
  if (pairs == m_count) return;
  for (int k = 0; k < 6; ++k) {
    m_total[k] += m_pressed ? b[k][pairs] : f[k][pairs];
    m_tangential[k] += f[k][pairs];
  }
}

/// The same with the pressure.
QV_WIDE_VECTORS void drag_block::add_up_pressure() {
  const auto& p = m_pressure;
  four_lanes normal(m_normal_drag);
  two_lanes rest = pair_at(m_normal_drag + 4);
  const int pairs = m_count / 2 * 2;
  for (int i = 0; i < pairs; i += 2) {
    const two_columns t(p[0], p[1], p[2], p[3], i);
    const two_lanes y = pair_at(&p[4].value[i]), z = pair_at(&p[5].value[i]);
    normal += t.left, rest += __builtin_shufflevector(y, z, 0, 2);
    normal += t.right, rest += __builtin_shufflevector(y, z, 1, 3);
  }
  normal.put(m_normal_drag);
  put(rest, m_normal_drag + 4);
  if (pairs == m_count) return;
  for (int k = 0; k < 6; ++k) m_normal_drag[k] += p[k][pairs];
}

drag_sums drag_block::finish() {
  if (m_count > 0) finish_block();
  const auto load_of = [](const double* sums) {
    return load{{sums[0], sums[1], sums[2]}, {sums[3], sums[4], sums[5]}};
  };
  return {load_of(m_total), load_of(m_normal_drag), load_of(m_tangential)};
}

}  // namespace qvhydro
