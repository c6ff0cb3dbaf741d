#pragma once

#include <cmath>

#include "common/call/messages.h"
#include "common/kernels/powers.h"
#include "common/kernels/vectors.h"
#include "soilinteraction/contact_records.h"

/// Pressure and shear of the soil under one contact point, and the force they make. Lengths, forces and times in
/// the model's units. Pure functions of their arguments and the point's records. What is constant over an element is
/// computed once per call (soil_law), with the same operations in the same order as if it were done for each point.
/// The laws take their powers and exponentials as arguments, since set_loads computes those of many points at a time.
namespace qvsoilinteraction {

/// Bekker's parameters as an element uses them.
struct bekker_parameters {
  double kc;    ///< cohesive modulus [force / length^(n+1)]
  double kphi;  ///< frictional modulus [force / length^(n+2)]
  double n;     ///< sinkage exponent [-]
  double b;     ///< plate width [length]: the element's, not the road file's
  double s;     ///< first pressure scale factor [-]; 1 in every road that is read
  double zeta;  ///< damping ratio [time]
  double zb;    ///< boundary sinkage [length]
  double t;     ///< second pressure scale factor [-]; likewise
};

/// The parameters of a road for an element of width b, and what follows from them alone.
struct soil_law {
  soil_law(const qvsoilrdf::CRoad& road, double width);

