#pragma once

#include <algorithm>

#include "soilinteraction/soil_laws.h"
#include "soilinteraction_mtl/contact_records.h"

/// Pressure and shear of the soil under a belt point, and their split to the two nodes of its span. The laws are those
/// of a plate of length L and width b (soilinteraction/soil_laws.h):
///
///   p   = (kc/b' + kphi) z^n                                                 b' = min(L, b)
///   tau = -sign(v) (c + p tan phi)/S [ (S/(1 - 1/e) - 1) e^(1 - r) + 1 ] (1 - e^-r),    r = |j|/K
///   F1 = tau1 A,  F2 = tau2 A                                                A = area ratio L b/(nLong nLat)
///
/// p: pressure, z: depth of the static sinkage, kc [force/length^(n+1)], kphi [force/length^(n+2)] and n [-]: Bekker's
/// moduli and exponent; tau: shear stress along one tangent, v, j: slip velocity and shear displacement along it,
/// c [force/length^2]: cohesion, phi [rad]: friction angle, S [-]: sensitivity, K [length]: shear displacement at the
/// full strength. An S or K of exactly 0 makes no shear.
/// Source: M. G. Bekker, Theory of Land Locomotion (1956) and Introduction to Terrain-Vehicle Systems (1969),
/// pressure-sinkage equation; J. Y. Wong, Theory of Ground Vehicles, shear curve with a hump and a residual strength.
namespace qvsoilinteractionmtl {

/// The span as the laws see it: `a` its length L, `w` the belt width b, `nx` points along, `ny` across.
using qvsoilinteraction::contact_patch;
using qvsoilinteraction::soil_law;

/// A plate's patch for a span of length L.
inline contact_patch make_span_patch(double L, double b, int nLong, int nLat) {
  return {qvsoilinteraction::k_plate, L, b, nLong, nLat};
}

/// The road's laws for a span: the width in Bekker's law is the smaller of the span's length and the belt's width. The
/// road file's own width is not used.
inline soil_law make_span_law(const qvsoilrdf::CRoad& road, const contact_patch& span) {
  return {road, std::min(span.a, span.w)};
}

/// The point's share of the span's area: area ratio times L b / (nLong nLat) [length^2].
inline double get_effective_area_mtl(const contact_patch& span, const Croad_contact_mtl& rc) {
  return qvsoilinteraction::get_effective_area(span, rc.area_ratio);
}

/// Shear stress along one tangent: the law of plates and wheels. Kept: it has its own name for the track.
/// @param j  shear displacement [length]    @param slip  slip velocity    @param p  pressure, positive in compression
inline double get_wong_shear_pressure_mtl(const soil_law& law, double j, double slip, double p) {
  return qvsoilinteraction::get_wong_shear_pressure(law, qvsoilinteraction::shear_strength(law, p), j, slip);
}

/// Loads of `count` points in contact, by set_loads.
/// Kept: if the pressure is 0, the pressure, damping and normal force of the point's last evaluation remain.
/// Kept: a standard exception is recorded (run_recorded) and the call goes on.
void get_soil_force_mtl(const soil_law& law, const contact_patch& span,
                        qvsoilinteraction::Croad_contact* const* road_contacts,
                        qvsoilinteraction::Csoil_contact* const* soil_contacts, int count,
                        const qv::fault_channel& channel);

/// The same of points in rows (set_loads).
void get_soil_force_mtl(const soil_law& law, const contact_patch& span, const qvsoilinteraction::motion_rows& motion,
                        qvsoilinteraction::Croad_contact* const* road_contacts,
                        qvsoilinteraction::Csoil_contact* const* soil_contacts, int count,
                        qvsoilinteraction::load_rows& loads, const qv::fault_channel& channel);

/// Tangents and normal of a contact. Local copies: the compiler can then assume that writes to the load records do not
/// change them, and need not reload.
struct contact_axes {
  double t1[3], t2[3], n[3];

  explicit contact_axes(const Croad_contact_mtl& rc) {
    qv::assgvec(rc.tangent_1, 3, t1);
    qv::assgvec(rc.tangent_2, 3, t2);
    qv::assgvec(rc.normal, 3, n);
  }
};

/// Stores the node's share of the loads F1, F2, Fn (first shear, second shear, normal), with w the node's weight:
///   shear share = t1 w F1        normal share = t2 w F2 + n w Fn
/// Kept: the share that is called normal carries the second shear force too; the share that is called shear carries
/// only the first.
inline void share_loads(const contact_axes& axes, const double (&loads)[3], Csoil_contact_mtl& node) {
  const double w = node.node_weight;
  const double F1 = w * loads[0], F2 = w * loads[1], Fn = w * loads[2];
  for (int c = 0; c < 3; ++c) {
    const double shear = axes.t1[c] * F1;
    node.shear_work[c] = node.shear_share[c] = shear;
    node.shear_share[3 + c] = 0.0;
    node.normal_share[c] = axes.t2[c] * F2 + axes.n[c] * Fn;
  }
}

/// Turns the loads of a point into a force and a moment about marker I, in marker R's axes, and splits the force to the
/// span's nodes by the weights of its two records:
///   force = t1 F1 + t2 F2 + n Fn        moment = lever from marker I x force
/// Kept: the misspelt name is the documented one.
/// @param sc   the point's loads on the record where the span starts
/// @param sc2  the same on the record where it ends; only its shares are set
inline void genenralized_contact_force_mtl(const Croad_contact_mtl& rc, Csoil_contact_mtl& sc, Csoil_contact_mtl& sc2) {
  const contact_axes axes(rc);
  const double loads[3] = {sc.shear_force_1, sc.shear_force_2, sc.normal_force};
  double force[3];
  for (int c = 0; c < 3; ++c) force[c] = axes.t1[c] * loads[0] + axes.t2[c] * loads[1] + axes.n[c] * loads[2];
  qv::vectlvec(rc.lever_marker, force, sc.moment);
  qv::assgvec(loads, 3, sc.local_force);
  qv::assgvec(force, 3, sc.force);
  share_loads(axes, loads, sc);
  share_loads(axes, loads, sc2);
}

}  // namespace qvsoilinteractionmtl
