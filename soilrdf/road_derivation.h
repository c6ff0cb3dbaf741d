#pragma once

#include "common/call/messages.h"
#include "soilrdf/road.h"

namespace qvsoilrdf {

/// Computes what follows from a road's nodes and elements: the extent of the triangles and the grid. Faults: a node
/// number outside the node list, a grid without extent, a grid too fine to count.
void derive_road(CRoad& road, const qv::fault_channel& channel);

}  // namespace qvsoilrdf
