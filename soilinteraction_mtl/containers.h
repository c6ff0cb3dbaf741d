#pragma once

#include <array>
#include <vector>

#include "common/call/parameters.h"
#include "qvbrisk/layouts.h"
#include "soilinteraction_mtl/contact_records.h"

/// State of the track module, indexed by road and track. It lives from load to unload; the first set-up call sizes it
/// for good.
///
/// Kept: the set-up gives each road one track, so the only track index is 0. A second track names a road of its own.
namespace qvsoilinteractionmtl {

constexpr const char* k_prefix = "SOILINTERACTION MTL ERROR : ";
constexpr std::size_t k_tracks_per_road = 1;

template <class Entry>
using by_road_and_track = std::vector<std::vector<Entry>>;

using contact_sum = std::array<double, QV_TRACK_SUM_RESULT_LENGTH>;  ///< force x, y, z on the belt, area
using node_sum = std::array<double, QV_TRACK_SHARE_LENGTH>;          ///< force x, y, z, then three zeros

extern std::vector<qvsoilrdf::CRoad> s_3Dsoil_roads;
extern by_road_and_track<track_records> s_MTLsoil_forces;
extern by_road_and_track<contact_sum> s_MTLsoil_contact_forces_Sum;
extern by_road_and_track<node_sum> s_MTLsoil_shear_forces_Sum;
extern by_road_and_track<std::vector<node_sum>> s_MTLsoil_normal_forces_Sum;  ///< the last index is the node

// Kept: these belong to the module's documented state. No subroutine reads or writes them, so they stay empty.
extern by_road_and_track<node_sum> s_MTLsoil_shear_forces_Sum_p;
extern by_road_and_track<std::vector<node_sum>> s_MTLsoil_normal_forces_Sum_p;
extern by_road_and_track<std::vector<double>> s_MTLsoil_Input;

/// The entry of a road and a track; null while the container is empty. An index outside a filled container is a fault
/// that names it.
template <class Entry>
Entry* entry_or_null(by_road_and_track<Entry>& container, int road, const qv::parameter& road_entry, int track,
                     const qv::parameter& track_entry, const qv::fault_channel& channel) {
  if (container.empty()) return nullptr;
  qv::check_index(road, container.size(), road_entry, channel);
  auto& tracks = container[static_cast<std::size_t>(road)];
  qv::check_index(track, tracks.size(), track_entry, channel);
  return &tracks[static_cast<std::size_t>(track)];
}

}  // namespace qvsoilinteractionmtl
