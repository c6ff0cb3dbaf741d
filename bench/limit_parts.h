#pragma once

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bench/road_maker.h"
#include "common/kernels/powers.h"
#include "common/kernels/vectors.h"

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

/// The powers and exponentials that the laws need for points in contact, one by one and by the C library. The sum means
/// nothing.
class laws_by_c_library {
public:
  /// Sinkage z [m], pressure p [Pa], shear displacements j1 and j2 [m].
  void add(double z, double p, double j1, double j2) {
    const double dynamic = std::pow(p / 40000.0, 0.9) * std::pow(j1 * j1 + j2 * j2, 0.4);
    const double power = std::pow(z + 0.02 * dynamic, 0.7 - 1.0);
    const double r1 = j1 / 0.025, r2 = j2 / 0.025;
    m_sum += power * z + (0.9 * std::exp(1.0 - r1) + 1.0) * (1.0 - std::exp(-r1)) +
             (0.9 * std::exp(1.0 - r2) + 1.0) * (1.0 - std::exp(-r2));
  }
  double sum() { return m_sum; }

private:
  double m_sum = 0.0;
};

/// The same for a block of points at a time, in rows.
class laws_in_rows {
public:
  void add(double z, double p, double j1, double j2) {
    m_z[m_count] = z;
    m_pressure[m_count] = p / 40000.0;
    m_slip[m_count] = j1 * j1 + j2 * j2;
    m_r[0][m_count] = j1 / 0.025;
    m_r[1][m_count] = j2 / 0.025;
    if (++m_count == qv::k_block) finish();
  }
  double sum() {
    finish();
    return m_sum;
  }

private:
  using row = double[qv::k_block];

  void finish() {
    qv::powers(m_pressure, 0.9, m_pressure, m_count);
    qv::powers(m_slip, 0.4, m_slip, m_count);
    row power, stress = {}, rising, falling;
    for (int i = 0; i < m_count; ++i) power[i] = m_z[i] + 0.02 * (m_pressure[i] * m_slip[i]);
    qv::powers(power, 0.7 - 1.0, power, m_count);
    for (const row& r : m_r) {
      for (int i = 0; i < m_count; ++i) {
        rising[i] = -r[i];
        falling[i] = 1.0 - r[i];
      }
      qv::exponentials(rising, rising, m_count);
      qv::exponentials(falling, falling, m_count);
      for (int i = 0; i < m_count; ++i) stress[i] += (0.9 * falling[i] + 1.0) * (1.0 - rising[i]);
    }
    for (int i = 0; i < m_count; ++i) m_sum += power[i] * m_z[i] + stress[i];
    m_count = 0;
  }

  int m_count = 0;
  double m_sum = 0.0;
  row m_z, m_pressure, m_slip, m_r[2];
};

}  // namespace qvbench
