#pragma once

#include "common/call/parameters.h"
#include "soilrdf/road.h"

namespace qvsoilrdf {

/// Reads the road whose file a string entity of the model names, and marks it with its index.
///
/// A reader that ran out of memory stops the analysis (stop_solver) and the call goes on; the road is marked even then
/// and not read again. A string that cannot be had and every format error is a fault and leaves the road unmarked.
/// @param string_id  of the file's name    @param index  of the road in its module
void load_road(void* handle, int string_id, int index, CRoad& road, const qv::fault_channel& channel);

}  // namespace qvsoilrdf
