#pragma once

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bench/road_maker.h"

/// What the limits are made of: a height on a grid that is known to be regular, the powers and exponentials that the
/// laws need for a point in contact, and a bare scan of a file's numbers.
namespace qvbench {

/// Reads a file of `bytes` bytes whole and adds up the numbers in it.
inline double sum_of_numbers(const std::string& path, std::size_t bytes) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "r"), &std::fclose);
  const std::unique_ptr<char[]> text(new char[bytes]);
  const char* at = text.get();
  const char* const end = at + std::fread(text.get(), 1, bytes, file.get());
  double sum = 0.0;
  while (at != end) {
    double value;
    const auto [stop, error] = std::from_chars(at, end, value);
    if (error == std::errc()) {
      sum += value;
      at = stop;
    } else {
      ++at;
    }
  }
  return sum;
}

/// The terrain of road_maker.h as heights on a square grid with a spacing of 0.1 m.
struct regular_terrain {
  int side;
  std::vector<double> heights;

  explicit regular_terrain(int squares)
      : side(squares + 1), heights(static_cast<std::size_t>(side) * static_cast<std::size_t>(side)) {
    for (int i = 0; i < side; ++i)
      for (int j = 0; j < side; ++j) at(i, j) = terrain_height(0.1 * i, 0.1 * j);
  }
  double& at(int i, int j) {
    return heights[static_cast<std::size_t>(i) * static_cast<std::size_t>(side) + static_cast<std::size_t>(j)];
  }

  /// Height under (x, y), on the triangle of the square that holds it.
  double under(double x, double y) {
    const double u = x / 0.1, v = y / 0.1;
    const int i = static_cast<int>(u), j = static_cast<int>(v);
    const double a = u - i, b = v - j;
    const double z00 = at(i, j), z11 = at(i + 1, j + 1);
    if (a > b) {
      const double z10 = at(i + 1, j);
      return z00 + a * (z10 - z00) + b * (z11 - z10);
    }
    const double z01 = at(i, j + 1);
    return z00 + b * (z01 - z00) + a * (z11 - z01);
  }
};

/// The powers and exponentials that the laws need for a point: sinkage z [m], pressure p [Pa], shear displacements j1
/// and j2 [m]. The result means nothing.
inline double point_of_law(double z, double p, double j1, double j2) {
  const double dynamic = std::pow(p / 40000.0, 0.9) * std::pow(j1 * j1 + j2 * j2, 0.4);
  const double power = std::pow(z + 0.02 * dynamic, 0.7 - 1.0);
  const double r1 = j1 / 0.025, r2 = j2 / 0.025;
  return power * z + (0.9 * std::exp(1.0 - r1) + 1.0) * (1.0 - std::exp(-r1)) +
         (0.9 * std::exp(1.0 - r2) + 1.0) * (1.0 - std::exp(-r2));
}

}  // namespace qvbench
