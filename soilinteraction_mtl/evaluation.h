#pragma once

#include "soilinteraction_mtl/track_state.h"

/// One call of a track that is set up: the loads of its points, their sums, what the result array gets.
namespace qvsoilinteractionmtl {

/// The sums of a track, which its outputs and its state equation read; axes of marker R.
struct track_sums {
  contact_sum& contact;
  node_sum& shear;
  std::vector<node_sum>& normal;  ///< per node
};

/// Fills the result array and the sums, which both have been cleared, from the track's points. After a converged step
/// (iflag 2) the points' history moves on.
/// @param L  what lay_belt returned: the length that every span's area and Bekker's law use [length]
void evaluate_track(void* handle, double time, const parameters& p, int iflag, const qvsoilrdf::CRoad& road,
                    const track_state& state, double L, track_records& track, track_sums sums, double* result,
                    const qv::fault_channel& channel);

}  // namespace qvsoilinteractionmtl
