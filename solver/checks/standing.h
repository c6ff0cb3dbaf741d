#pragma once

#include <optional>

#include "solver/checks/scene.h"

namespace qvslv {

/// How a point that touches the soil stands on its road.
struct Standing {
  Vec3 on_road = {0, 0, 0};          ///< the point in the road's axes
  std::optional<Ground::Spot> spot;  ///< the road above or below it; none beside the road
  double above = 0;                  ///< distance from the point to that triangle's plane, negative below it
};

/// @param marker  index into Model::markers: the point; `road_marker` likewise, whose axes are the road's
Standing find_standing(const Scene& scene, const Ground& ground, int marker, int road_marker);

/// Notes a point that starts beside its road, or that motions carry off it.
/// @param what  the point's name in the message: "the wheel's axle"
void note_off_road(const Scene& scene, const Element& element, const std::string& what, int marker, int road_marker,
                   Findings& findings);

/// Notes a body that starts on its road with one of its ends over the road's edge. Says nothing of one that starts
/// beside.
/// @param half_way  from the marker to an end and, backwards, to the other: in the marker's axes
/// @param key       of the element's size along that way
void note_over_edge(const Scene& scene, const Element& element, const char* key, int marker, const Vec3& half_way,
                    int road_marker, Findings& findings);

}  // namespace qvslv
