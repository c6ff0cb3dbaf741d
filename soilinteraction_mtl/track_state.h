#pragma once

#include <vector>

#include "soilinteraction_mtl/contact_search.h"
#include "soilinteraction_mtl/parameters.h"

/// Where the vehicle, the road and the nodes are at one call, and the belt over them.
namespace qvsoilinteractionmtl {

/// A node of the chain and how it moves, from marker R in its axes but for the angular velocity.
struct node_motion {
  int marker;
  double position[3];
  double velocity[3];
  double angular_velocity[3];  ///< in the node's axes
  double A[9];                 ///< node -> R
};

/// What one call works with. The arrays have an entry per node and keep their size, so that a call allocates nothing.
struct track_state {
  track_motion motion;
  std::vector<node_motion> nodes;
  std::vector<double> radii;  ///< with the belt's thickness
};

/// Reads the nodes' markers and radii out of the parameter list.
void read_nodes(const double* par, const parameters& p, track_state& state, const qv::fault_channel& channel);

/// Asks the host where the markers are, how they move and how fast the belt circulates.
void fetch_motion(void* handle, const parameters& p, track_state& state);

/// Lays the belt over the nodes.
/// Kept: the length returned is that of the last span alone, and every span is evaluated with it.
double lay_belt(const track_state& state, int nodes, track_records& track);

}  // namespace qvsoilinteractionmtl
