#include "solver/checks/soil_track.h"

#include <algorithm>

#include "qvbrisk/layouts.h"
#include "solver/checks/hull_patches.h"

namespace qvslv {

std::vector<SoilTrack> soil_tracks_of(const Model& model) {
  std::vector<SoilTrack> tracks;
  for (size_t i = 0; i < model.elements.size(); ++i) {
    const std::vector<double>& par = model.elements[i].par;
    if (model.elements[i].subroutine != "qvsoil_interaction_mtl" || par.size() < QV_TRACK_LENGTH) continue;
    const auto marker = [&](size_t place) { return find_marker(model, whole(par[place])); };
    SoilTrack track{model.elements[i],         i, marker(QV_TRACK_MARKER_I), marker(QV_TRACK_MARKER_J),
                    marker(QV_TRACK_MARKER_R), {}};
    for (size_t at = QV_TRACK_LENGTH; at + QV_TRACK_NODE_LENGTH <= par.size(); at += QV_TRACK_NODE_LENGTH)
      track.nodes.push_back(
          {marker(at + QV_TRACK_NODE_MARKER), par[at + QV_TRACK_NODE_RADIUS] + par[QV_TRACK_THICKNESS]});
    bool whole_track = track.hull != k_none && track.road_marker != k_none && track.reference != k_none;
    for (const TrackNode& node : track.nodes) whole_track = whole_track && node.marker != k_none;
    if (whole_track && track.nodes.size() > 1) tracks.push_back(std::move(track));
  }
  return tracks;
}

bool is_driven(const SoilTrack& track, const Model& model) {
  const double road = track.element.par[QV_TRACK_ROAD];
  return std::any_of(model.elements.begin(), model.elements.end(), [&](const Element& element) {
    return element.subroutine == "qvsoil_mtl_eom" && element.par.size() > QV_TRACK_EOM_ROAD &&
           whole(element.par[QV_TRACK_EOM_ROAD]) == whole(road);
  });
}

}  // namespace qvslv
