#include "soilinteraction/soil_laws.h"

#include "common/call/messages.h"

namespace qvsoilinteraction {
namespace {

constexpr double k_hump_scale = 0.6321205588285577;  // 1 - 1/e

/// The damping coefficient D of set_loads at depth z.
/// @param power  z^(n - 1)
double damping_coefficient(const soil_law& law, double z, double power) {
  const double scaled = z * law.bekker.s;
  const double a3 = scaled == z ? power : std::pow(scaled, law.bekker.n - 1.0);
  const double base = law.damping_scale * a3;
  return z < law.bekker.zb ? base * z / law.bekker.zb : base;
}

void set_sinkage(const soil_law& law, const contact_patch& patch, Croad_contact& rc, Csoil_contact& sc) {
  rc.damping = 0.0;
  sc.effective_area = get_effective_area(patch, rc.area_ratio);
  sc.dynamic_sinkage = get_dynamic_sinkage(law.dynamic, rc.last_pressure, rc.shear_disp, rc.last_pressure_power);
  sc.static_sinkage = get_static_sinkage(sc.dynamic_sinkage, rc.sinkage);
}

void set_normal_load(const soil_law& law, Croad_contact& rc, Csoil_contact& sc) {
  double power = 0.0;
  rc.pressure = get_bekker_normal_pressure(law, sc.static_sinkage, power, rc.secant_stiffness);
  sc.pressure = -rc.pressure;
  if (!(sc.pressure > 0.0)) {
    sc.pressure = 0.0;  // kept: the three normal forces are not cleared (test: StaleNormalForce)
    return;
  }
  sc.pressure_force = sc.effective_area * sc.pressure;
  rc.damping = damping_coefficient(law, std::fabs(sc.static_sinkage), power);
  const double s = law.bekker.s;
  sc.damping_force = std::fabs(rc.normal_velocity * s / law.bekker.t) * sc.effective_area *
                     -qv::fsign(rc.normal_velocity) * rc.damping * (s * s);
  const double force = sc.damping_force + sc.pressure_force;
  sc.normal_force = force > 0.0 ? force : 0.0;
}

void set_shear_load(const soil_law& law, const Croad_contact& rc, Csoil_contact& sc) {
  const double strength = shear_strength(law, sc.pressure);
  sc.shear_stress_1 = get_wong_shear_pressure(law, strength, rc.shear_disp[0], rc.slip_velocity[0]);
  sc.shear_stress_2 = get_wong_shear_pressure(law, strength, rc.shear_disp[1], rc.slip_velocity[1]);
  if (law.hard) {
    sc.shear_force_1 = sc.shear_force_2 = sc.normal_force * rc.concrete_friction;
  } else {
    sc.shear_force_1 = sc.shear_stress_1 * sc.effective_area;
    sc.shear_force_2 = sc.shear_stress_2 * sc.effective_area;
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
      tan_phi(std::tan(wong.friction_angle)),
      hump(wong.sensitivity / k_hump_scale - 1.0) {
  const double a1 = std::pow(1.0 / bekker.s, bekker.n + 1.0);
  const double a2 = std::pow(1.0 / bekker.s, bekker.n + 2.0);
  damping_scale = (bekker.kphi * a2 + bekker.kc * a1 / (bekker.b * bekker.s)) * bekker.zeta;
}

void set_loads(const soil_law& law, const contact_patch& patch, Croad_contact* const* road_contacts,
               Csoil_contact* const* soil_contacts, int count) {
  for (int i = 0; i < count; ++i) set_sinkage(law, patch, *road_contacts[i], *soil_contacts[i]);
  for (int i = 0; i < count; ++i) set_normal_load(law, *road_contacts[i], *soil_contacts[i]);
  for (int i = 0; i < count; ++i) set_shear_load(law, *road_contacts[i], *soil_contacts[i]);
}

void get_soil_force(const soil_law& law, const contact_patch& patch, Croad_contact* const* road_contacts,
                    Csoil_contact* const* soil_contacts, int count, const qv::fault_channel& channel) {
  if (count > 0 && law.bekker.b == 0.0) {
    road_contacts[0]->damping = 0.0;
    qv::first_fault("SOILINTERACTION ERROR : THE WIDTH OF BODY SHOULD BE GREATER THAN ZERO.", channel.ierr,
                    channel.msg);
  }
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
