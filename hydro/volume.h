#pragma once

#include "common/kernels/vectors.h"
#include "hydro/records.h"

namespace qvhydro {

/// Area of the triangle that the x and y components of a, b, c form, after Heron; 0 where the sides form none.
void Calculation_Area(const double* a, const double* b, const double* c, double& area);

/// A part of the water column over a patch.
struct water_column {
  double volume = 0.0;    ///< positive under a patch that faces down, negative under one that faces up
  double moment[3] = {};  ///< signed volume times centroid, water frame
};

/// The column between the submerged part of a triangle and the level above it.
/// @param q0, q1, q2  corners in the water frame (x along the wave table's positions, z up)
/// @param facing      z component of the triangle's outward normal in the water frame
/// @param level       water level for this triangle, water frame z
water_column find_column(double x_first, double x_last, const double* q0, const double* q1, const double* q2,
                         double facing, double level);

/// What turns a volume into its buoyancy: up * volume * buoyancy * L3 * force.
struct buoyancy_factors {
  double up[3];  ///< the water frame's z axis in global axes
  double buoyancy, L3, force;
};

/// Sums over the patches of a mesh.
struct displacement {
  double volume = 0.0;
  double moment[3] = {};    ///< water frame
  double buoyancy[3] = {};  ///< global axes
};

/// Water columns side by side, for a loop that runs several at a time; added in the order of the patches.
class column_block {
public:
  static constexpr int k_patches = 32;

  /// As find_column.
  void add(double x_first, double x_last, const double* const q[3], double facing, double level);
  bool full() const { return count_ == k_patches; }
  /// Adds the columns to the sums and forgets the patches.
  void finish(const buoyancy_factors& factors, displacement& sum);

private:
  using row = double[k_patches];
  /// Patches that the level cuts, once more: the corner that it parts from the others comes first.
  struct cut_patches {
    int patch[k_patches];
    row q[3][3], level;
    row volume, moment[3];  ///< not signed
  };

  void find_whole_columns();
  void find_cut_columns();

  int count_ = 0, cut_count_ = 0;
  bool nothing_somewhere_ = false;
  row q_[3][3], sign_, level_;
  row volume_, moment_[3];  ///< not signed
  cut_patches cuts_;
};

/// Signed volume and centre of the water column over one patch (see find_column), and their sums.
/// @param R, d        rotation from the body marker's frame to the water frame, the body marker's position there
/// @param p5, A5      global position and orientation of the water marker
/// @param h           water level for this patch, water frame z
/// @param centre      global position of the column's centroid; written only when the volume is not 0
/// @param volume_sum, moment_sum  accumulated; water frame
void Calculation_VolumeAndVolumeCenter(double x_first, double x_last, const Chydro_force_sub* sub, const Cpatch* patch,
                                       const double* R, const double* d, const double* p5, const double* A5, double h,
                                       double& volume, double* centre, double& volume_sum, double* moment_sum);

}  // namespace qvhydro
