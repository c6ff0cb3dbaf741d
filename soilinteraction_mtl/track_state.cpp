#include "soilinteraction_mtl/track_state.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "common/call/requests.h"
#include "soilinteraction_mtl/belt_geometry.h"

namespace qvsoilinteractionmtl {

void read_nodes(const double* par, const parameters& p, track_state& state, const qv::fault_channel& channel) {
  for (int i = 0; i < p.nodes; ++i) {
    const std::ptrdiff_t at = QV_TRACK_LENGTH + QV_TRACK_NODE_LENGTH * static_cast<std::ptrdiff_t>(i);
    const double marker = par[at + QV_TRACK_NODE_MARKER];
    if (!qv::fits_int(marker)) {
      const std::string quantity =
          "marker id of node " + std::to_string(i) + " (parameter " + std::to_string(at + QV_TRACK_NODE_MARKER) + ")";
      qv::to_int(marker, quantity.c_str(), channel);
    }
    state.nodes[static_cast<std::size_t>(i)].marker = static_cast<int>(marker);
    state.radii[static_cast<std::size_t>(i)] = par[at + QV_TRACK_NODE_RADIUS] + p.thickness;
  }
}

void fetch_motion(void* handle, const parameters& p, track_state& state) {
  const int I = p.marker_I, J = p.marker_J, R = p.marker_R;
  track_motion& motion = state.motion;
  motion = {};
  qv::fetch_vector(handle, "AM", {I, R}, motion.k.A1, 9);
  qv::fetch_vector(handle, "AM", {J, R}, motion.k.A5, 9);
  qv::fetch_vector(handle, "TDISP", {I, R, R}, motion.k.d1, 3);
  qv::fetch_vector(handle, "TDISP", {J, R, R}, motion.k.d5, 3);
  qv::fetch_vector(handle, "TVEL", {I, R, R}, motion.k.V1, 3);
  qv::fetch_vector(handle, "RVEL", {I, R, I}, motion.k.W1, 3);
  qv::fetch_vector(handle, "TVEL", {J, R, R}, motion.k.V5, 3);
  qv::fetch_vector(handle, "RVEL", {J, R, J}, motion.k.W5, 3);
  qv::fetch_vector(handle, "TDISP", {I, J, J}, motion.k.d15, 3);
  for (int i = 0; i < p.nodes; ++i) {
    node_motion& node = state.nodes[static_cast<std::size_t>(i)];
    node = {node.marker, {}, {}, {}, {}};
    qv::fetch_vector(handle, "TDISP", {node.marker, R, R}, node.position, 3);
    qv::fetch_vector(handle, "TVEL", {node.marker, R, R}, node.velocity, 3);
    qv::fetch_vector(handle, "RVEL", {node.marker, R, node.marker}, node.angular_velocity, 3);
    qv::fetch_vector(handle, "AM", {node.marker, R}, node.A, 9);
  }
  motion.belt_speed = qv::fetch_scalar(handle, "VARVAL", {p.variable});
  complete(motion);
}

double lay_belt(const track_state& state, int nodes, track_records& track) {
  double L = 0.0;
  const double* axle = state.motion.k.A1 + 3;
  for (std::size_t i = 0; i + 1 < static_cast<std::size_t>(nodes); ++i) {
    CSoilInteractionMTL& start = track[i][1];
    CSoilInteractionMTL& end = track[i + 1][0];
    get_tangent_point_XZ(state.nodes[i].position, state.radii[i], state.nodes[i + 1].position, state.radii[i + 1], axle,
                         L, start.frame, start.points);
    std::copy_n(start.frame, 9, end.frame);
    std::copy_n(start.points, 6, end.points);
  }
  if (nodes > 2) replace_tangent_point(nodes, track, state.radii.data());
  return L;
}

}  // namespace qvsoilinteractionmtl
