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

/// Path of a WAVE file with this many rows over 20 s and columns over 100 length units. It is made in the temporary
/// folder if it is not there yet.
std::string make_wave_file(int rows, int columns);

/// Path of a CURRENT file with 200 keys in each table.
std::string make_current_file();

/// In bytes.
double file_size(const std::string& path);

}  // namespace qvbench
