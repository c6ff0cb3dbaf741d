#pragma once

#include <string>
#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// What a look at a road file shows: what is in it, and what its reader would refuse or silently misunderstand.
struct RoadCheck {
  struct Finding {
    bool refused = false;  ///< the reader stops there; otherwise it reads on, with a result hardly meant
    int line = 0;          ///< from 1; 0: the file as a whole
    std::string text;
  };

  std::string path;
  long nodes = 0, elements = 0;  ///< lines really there
  double x_min = 0, x_max = 0, y_min = 0, y_max = 0, z_min = 0, z_max = 0;
  std::string soil_type;
  std::vector<std::pair<std::string, double>> values;  ///< soil values in file order
  std::vector<Finding> found;

  bool refused() const;
  /// "road.rdf:12: text", one per finding.
  std::vector<std::string> findings() const;
};

/// Reads a road file line by line as its reader does and watches what would be lost. With `units`, also compares
/// the declared units with the model's. Throws std::runtime_error when the file cannot be read.
RoadCheck check_road_file(const std::string& path, const Units* units = nullptr);
RoadCheck check_road_text(const std::string& text, const std::string& path, const Units* units = nullptr);

}  // namespace qvslv
