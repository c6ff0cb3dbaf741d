#pragma once

#include <string>
#include <utility>
#include <vector>

#include "solver/model/finding.h"
#include "solver/model/model.h"
#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// What a road file holds, and what its reader would refuse or silently misunderstand.
struct RoadCheck {
  std::string path;
  long nodes = 0, elements = 0;  ///< numbers of lines that are really there
  double x_min = 0, x_max = 0, y_min = 0, y_max = 0, z_min = 0, z_max = 0;
  std::string soil_type;
  std::vector<std::pair<std::string, double>> values;  ///< soil values in file order
  TriangleMesh mesh;  ///< in the road's axes; without elements that name nodes that are not there
  Findings found;     ///< errors: the reader stops there; warnings: it reads on, with a result hardly meant
};

/// Reads a road file line by line as the library's reader does, and notes what that would refuse or lose. With `units`,
/// also compares the declared units with the model's. A file that tells the settings it was made with is made anew and
/// compared. Throws std::runtime_error if the file cannot be read.
RoadCheck check_road_file(const std::string& path, const Units* units = nullptr);
RoadCheck check_road_text(const std::string& text, const std::string& path, const Units* units = nullptr);

}  // namespace qvslv
