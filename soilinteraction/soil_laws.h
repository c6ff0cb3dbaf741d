#pragma once

#include <cmath>

#include "common/call/messages.h"
#include "soilinteraction/contact_records.h"

/// Pressure and shear of the soil under one contact point, and the force they make. Lengths, forces and times in
/// the model's units. Pure functions of their arguments and the point's records; what is constant over an element
/// is worked out once per call (soil_law), with the same operations in the same order as point by point.
namespace qvsoilinteraction {

/// Bekker's parameters as an element uses them.
struct bekker_parameters {
  double kc;    ///< cohesive modulus [force / length^(n+1)]
  double kphi;  ///< frictional modulus [force / length^(n+2)]
  double n;     ///< sinkage exponent [-]
  double b;     ///< plate width [length]: the element's, not the road file's
  double s;     ///< first scale factor
  double zeta;  ///< damping ratio [time]
  double zb;    ///< boundary sinkage [length]
  double t;     ///< second scale factor
};

/// The parameters of a road for an element of width b, with everything that no point changes.
struct soil_law {
  soil_law(const qvsoilrdf::CRoad& road, double width);

  qvsoilrdf::CDynamicSinkage dynamic;
  bekker_parameters bekker;
  qvsoilrdf::CWong wong;
  bool hard;             ///< a "CONCRETE" road
  double stiffness;      ///< kc / b + kphi
  double damping_scale;  ///< (kphi a2 + kc a1 / (b s)) zeta
  double tan_phi;
  double hump;  ///< S / (1 - 1/e) - 1 of the shear curve
};

/// Shape of a body and its grid, from which a point's share of the contact area follows.
struct contact_patch {
  int shape;  ///< 1 plate, else wheel
  double a;   ///< plate length or wheel radius
  double w;   ///< width
  int nx;
  int ny;
};

/// The point's share of the contact area: of the plate, or of the whole rim 2 pi a w [length^2].
inline double get_effective_area(const contact_patch& patch, double area_ratio) {
  constexpr double k_pi = 3.141592653589793;
  const double points = static_cast<double>(patch.nx) * static_cast<double>(patch.ny);
  const double length = patch.shape == k_plate ? area_ratio * patch.a : area_ratio * (2.0 * patch.a) * k_pi;
  return length * patch.w / points;
}

/// Sinkage that shearing adds (slip sinkage): -c (p_last / p_critical)^e1 (j1^2 + j2^2)^e2, or 0 without a critical
/// pressure. The pressure is that of the last converged step, so the correction lags one step behind. A negative
/// ratio under a fractional exponent gives not-a-number, which travels on.
/// @param power  remembers the pressure's power, which stays the same between converged steps
inline double get_dynamic_sinkage(const qvsoilrdf::CDynamicSinkage& dynamic, double last_pressure,
                                  const double* shear_disp, remembered_power& power) {
  if (dynamic.critical_pressure == 0.0) return 0.0;
  const double g = shear_disp[1] * shear_disp[1] + shear_disp[0] * shear_disp[0];
  const double h = g > 0.0 ? std::pow(g, dynamic.exponent_sd) : 0.0;
  return -dynamic.coefficient_ds * power.of(last_pressure / dynamic.critical_pressure, dynamic.exponent_pr) * h;
}

/// The sinkage that enters Bekker's law; 0 above the surface.
inline double get_static_sinkage(double dynamic_sinkage, double sinkage) {
  const double z = sinkage - dynamic_sinkage;
  return z > 0.0 ? 0.0 : z;
}

/// Pressure of Bekker's law, p = -(kc / b + kphi) |z|^n, negative in compression.
/// Source: M. G. Bekker, Theory of Land Locomotion (1956), pressure-sinkage equation.
/// @param power  receives |z|^(n - 1), which the damping needs too
/// @param secant_stiffness  receives (kc / b + kphi) |z|^(n - 1); kept as it was when z or b is 0
inline double get_bekker_normal_pressure(const soil_law& law, double z, double& power, double& secant_stiffness) {
  const double depth = std::fabs(z);
  if (depth == 0.0 || law.bekker.b == 0.0) return 0.0;
  power = std::pow(depth, law.bekker.n - 1.0);
  secant_stiffness = law.stiffness * power;
  return -secant_stiffness * depth;
}

/// Strength of the soil over its sensitivity, (p tan phi + c) / S, or 0 for S of exactly 0.
inline double shear_strength(const soil_law& law, double pressure) {
  return law.wong.sensitivity == 0.0 ? 0.0 : (law.tan_phi * pressure + law.wong.cohesion) / law.wong.sensitivity;
}

/// Shear stress along one tangent:
///   tau = -sign(v) strength [ (S / (1 - 1/e) - 1) e^(1 - r) + 1 ] (1 - e^-r),   r = |j| / K (0 for K of exactly 0)
/// Source: J. Y. Wong, Theory of Ground Vehicles, shear curve with a hump and a residual strength.
/// @param strength  of shear_strength    @param j  shear displacement    @param v  slip velocity; its sign counts
/// @return  against v; 0 at rest
inline double get_wong_shear_pressure(const soil_law& law, double strength, double j, double v) {
  const double r = law.wong.max_shear_disp == 0.0 ? 0.0 : std::fabs(j) / law.wong.max_shear_disp;
  return -qv::fsign(v) * strength * (law.hump * std::exp(1.0 - r) + 1.0) * (1.0 - std::exp(-r));
}

/// Loads of `count` points in contact: areas, sinkages, pressure, damping, shear. Each step is done for all points
/// before the next, so that the powers and exponentials of one point need not wait for those of another.
/// Kept: when the pressure is 0, the pressure, damping and normal force of the point's last evaluation stand on.
/// Over a width of exactly 0 there is no pressure.
void set_loads(const soil_law& law, const contact_patch& patch, Croad_contact* const* road_contacts,
               Csoil_contact* const* soil_contacts, int count);

/// set_loads of a plate or wheel, for which a width of exactly 0 is a fault.
void get_soil_force(const soil_law& law, const contact_patch& patch, Croad_contact* const* road_contacts,
                    Csoil_contact* const* soil_contacts, int count, const qv::fault_channel& channel);

/// Turns the loads into a force on the body and a moment about its marker, both in ground axes.
/// The misspelt name is the one other code calls.
void genenralized_contact_force(const Croad_contact& road_contact, Csoil_contact& soil_contact);

}  // namespace qvsoilinteraction
