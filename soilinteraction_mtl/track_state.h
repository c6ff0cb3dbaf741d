#pragma once

#include <vector>

#include "soilinteraction_mtl/contact_search.h"
#include "soilinteraction_mtl/parameters.h"

/// Where the vehicle, the road and the nodes are in one call, and the belt over them.
namespace qvsoilinteractionmtl {

/// A node of the chain and how it moves, seen from marker R.
struct node_motion {
  int marker;                  ///< id
  double position[3];          ///< of the circle's centre, axes of marker R [length]
  double velocity[3];          ///< axes of marker R [length/time]
  double angular_velocity[3];  ///< the node's own axes [1/time]
  double A[9];                 ///< axes of the node -> axes of marker R, column by column
};

/// What one call works with. The arrays have one entry per node and keep their size, so that a call allocates nothing.
struct track_state {
  track_motion motion;
  std::vector<node_motion> nodes;
  std::vector<double> radii;  ///< of the nodes, belt thickness included [length]
};

/// Reads the nodes' markers and radii out of the parameter list.
void read_nodes(const double* par, const parameters& p, track_state& state, const qv::fault_channel& channel);

/// Asks the host where the markers are, how they move and how fast the belt circulates.
void fetch_motion(void* handle, const parameters& p, track_state& state);

/// Lays the belt over the nodes: the spans, then the corners over inner nodes.
/// Kept: the length returned is that of the last span, before its corner, and every span is evaluated with it.
double lay_belt(const track_state& state, int nodes, track_records& track);

}  // namespace qvsoilinteractionmtl
