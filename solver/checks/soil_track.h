#pragma once

#include <vector>

#include "solver/model/model.h"

namespace qvslv {

struct TrackNode {
  int marker = 0;     ///< index into Model::markers
  double radius = 0;  ///< of the belt's outer face [length]
};

/// A belt on soil (qvsoil_interaction_mtl) over two wheels or more.
struct SoilTrack {
  const Element& element;
  size_t index = 0;                              ///< of the element in Model::elements
  int hull = 0, road_marker = 0, reference = 0;  ///< indices into Model::markers
  std::vector<TrackNode> nodes;
};

/// The belts of a model, less those whose `par` names no markers.
std::vector<SoilTrack> soil_tracks_of(const Model& model);

/// Whether a torque drives the belt: the drive's equation of motion names the track's road.
bool is_driven(const SoilTrack& track, const Model& model);

/// The largest angle [degrees] between a driven track's heading and the x axis of its reference. The drive feels only
/// the shear along that axis: at this angle it misses 3.4 % of it.
constexpr double k_most_heading = 15;

}  // namespace qvslv
