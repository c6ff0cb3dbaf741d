#include "tests/reference/soil_laws_reference.h"

#include "tests/reference/functions.h"

namespace qvref {

v3 grid_point(const body& body, int i, int j) {
  const double dy = body.ny == 1 ? body.w * 0.5 : body.w / (body.ny - 1);
  if (body.shape == 1) {
    const double dx = body.nx == 1 ? body.a * 0.5 : body.a / (body.nx - 1);
    return {i * dx - 0.5 * body.a, j * dy - 0.5 * body.w, 0.0};
  }
  const double angle = i * (6.283185307179586 / body.nx);
  return {cosine(angle) * body.a, j * dy - 0.5 * body.w, sine(angle) * body.a};
}

double effective_area(const body& body, double area_ratio) {
  double points = static_cast<double>(body.nx) * body.ny;
  if (body.nx == 1 && body.ny == 1) {
    points = 1.0;
  } else if (body.nx == 1) {
    points = body.ny;
  } else if (body.ny == 1) {
    points = body.nx;
  }
  if (body.shape == 1) return area_ratio * body.a * body.w / points;
  return area_ratio * (2.0 * body.a) * 3.141592653589793 * body.w / points;
}

double dynamic_sinkage(const soil& soil, double last_pressure, const std::array<double, 2>& shear_disp) {
  if (soil.critical_pressure == 0.0) return 0.0;
  const double g = shear_disp[1] * shear_disp[1] + shear_disp[0] * shear_disp[0];
  const double h = g > 0.0 ? power(g, soil.exponent_sd) : 0.0;
  return -soil.coefficient_ds * power(last_pressure / soil.critical_pressure, soil.exponent_pr) * h;
}

double bekker_pressure(const soil& soil, double width, double static_sinkage) {
  const double z = std::fabs(static_sinkage);
  if (z == 0.0 || width == 0.0) return 0.0;
  const double k = soil.kc / width + soil.kphi;
  return -(k * power(z, soil.n - 1.0)) * z;
}

double wong_shear(const soil& soil, double j, double v, double pressure) {
  const double S = soil.sensitivity, K = soil.max_shear_disp;
  const double tau_max = S == 0.0 ? 0.0 : (tangent(soil.friction_angle) * pressure + soil.cohesion) / S;
  const double r = K == 0.0 ? 0.0 : std::fabs(j) / K;
  return -sign(v) * tau_max * ((S / 0.6321205588285577 - 1.0) * exponential(1.0 - r) + 1.0) * (1.0 - exponential(-r));
}

namespace {

double damping(const soil& soil, double b, double static_sinkage) {
  const double s = soil.scale_factor_1, n = soil.n, zb = soil.boundary_sinkage;
  const double z = std::fabs(static_sinkage);
  const double a1 = power(1.0 / s, n + 1.0);
  const double a2 = power(1.0 / s, n + 2.0);
  const double a3 = power(z * s, n - 1.0);
  const double base = (soil.kphi * a2 + soil.kc * a1 / (b * s)) * soil.damp_ratio * a3;
  return z < zb ? base * z / zb : base;
}

}  // namespace

void soil_force(const soil& soil, const body& body, contact_point& point) {
  const double b = body.shape == 1 ? (body.w < body.a ? body.w : body.a) : body.w;
  point.damping = 0.0;
  point.effective_area = effective_area(body, point.area_ratio);
  point.dynamic_sinkage = dynamic_sinkage(soil, point.last_pressure, point.shear_disp);
  point.static_sinkage = point.sinkage - point.dynamic_sinkage;
  if (point.static_sinkage > 0.0) point.static_sinkage = 0.0;
  point.pressure = -bekker_pressure(soil, b, point.static_sinkage);
  if (point.pressure > 0.0) {
    const double s = soil.scale_factor_1, t = soil.scale_factor_2;
    point.pressure_force = point.effective_area * point.pressure;
    point.damping = damping(soil, b, point.static_sinkage);
    point.damping_force = std::fabs(point.normal_velocity * s / t) * point.effective_area *
                          -sign(point.normal_velocity) * point.damping * (s * s);
    point.normal_force = std::fmax(0.0, point.damping_force + point.pressure_force);
  } else {
    point.pressure = 0.0;  // the three forces keep their last values
  }
  for (std::size_t k = 0; k < 2; ++k) {
    point.shear_stress[k] = wong_shear(soil, point.shear_disp[k], point.slip_velocity[k], point.pressure);
    point.shear_force[k] = soil.type == "CONCRETE" ? point.normal_force * point.concrete_friction
                                                   : point.shear_stress[k] * point.effective_area;
  }
}

void generalised_force(const m33& A1, contact_point& point) {
  const m33 T = from_columns(point.tangent_1, point.tangent_2, point.normal);
  point.local_force = {point.shear_force[0], point.shear_force[1], point.normal_force};
  point.force = T * point.local_force;
  point.moment = tilde(A1 * point.Si_prime) * point.force;
}

}  // namespace qvref
