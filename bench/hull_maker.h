#pragma once

#include <array>
#include <string>
#include <vector>

/// A floating sphere and the water around it, for benchmarks.
namespace qvbench {

/// Icosphere of unit radius, normals outwards.
struct hull_mesh {
  std::vector<std::array<double, 3>> nodes;
  std::vector<std::array<int, 3>> patches;
};

/// 20 patches, quartered `refinements` times.
hull_mesh make_icosphere(int refinements);

/// A WAVE file of rows x columns over 20 s and 100 length units, made once per
/// machine. Returns its path.
std::string make_wave_file(int rows, int columns);

/// A CURRENT file with 200 keys in each table.
std::string make_current_file();

double file_size(const std::string& path);

}  // namespace qvbench
