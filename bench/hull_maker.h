#pragma once

#include <array>
#include <string>
#include <vector>

/// Floating hulls and the water around them, for benchmarks.
namespace qvbench {

/// A closed hull about the origin, symmetric about it, normals outwards.
struct hull_mesh {
  std::vector<std::array<double, 3>> nodes;
  std::vector<std::array<int, 3>> patches;
};

/// A box of 2.4 x 1.6 x 1.2, 12 patches.
hull_mesh make_box();

/// Icosphere of unit radius: 20 patches, quartered `refinements` times.
hull_mesh make_icosphere(int refinements);

/// Sum of the tetrahedra between the patches and the origin.
double volume_of(const hull_mesh& mesh);

/// Path of a WAVE file with this many rows over 20 s and columns over 100 length units. It is made in the temporary
/// folder if it is not there yet.
std::string make_wave_file(int rows, int columns);

/// Path of a CURRENT file with 200 keys in each table.
std::string make_current_file();

/// In bytes.
double file_size(const std::string& path);

}  // namespace qvbench
