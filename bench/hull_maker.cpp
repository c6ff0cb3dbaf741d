#include "bench/hull_maker.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <utility>

namespace qvbench {
namespace {

using vec = std::array<double, 3>;

vec on_sphere(const vec& p) {
  const double length = std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]);
  return {p[0] / length, p[1] / length, p[2] / length};
}

hull_mesh icosahedron() {
  const double g = 0.5 * (1.0 + std::sqrt(5.0));
  hull_mesh mesh;
  for (const vec& p : std::vector<vec>{{-1, g, 0},
                                       {1, g, 0},
                                       {-1, -g, 0},
                                       {1, -g, 0},
                                       {0, -1, g},
                                       {0, 1, g},
                                       {0, -1, -g},
                                       {0, 1, -g},
                                       {g, 0, -1},
                                       {g, 0, 1},
                                       {-g, 0, -1},
                                       {-g, 0, 1}})
    mesh.nodes.push_back(on_sphere(p));
  mesh.patches = {{0, 11, 5},  {0, 5, 1},  {0, 1, 7},  {0, 7, 10}, {0, 10, 11}, {1, 5, 9}, {5, 11, 4},
                  {11, 10, 2}, {10, 7, 6}, {7, 1, 8},  {3, 9, 4},  {3, 4, 2},   {3, 2, 6}, {3, 6, 8},
                  {3, 8, 9},   {4, 9, 5},  {2, 4, 11}, {6, 2, 10}, {8, 6, 7},   {9, 8, 1}};
  return mesh;
}

std::FILE* open_for_writing(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "w");
  if (file == nullptr) throw std::runtime_error("cannot write " + path);
  return file;
}

std::string in_temporary_folder(const std::string& name) {
  return (std::filesystem::temp_directory_path() / name).string();
}

}  // namespace

hull_mesh make_box() {
  hull_mesh mesh;
  for (const double z : {-0.6, 0.6})
    for (const double y : {-0.8, 0.8})
      for (const double x : {-1.2, 1.2}) mesh.nodes.push_back({x, y, z});
  mesh.patches = {{0, 2, 3}, {0, 3, 1}, {4, 5, 7}, {4, 7, 6}, {0, 1, 5}, {0, 5, 4},
                  {2, 6, 7}, {2, 7, 3}, {0, 4, 6}, {0, 6, 2}, {1, 3, 7}, {1, 7, 5}};
  return mesh;
}

hull_mesh make_icosphere(int refinements) {
  hull_mesh mesh = icosahedron();
  for (int step = 0; step < refinements; ++step) {
    std::map<std::pair<int, int>, int> middles;
    const auto middle = [&](int a, int b) {
      const auto [at, added] = middles.try_emplace(std::minmax({a, b}), static_cast<int>(mesh.nodes.size()));
      if (added) {
        const vec p = mesh.nodes[static_cast<std::size_t>(a)], q = mesh.nodes[static_cast<std::size_t>(b)];
        mesh.nodes.push_back(on_sphere({p[0] + q[0], p[1] + q[1], p[2] + q[2]}));
      }
      return at->second;
    };
    std::vector<std::array<int, 3>> finer;
    for (const auto& [a, b, c] : mesh.patches) {
      const int ab = middle(a, b), bc = middle(b, c), ca = middle(c, a);
      finer.push_back({a, ab, ca});
      finer.push_back({b, bc, ab});
      finer.push_back({c, ca, bc});
      finer.push_back({ab, bc, ca});
    }
    mesh.patches = std::move(finer);
  }
  return mesh;
}

double volume_of(const hull_mesh& mesh) {
  double six_volumes = 0.0;
  for (const auto& patch : mesh.patches) {
    const vec& a = mesh.nodes[static_cast<std::size_t>(patch[0])];
    const vec& b = mesh.nodes[static_cast<std::size_t>(patch[1])];
    const vec& c = mesh.nodes[static_cast<std::size_t>(patch[2])];
    six_volumes +=
        a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) + a[2] * (b[0] * c[1] - b[1] * c[0]);
  }
  return six_volumes / 6.0;
}

std::string make_wave_file(int rows, int columns) {
  const std::string path =
      in_temporary_folder("qvbench_" + std::to_string(rows) + "x" + std::to_string(columns) + ".wave");
  if (std::filesystem::exists(path)) return path;
  std::FILE* file = open_for_writing(path);
  const auto x_at = [&](int j) { return 100.0 * j / (columns - 1); };
  std::fprintf(file, "%d,%d\n", rows, columns);
  for (int j = 0; j < columns; ++j) std::fprintf(file, j == 0 ? "%.6f" : ",%.6f", x_at(j));
  for (int i = 0; i < rows; ++i) {
    const double t = 20.0 * i / (rows - 1);
    std::fprintf(file, "\n%.6f", t);
    for (int j = 0; j < columns; ++j) std::fprintf(file, ",%.9f", 0.1 * std::cos(0.3 * x_at(j) - 1.7 * t));
    for (int j = 0; j < columns; ++j) std::fprintf(file, ",%.9f", 0.17 * std::sin(0.3 * x_at(j) - 1.7 * t));
  }
  std::fclose(file);
  return path;
}

std::string make_current_file() {
  constexpr int k_keys = 200;
  const std::string path = in_temporary_folder("qvbench.current");
  std::FILE* file = open_for_writing(path);
  for (int table = 0; table < 2; ++table) {
    std::fprintf(file, "%d,%d\n", k_keys, 1 - table);
    for (int i = 0; i < k_keys; ++i) std::fprintf(file, "%.6f,%.6f\n", -1.0 + 0.51 * i, 0.5 + 0.002 * i);
  }
  std::fclose(file);
  return path;
}

double file_size(const std::string& path) { return static_cast<double>(std::filesystem::file_size(path)); }

}  // namespace qvbench
