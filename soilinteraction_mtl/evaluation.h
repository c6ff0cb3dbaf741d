#pragma once

#include "soilinteraction_mtl/track_state.h"

/// One call of a track that is set up.
namespace qvsoilinteractionmtl {

/// The sums of a track that its outputs and its state equation read.
struct track_sums {
  contact_sum& contact;
  node_sum& shear;
  std::vector<node_sum>& normal;  ///< per node
};

/// Fills the result array and the sums, both cleared before, from the track's points; after a converged step (iflag 2)
/// their history moves on.
/// @param L  of lay_belt
void evaluate_track(void* handle, double time, const parameters& p, int iflag, const qvsoilrdf::CRoad& road,
                    const track_state& state, double L, track_records& track, track_sums sums, double* result,
                    const qv::fault_channel& channel);

}  // namespace qvsoilinteractionmtl
