#include "soilinteraction/soil_laws.h"

#include <algorithm>
#include <cstdint>

#include "common/call/messages.h"
#include "common/kernels/angles.h"

namespace qvsoilinteraction {
namespace {

using qv::k_block;

constexpr double k_hump_scale = 0.6321205588285577;  // 1 - 1/e

/// One block of points on its way to its loads. What the loops need of the laws is copied to local constants: the
/// compiler can then assume that writes to rows do not change it.
class point_rows {
public:
  point_rows(const soil_law& law, const contact_patch& patch, const motion_rows& motion,
             Croad_contact* const* road_contacts, Csoil_contact* const* soil_contacts, int count, load_rows& loads)
      : m_law(law),
        m_patch(patch),
        m_motion(motion),
        m_rc(road_contacts),
        m_sc(soil_contacts),
        m_count(count),
        m_loads(loads) {}

  void set_loads() {
    find_areas();
    find_pressure_powers();
    find_shear_powers();
    find_sinkages();
    find_depth_powers();
    find_normal_loads();
    keep_last_forces();
    find_shear_stresses();
    find_shear_forces();
  }

private:
  using row = double[k_block];

  void find_areas();
  void find_pressure_powers();
  void find_shear_powers();
  void find_sinkages();
  void find_depth_powers();
  void find_normal_loads();
  void keep_last_forces();
  void find_shear_stresses();
  void find_shear_forces();

  const soil_law& m_law;
  const contact_patch& m_patch;
  const motion_rows& m_motion;
  Croad_contact* const* m_rc;
  Csoil_contact* const* m_sc;
  int m_count;
  load_rows& m_loads;

