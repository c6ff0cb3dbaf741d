#pragma once

#include "tests/reference/road_reference.h"

/// One contact point of the reference and its laws, per point, with nothing computed in advance.
namespace qvref {

struct contact_point {
  v3 Si_prime{};
  v3 position{};     ///< ground axes
  v3 from_road{};    ///< from the road base marker, ground axes
  v3 facet_point{};  ///< road axes; keeps its last value over a hole
  double sinkage = 0.0;
  v3 normal = {0, 0, 1}, tangent_1 = {1, 0, 0}, tangent_2 = {0, 1, 0};
  double area_ratio = 0.0, normal_velocity = 0.0;
  std::array<double, 2> slip_velocity{}, shear_disp{};
  double concrete_friction = 0.0;
  // history
  double contact_state = 0.0, max_sinkage = 0.0;
  v3 first_contact_position{}, first_contact_tangent_1{}, first_contact_tangent_2{};
  double last_pressure = 0.0, last_static_sinkage = 0.0;
  std::array<double, 2> last_shear_disp{};
  // loads
  double effective_area = 0.0, dynamic_sinkage = 0.0, static_sinkage = 0.0;
  double pressure = 0.0, damping = 0.0;
  double pressure_force = 0.0, damping_force = 0.0, normal_force = 0.0;
  std::array<double, 2> shear_stress{}, shear_force{};
  v3 local_force{}, force{}, moment{};
};

/// Body shape (1 plate, else wheel), plate length or wheel radius, width, grid counts.
struct body {
  int shape = 1;
  double a = 0.0, w = 0.0;
  int nx = 0, ny = 0;
};

v3 grid_point(const body& body, int i, int j);
double effective_area(const body& body, double area_ratio);
double dynamic_sinkage(const soil& soil, double last_pressure, const std::array<double, 2>& shear_disp);
double bekker_pressure(const soil& soil, double width, double static_sinkage);  ///< negative in compression
double wong_shear(const soil& soil, double j, double v, double pressure);

/// Sets the loads of a point. Precondition: its geometry is set, and the width of the law is not 0.
void soil_force(const soil& soil, const body& body, contact_point& point);

/// Force and moment on the body; A1 is the body marker's orientation.
void generalised_force(const m33& A1, contact_point& point);

}  // namespace qvref
