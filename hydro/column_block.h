#pragma once

#include "common/kernels/vectors.h"

namespace qvhydro {

/// The factors that turn a volume V into its buoyancy (Archimedes):
///
///   F = up V Kb L3 Fr     [force], global axes; in SI units Kb L3 Fr = density gravity scale
struct buoyancy_factors {
  double up[3];     ///< the water frame's z axis in global axes
  double buoyancy;  ///< Kb, see coefficients in hydro/drag.h
  double L3;        ///< Lr^3, the cube of the reciprocal length unit
  double force;     ///< Fr, the reciprocal force unit
};

/// Sums over the patches of a mesh.
struct displacement {
  double volume = 0.0;      ///< signed [length^3]; of a closed hull the displaced volume
  double moment[3] = {};    ///< signed volume times centroid [length^4], water frame
  double buoyancy[3] = {};  ///< [force], global axes
};

/// The water columns of up to 32 patches, side by side for loops that are vectorised. The columns are added to the
/// sums in the order of the patches, so that the sums are those of one patch after the other.
///
/// A patch out of the water, an upright one and one beyond an end of the wave table have no column. Heights that are
/// NaN: see hydro/water_column.h.
class column_block {
public:
  static constexpr int k_patches = 32;

  /// Takes one patch. To be called only while the block is not full.
  /// @param x_first, x_last  first and last position of the wave table [length], water frame
  /// @param q                the three corners, water frame
  /// @param facing           z component of the patch's outward normal, water frame
  /// @param level            water level for this patch [length], water frame z
  void add(double x_first, double x_last, const double* const q[3], double facing, double level);
  bool full() const { return m_count == k_patches; }
  /// Adds all columns to the sums and empties the block.
  void finish(const buoyancy_factors& factors, displacement& sum);

private:
  using row = double[k_patches];
  /// Second copy of the patches that the level cuts. The corner that the level parts from the others comes first.
  struct cut_patches {
    int patch[k_patches];
    row q[3][3], level;
    row volume, moment[3];  ///< without sign
  };

  void find_whole_columns();
  void find_cut_columns();

  int m_count = 0, m_cut_count = 0;
  bool m_nothing_somewhere = false;
  row q_[3][3], m_sign, m_level;
  row m_volume, m_moment[3];  ///< without sign
  cut_patches m_cuts;
};

}  // namespace qvhydro
