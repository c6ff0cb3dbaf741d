#pragma once

#include <cstddef>
#include <string>

#include "common/call/parameters.h"
#include "qvbrisk/layouts.h"
#include "soilinteraction_mtl/containers.h"

/// The parameter list and the result array of a track.
namespace qvsoilinteractionmtl {

// The entries that guards name in more than one place.
constexpr qv::parameter k_track_index{QV_TRACK_TRACK, "track index"};
constexpr qv::parameter k_road_index{QV_TRACK_ROAD, "road index"};
constexpr qv::parameter k_road_string{QV_TRACK_ROAD_STRING, "string id of the RDF file"};
constexpr qv::parameter k_road_count{QV_TRACK_ROAD_COUNT, "number of roads"};
constexpr qv::parameter k_count_along{QV_TRACK_POINTS_ALONG, "grid count along a span"};
constexpr qv::parameter k_count_across{QV_TRACK_POINTS_ACROSS, "grid count across the belt"};
constexpr qv::parameter k_node_count{QV_TRACK_NODE_COUNT, "number of nodes"};

/// A count; fewer than two points or nodes make no belt.
inline int to_count_of_two_or_more(const double* par, const qv::parameter& entry, const qv::fault_channel& channel) {
  const int count = qv::to_int(par, entry, channel);
  if (count >= 2) return count;
  qv::fault(channel, "The " + text_of(entry) + " is " + std::to_string(count) + "; it must be at least 2.");
}

/// Number of grid points of a belt. Two neighbouring spans share the row over their common node.
inline std::size_t belt_points(int nodes, int n_long, int n_lat) {
  return ((static_cast<std::size_t>(nodes) - 1) * (static_cast<std::size_t>(n_long) - 1) + 1) *
         static_cast<std::size_t>(n_lat);
}

/// The parameter list up to the nodes, decoded.
struct parameters {
  int track, road, file_name, marker_I, marker_J, marker_R, roads;
  double thickness, width;
  int n_long, n_lat, variable, nodes;

  parameters(const double* par, const qv::fault_channel& channel)
      : track(qv::to_int(par, k_track_index, channel)),
        road(qv::to_int(par, k_road_index, channel)),
        file_name(qv::to_int(par, k_road_string, channel)),
        marker_I(qv::to_int(par, {QV_TRACK_MARKER_I, "marker id I"}, channel)),
        marker_J(qv::to_int(par, {QV_TRACK_MARKER_J, "marker id J"}, channel)),
        marker_R(qv::to_int(par, {QV_TRACK_MARKER_R, "reference marker id"}, channel)),
        roads(qv::to_count(par, k_road_count, channel)),
        thickness(par[QV_TRACK_THICKNESS]),
        width(par[QV_TRACK_WIDTH]),
        n_long(to_count_of_two_or_more(par, k_count_along, channel)),
        n_lat(to_count_of_two_or_more(par, k_count_across, channel)),
        variable(qv::to_int(par, {QV_TRACK_BELT_SPEED, "variable id"}, channel)),
        nodes(to_count_of_two_or_more(par, k_node_count, channel)) {
    qv::check_index(track, k_tracks_per_road, k_track_index, channel);
    check_number_of_points(channel);
  }

  std::size_t points() const { return belt_points(nodes, n_long, n_lat); }

private:
  /// Hosts count the entries of the result array in ints.
  void check_number_of_points(const qv::fault_channel& channel) const {
    constexpr std::size_t k_most = (2147483647U - QV_TRACK_RESULT_LENGTH) / QV_TRACK_POINT_LENGTH;
    const std::size_t rows = belt_points(nodes, n_long, 1);
    if (rows <= k_most && points() <= k_most) return;
    qv::fault(channel, "The number of grid points is " + std::to_string(rows) + " rows (parameters " +
                           std::to_string(QV_TRACK_POINTS_ALONG) + " and " + std::to_string(QV_TRACK_NODE_COUNT) +
                           ") of " + std::to_string(n_lat) + " (parameter " + std::to_string(QV_TRACK_POINTS_ACROSS) +
                           "); it must not exceed " + std::to_string(k_most) + ".");
  }
};

}  // namespace qvsoilinteractionmtl
