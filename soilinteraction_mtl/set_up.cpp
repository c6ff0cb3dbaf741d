#include "soilinteraction_mtl/set_up.h"

#include <algorithm>
#include <utility>

#include "common/call/kept_set_up.h"
#include "soilrdf/load_road.h"

namespace qvsoilinteractionmtl {
namespace {

using qvsoilrdf::CRoad;
using qvsoilrdf::k_not_set;

std::vector<int> s_road_strings;    // by road: the string id that it was read by
std::vector<track_state> s_states;  // by road, which has one track: what a call works with
qv::kept_set_up s_kept("SOILINTERACTION MTL WARNING : ");

CRoad& set_up_road(void* handle, const parameters& p, const qv::fault_channel& channel) {
  if (s_3Dsoil_roads.empty()) {
    s_road_strings.resize(static_cast<std::size_t>(p.roads));
    s_3Dsoil_roads.resize(static_cast<std::size_t>(p.roads));
  }
  qv::check_index(p.road, s_3Dsoil_roads.size(), k_road_index, channel);
  CRoad& road = s_3Dsoil_roads[static_cast<std::size_t>(p.road)];
  int& string_id = s_road_strings[static_cast<std::size_t>(p.road)];
  if (road.road_id == k_not_set) {
    qvsoilrdf::load_road(handle, p.file_name, p.road, road, channel);
    string_id = p.file_name;
  } else {
    const auto asked = static_cast<double>(p.file_name);
    s_kept.compare(handle, {p.road, p.track}, {{k_road_string, asked, string_id}});
  }
  return road;
}

template <class Entry>
by_road_and_track<Entry> sized(int roads, const Entry& entry) {
  return by_road_and_track<Entry>(static_cast<std::size_t>(roads), std::vector<Entry>(k_tracks_per_road, entry));
}

/// Sizes all containers or none: if memory runs out on the way, a later call begins anew.
void size_containers(const parameters& p, const qv::fault_channel& channel) {
  if (!s_MTLsoil_forces.empty()) return;
  if (p.roads == 0) {
    qv::fault(channel, "The " + text_of(k_road_count) + " is 0; it must be at least 1.");
  }
  const auto nodes = static_cast<std::size_t>(p.nodes);
  auto forces = sized(p.roads, track_records(nodes, std::vector<CSoilInteractionMTL>(2)));
  auto contact = sized(p.roads, contact_sum{});
  auto shear = sized(p.roads, node_sum{});
  auto normal = sized(p.roads, std::vector<node_sum>(nodes, node_sum{}));
  s_states.resize(static_cast<std::size_t>(p.roads));
  s_MTLsoil_contact_forces_Sum = std::move(contact);
  s_MTLsoil_shear_forces_Sum = std::move(shear);
  s_MTLsoil_normal_forces_Sum = std::move(normal);
  s_MTLsoil_forces = std::move(forces);
}

[[noreturn]] void refuse_node_count(std::size_t nodes, std::size_t most, const qv::fault_channel& channel) {
  qv::fault(channel, "The " + text_of(k_node_count) + " is " + std::to_string(nodes) + "; it must not exceed the " +
                         std::to_string(most) + " of the set-up.");
}

void size_grids(const parameters& p, track_records& track, const qv::fault_channel& channel) {
  const auto nodes = static_cast<std::size_t>(p.nodes);
  if (nodes > track.size()) refuse_node_count(nodes, track.size(), channel);
  track_state& state = state_of(p);
  state.nodes.resize(nodes);
  state.radii.resize(nodes);
  const auto rows = static_cast<std::size_t>(p.n_long), columns = static_cast<std::size_t>(p.n_lat);
  for (std::size_t node = 0; node < nodes; ++node) {
    for (std::size_t side = 0; side < 2; ++side) {
      CSoilInteractionMTL& record = track[node][side];
      record.road_contacts.assign(rows, std::vector<Croad_contact_mtl>(columns));
      record.soil_contacts.assign(rows, std::vector<Csoil_contact_mtl>(columns));
      record.nLong = p.n_long;
      record.nLat = p.n_lat;
      record.side = static_cast<std::int32_t>(side);
      record.set_node_weights();
    }
  }
  for (std::size_t node = 0; node < nodes; ++node) {
    for (CSoilInteractionMTL& record : track[node])
      record.track_id = p.track;  // last: records without grids are not set up
  }
}

/// The soil type never changes afterwards, because a road is read once.
void store_soil_type(const CRoad& road, track_records& track) {
  for (auto& node : track)
    for (CSoilInteractionMTL& record : node)
      for (auto& row : record.soil_contacts)
        for (Csoil_contact_mtl& sc : row) sc.soil_type = road.soil_type;
}

track_records* entry(const parameters& p, const qv::fault_channel& channel) {
  return entry_or_null(s_MTLsoil_forces, p.road, k_road_index, p.track, k_track_index, channel);
}

/// How many nodes the track was set up with; its records may be more.
std::size_t nodes_of(const track_records& track) {
  const auto is_set_up = [](const auto& node) { return node[0].track_id != k_not_set; };
  return static_cast<std::size_t>(std::count_if(track.begin(), track.end(), is_set_up));
}

void compare_sizes(void* handle, const parameters& p, const track_records& track) {
  s_kept.compare(handle, {p.road, p.track},
                 {{k_count_along, static_cast<double>(p.n_long), track[0][0].nLong},
                  {k_count_across, static_cast<double>(p.n_lat), track[0][0].nLat},
                  {k_node_count, static_cast<double>(p.nodes), static_cast<int>(nodes_of(track))}});
}

/// Refuses more nodes than the records have, and fewer points than they have: the host's result array has room for the
/// points of the parameters, but the points of the set-up are written to it.
void check_counts(const parameters& p, const track_records& track, const qv::fault_channel& channel) {
  const std::size_t nodes = nodes_of(track);
  if (static_cast<std::size_t>(p.nodes) > nodes) {
    refuse_node_count(static_cast<std::size_t>(p.nodes), nodes, channel);
  }
  const CSoilInteractionMTL& record = track[0][0];
  const std::size_t points = belt_points(p.nodes, record.nLong, record.nLat);
  if (points <= p.points()) return;
  qv::fault(channel, "The number of grid points (parameters " + std::to_string(QV_TRACK_POINTS_ALONG) + ", " +
                         std::to_string(QV_TRACK_POINTS_ACROSS) + " and " + std::to_string(QV_TRACK_NODE_COUNT) +
                         ") is " + std::to_string(p.points()) + "; it must be at least the " + std::to_string(points) +
                         " of the set-up.");
}

}  // namespace

void set_up(void* handle, const parameters& p, const qv::fault_channel& channel) {
  const CRoad& road = set_up_road(handle, p, channel);
  size_containers(p, channel);
  track_records& track = *entry(p, channel);
  if (track[0][0].track_id == k_not_set) {
    size_grids(p, track, channel);
  } else {
    compare_sizes(handle, p, track);
  }
  store_soil_type(road, track);
}

track_state& state_of(const parameters& p) { return s_states[static_cast<std::size_t>(p.road)]; }

track_records* find_track(const parameters& p, const qv::fault_channel& channel) {
  track_records* track = entry(p, channel);
  if (track == nullptr || (*track)[0][0].track_id == k_not_set) return nullptr;
  check_counts(p, *track, channel);
  return track;
}

}  // namespace qvsoilinteractionmtl
