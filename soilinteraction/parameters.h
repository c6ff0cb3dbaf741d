#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

#include "common/call/parameters.h"
#include "soilinteraction/soil_laws.h"

/// The parameter list and the result array of a soil element.
namespace qvsoilinteraction {

constexpr const char* k_prefix = "SOILINTERACTION ERROR : ";
constexpr int k_totals = 7;  ///< result entries before the points: force, moment, area
constexpr int k_values_per_point = 8;

/// The parameter list, decoded.
struct parameters {
  int element, body_marker, road, file_name, road_marker, elements, roads, ground_marker;
  contact_patch patch;

  parameters(const double* par, const qv::fault_channel& channel)
      : element(qv::to_int(par[0], "element index (parameter 0)", channel)),
        body_marker(qv::to_int(par[1], "body marker id (parameter 1)", channel)),
        road(qv::to_int(par[3], "road index (parameter 3)", channel)),
        file_name(qv::to_int(par[4], "string id of the RDF file (parameter 4)", channel)),
        road_marker(qv::to_int(par[5], "road base marker id (parameter 5)", channel)),
        elements(qv::to_count(par[7], "number of soil elements (parameter 7)", channel)),
        roads(qv::to_count(par[8], "number of roads (parameter 8)", channel)),
        ground_marker(qv::to_int(par[14], "ground reference marker id (parameter 14)", channel)),
        patch{qv::to_int(par[9], "body shape (parameter 9)", channel), par[10], par[11],
              qv::to_count(par[12], "grid count along or around (parameter 12)", channel),
              qv::to_count(par[13], "grid count across (parameter 13)", channel)} {
    // The result array is counted in ints.
    if (points() > (2147483647U - k_totals) / k_values_per_point) {
      qv::fault(std::string(channel.prefix) + "The number of grid points (parameter 12 times parameter 13) is " +
                    std::to_string(points()) + "; it must not exceed 268435455.",
                channel.ierr, channel.msg);
    }
  }

  std::size_t points() const { return static_cast<std::size_t>(patch.nx) * static_cast<std::size_t>(patch.ny); }
  double bekker_width() const { return patch.shape == 1 ? std::min(patch.a, patch.w) : patch.w; }
};

}  // namespace qvsoilinteraction