  qvsoilrdf::CDynamicSinkage dynamic;
  bekker_parameters bekker;
  qvsoilrdf::CWong wong;
  bool hard;             ///< a "CONCRETE" road
  double stiffness;      ///< kc / b + kphi [force / length^(n+2)]
  double damping_scale;  ///< (kphi (1/s)^(n+2) + kc (1/s)^(n+1) / (b s)) zeta
  double tan_phi;        ///< tangent of the friction angle [-]
  double hump;           ///< S / (1 - 1/e) - 1 of the shear curve [-]
};

/// Shape of a body and its grid, from which a point's share of the contact area follows.
struct contact_patch {
  int shape;  ///< k_plate, else a wheel
  double a;   ///< plate length or wheel radius [length]
  double w;   ///< width [length]
  int nx;     ///< points along the plate or around the wheel
  int ny;     ///< points across
};

/// The point's share of the contact area [length^2]: area_ratio a w / (nx ny) of a plate, area_ratio 2 pi a w / (nx ny)
/// of a wheel, which is a share of its whole rim.
inline double get_effective_area(const contact_patch& patch, double area_ratio) {
  constexpr double k_pi = 3.141592653589793;
  const double points = static_cast<double>(patch.nx) * static_cast<double>(patch.ny);
  const double length = patch.shape == k_plate ? area_ratio * patch.a : area_ratio * (2.0 * patch.a) * k_pi;
  return length * patch.w / points;
}

/// Sinkage that shearing adds (slip sinkage): -c (p_last / p_critical)^e1 (j1^2 + j2^2)^e2; the law is off without a
/// critical pressure. The pressure is that of the last converged step, so the correction lags one step behind. A
/// negative ratio under a fractional exponent gives NaN, which shows in the result.
/// @param pressure_power  (p_last / p_critical)^e1; p_last is positive in compression
/// @param shear_power     (j1^2 + j2^2)^e2, and 0 without a shear displacement, whatever e2 is
/// @return                [length], 0 or negative unless c is negative
QV_IN_LOOPS double get_dynamic_sinkage(double c, double pressure_power, double shear_power) {
  return -c * pressure_power * shear_power;
}

/// The sinkage that enters Bekker's law: the whole less the dynamic one, and 0 above the surface.
QV_IN_LOOPS double get_static_sinkage(double dynamic_sinkage, double sinkage) {
  const double z = sinkage - dynamic_sinkage;
  return z > 0.0 ? 0.0 : z;
}

/// Pressure of Bekker's law over depth, (kc / b + kphi) |z|^(n - 1).
/// @param power  |z|^(n - 1), which the damping needs too
QV_IN_LOOPS double get_secant_stiffness(double stiffness, double power) { return stiffness * power; }

/// Pressure of Bekker's law, p = -(kc / b + kphi) |z|^n, negative in compression.
/// Source: M. G. Bekker, Theory of Land Locomotion (1956) and Introduction to Terrain-Vehicle Systems (1969),
/// pressure-sinkage equation.
/// @param depth  |z| of the static sinkage [length]. The pressure is 0 if it is exactly 0, or the width is (set_loads).
QV_IN_LOOPS double get_bekker_normal_pressure(double secant_stiffness, double depth) {
  return -secant_stiffness * depth;
}

/// The damping coefficient D of set_loads at a depth; `scale` is soil_law's damping_scale.
/// @param power  (depth s)^(n - 1)    @param zb  boundary sinkage, from which on the damping is full [length]
QV_IN_LOOPS double damping_coefficient(double scale, double power, double depth, double zb) {
  const double base = scale * power;
  const double ramp = base * depth / zb;
  return depth < zb ? ramp : base;
}

/// Damping part of the normal force of an area A: -sign(v) |v s / t| A D s^2.
QV_IN_LOOPS double get_damping_force(double v, double s, double t, double A, double D) {
  const double scaled = t == 1.0 ? v * s : v * s / t;  // spares the quotient: t is 1 in every road that is read
  return std::fabs(scaled) * A * -qv::fsign(v) * D * (s * s);
}

/// Strength of the soil over its sensitivity, (p tan phi + c) / S, or 0 for S of exactly 0.
QV_IN_LOOPS double shear_strength(const soil_law& law, double pressure) {
  return law.wong.sensitivity == 0.0 ? 0.0 : (law.tan_phi * pressure + law.wong.cohesion) / law.wong.sensitivity;
}

/// r = |j| / K of the shear curve, 0 for K of exactly 0.
QV_IN_LOOPS double shear_ratio(double j, double K) {
  const double r = std::fabs(j) / K;
  return K == 0.0 ? 0.0 : r;
}

/// Shear stress along one tangent:
///   tau = -sign(v) strength [ (S / (1 - 1/e) - 1) e^(1 - r) + 1 ] (1 - e^-r),   r = |j| / K (0 for K of exactly 0)
/// with the sensitivity S and the shear displacement K [length] at which the soil has its full strength.
/// Source: J. Y. Wong, Theory of Ground Vehicles, shear curve with a hump and a residual strength.
/// @param hump      S / (1 - 1/e) - 1    @param strength  result of shear_strength [force / length^2]
/// @param falling   e^(1 - r)            @param rest      e^-r
/// @param v         slip velocity; only its sign counts
/// @return          stress on the body, against v; 0 at rest
QV_IN_LOOPS double get_wong_shear_pressure(double hump, double strength, double falling, double rest, double v) {
  return -qv::fsign(v) * strength * (hump * falling + 1.0) * (1.0 - rest);
}

/// The same of one displacement j [length].
inline double get_wong_shear_pressure(const soil_law& law, double strength, double j, double v) {
  const double r = shear_ratio(j, law.wong.max_shear_disp);
  return get_wong_shear_pressure(law.hump, strength, qv::exponential(1.0 - r), qv::exponential(-r), v);
}

/// How the points in contact of a block lie and move, side by side. The fields are those of Croad_contact.
struct motion_rows {
  double sinkage[qv::k_block];
  double area_ratio[qv::k_block];
  double normal_velocity[qv::k_block];
  double slip_velocity[2][qv::k_block];
  double shear_disp[2][qv::k_block];
};

/// Loads of these points. The fields are those of Csoil_contact, and of Croad_contact where it says so.
struct load_rows {
  double effective_area[qv::k_block];
  double dynamic_sinkage[qv::k_block], static_sinkage[qv::k_block];
  double secant_stiffness[qv::k_block];  ///< Croad_contact; without a meaning at depth 0
  double road_pressure[qv::k_block];     ///< `pressure` of Croad_contact: negative in compression
  double damping[qv::k_block];           ///< Croad_contact
  double pressure[qv::k_block];
  double pressure_force[qv::k_block], damping_force[qv::k_block], normal_force[qv::k_block];
  double shear_stress[2][qv::k_block], shear_force[2][qv::k_block];
};

/// Loads of `count` points in contact (at most k_block): area A, sinkages, pressure p, damping, shear.
///
///   pressure force = A p
///   damping force  = -sign(v) |v s / t| A D s^2        v: normal velocity, z: depth of the static sinkage
///   D = (kphi (1/s)^(n+2) + kc (1/s)^(n+1) / (b s)) zeta (z s)^(n-1), times z / zb if z < zb
///   normal force   = max(0, pressure force + damping force)
///   shear force    = tau A along each tangent; on a hard road the normal force times `concrete_friction`
///
/// Each step is done for all points before the next, with their powers and exponentials in vectors. A point's loads
/// have the same bits whatever points are with it. Of the records the history is read, and the normal forces are
/// written. Kept: if the pressure is 0, the pressure, damping and normal force of the point's last evaluation remain.
/// Over a width of exactly 0 there is no pressure.
void set_loads(const soil_law& law, const contact_patch& patch, const motion_rows& motion,
               Croad_contact* const* road_contacts, Csoil_contact* const* soil_contacts, int count, load_rows& loads);

/// Stores how point i lies and moves in its record.
void store_motion(const motion_rows& motion, int i, Croad_contact& rc);

/// Stores the loads of point i in its records.
void store_loads(const soil_law& law, const load_rows& loads, int i, Croad_contact& rc, Csoil_contact& sc);

/// set_loads of points whose records say how they lie and move, any number of them; the records get the loads.
void set_loads(const soil_law& law, const contact_patch& patch, Croad_contact* const* road_contacts,
               Csoil_contact* const* soil_contacts, int count);

/// Refuses a plate or wheel with a width of exactly 0, whose first point in contact this is.
void refuse_no_width(const soil_law& law, Croad_contact& rc, const qv::fault_channel& channel);

/// set_loads of records of a plate or wheel: a width of exactly 0 is a fault if any point is in contact.
void get_soil_force(const soil_law& law, const contact_patch& patch, Croad_contact* const* road_contacts,
                    Csoil_contact* const* soil_contacts, int count, const qv::fault_channel& channel);

/// Turns the loads into a force on the body and a moment about its marker, both in ground axes:
///   force = t1 F1 + t2 F2 + n Fn        moment = lever x force
/// Kept: the misspelt name is the documented one.
void genenralized_contact_force(const Croad_contact& road_contact, Csoil_contact& soil_contact);

}  // namespace qvsoilinteraction
