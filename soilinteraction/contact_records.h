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

/// A power that is mostly asked for with the same arguments as the last time: it is then not computed again.
class remembered_power {
public:
  bool knows(double base, double exponent) const { return base == m_base && exponent == m_exponent; }
  void remember(double base, double exponent, double value) {
    m_base = base;
    m_exponent = exponent;
    m_value = value;
  }
  double value() const { return m_value; }

private:
  double m_base = 1.0;
  double m_exponent = 1.0;
  double m_value = 1.0;
};

/// Geometry and history of one grid point. What evaluations read and converged steps write comes first, in four cache
/// lines. The rest is the documented record of the point: a set-up call (iflag 1, also of an element that stands) fills
/// it, other calls leave it as it is and work on rows (contact_search.h). Lengths, forces and times are in the model's
/// units. For the points of a track, read "marker R" for "ground reference marker" and for "ground axes".
class alignas(64) Croad_contact {
public:
  // History. It changes after a converged step only.
  double contact_state;               ///< 0 without contact, 1 after the first step in contact, 2 after later ones
  double first_contact_position[3];   ///< relative_position at touch-down
  double first_contact_tangent_1[3];  ///< tangent_1 at touch-down
  double first_contact_tangent_2[3];  ///< tangent_2 at touch-down
  double last_pressure;               ///< pressure on the body, positive in compression [force/length^2]
  double last_shear_disp[2];          ///< shear_disp
  double last_update_time;            ///< time of the last converged step; only a track's points have it
  double update_time;                 ///< kept: nothing writes it, it stays 0, and a track reads it
  double concrete_friction;           ///< shear force over normal force on a hard road [-]: 0 for a body, 1 for a track

  // A track sets these two at every evaluation in contact, since a point keeps the slip of its last contact.
  double slip_velocity[2];  ///< velocity against the road along each tangent [length/time]
  double shear_disp[2];     ///< shear displacement along each tangent [length]

  remembered_power last_pressure_power;  ///< power of the dynamic sinkage law; changes with last_pressure only
  double last_static_sinkage;            ///< history: static sinkage [length]
  double max_sinkage;                    ///< history: largest depth in contact so far [length]

  double sinkage;               ///< signed height over the surface, negative below; 0 out of contact [length]
  double area_ratio;            ///< factor on the point's share of the contact area [-]
  double normal_velocity;       ///< velocity against the road along the normal [length/time]
  double damping;               ///< damping coefficient of the pressure [force time/length^3]
  double pressure;              ///< pressure of Bekker's law, negative in compression [force/length^2]
  double Si_prime[3];           ///< place on the body, in its marker's axes; set at set-up
  double lever[3];              ///< from the body marker to the point, ground axes [length]
  double position[3];           ///< from the ground reference marker to the point, ground axes [length]
  double relative_position[3];  ///< from the road base marker to the point, ground axes [length]
  double normal[3];             ///< road normal at the point, ground axes; with the tangents the contact frame
  double tangent_1[3];          ///< body y axis x normal: the rolling direction of a wheel
  double tangent_2[3];          ///< normal x tangent_1
  std::int32_t facet_number;    ///< number of the triangle under the point, from 1; 0: there is none
  double facet_normal[3];       ///< the triangle's normal, road axes; zero: there is no triangle
  double facet_point[3];        ///< the point projected onto the triangle's plane, road axes [length]

  // Kept: no computation reads these fields. They belong to the documented record, and those with a meaning are filled.
  double Si_prime_tilde[9];  ///< tilde matrix of Si_prime
  double facet_d;            ///< plane constant of the triangle of a single search; NaN: there was no triangle
  double secant_stiffness;   ///< pressure over sinkage, positive [force/length^3]
  double spare;              ///< 0.001

  Croad_contact() { Initialize(); }

  void Initialize();

  /// Places the point of row i (along the plate or around the wheel, from 0) and column j (across, from 0) on the body:
  ///   plate  Si_prime = (i dx - a/2, j dy - w/2, 0)                        dx = a/(nx - 1), dy = w/(ny - 1)
  ///   wheel  Si_prime = (a cos angle, j dy - w/2, a sin angle)             angle = 2 pi i/nx
  /// A single point along or across sits at -a/2 or -w/2.
  /// @param shape  k_plate, else a wheel     @param a  plate length or wheel radius     @param w  width
  void Calculation_Si_prime(int i, int j, int shape, double a, double w, int nx, int ny);

  /// Forgets a contact that is lost.
  void clear_history();
};

/// Loads of one grid point. Evaluations in contact set the three normal forces, which may be needed again (set_loads);
/// the rest is the documented record, which set-up calls fill.
class alignas(64) Csoil_contact {
public:
  double pressure_force;   ///< pressure times area
  double damping_force;    ///< damping part of the normal force, against the normal velocity
  double normal_force;     ///< max(0, pressure force + damping force)
  double shear_force_1;    ///< along tangent 1
  double shear_force_2;    ///< along tangent 2
  double effective_area;   ///< the point's share of the contact area [length^2]
  double dynamic_sinkage;  ///< sinkage that shearing adds, as a rule 0 or negative [length]
  double static_sinkage;   ///< the sinkage that enters Bekker's law, 0 or negative [length]
  double pressure;         ///< positive in compression [force/length^2]
  double shear_stress_1;   ///< of Wong's law, along tangent 1 [force/length^2]
  double shear_stress_2;   ///< of Wong's law, along tangent 2 [force/length^2]

  double local_force[3];  ///< force on the body along tangent 1, tangent 2 and normal
  double force[3];        ///< force on the body, ground axes
  double moment[3];       ///< moment of the force about the body marker, ground axes
  std::string soil_type;  ///< the road's

  double spare;  ///< kept: 1.0; it belongs to the documented record, and nothing reads it

  Csoil_contact() { Initialize(); }

  void Initialize();
};

/// Prefetches what the evaluation of a point reads of its history.
inline void prefetch_history(const Croad_contact& rc) {
  const char* const record = reinterpret_cast<const char*>(&rc);
  for (int line = 0; line < 3; ++line) __builtin_prefetch(record + 64 * line);
}

/// One soil element: a body's grid of contact points on a road.
class CSoilInteraction {
public:
  std::vector<std::vector<Croad_contact>> road_contacts;  ///< nx rows of ny points
  std::vector<std::vector<Csoil_contact>> soil_contacts;  ///< likewise
  std::vector<double> on_body[3];  ///< Si_prime of the records, x, y and z apart, point (i, j) at i ny + j: so close
                                   ///< together that placing points need not wait for memory
  std::int32_t nx;                 ///< points along the plate or around the wheel; -1 at first
  std::int32_t ny;                 ///< points across; -1 at first
  std::int32_t element_id;         ///< the element's index once it is set up

  CSoilInteraction() { Initialize(); }

  void Initialize() {
    nx = ny = -1;
    element_id = qvsoilrdf::k_not_set;
  }
};

}  // namespace qvsoilinteraction
