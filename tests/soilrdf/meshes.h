#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "soilrdf/road.h"

namespace qvtest {

/// Points and triangles (point numbers from 1), as a road file lists them.
struct mesh {
  std::vector<std::array<double, 3>> points;
  std::vector<std::array<int, 3>> triangles;
};

using generator = std::mt19937_64;
double between(generator& random, double low, double high);
int whole_between(generator& random, int low, int high);  ///< both included

/// A road with the mesh's nodes and elements and the nodes' bounds; nothing is derived yet.
qvsoilrdf::CRoad undivided_road(const mesh& m);

/// A road as the reader leaves it. Throws std::runtime_error with the message when the mesh is refused.
qvsoilrdf::CRoad road_of(const mesh& m);

/// `columns` x `rows` squares of two triangles each, heights 0.
mesh regular_mesh(int columns, int rows, double dx, double dy, double x0 = 0, double y0 = 0);

/// Kinds of random meshes, from well-behaved to hopeless.
struct mesh_kind {
  const char* name;
  mesh (*make)(generator& random);
};
extern const std::vector<mesh_kind> k_mesh_kinds;

}  // namespace qvtest
