#pragma once

#include "common/call/parameters.h"
#include "soilrdf/road.h"

namespace qvsoilrdf {

/// Reads the road whose file a string entity of the model names, and marks it with its index.
///
/// If the reader runs out of memory, the analysis is stopped (stop_solver) and the call goes on; the road is marked
/// even then and not read again. A string that the host does not give and every format error are faults and leave the
/// road unmarked.
/// @param string_id  of the file's name    @param index  of the road in its module
void load_road(void* handle, int string_id, int index, CRoad& road, const qv::fault_channel& channel);

}  // namespace qvsoilrdf
