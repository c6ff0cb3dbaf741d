#pragma once

#include "common/call/messages.h"
#include "soilrdf/road.h"

namespace qvsoilrdf {

/// What a road needs after its nodes and elements are read: planes of the triangles, grid size, packed facets and
/// the filled grid. Faults (a grid without extent, a node number outside the node list, a grid too fine to count)
/// go to the channel as one message and throw the integer 1.
void derive_road(CRoad& road, const qv::fault_channel& channel);

}  // namespace qvsoilrdf
