#pragma once

#include "soilinteraction_mtl/parameters.h"

/// The one-time set-up of a track: its road, its records, the module's containers.
namespace qvsoilinteractionmtl {

/// Reads the road if it is not read yet, sizes the module's containers if they are empty and the track's grids if they
/// are not sized yet. What stands already, history included, stays.
///
/// The first call of all sizes the containers: for its number of roads, and for its number of nodes in every track.
void set_up(void* handle, const parameters& p, const qv::fault_channel& channel);

/// The track's records when it is set up, else null. An index outside the containers is a fault, and so are more nodes
/// or grid points than the records have.
track_records* find_track(const parameters& p, const qv::fault_channel& channel);

}  // namespace qvsoilinteractionmtl
