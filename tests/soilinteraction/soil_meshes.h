#pragma once

#include <random>

#include "tests/reference/road_reference.h"

/// Meshes for tests: a regular plan lattice and what can be done to it.
namespace qvtest {

struct soil_mesh {
  std::vector<qvref::v3> nodes;
  std::vector<std::array<int, 3>> triangles;  ///< node numbers, from 1
};

using random_source = std::mt19937_64;

inline double uniform(random_source& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}
inline int whole(random_source& random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

/// Lattice of columns x rows squares of edge `step`, two triangles each, with its lower corner in (x0, y0), z = 0.
soil_mesh flat_mesh(int columns, int rows, double step, double x0 = 0.0, double y0 = 0.0);

/// Waves of the height given over the mesh.
void make_rolling(soil_mesh& mesh, double height, random_source& random);
/// Moves every node by up to `amount` along x, y and z.
void jitter(soil_mesh& mesh, double amount, random_source& random);
/// Squeezes the mesh along x, so that its triangles become slivers.
void squeeze(soil_mesh& mesh, double factor);
/// Removes about one triangle in `one_in`.
void make_holes(soil_mesh& mesh, int one_in, random_source& random);
/// Turns the corners of every triangle round, half of them into the other sense, and shuffles the list.
void shuffle(soil_mesh& mesh, random_source& random);

/// One of the kinds a differential test goes through; `kind` counts from 0 to k_mesh_kinds - 1.
constexpr int k_mesh_kinds = 8;
extern const char* const k_mesh_names[k_mesh_kinds];
soil_mesh random_mesh(int kind, random_source& random);

}  // namespace qvtest
