#include "tests/soilinteraction/soil_meshes.h"

#include <algorithm>

namespace qvtest {

soil_mesh flat_mesh(int columns, int rows, double step, double x0, double y0) {
  soil_mesh mesh;
  for (int i = 0; i <= columns; ++i)
    for (int j = 0; j <= rows; ++j) mesh.nodes.push_back({x0 + i * step, y0 + j * step, 0.0});
  for (int i = 0; i < columns; ++i) {
    for (int j = 0; j < rows; ++j) {
      const int a = i * (rows + 1) + j + 1, b = a + rows + 1;
      mesh.triangles.push_back({a, b, b + 1});
      mesh.triangles.push_back({a, b + 1, a + 1});
    }
  }
  return mesh;
}

void make_rolling(soil_mesh& mesh, double height, random_source& random) {
  const double kx = uniform(random, 0.5, 2.0), ky = uniform(random, 0.5, 2.0), phase = uniform(random, 0.0, 6.0);
  for (qvref::v3& node : mesh.nodes) node[2] += height * std::sin(kx * node[0] + phase) * std::cos(ky * node[1]);
}

void jitter(soil_mesh& mesh, double amount, random_source& random) {
  for (qvref::v3& node : mesh.nodes)
    for (double& coordinate : node) coordinate += uniform(random, -amount, amount);
}

void squeeze(soil_mesh& mesh, double factor) {
  for (qvref::v3& node : mesh.nodes) node[0] *= factor;
}

void make_holes(soil_mesh& mesh, int one_in, random_source& random) {
  const auto gone = [&](const std::array<int, 3>&) { return whole(random, 1, one_in) == 1; };
  const auto end = std::remove_if(mesh.triangles.begin() + 1, mesh.triangles.end(), gone);
  mesh.triangles.erase(end, mesh.triangles.end());
}

void shuffle(soil_mesh& mesh, random_source& random) {
  for (auto& triangle : mesh.triangles) {
    std::rotate(triangle.begin(), triangle.begin() + whole(random, 0, 2), triangle.end());
    if (whole(random, 0, 1) == 1) std::swap(triangle[1], triangle[2]);
  }
  std::shuffle(mesh.triangles.begin(), mesh.triangles.end(), random);
}

const char* const k_mesh_names[k_mesh_kinds] = {
    "flat", "rolling", "jittered", "slivers", "holes", "shuffled", "far from its marker", "overlapping triangles"};

soil_mesh random_mesh(int kind, random_source& random) {
  if (kind == 6) {
    soil_mesh mesh = flat_mesh(10, 8, 0.5, 431000.25, 5412000.5);
    jitter(mesh, 0.1, random);
    return mesh;
  }
  soil_mesh mesh = flat_mesh(whole(random, 4, 12), whole(random, 4, 12), 0.5, -2.0, -2.0);
  if (kind == 1 || kind == 4 || kind == 5) make_rolling(mesh, 0.3, random);
  if (kind == 2 || kind == 4) jitter(mesh, 0.12, random);
  if (kind == 3) {
    jitter(mesh, 0.1, random);
    squeeze(mesh, 0.05);
  }
  if (kind == 4) make_holes(mesh, 4, random);
  if (kind == 5) shuffle(mesh, random);
  if (kind == 7) {  // corners anywhere: folds, overlaps, triangles without area
    const int last = static_cast<int>(mesh.nodes.size());
    for (auto& triangle : mesh.triangles)
      for (int& corner : triangle)
        if (whole(random, 1, 12) == 1) corner = whole(random, 1, last);
    jitter(mesh, 0.05, random);
  }
  return mesh;
}

}  // namespace qvtest
