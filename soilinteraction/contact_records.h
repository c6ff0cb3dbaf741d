#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "common/kernels/kernels.h"
#include "soilrdf/road.h"

/// Records of the contact between a body's grid points and a soil road. What belongs to history changes only after
/// a converged step; the rest is rewritten at every evaluation.
namespace qvsoilinteraction {

constexpr int k_plate = 1;  ///< shape of a body; any other value is a wheel

/// A power that is often asked for with the arguments of the time before.
class remembered_power {
public:
  double of(double base, double exponent) {
    if (base != m_base || exponent != m_exponent) {
      m_base = base;
      m_exponent = exponent;
      m_value = std::pow(base, exponent);
    }
    return m_value;
  }

private:
  double m_base = 1.0;
  double m_exponent = 1.0;
  double m_value = 1.0;
};

/// Geometry and history of one grid point. What a point out of contact needs comes first, in two cache lines.
class alignas(64) Croad_contact {
public:
  double Si_prime[3];  ///< place on the body, in its marker's axes; set at set-up

  // At the last evaluation.
  double lever[3];              ///< of the point from the body marker, ground axes
  double position[3];           ///< of the point, ground axes
  double relative_position[3];  ///< of the point from the road base marker, ground axes
  double sinkage;               ///< signed height over the surface, negative below
  double contact_state;         ///< history: 0 before contact, 1 after its first step, 2 later
  double normal[3];             ///< contact frame, ground axes
  double tangent_1[3];
  double tangent_2[3];
  std::int32_t facet_number;  ///< of the triangle found, from 1; 0 when none was
  double facet_normal[3];     ///< its normal, road axes; zero when none was
  double facet_d;             ///< its plane constant (of a single search); not a number when none was
  double facet_point[3];      ///< the point projected onto its plane, road axes
  double area_ratio;          ///< factor on the point's share of the area
  double normal_velocity;
  double slip_velocity[2];
  double shear_disp[2];
  double secant_stiffness;  ///< pressure over sinkage
  double pressure;          ///< of Bekker's law, negative in compression
  double damping;

  // History.
  double max_sinkage;
  double first_contact_position[3];
  double first_contact_tangent_1[3];
  double first_contact_tangent_2[3];
  double last_pressure;
  remembered_power last_pressure_power;  ///< of the dynamic sinkage law; changes with last_pressure only
  double last_static_sinkage;
  double last_shear_disp[2];

  double Si_prime_tilde[9];  ///< of Si_prime, set with it
  double concrete_friction;  ///< shear over normal force on a hard road; 0 unless a record that extends this sets it
  double last_update_time;   ///< with `update_time`: for records that extend this one
  double update_time;        ///< kept: written by nothing
  double spare;              ///< kept: 0.001, read by nothing here

  Croad_contact() { Initialize(); }

  void Initialize();

  /// Places the point of row i (along the plate, around the wheel) and column j (across) on the body.
  /// @param shape  1 plate, else wheel     @param a  plate length or wheel radius     @param w  width
  void Calculation_Si_prime(int i, int j, int shape, double a, double w, int nx, int ny);

  /// The contact is lost: nothing of it is kept.
  void clear_history();
};

/// Loads of one grid point.
class Csoil_contact {
public:
  double local_force[3];  ///< shear 1, shear 2, normal
  double force[3];        ///< on the body, ground axes
  double moment[3];       ///< about the body marker, ground axes
  double shear_force_1;
  double shear_force_2;
  double pressure_force;
  double damping_force;
  double normal_force;  ///< max(0, pressure force + damping force)
  double pressure;      ///< positive in compression
  double shear_stress_1;
  double shear_stress_2;
  double effective_area;
  double dynamic_sinkage;
  double static_sinkage;
  double spare;  ///< kept: 1.0, read by nothing here
  std::string soil_type;

  Csoil_contact() { Initialize(); }

  void Initialize();
};

/// What a converged step leaves behind in a point.
inline void advance_history(bool in_contact, const Csoil_contact& sc, Croad_contact& rc) {
  if (!in_contact) {
    if (rc.contact_state != 0.0) rc.clear_history();  // without contact before there is none
    return;
  }
  rc.last_pressure = sc.pressure;
  qv::assgvec(rc.shear_disp, 2, rc.last_shear_disp);
  rc.last_static_sinkage = sc.static_sinkage;
  const double depth = std::fabs(rc.sinkage);
  if (depth > rc.max_sinkage) rc.max_sinkage = depth;
  if (rc.contact_state == 0.0) {
    rc.contact_state = 1.0;
    qv::assgvec(rc.relative_position, 3, rc.first_contact_position);
    qv::assgvec(rc.tangent_1, 3, rc.first_contact_tangent_1);
    qv::assgvec(rc.tangent_2, 3, rc.first_contact_tangent_2);
  } else if (rc.contact_state == 1.0) {
    rc.contact_state = 2.0;
  }
}

/// One soil element: a body's grid of contact points on a road.
class CSoilInteraction {
public:
  std::vector<std::vector<Croad_contact>> road_contacts;  ///< nx rows of ny points
  std::vector<std::vector<Csoil_contact>> soil_contacts;
  std::int32_t nx;
  std::int32_t ny;
  std::int32_t element_id;  ///< the element's index once it is set up

  CSoilInteraction() { Initialize(); }

  void Initialize() {
    nx = ny = -1;
    element_id = qvsoilrdf::k_not_set;
  }
};

}  // namespace qvsoilinteraction
