#include "soilinteraction/contact_records.h"

#include "common/kernels/angles.h"
#include "qvbrisk/constants.h"

namespace qvsoilinteraction {
namespace {

template <std::size_t N>
void clear(double (&values)[N]) {
  for (double& value : values) value = 0.0;
}

void set(double (&v)[3], double x, double y, double z) {
  v[0] = x;
  v[1] = y;
  v[2] = z;
}

}  // namespace

void Croad_contact::Initialize() {
  clear(Si_prime);
  clear(Si_prime_tilde);
  clear(lever);
  clear(position);
  clear(relative_position);
  sinkage = 0.0;
  set(normal, 0.0, 0.0, 1.0);
  set(tangent_1, 1.0, 0.0, 0.0);
  set(tangent_2, 0.0, 1.0, 0.0);
  facet_number = 0;
  clear(facet_normal);
  facet_d = 0.0;
  clear(facet_point);
  area_ratio = normal_velocity = 0.0;
  clear(slip_velocity);
  clear(shear_disp);
  secant_stiffness = pressure = damping = 0.0;
  clear_history();
  concrete_friction = last_update_time = update_time = 0.0;
  spare = 0.001;
}

void Croad_contact::clear_history() {
  contact_state = max_sinkage = 0.0;
  clear(first_contact_position);
  clear(first_contact_tangent_1);
  clear(first_contact_tangent_2);
  last_pressure = last_static_sinkage = 0.0;
  clear(last_shear_disp);
}

void Croad_contact::Calculation_Si_prime(int i, int j, int shape, double a, double w, int nx, int ny) {
  const double dy = ny == 1 ? w * 0.5 : w / (ny - 1);
  if (shape == k_plate) {
    // Kept: a single point along sits at the plate's rear edge, not at its centre.
    const double dx = nx == 1 ? a * 0.5 : a / (nx - 1);
    set(Si_prime, i * dx - 0.5 * a, j * dy - 0.5 * w, 0.0);
  } else {
    const double angle = i * (TPI / nx);
    set(Si_prime, qv::cosine(angle) * a, j * dy - 0.5 * w, qv::sine(angle) * a);
  }
  qv::vectl(Si_prime, Si_prime_tilde);
}

void Csoil_contact::Initialize() {
  clear(local_force);
  clear(force);
  clear(moment);
  shear_force_1 = shear_force_2 = pressure_force = damping_force = normal_force = 0.0;
  pressure = shear_stress_1 = shear_stress_2 = 0.0;
  effective_area = dynamic_sinkage = static_sinkage = 0.0;
  spare = 1.0;
  soil_type.clear();
}

}  // namespace qvsoilinteraction
