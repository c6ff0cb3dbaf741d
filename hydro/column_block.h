#pragma once

#include <cstdint>

#include "hydro/drag.h"
#include "hydro/motion.h"

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

/// Adds up the water columns of a mesh's patches. They are worked on in blocks of 64, side by side for loops that are
/// vectorised, those that the level cuts apart from the others; columns are added to the sums in the order of the
/// patches, so that the sums are those of one patch after the other.
///
/// A patch out of the water and an upright one have no column. Heights that are NaN: see hydro/water_column.h.
class column_block {
public:
  static constexpr int k_patches = k_row;

  /// @param mesh  whose nodes have been worked out in this call
  column_block(const Chydro_force_sub& mesh, const motion& m, const coefficients& k)
      : m_mesh(mesh), m_R(m.R), m_factors{{m.A5[6], m.A5[7], m.A5[8]}, k.buoyancy, k.L3, k.force} {}

  /// Takes a patch.
  /// @param node     its three corners
  /// @param reached  how many of them, from the first on, are wet. The elevations of these and of the next one make the
  ///                 water level of the patch.
  void add(int patch, const int* node, int reached);
  /// Takes a patch of which it is known that no corner is above its level.
  void add_whole(int patch, const int* node, int reached) {
    m_place[m_count++] = m_whole.count;
    m_whole.take(patch, node[0], node[1], node[2], reached);
    if (m_count == k_patches) finish_block();
  }
  /// Takes a patch that is known to have no column.
  void add_nothing() { m_nothing_somewhere = true; }
  /// Returns the sums over all patches that were taken.
  const displacement& finish();

private:
  struct columns {
    int count = 0;
    int patch[k_patches];
    int node[3][k_patches];  ///< corners; of a cut patch the one apart from the others first
    // As wide as the doubles beside it. GCC 12 may step through rows of two widths by one register counted from address
    // 0, takes that for a null pointer in a later pass, and then leaves out calls of the function that fills a row.
    std::int64_t reached[k_patches];
    row q[3][3], elevation[3];  ///< of the corners, water frame
    row normal[3];              ///< body marker frame
    row level;
    row volume, moment[3], buoyancy[3];  ///< volume and moment without sign at first

    void take(int which, int first, int second, int third, int wet_corners) {
      patch[count] = which;
      node[0][count] = first;
      node[1][count] = second;
      node[2][count] = third;
      reached[count++] = wet_corners;
    }
    void add_to(displacement& sums, int i) const {
      sums.volume += volume[i];
      for (int k = 0; k < 3; ++k) {
        sums.moment[k] += moment[k][i];
        sums.buoyancy[k] += buoyancy[k][i];
      }
    }
  };

  void finish_block();
  void gather(columns& c);
  void find_levels();
  void find_whole_columns();
  void find_cut_columns();
  void find_loads(columns& c);
  void add_up();
  void add_up_whole();

  const Chydro_force_sub& m_mesh;
  const double* m_R;
  buoyancy_factors m_factors;
  displacement m_sums;
  bool m_nothing_somewhere = false;
  int m_count = 0;
  int m_place[k_patches];  ///< of each patch taken: its place in m_whole; of a cut one ~ its place in m_cut
  columns m_whole, m_cut;
};

}  // namespace qvhydro
