#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

#include "common/call/parameters.h"
#include "qvbrisk/layouts.h"
#include "soilinteraction/soil_laws.h"

/// The parameter list and the result array of a soil element.
namespace qvsoilinteraction {

constexpr const char* k_prefix = "SOILINTERACTION ERROR : ";

// The entries that guards name in more than one place.
constexpr qv::parameter k_element_index{QV_SOIL_ELEMENT, "element index"};
constexpr qv::parameter k_road_index{QV_SOIL_ROAD, "road index"};
constexpr qv::parameter k_road_string{QV_SOIL_ROAD_STRING, "string id of the RDF file"};
constexpr qv::parameter k_count_along{QV_SOIL_POINTS_ALONG, "grid count along or around"};
constexpr qv::parameter k_count_across{QV_SOIL_POINTS_ACROSS, "grid count across"};

/// The parameter list, decoded.
struct parameters {
  int element, body_marker, road, file_name, road_marker, elements, roads, ground_marker;
  contact_patch patch;

  parameters(const double* par, const qv::fault_channel& channel)
      : element(qv::to_int(par, k_element_index, channel)),
        body_marker(qv::to_int(par, {QV_SOIL_BODY_MARKER, "body marker id"}, channel)),
        road(qv::to_int(par, k_road_index, channel)),
        file_name(qv::to_int(par, k_road_string, channel)),
        road_marker(qv::to_int(par, {QV_SOIL_ROAD_MARKER, "road base marker id"}, channel)),
        elements(qv::to_count(par, {QV_SOIL_ELEMENTS_ON_ROAD, "number of soil elements"}, channel)),
        roads(qv::to_count(par, {QV_SOIL_ROAD_COUNT, "number of roads"}, channel)),
        ground_marker(qv::to_int(par, {QV_SOIL_GROUND_MARKER, "ground reference marker id"}, channel)),
        patch{qv::to_int(par, {QV_SOIL_SHAPE, "body shape"}, channel), par[QV_SOIL_SIZE], par[QV_SOIL_WIDTH],
              qv::to_count(par, k_count_along, channel), qv::to_count(par, k_count_across, channel)} {
    // Hosts count the entries of the result array in ints.
    constexpr std::size_t k_most = (2147483647U - QV_SOIL_RESULT_LENGTH) / QV_SOIL_POINT_LENGTH;
    if (points() > k_most) {
      qv::fault(channel, "The number of grid points (parameter " + std::to_string(k_count_along.position) +
                             " times parameter " + std::to_string(k_count_across.position) + ") is " +
                             std::to_string(points()) + "; it must not exceed " + std::to_string(k_most) + ".");
    }
  }

  std::size_t points() const { return static_cast<std::size_t>(patch.nx) * static_cast<std::size_t>(patch.ny); }
  /// The width b of Bekker's law: the smaller side of a plate, the width of a wheel.
  double bekker_width() const { return patch.shape == k_plate ? std::min(patch.a, patch.w) : patch.w; }
};

}  // namespace qvsoilinteraction
