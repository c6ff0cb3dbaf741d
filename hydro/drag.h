#pragma once

#include "hydro/lanes.h"
#include "hydro/records.h"

/// Drag on the wet corners of patches. A corner stands for a third of its patch's area A. With u its velocity relative
/// to the water and n the patch's outward normal, both in global axes:
///
///   normal       vn = n . u,  Fn = -n (rho / 2) vn^2 A / 3      if vn > 0, else 0: only a face that runs into the
///                                                               water is pressed
///   tangential   t = u - vn n,  s = |t|,  Ft = -(t / s) c s^e A / 3
///   torque       r x F,  r the lever from the force marker to the corner, global axes
///
/// rho density, c and e coefficient and exponent of the tangential drag; both forces are multiplied by the scale of the
/// mesh, the scale of all drag, and the unit factors of docs/floating-bodies.md, "Units".
///
/// Source: the quadratic law (rho / 2) Cd A v |v| as in the drag term of Morison, O'Brien, Johnson, Schaaf (1950), here
/// per normal component with Cd = 1; the power law as documented in docs/floating-bodies.md, "Drag".
///
/// Borders: corners that are dry or off the wave table, and those after them, get nothing. At s = 0 the direction is
/// the zero vector, so there is no tangential drag; only with e < 0 is it 0 * infinity, a NaN. A NaN in u makes the
/// tangential drag NaN, and the normal drag 0, because vn > 0 does not hold.
namespace qvhydro {

/// Factors of the laws of drag and buoyancy, with the reciprocals of the model's units (Lr length, Mr mass, Tr time,
/// Fr force) multiplied in; see docs/floating-bodies.md, "Units".
struct coefficients {
  double buoyancy;          ///< Kb = (Lr / Tr^2) (Mr / Lr^3) scale density gravity
  double normal;            ///< Kn = (Mr / Lr^3) drag_scale density scale / 2 / 3
  double tangential;        ///< Kt = (Mr / (Lr Tr)) drag_scale c scale / 3
  double tangential_exp;    ///< e
  double normal_units;      ///< Lr^2 / Tr^2
  double tangential_units;  ///< (Lr / Tr)^e
  double L2, L3, force;     ///< Lr^2, Lr^3, Fr

  coefficients(const Chydro_force& element, const Chydro_force_sub& sub);
};

/// A force [force] and its torque about the force marker [force length], global axes.
struct load {
  double force[3] = {}, torque[3] = {};
};

struct drag_sums {
  load total, normal, tangential;
};

/// Adds up the drag of a mesh's patches. Their wet corners are worked on in blocks of 64, side by side for loops that
/// are vectorised; loads are added to the sums in the order of the patches, corner after corner, so that the sums are
/// those of one corner after the other.
class drag_block {
public:
  static constexpr int k_corners = k_row;

  /// @param mesh  whose nodes have been worked out in this call
  /// @param A6    rotation body marker frame -> global axes
  /// @param finite_levers  whether every lever is a finite number
  drag_block(const Chydro_force_sub& mesh, const coefficients& k, const double* A6, bool finite_levers)
      : m_mesh(mesh), k_(k), m_A6(A6), m_finite_levers(finite_levers) {}

  /// Takes a patch.
  /// @param node     its three corners
  /// @param reached  how many of them, from the first on, are wet: 1 to 3
  void add(int patch, const int* node, int reached) {
    for (int n = 0; n < 3; ++n) {
      m_patch[m_count + n] = patch;
      m_node[m_count + n] = node[n];
    }
    m_count += reached;
    if (m_count > k_corners - 3) finish_block();
  }
  /// Returns the sums over all patches that were taken.
  drag_sums finish();

private:
  void finish_block();
  void gather();
  void find_speeds();
  void find_friction();
  void find_pressure();
  void add_up();
  void add_up_pressure();

  const Chydro_force_sub& m_mesh;
  const coefficients& k_;
  const double* m_A6;
  bool m_finite_levers;    ///< otherwise pressures of 0 have torques that are no numbers
  bool m_pressed = false;  ///< some corner of the block runs into the water, or has to be taken for one
  double m_total[6] = {}, m_normal_drag[6] = {}, m_tangential[6] = {};  ///< sums: force, torque
  int m_count = 0;
  int m_padded = 0;  ///< the count, rounded up to whole vectors; the first corner stands in for the missing ones
  int m_patch[k_corners], m_node[k_corners];
  row m_normal[3], m_area;           ///< of the patch; body marker frame, then global axes
  row m_velocity[3], m_lever[3];     ///< global axes; velocity relative to the water
  row m_along[3], m_speed;           ///< direction t / s and speed s along the patch
  row m_normal_speed;                ///< vn, positive into the water
  row m_power;                       ///< s^e
  row m_friction[6], m_pressure[6];  ///< force and torque, tangential and normal
  row m_both[6];                     ///< their sum, if there is pressure
};

}  // namespace qvhydro
