#pragma once

#include <cstdint>

#include "common/kernels/vectors.h"
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

/// Up to 32 patches with wet corners, side by side for loops that are vectorised. Their loads are added to the sums in
/// the order of the patches, corner after corner, so that the sums are those of one patch after the other.
class drag_block {
public:
  static constexpr int k_patches = 32;

  /// Takes one patch. To be called only while the block is not full.
  /// @param normal   of the patch, body marker frame
  /// @param area     of the patch [length^2]
  /// @param corners  its three nodes
  /// @param reached  how many of them, from the first on, are wet: 1 to 3
  void add(const double* normal, double area, const node_state* const corners[3], int reached);
  bool full() const { return m_count == k_patches; }
  /// Adds the loads of all patches to the sums and empties the block.
  /// @param A6  rotation body marker frame -> global axes
  void finish(const coefficients& k, const double* A6, drag_sums& sums);

private:
  using row = double[k_patches];

  void turn_normals(const double* A6);
  void find_speeds(int n);
  void find_powers(int n, double exponent);
  void find_loads(const coefficients& k, int n);
  void add_to(drag_sums& sums) const;

  int m_count = 0;
  // As wide as the doubles beside it. GCC 12 may step through rows of two widths by one register counted from address
  // 0, takes that for a null pointer in a later pass, and then leaves out calls of the function that fills a row.
  std::int64_t m_reached[k_patches];
  row m_area;
  row m_normal[3];       ///< body marker frame as added, then turned into global axes
  row m_velocity[3][3];  ///< by corner; relative to the water
  row m_lever[3][3];
  row m_along[3][3], m_speed[3];                         ///< by corner: direction t / s and speed s along the patch
  row m_normal_speed[3];                                 ///< by corner: vn, positive into the water
  row m_power[3];                                        ///< by corner: s^e
  row m_pressure[3][6], m_friction[3][6], m_both[3][6];  ///< by corner: force and torque; normal, tangential, sum
};

}  // namespace qvhydro
