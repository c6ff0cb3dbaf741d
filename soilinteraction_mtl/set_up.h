#pragma once

#include "soilinteraction_mtl/parameters.h"
#include "soilinteraction_mtl/track_state.h"

/// The one-time set-up of a track: its road, its records, the module's containers.
namespace qvsoilinteractionmtl {

/// Reads the road if it is not read yet, sizes the module's containers if they are empty and the track's grids if they
/// are not sized yet. Whatever exists already, history included, is kept.
///
/// The first call of all sizes the containers, for its number of roads and, in every track, for its number of nodes.
void set_up(void* handle, const parameters& p, const qv::fault_channel& channel);

/// The track's records if it is set up, else null. Faults: an index outside the containers, more nodes than the track
/// was set up with, fewer grid points.
track_records* find_track(const parameters& p, const qv::fault_channel& channel);

/// What the calls for this track work with. Each track has its own, so that two of them can be evaluated at a time; it
/// is sized with the track's grids. Precondition: the track is set up.
track_state& state_of(const parameters& p);

}  // namespace qvsoilinteractionmtl
