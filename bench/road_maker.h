#pragma once

#include <string>

/// Right-triangulated rolling terrain, spacing 0.1 m, as RDF files of a given size.
namespace qvbench {

struct road_file {
  std::string path;
  double length;  ///< along x and y [m]
  int triangles;
  std::size_t bytes;
};

/// A road file of about `triangles` triangles. It is made in the temporary folder if it is not there yet.
const road_file& make_road(int triangles);

/// Height of the terrain at a place [m].
double terrain_height(double x, double y);

}  // namespace qvbench
