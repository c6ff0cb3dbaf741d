#include "common/kernels/kernels_kept.h"
#include "common/kernels/powers.h"
#include "qvbrisk/services.h"

namespace qv {
namespace {

/// The host's cubic step; kernels have no handle and pass a null one.
double cubic_step(double x, double x0, double h0, double x1, double h1) {
  double value = 0.0;
  int flag = 0;
  STEP(nullptr, &value, &flag, x, x0, h0, x1, h1);
  return value;
}

double damping_force(double c, double dmax, double depth, double velocity) {
  if (!(c > 0.0 && depth > 0.0)) return 0.0;
  // Deliberately the upper half of a step that is symmetric about zero penetration, not a step from 0 to dmax.
  return cubic_step(depth, -dmax, -c, dmax, c) * velocity;
}

double friction_coefficient(double mu_d, double mu_s, double vd, double vs, double slide) {
  if (mu_d == 0.0 || slide == 0.0) return 0.0;
  const double u = std::fabs(slide);
  if (u < vd && u <= vs) return cubic_step(slide, -vs, -mu_s, vs, mu_s);
  const double mu = u < vd ? cubic_step(u, vs, mu_s, vd, mu_d) : mu_d;
  return slide < 0.0 ? -mu : mu;
}

}  // namespace

void get_contact_force(const double* par, double d, const double* v, double& fn, double& ff) {
  const double k = par[0], e = par[1], c = par[2], dmax = par[3];
  const double depth = std::fabs(d);
  const double fk = k != 0.0 ? k * power(depth, e) : 0.0;
  fn = fk - damping_force(c, dmax, depth, v[1]);
  ff = -friction_coefficient(par[4], par[5], par[6], par[7], v[0]) * std::fabs(fn);
}

}  // namespace qv
