#pragma once

#include "common/kernels/vectors.h"
#include "hydro/records.h"

namespace qvhydro {

/// Factors of the laws, in the model's units (see docs/hydro.md).
struct coefficients {
  double buoyancy, normal, tangential;  ///< Kb, Kn, Kt
  double tangential_exp;
  double normal_units;      ///< L2 / T2
  double tangential_units;  ///< (Lr / Tr)^e
  double L2, L3, force;     ///< Lr^2, Lr^3, Fr

  coefficients(const Chydro_force& element, const Chydro_force_sub& sub);
};

/// A force and its torque about the force marker.
struct load {
  double force[3] = {}, torque[3] = {};
};

struct drag_sums {
  load total, normal, tangential;
};

/// Patches with wet corners, side by side for loops that run several at a time. Their loads are added in their order,
/// corner after corner.
class drag_block {
public:
  static constexpr int k_patches = 32;

  /// @param normal   of the patch, body marker frame
  /// @param corners  its nodes; the first `reached` of them are wet
  void add(const double* normal, double area, const node_state* const corners[3], int reached);
  bool full() const { return count_ == k_patches; }
  /// Adds the loads of all patches to the sums and forgets the patches.
  /// @param A6  body marker frame -> global axes
  void finish(const coefficients& k, const double* A6, drag_sums& sums);

private:
  using row = double[k_patches];

  void turn_normals(const double* A6);
  void find_speeds(int n);
  void find_powers(int n, double exponent);
  void find_loads(const coefficients& k, int n);
  void add_to(drag_sums& sums) const;

  int count_ = 0;
  int reached_[k_patches];
  row area_;
  row normal_[3];       ///< as added, then in global axes
  row velocity_[3][3];  ///< by corner; relative to the water
  row lever_[3][3];
  row along_[3][3], speed_[3], normal_speed_[3];      ///< along the patch: direction and speed; into the water
  row power_[3];                                      ///< speed to the exponent
  row pressure_[3][6], friction_[3][6], both_[3][6];  ///< by corner: force, torque
};

}  // namespace qvhydro
