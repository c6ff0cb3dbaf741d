#pragma once

#include <cstddef>
#include <string>

#include "common/call/parameters.h"
#include "soilinteraction_mtl/containers.h"

/// The parameter list and the result array of a track.
namespace qvsoilinteractionmtl {

constexpr int k_totals = 4;  ///< result entries before the points: local force sums, a zero
constexpr int k_values_per_point = 8;
constexpr int k_first_node = 14;  ///< where the pairs of marker and radius begin

/// A count of which less than two makes no belt.
inline int to_count_of_two_or_more(double value, const char* quantity, const qv::fault_channel& channel) {
  const int count = qv::to_int(value, quantity, channel);
  if (count >= 2) return count;
  qv::fault(
      std::string(channel.prefix) + "The " + quantity + " is " + std::to_string(count) + "; it must be at least 2.",
      channel.ierr, channel.msg);
}

/// Grid points of a belt: neighbouring spans share a row over their common node.
inline std::size_t belt_points(int nodes, int n_long, int n_lat) {
  return ((static_cast<std::size_t>(nodes) - 1) * (static_cast<std::size_t>(n_long) - 1) + 1) *
         static_cast<std::size_t>(n_lat);
}

/// The parameter list up to the nodes, decoded. Entry 13 is not needed.
struct parameters {
  int track, road, file_name, marker_I, marker_J, marker_R, roads;
  double thickness, width;
  int n_long, n_lat, variable, nodes;

  parameters(const double* par, const qv::fault_channel& channel)
      : track(qv::to_int(par[0], "track index (parameter 0)", channel)),
        road(qv::to_int(par[1], "road index (parameter 1)", channel)),
        file_name(qv::to_int(par[2], "string id of the RDF file (parameter 2)", channel)),
        marker_I(qv::to_int(par[3], "marker id I (parameter 3)", channel)),
        marker_J(qv::to_int(par[4], "marker id J (parameter 4)", channel)),
        marker_R(qv::to_int(par[5], "reference marker id (parameter 5)", channel)),
        roads(qv::to_count(par[6], "number of roads (parameter 6)", channel)),
        thickness(par[7]),
        width(par[8]),
        n_long(to_count_of_two_or_more(par[9], "grid count along a span (parameter 9)", channel)),
        n_lat(to_count_of_two_or_more(par[10], "grid count across the belt (parameter 10)", channel)),
        variable(qv::to_int(par[11], "variable id (parameter 11)", channel)),
        nodes(to_count_of_two_or_more(par[12], "number of nodes (parameter 12)", channel)) {
    qv::check_index(track, k_tracks_per_road, "track index (parameter 0)", channel);
    check_number_of_points(channel);
  }

  std::size_t points() const { return belt_points(nodes, n_long, n_lat); }

private:
  /// The result array is counted in ints.
  void check_number_of_points(const qv::fault_channel& channel) const {
    constexpr std::size_t k_most = (2147483647U - k_totals) / k_values_per_point;
    const std::size_t rows = belt_points(nodes, n_long, 1);
    if (rows <= k_most && points() <= k_most) return;
    qv::fault(std::string(channel.prefix) + "The number of grid points is " + std::to_string(rows) +
                  " rows (parameters 9 and 12) of " + std::to_string(n_lat) + " (parameter 10); it must not exceed " +
                  std::to_string(k_most) + ".",
              channel.ierr, channel.msg);
  }
};

}  // namespace qvsoilinteractionmtl