  row m_pressure_power, m_shear_power;  ///< of the dynamic sinkage law
  row m_depth;                          ///< |static sinkage|
  row m_power, m_damping_power;         ///< depth^(n - 1), (depth s)^(n - 1); 1 at depth 0, where nothing needs them
  row m_strength;                       ///< of the soil over its sensitivity
};

QV_WIDE_VECTORS void point_rows::find_areas() {
  const contact_patch patch = m_patch;
  for (int i = 0; i < m_count; ++i) m_loads.effective_area[i] = get_effective_area(patch, m_motion.area_ratio[i]);
}

/// (last pressure / critical pressure)^e1 of each point, computed only for those whose pressure has changed.
QV_WIDE_VECTORS void point_rows::find_pressure_powers() {
  const double critical = m_law.dynamic.critical_pressure, e1 = m_law.dynamic.exponent_pr;
  if (critical == 0.0) return;
  row bases, powers;
  int place[k_block], changed = 0;
  for (int i = 0; i < m_count; ++i) bases[i] = m_rc[i]->last_pressure / critical;
  for (int i = 0; i < m_count; ++i) {
    const remembered_power& known = m_rc[i]->last_pressure_power;
    m_pressure_power[i] = known.value();
    if (known.knows(bases[i], e1)) continue;
    bases[changed] = bases[i];
    place[changed++] = i;
  }
  if (changed == 0) return;
  qv::powers(bases, e1, powers, changed);
  for (int k = 0; k < changed; ++k) {
    m_pressure_power[place[k]] = powers[k];
    m_rc[place[k]]->last_pressure_power.remember(bases[k], e1, powers[k]);
  }
}

/// (j1^2 + j2^2)^e2 of each point.
QV_WIDE_VECTORS void point_rows::find_shear_powers() {
  if (m_law.dynamic.critical_pressure == 0.0) return;
  row squares, bases;
  std::uint64_t sheared = 0;  // 1 if any point is
  for (int i = 0; i < m_count; ++i) {
    const double g =
        m_motion.shear_disp[1][i] * m_motion.shear_disp[1][i] + m_motion.shear_disp[0][i] * m_motion.shear_disp[0][i];
    squares[i] = g;
    bases[i] = g > 0.0 ? g : 1.0;
    sheared |= g > 0.0 ? std::uint64_t{1} : std::uint64_t{0};
  }
  if (sheared != 0) qv::powers(bases, m_law.dynamic.exponent_sd, m_shear_power, m_count);
  for (int i = 0; i < m_count; ++i) m_shear_power[i] = squares[i] > 0.0 ? m_shear_power[i] : 0.0;
}

QV_WIDE_VECTORS void point_rows::find_sinkages() {
  const double c = m_law.dynamic.coefficient_ds;
  if (m_law.dynamic.critical_pressure == 0.0) {
    std::fill_n(m_loads.dynamic_sinkage, m_count, 0.0);
  } else {
    for (int i = 0; i < m_count; ++i)
      m_loads.dynamic_sinkage[i] = get_dynamic_sinkage(c, m_pressure_power[i], m_shear_power[i]);
  }
  for (int i = 0; i < m_count; ++i) {
    m_loads.static_sinkage[i] = get_static_sinkage(m_loads.dynamic_sinkage[i], m_motion.sinkage[i]);
    m_depth[i] = std::fabs(m_loads.static_sinkage[i]);
  }
}

void point_rows::find_depth_powers() {
  const double n = m_law.bekker.n, s = m_law.bekker.s;
  row bases;
  for (int i = 0; i < m_count; ++i) bases[i] = m_depth[i] == 0.0 ? 1.0 : m_depth[i];
  qv::powers(bases, n - 1.0, m_power, m_count);
  if (s == 1.0) {
    std::copy_n(m_power, m_count, m_damping_power);
  } else {
    for (int i = 0; i < m_count; ++i) bases[i] *= s;
    qv::powers(bases, n - 1.0, m_damping_power, m_count);
  }
}

QV_WIDE_VECTORS void point_rows::find_normal_loads() {
  const soil_law law = m_law;
  const bekker_parameters& b = law.bekker;
  const bool no_width = b.b == 0.0;
  load_rows& to = m_loads;
  for (int i = 0; i < m_count; ++i) {
    const double depth = m_depth[i];
    to.secant_stiffness[i] = get_secant_stiffness(law.stiffness, m_power[i]);
    const double bekker = get_bekker_normal_pressure(to.secant_stiffness[i], depth);
    const bool none = (depth == 0.0) | no_width;
    const double pressure = none ? 0.0 : bekker;
    to.road_pressure[i] = pressure;
    to.pressure[i] = -pressure > 0.0 ? -pressure : 0.0;
    const double damping = damping_coefficient(law.damping_scale, m_damping_power[i], depth, b.zb);
    to.damping[i] = to.pressure[i] > 0.0 ? damping : 0.0;
  }
  for (int i = 0; i < m_count; ++i) {
    m_strength[i] = shear_strength(law, to.pressure[i]);
    to.pressure_force[i] = to.effective_area[i] * to.pressure[i];
    to.damping_force[i] = get_damping_force(m_motion.normal_velocity[i], b.s, b.t, to.effective_area[i], to.damping[i]);
    const double force = to.damping_force[i] + to.pressure_force[i];
    to.normal_force[i] = force > 0.0 ? force : 0.0;
  }
}

/// Kept: without a pressure the three normal forces are not cleared (test: StaleNormalForce).
void point_rows::keep_last_forces() {
  load_rows& to = m_loads;
  for (int i = 0; i < m_count; ++i) {
    Csoil_contact& sc = *m_sc[i];
    if (to.pressure[i] > 0.0) {
      sc.pressure_force = to.pressure_force[i];
      sc.damping_force = to.damping_force[i];
      sc.normal_force = to.normal_force[i];
    } else {
      to.pressure_force[i] = sc.pressure_force;
      to.damping_force[i] = sc.damping_force;
      to.normal_force[i] = sc.normal_force;
    }
  }
}

/// Along both tangents. The exponentials of all points stand in one row: first e^(1 - r), then e^-r, of each tangent.
QV_WIDE_VECTORS void point_rows::find_shear_stresses() {
  double arguments[4 * k_block], exponentials[4 * k_block];
  const double K = m_law.wong.max_shear_disp, hump = m_law.hump;
  const int n = m_count;
  for (int along = 0; along < 2; ++along) {
    const row& j = m_motion.shear_disp[along];
    double* falling = arguments + 2 * along * n;
    double* rest = falling + n;
    for (int i = 0; i < n; ++i) {
      const double r = shear_ratio(j[i], K);
      falling[i] = 1.0 - r;
      rest[i] = -r;
    }
  }
  qv::exponentials(arguments, exponentials, 4 * n);
  for (int along = 0; along < 2; ++along) {
    const row& v = m_motion.slip_velocity[along];
    row& stress = m_loads.shear_stress[along];
    const double* falling = exponentials + 2 * along * n;
    const double* rest = falling + n;
    for (int i = 0; i < n; ++i) stress[i] = get_wong_shear_pressure(hump, m_strength[i], falling[i], rest[i], v[i]);
  }
}

QV_WIDE_VECTORS void point_rows::find_shear_forces() {
  load_rows& to = m_loads;
  for (int along = 0; along < 2; ++along) {
    for (int i = 0; i < m_count; ++i) to.shear_force[along][i] = to.shear_stress[along][i] * to.effective_area[i];
  }
  if (!m_law.hard) return;
  for (int i = 0; i < m_count; ++i) {
    to.shear_force[0][i] = to.shear_force[1][i] = to.normal_force[i] * m_rc[i]->concrete_friction;
  }
}

void fetch_motion(const Croad_contact& rc, int i, motion_rows& motion) {
  motion.sinkage[i] = rc.sinkage;
  motion.area_ratio[i] = rc.area_ratio;
  motion.normal_velocity[i] = rc.normal_velocity;
  for (int along = 0; along < 2; ++along) {
    motion.slip_velocity[along][i] = rc.slip_velocity[along];
    motion.shear_disp[along][i] = rc.shear_disp[along];
  }
}

}  // namespace

soil_law::soil_law(const qvsoilrdf::CRoad& road, double width)
    : dynamic(road.dynamic_sinkage),
      bekker{
          road.bekker.cohesive_coeff, road.bekker.frictional_coeff, road.bekker.sinkage_exponent, width,
          road.scale_factor_1,        road.bekker.damp_ratio,       road.bekker.boundary_sinkage, road.scale_factor_2},
      wong(road.wong),
      hard(road.soil_type == "CONCRETE"),
      stiffness(bekker.kc / width + bekker.kphi),
      tan_phi(qv::tangent(wong.friction_angle)),
      hump(wong.sensitivity / k_hump_scale - 1.0) {
  const double a1 = qv::power(1.0 / bekker.s, bekker.n + 1.0);
  const double a2 = qv::power(1.0 / bekker.s, bekker.n + 2.0);
  damping_scale = (bekker.kphi * a2 + bekker.kc * a1 / (bekker.b * bekker.s)) * bekker.zeta;
}

void set_loads(const soil_law& law, const contact_patch& patch, const motion_rows& motion,
               Croad_contact* const* road_contacts, Csoil_contact* const* soil_contacts, int count, load_rows& loads) {
  point_rows(law, patch, motion, road_contacts, soil_contacts, count, loads).set_loads();
}

void store_motion(const motion_rows& motion, int i, Croad_contact& rc) {
  rc.sinkage = motion.sinkage[i];
  rc.area_ratio = motion.area_ratio[i];
  rc.normal_velocity = motion.normal_velocity[i];
  for (int along = 0; along < 2; ++along) {
    rc.slip_velocity[along] = motion.slip_velocity[along][i];
    rc.shear_disp[along] = motion.shear_disp[along][i];
  }
}

void store_loads(const soil_law& law, const load_rows& loads, int i, Croad_contact& rc, Csoil_contact& sc) {
  sc.effective_area = loads.effective_area[i];
  sc.dynamic_sinkage = loads.dynamic_sinkage[i];
  sc.static_sinkage = loads.static_sinkage[i];
  if (loads.static_sinkage[i] != 0.0 && law.bekker.b != 0.0) rc.secant_stiffness = loads.secant_stiffness[i];
  rc.pressure = loads.road_pressure[i];
  rc.damping = loads.damping[i];
  sc.pressure = loads.pressure[i];
  sc.pressure_force = loads.pressure_force[i];
  sc.damping_force = loads.damping_force[i];
  sc.normal_force = loads.normal_force[i];
  sc.shear_stress_1 = loads.shear_stress[0][i];
  sc.shear_stress_2 = loads.shear_stress[1][i];
  sc.shear_force_1 = loads.shear_force[0][i];
  sc.shear_force_2 = loads.shear_force[1][i];
}

void set_loads(const soil_law& law, const contact_patch& patch, Croad_contact* const* road_contacts,
               Csoil_contact* const* soil_contacts, int count) {
  for (int done = 0; done < count; done += k_block) {
    const int some = std::min(count - done, k_block);
    motion_rows motion;
    load_rows loads;
    for (int i = 0; i < some; ++i) fetch_motion(*road_contacts[done + i], i, motion);
    set_loads(law, patch, motion, road_contacts + done, soil_contacts + done, some, loads);
    for (int i = 0; i < some; ++i) store_loads(law, loads, i, *road_contacts[done + i], *soil_contacts[done + i]);
  }
}

void refuse_no_width(const soil_law& law, Croad_contact& rc, const qv::fault_channel& channel) {
  if (law.bekker.b != 0.0) return;
  rc.damping = 0.0;
  qv::first_fault("SOILINTERACTION ERROR : THE WIDTH OF BODY SHOULD BE GREATER THAN ZERO.", channel.ierr, channel.msg);
}

void get_soil_force(const soil_law& law, const contact_patch& patch, Croad_contact* const* road_contacts,
                    Csoil_contact* const* soil_contacts, int count, const qv::fault_channel& channel) {
  if (count > 0) refuse_no_width(law, *road_contacts[0], channel);
  set_loads(law, patch, road_contacts, soil_contacts, count);
}

void genenralized_contact_force(const Croad_contact& rc, Csoil_contact& sc) {
  double T[9];  // contact frame -> ground axes
  for (int c = 0; c < 3; ++c) {
    T[c] = rc.tangent_1[c];
    T[3 + c] = rc.tangent_2[c];
    T[6 + c] = rc.normal[c];
  }
  sc.local_force[0] = sc.shear_force_1;
  sc.local_force[1] = sc.shear_force_2;
  sc.local_force[2] = sc.normal_force;
  qv::matvec(T, sc.local_force, sc.force);
  double lever_tilde[9];
  qv::vectl(rc.lever, lever_tilde);
  qv::matvec(lever_tilde, sc.force, sc.moment);
}

}  // namespace qvsoilinteraction
