#pragma once

#include <string>
#include <vector>

#include "solver/model_file/reading.h"

namespace qvslv {

/// type = "track": a belt over wheels on soil. It makes, in this order,
///   - qvsoil_interaction_mtl, evaluated and not applied: it leaves its sums behind for the others,
///   - a qvsoil_normalforce_mtl on the marker of each wheel and a qvsoil_shearforce_mtl on the hull's,
///   - qvsoil_mtl_velocity, where the belt is driven, and qvsoil_interaction_mtl_sum, which are reports,
/// and the variable that is the belt's speed. Where it is driven also the variable of the torque and the equation of
/// the sprocket's angle, y'' from qvsoil_mtl_eom, which share one id.
struct TrackElement {
  size_t first_element = 0;  ///< index into Model::elements of the qvsoil_interaction_mtl
  FilePosition wheels_at;
};

/// The elements of a track, named. A road slot holds one track: this is the one with the number `slot`, from 0.
std::vector<Element> read_track(const TableReader& table, int slot, Reading& reading, TrackElement& track);

/// The number of slots needs all tracks of the model. Throws ModelError for one that has more wheels than the first.
void number_tracks(const std::vector<TrackElement>& tracks, Reading& reading);

}  // namespace qvslv
